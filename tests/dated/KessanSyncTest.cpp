// Settlement records through the public object: the upload's bodies and its stops, and the
// compare and kept-worker download against the scripted server.
#include <gtest/gtest.h>

#include "DatedTestUtil.h"
#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "dated/cCustKessan.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

constexpr const char* kGet = "customer/getKessanData.php";
constexpr const char* kSet = "customer/setKessanData.php";
constexpr const char* kNow = "2024/06/01 9:00:00";

// "name0=&name1=&..." for the numbered names from..to.
std::string Blank(const std::string& name, int from, int to) {
    std::string out;
    for (int i = from; i <= to; ++i) out += name + std::to_string(i) + "=&";
    return out;
}

class KessanSyncTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = EmptyCustomerDb(temp_.Path() / "db", clock_).string();
    }

    std::string Column(const std::string& column, int id) {
        return One(db_, "SELECT " + column +
                            " FROM tCustomerKessanHistory WHERE id = " + std::to_string(id));
    }

    std::string db_;
    std::shared_ptr<FixedClock> clock_;
};

TEST_F(KessanSyncTest, UploadSendsEachLiveRowAndClearsTheServerListWithTheFirst) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_,
        "INSERT INTO tCustomerKessanHistory (id, CustomerID, disabled, vno, RecDate, ExDate, "
        "DataFile, CheckEx, Other, CheckOther, other1, AcPeriod0, AcPeriod1, AcDateS0, "
        "ZaimuType2, DataFileID) VALUES (10, 7, 0, 1, '2024-04-01 10:00:00', "
        "'2024-03-31 00:00:00', 'k&1.dat', 2, 'メモ', NULL, 'x', '12', 'abc', "
        "'2023-04-01 12:34:00', 3, -4);"
        "INSERT INTO tCustomerKessanHistory (id, CustomerID, disabled, DataFile, CheckOther, "
        "DataFileID) VALUES (11, 7, 0, 'k2.dat', 0, 31), (12, 7, 1, 'gone', 0, 0), "
        "(13, 8, 0, 'other', 0, 0);");
    server_->On(kSet, Envelope(1, "T2"));
    ASSERT_EQ(obj.SyncUploadCustomerKessanList(db_, 7), 1);
    const auto posts = server_->RequestsTo(kSet);
    ASSERT_EQ(posts.size(), 2u);
    const std::string stamps = std::string("OtherDate1=") + kNow + "&OtherDate2=" + kNow;
    const std::string rest = std::string("&RegDate=") + kNow + "&UpdateDate=" + kNow + "&";
    EXPECT_EQ(posts[0].body,
              "ID=user1&token=T1&CustomerID=7&KessanDataItemID=10&DISABLEDALL=DISABLEDALL&"
              "RecDate=2024/04/01 10:00:00&ExDate=2024/03/31&ScDate=&DataFile=k&1.dat&"
              "CheckEx=2&other=メモ&CheckOther=1&" +
                  stamps + "&other1=x&other2=&other3=" + rest + "AcPeriod0=12&" +
                  Blank("AcPeriod", 1, 4) + "AcDateS0=2023/04/01&" + Blank("AcDateS", 1, 4) +
                  Blank("AcDateE", 0, 4) +
                  "CheckSync=0&ZaimuType0=0&ZaimuType1=0&ZaimuType2=3&ZaimuType3=0&"
                  "ZaimuType4=0&CalcWay0=0&CalcWay1=0&CalcWay2=0&CalcWay3=0&CalcWay4=0&"
                  "DefaultUse=0&" +
                  Blank("ProfDate", 0, 4) + "DataFileID=0&vno=1&");
    // The second: no DISABLEDALL, a CheckOther of 0 kept, its own link and position.
    const std::string head =
        std::string("ID=user1&token=T2&CustomerID=7&KessanDataItemID=11&RecDate=") + kNow +
        "&ExDate=&ScDate=&DataFile=k2.dat&CheckEx=0&other=&CheckOther=0&";
    const std::string tail = "&DataFileID=31&vno=2&";
    EXPECT_EQ(posts[1].body.substr(0, head.size()), head);
    EXPECT_EQ(posts[1].body.substr(posts[1].body.size() - tail.size()), tail);
    // Both rows are now agreed; the freed row and the other customer's are not.
    EXPECT_EQ(Column("InetCheckDate", 10), kNow);
    EXPECT_EQ(Column("InetCheckDate", 11), kNow);
    EXPECT_EQ(Column("InetCheckDate", 12), "");
    EXPECT_EQ(Column("InetCheckDate", 13), "");
}

