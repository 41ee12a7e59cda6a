// Customers added and deleted on the reference server by the component, seen in the rosters
// that follow.
#include <gtest/gtest.h>

#include <memory>

#include "OfficeServerTest.h"
#include "component/ctrlMorvane.h"
#include "roster/cCustList.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "store/LocalDatabases.h"
#include "store/StoreTestUtil.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane::test {
namespace {

class RosterChangesTest : public OfficeServerTest {
protected:
    void SetUp() override {
        StartServer();
        UseOffice("a");
        paths_ = CreateLocalDatabases(temp_.Path() / "db", {.customers = 3});
    }

    void TearDown() override {
        for (const auto& box : kit_->Boxes()) ADD_FAILURE() << box.title << ": " << box.text;
        EXPECT_TRUE(kit_->Unanswered().empty());
        OfficeServerTest::TearDown();
    }

    // The server's roster as it stands, read the way the comparison reads it.
    std::unique_ptr<cCustList> ServerRoster() {
        auto list = std::make_unique<cCustList>();
        EXPECT_TRUE(list->ReadXML(SendRequest(page::kGetCompList, UpperBody())));
        return list;
    }
    std::string Db() const { return paths_.customer.string(); }

    LocalDatabasePaths paths_;
};

TEST_F(RosterChangesTest, AddedCustomersAppearAndDeletedOnesDisappear) {
    ctrlMorvane obj;  // a new object resets the login: it comes first
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    Sql(paths_.customer, "UPDATE tCustomer SET Code = 'X&Y=1', CorpKanaS = 'ｶﾅ' WHERE id = 2;");
    EXPECT_EQ(obj.CompareCustomerList(Db()), 4);
    for (int id = 1; id <= 3; ++id) EXPECT_EQ(obj.SyncUploadAddCustomer(Db(), id), 1) << id;
    EXPECT_EQ(obj.CompareCustomerList(Db()), 0);
    auto roster = ServerRoster();
    ASSERT_EQ(roster->Count(), 3);
    const cCustListItem* two = roster->Item("K2");
    ASSERT_NE(two, nullptr);
    EXPECT_EQ(two->Code, "X&Y=1");
    EXPECT_EQ(two->CorpKanaS, "ｶﾅ");
    EXPECT_EQ(two->CorpName0, One(paths_.customer, "SELECT CorpName0 FROM tCustomer WHERE id = 2"));

    EXPECT_EQ(obj.SyncUploadDelCustomer(2), 1);
    roster = ServerRoster();
    EXPECT_EQ(roster->Count(), 2);
    EXPECT_EQ(roster->SearchItemKey(2), "");
    EXPECT_EQ(roster->SearchItemKey(3), "K3");
    // The local row stays: the rosters now differ.
    EXPECT_EQ(One(paths_.customer, "SELECT disabled FROM tCustomer WHERE id = 2"), "0");
    EXPECT_EQ(obj.CompareCustomerList(Db()), 3);

    // The user keeps the local customer: it goes up again and the rosters agree.
    kit_->OnShow("frmSelectCompareCustList",
                 [](forms::Form& f) { f.Get<forms::Button>("cmdDo").Click(); });
    const Value none;
    EXPECT_EQ(obj.ShowCompareCustListDlg(nullptr, none, none, none, none), 6);
    ASSERT_EQ(kit_->Boxes().size(), 1u);  // the confirmation
    kit_->ClearRecords();
    EXPECT_EQ(obj.GetCompareCustListDlg_AddServerIDs(), "2");
    for (const std::int32_t id : SplitIDs(obj.GetCompareCustListDlg_AddServerIDs()))
        EXPECT_EQ(obj.SyncUploadAddCustomer(Db(), id), 1);
    EXPECT_EQ(obj.CompareCustomerList(Db()), 0);
    roster = ServerRoster();
    ASSERT_NE(roster->Item("K2"), nullptr);
    EXPECT_EQ(roster->Item("K2")->Code, "X&Y=1");
}

}  // namespace
}  // namespace morvane::test
