// The trades members on the public object, against the scripted test server.
#include <gtest/gtest.h>

#include "GyoshuTestUtil.h"
#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

class GyoshuMembersTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = EmptyCustomerDb(temp_.Path() / "db", clock_).string();
        InsertCustomer(db_);
        InsertTrades(db_, 31);
    }

    std::string Reply(const Tags& grid, const std::string& token = "T2") {
        return Envelope(1, token, GyoshuPayload(HeaderTags(), grid));
    }
    std::string Check(int n) {
        return One(db_,
                   "SELECT EPmtCheck FROM tCustomerGyoshu WHERE GyoshuCode = " + std::to_string(n));
    }

    std::string db_;
    std::shared_ptr<FixedClock> clock_;
};

TEST_F(GyoshuMembersTest, CompareKeepsNothingAndTheDownloadFetchesAgain) {
    ctrlMorvane obj;  // a new object resets the login, so it comes first
    LogIn();
    server_->On("customer/getCompGyoshu.php", Reply(With(GridTags(), {{"EPmtCheck5", "7"}})));
    EXPECT_EQ(obj.CompareCustomerKihonGyosyu(db_, 7), 1);
    const auto asked = server_->RequestsTo("customer/getCompGyoshu.php");
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].body, "ID=user1&token=T1&CustomerID=7&");

    EXPECT_EQ(obj.SyncDownloadCustomerKihonGyosyu(db_, 7), 1);
    EXPECT_EQ(server_->RequestsTo("customer/getCompGyoshu.php").size(), 2u);
    EXPECT_EQ(Check(5), "7");
    EXPECT_EQ(obj.CompareCustomerKihonGyosyu(db_, 7), 0);
    EXPECT_TRUE(kit_->Boxes().empty());

    // A reply that lacks a trade compares as 0 and downloads nothing, yet the download gives 1.
    server_->On(
        "customer/getCompGyoshu.php",
        Envelope(1, "T9",
                 GyoshuPayload(HeaderTags(), With(GridTags(), {{"EPmtCheck5", "8"}}, "EPmtDate7"),
                               "2024/07/01 00:00:00")));
    EXPECT_EQ(obj.CompareCustomerKihonGyosyu(db_, 7), 0);
    EXPECT_EQ(obj.SyncDownloadCustomerKihonGyosyu(db_, 7), 1);
    EXPECT_EQ(Check(5), "7");
}

TEST_F(GyoshuMembersTest, WithoutALoginTheDownloadSendsNothing) {
    ctrlMorvane obj;
    EXPECT_EQ(obj.SyncDownloadCustomerKihonGyosyu(db_, 7), 0);
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_EQ(Check(5), "2");
}

TEST_F(GyoshuMembersTest, TheMembersAreCallableByNameAndTheUploadPostsTheGrid) {
    ctrlMorvane obj;  // a new object resets the login, so it comes first
    LogIn();
    server_->On("customer/setCompGyoshu.php", Envelope(1, "T2"));
    const DispatchTable& table = DispatchTable::Instance();
    for (const char* name : {"CompareCustomerKihonGyosyu", "SyncDownloadCustomerKihonGyosyu",
                             "SyncUploadCustomerKihonGyosyu"}) {
        const DispatchMember* m = table.Find(name);
        ASSERT_NE(m, nullptr) << name;
        ASSERT_EQ(m->params.size(), 2u);
        EXPECT_EQ(m->params[1].type, ArgType::Long);
    }
    EXPECT_EQ(table.Invoke(obj, "SyncUploadCustomerKihonGyosyu", {{Value(db_)}, {Value("7")}}),
              Value(std::int32_t{1}));
    const auto sent = server_->RequestsTo("customer/setCompGyoshu.php");
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_NE(sent[0].body.find("&EPmtCheck5=2&"), std::string::npos);
    EXPECT_NE(sent[0].body.find("&EPmtDate31=2020/01/31&"), std::string::npos);
    EXPECT_EQ(obj.SyncUploadCustomerKihonGyosyu(db_, 8), 0);  // no such customer
    EXPECT_EQ(server_->RequestsTo("customer/setCompGyoshu.php").size(), 1u);
}

}  // namespace
}  // namespace morvane::test