TEST_F(KessanSyncTest, UploadStopsAtTheFirstFailedPostAndSendsNothingWithoutRows) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_,
        "INSERT INTO tCustomerKessanHistory (id, CustomerID, disabled) VALUES (1, 7, 0), "
        "(2, 7, 0), (3, 7, 0);");
    server_->OnSequence(kSet, {Envelope(1, "T2"), Envelope(-1, "T3"), Envelope(1, "T4")});
    EXPECT_EQ(obj.SyncUploadCustomerKessanList(db_, 7), 0);
    EXPECT_EQ(server_->RequestsTo(kSet).size(), 2u);
    EXPECT_EQ(Column("InetCheckDate", 1), "");

    server_->ClearRequests();
    EXPECT_EQ(obj.SyncUploadCustomerKessanList(db_, 9), 0);
    EXPECT_TRUE(server_->Requests().empty());
}

TEST_F(KessanSyncTest, CompareKeepsTheListForTheDownloadThenAgrees) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_, "INSERT INTO tCustomerKessanHistory (id, CustomerID, disabled) VALUES (1, 7, 0);");
    server_->On(kGet, Envelope(1, "T2",
                               ListPayload("Kessan", 7, "2024/05/01 10:00:00",
                                           {KessanItem(100), KessanItem(101)})));
    EXPECT_EQ(obj.CompareCustomerKessanList(db_, 7), 1);  // never agreed: the server is newer
    EXPECT_EQ(server_->RequestsTo(kGet)[0].body, "ID=user1&token=T1&CustomerID=7&");
    EXPECT_EQ(obj.SyncDownloadCustomerKessanList(db_, 7), 1);
    EXPECT_EQ(server_->RequestsTo(kGet).size(), 1u);  // the kept list was written
    EXPECT_EQ(Column("DataFile", 1), "kessan100.dat");
    EXPECT_EQ(Column("DataFile", 2), "kessan101.dat");
    EXPECT_EQ(obj.CompareCustomerKessanList(db_, 7), 0);
    // The slot is empty again: a download without a comparison does nothing.
    Sql(db_, "UPDATE tCustomerKessanHistory SET DataFile = 'local';");
    EXPECT_EQ(obj.SyncDownloadCustomerKessanList(db_, 7), 1);
    EXPECT_EQ(Column("DataFile", 1), "local");
    EXPECT_EQ(server_->RequestsTo(kGet).size(), 2u);
}

TEST_F(KessanSyncTest, AnUnreadableReplyLooksLikeAgreementAndKeepsNothing) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_, "INSERT INTO tCustomerKessanHistory (id, CustomerID, disabled) VALUES (1, 7, 0);");
    server_->On(kGet, Envelope(1, "T2",
                               ListPayload("Kessan", 7, "2024/05/01 10:00:00",
                                           {KessanItem(100, {}, {"CalcWay2"})})));
    EXPECT_EQ(obj.CompareCustomerKessanList(db_, 7), 0);
    EXPECT_EQ(obj.SyncDownloadCustomerKessanList(db_, 7), 1);
    EXPECT_EQ(Column("DataFile", 1), "");
    EXPECT_EQ(Column("disabled", 1), "0");
}

TEST_F(KessanSyncTest, UnderTheUsageOptionTheDownloadFetchesForItself) {
    ctrlMorvane obj;
    LogIn();
    server_->On(kGet, Envelope(1, "T2",
                               ListPayload("Kessan", 7, "2024/05/01 10:00:00", {KessanItem(100)})));
    EXPECT_EQ(obj.SyncDownloadCustomerKessanList(db_, 7), 1);  // option 0: nothing fetched
    EXPECT_TRUE(server_->Requests().empty());
    obj.setObjectUsage(1);
    const DispatchTable& table = DispatchTable::Instance();
    EXPECT_EQ(table.Invoke(obj, "SyncDownloadCustomerKessanList", {{Value(db_)}, {Value("7")}}),
              Value(std::int32_t{1}));
    EXPECT_EQ(server_->RequestsTo(kGet).size(), 1u);
    EXPECT_EQ(Column("DataFile", 1), "kessan100.dat");
}

}  // namespace
}  // namespace morvane::test
