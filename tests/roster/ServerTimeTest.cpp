// The clock measurement's tries against the HTTPS test server, with a clock that moves by a
// set step at every reading, and the data folder's offset on a local disk.
#include <cmath>

#include "RosterTestUtil.h"
#include "component/ctrlMorvane.h"
#include "session/mdlServerTime.h"
#include "state/ProcessState.h"

namespace morvane::test {
namespace {

class ServerTimeTest : public RosterDbTest {
protected:
    double Seconds(double days) { return std::round(days * 86400.0 * 1000.0) / 1000.0; }
    const DateValue start_ = DateValue::FromCivil({2024, 5, 1, 10, 0, 0});
};

TEST_F(ServerTimeTest, OneFastExchangeDecidesAtOnceAndSlowOnesAreAveragedOverThreeSamples) {
    // The server's clock is 10 seconds behind.
    server_->On("gettime.php", TimeReply("2024/05/01 09:59:50"));
    State().SetClock(std::make_shared<StepClock>(start_, 0.0));
    ctrlMorvane obj;
    obj.UpdateServerTimeOffset();
    EXPECT_EQ(server_->BodiesTo("gettime.php"), std::vector<std::string>{""});
    EXPECT_EQ(Seconds(State().inetServerTimeOffset), 9.0);  // less the one second
    EXPECT_EQ(obj.InetServerTimeOffset(), DoubleText(State().inetServerTimeOffset));

    server_->ClearRequests();
    server_->On("gettime.php", TimeReply("2024/05/01 10:00:00"));
    // Every exchange takes 3 seconds: midpoints at +1.5, +7.5 and +13.5 seconds.
    State().SetClock(std::make_shared<StepClock>(start_, 3.0));
    EXPECT_EQ(Seconds(MeasureServerTimeOffset()), 7.5 - 1.0);
    EXPECT_EQ(server_->RequestsTo("gettime.php").size(), 3u);
}

// Ten tries each: no answer is silent, a reply that does not parse is told each time.
TEST_F(ServerTimeTest, NoAnswerOrOnlyVerySlowOnesGiveMinusOneSecond) {
    State().SetClock(std::make_shared<StepClock>(start_, 6.0));
    for (const std::string& reply :
         {TimeReply("2024/05/01 10:00:00"), std::string(), std::string("<r><datetime>")}) {
        server_->ClearRequests();
        server_->On("gettime.php", reply);
        EXPECT_EQ(Seconds(MeasureServerTimeOffset()), -1.0) << reply;
        EXPECT_EQ(server_->RequestsTo("gettime.php").size(), 10u) << reply;
    }
    EXPECT_EQ(kit_->Boxes().size(), 10u);
    EXPECT_EQ(kit_->Boxes()[0].text, "loadXML エラー");
    EXPECT_EQ(kit_->Boxes()[0].title, "GetXmlDateTime");
}

// A second comparison measures the server again but not the folder.
TEST_F(ServerTimeTest, DataFolderOnALocalDiskIsZeroAndMeasuredOncePerProcess) {
    EXPECT_EQ(MeasureDataFolderTimeOffset(Db()), 0.0);
    EXPECT_EQ(MeasureDataFolderTimeOffset((temp_.Path() / "none.dat").string()), 0.0);
    Serve({});
    LogIn();
    ctrlMorvane obj;
    EXPECT_EQ(obj.CompareCustomerList(Db()), 0);
    EXPECT_TRUE(State().dataFolderOffsetMeasured);
    EXPECT_EQ(obj.InetDataFolderTimeOffset(), "0");
    State().inetDataFolderTimeOffset = 0.5;
    const size_t before = server_->RequestsTo("gettime.php").size();
    EXPECT_EQ(obj.CompareCustomerList(Db()), 0);
    EXPECT_EQ(State().inetDataFolderTimeOffset, 0.5);
    EXPECT_GT(server_->RequestsTo("gettime.php").size(), before);
}

}  // namespace
}  // namespace morvane::test
