// The main record's members on the public object, against the scripted test server.
#include <gtest/gtest.h>

#include "KihonTestUtil.h"
#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

const std::string kStaffCount = "<ShokuinList><ShokuinCount>0</ShokuinCount></ShokuinList>";

class KihonMembersTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = EmptyCustomerDb(temp_.Path() / "db", clock_).string();
        Sql(db_,
            "INSERT INTO tCustomer (id, disabled, Code, ZipCode0, TAddr0, RecordUpdate, "
            "InetCheckDate) VALUES (7, 0, 'C7', '999', 'old', '2024-05-01 09:00:00', "
            "'2024-05-01 09:00:00');");
    }

    std::string Reply(const Tags& extra = {}, const std::string& after = {}) {
        Tags tags = RequiredTags();
        tags.insert(tags.end(), extra.begin(), extra.end());
        return Envelope(1, "T2", KihonPayload(tags, "2024/05/01 09:05:00", after));
    }

    std::string Column(const std::string& column) {
        return One(db_, "SELECT " + column + " FROM tCustomer WHERE id = 7");
    }

    std::string db_;
    std::shared_ptr<FixedClock> clock_;
};

TEST_F(KihonMembersTest, MainComparesOnItsOwnPageAndDownloadsTheWholeRecord) {
    ctrlMorvane obj;  // a new object resets the login, so it comes first
    LogIn();
    server_->On("customer/getCompKihonMain.php", Reply({}, kStaffCount));
    server_->On("customer/getCompKihon.php", Reply({{"TAddr0", "new"}}));
    EXPECT_EQ(obj.CompareCustomerKihonMain(db_, 7), 1);
    const auto main = server_->RequestsTo("customer/getCompKihonMain.php");
    ASSERT_EQ(main.size(), 1u);
    EXPECT_EQ(main[0].body, "ID=user1&token=T1&CustomerID=7&");

    EXPECT_EQ(obj.SyncDownloadCustomerKihonMain(db_, 7), 1);
    ASSERT_EQ(server_->RequestsTo("customer/getCompKihon.php").size(), 1u);
    EXPECT_EQ(server_->RequestsTo("customer/getCompKihon.php")[0].body,
              "ID=user1&token=T2&CustomerID=7&");
    EXPECT_EQ(Column("ZipCode0") + "|" + Column("TAddr0"), "100|new");
    EXPECT_EQ(obj.CompareCustomerKihon(db_, 7), 0);  // now agreed
    EXPECT_TRUE(kit_->Boxes().empty());
}

TEST_F(KihonMembersTest, MainWithoutTheStaffCountIsAFailedRead) {
    ctrlMorvane obj;  // a new object resets the login, so it comes first
    LogIn();
    server_->On("customer/getCompKihonMain.php", Reply());
    EXPECT_EQ(obj.CompareCustomerKihonMain(db_, 7), 0);
    EXPECT_EQ(Column("ZipCode0"), "999");
}

TEST_F(KihonMembersTest, CompareAndDownloadOfTheWholeRecord) {
    ctrlMorvane obj;  // a new object resets the login, so it comes first
    LogIn();
    server_->On("customer/getCompKihon.php", Reply({{"TAddr0", "new"}}));
    EXPECT_EQ(obj.CompareCustomerKihon(db_, 7), 1);
    EXPECT_EQ(obj.SyncDownloadCustomerKihon(db_, 7), 1);  // always fetches again
    EXPECT_EQ(server_->RequestsTo("customer/getCompKihon.php").size(), 2u);
    EXPECT_EQ(Column("TAddr0"), "new");

    // A reply without FAX2 compares as 0 and downloads nothing, yet the download gives 1.
    Tags noFax2;
    for (const auto& t : RequiredTags())
        if (t.first != "FAX2") noFax2.push_back(t);
    server_->On("customer/getCompKihon.php",
                Envelope(1, "T3", KihonPayload(noFax2, "2024/06/02 09:00:00")));
    Sql(db_, "UPDATE tCustomer SET TAddr0 = 'local';");
    EXPECT_EQ(obj.CompareCustomerKihon(db_, 7), 0);
    EXPECT_EQ(obj.SyncDownloadCustomerKihon(db_, 7), 1);
    EXPECT_EQ(Column("TAddr0"), "local");
}

TEST_F(KihonMembersTest, WithoutALoginTheDownloadSendsNothingButTheCompareAsks) {
    ctrlMorvane obj;
    EXPECT_EQ(obj.SyncDownloadCustomerKihon(db_, 7), 0);
    EXPECT_EQ(obj.SyncDownloadCustomerKihonMain(db_, 7), 0);
    EXPECT_TRUE(server_->Requests().empty());
    server_->On("customer/getCompKihon.php", Envelope(-1, "T2"));
    EXPECT_EQ(obj.CompareCustomerKihon(db_, 7), 0);
    EXPECT_EQ(server_->Requests().size(), 1u);
    EXPECT_EQ(Column("TAddr0"), "old");
}

TEST_F(KihonMembersTest, TheMembersAreCallableByName) {
    ctrlMorvane obj;  // a new object resets the login, so it comes first
    LogIn();
    server_->On("customer/setCompKihon.php", Envelope(1, "T2"));
    const DispatchTable& table = DispatchTable::Instance();
    for (const char* name :
         {"CompareCustomerKihonMain", "SyncDownloadCustomerKihonMain", "CompareCustomerKihon",
          "SyncDownloadCustomerKihon", "SyncUploadCustomerKihonNormal"}) {
        const DispatchMember* m = table.Find(name);
        ASSERT_NE(m, nullptr) << name;
        ASSERT_EQ(m->params.size(), 2u);
        EXPECT_EQ(m->params[1].type, ArgType::Long);
    }
    EXPECT_EQ(table.Invoke(obj, "SyncUploadCustomerKihonNormal", {{Value(db_)}, {Value("7")}}),
              Value(std::int32_t{1}));
    ASSERT_EQ(server_->RequestsTo("customer/setCompKihon.php").size(), 1u);
    EXPECT_EQ(Column("InetCheckDate"), "2024/06/01 9:00:00");
}

}  // namespace
}  // namespace morvane::test
