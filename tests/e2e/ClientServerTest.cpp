// The component against the reference server: the account the login takes, and customers added
// and deleted, seen in the rosters that follow.
#include <gtest/gtest.h>

#include "OfficeServerTest.h"
#include "roster/cCustList.h"

namespace morvane::test {
namespace {

using ClientServerTest = OfficeServerTest;

TEST_F(ClientServerTest, TheLoginTakesTheAccountAndAddedCustomersAppearAndDeletedOnesDisappear) {
    const std::string db = UseOfficeDb("a", {.customers = 3});
    const auto serverRoster = [] {
        auto list = std::make_unique<cCustList>();
        EXPECT_TRUE(list->ReadXML(SendRequest(page::kGetCompList, UpperBody())));
        return list;
    };
    ctrlMorvane obj;  // a new object resets the login: it comes first
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    EXPECT_EQ(
        (std::vector<std::string>{obj.LoginAccountUserName(), obj.LoginAccountContractorName(),
                                  obj.LoginAccountContractEnd(), obj.LoginAccountMaxCustomer()}),
        (std::vector<std::string>{"事務員一", "テスト建設事務所", "2027/03/31", "50"}));
    Sql(db, "UPDATE tCustomer SET Code = 'X&Y=1', CorpKanaS = 'ｶﾅ' WHERE id = 2;");
    EXPECT_EQ(obj.CompareCustomerList(db), 4);  // the server has none yet
    for (int id = 1; id <= 3; ++id) EXPECT_EQ(obj.SyncUploadAddCustomer(db, id), 1) << id;
    EXPECT_EQ(obj.CompareCustomerList(db), 0);
    // Customers new on the server carry no stamps: their tables are newer here.
    EXPECT_FALSE(obj.CustmerBackuped(2));
    EXPECT_NE(obj.CustmerBackupedTableSyncFlag(2, 0), 0);
    EXPECT_EQ(obj.CustmerRecordUpdate_Server(2), "");
    EXPECT_NE(obj.CustmerRecordUpdate_Local(2), "");
    auto roster = serverRoster();
    ASSERT_EQ(roster->Count(), 3);
    const cCustListItem* two = roster->Item("K2");
    ASSERT_NE(two, nullptr);
    EXPECT_EQ(two->Code, "X&Y=1");
    EXPECT_EQ(two->CorpKanaS, "ｶﾅ");
    EXPECT_EQ(two->CorpName0, One(db, "SELECT CorpName0 FROM tCustomer WHERE id = 2"));

    EXPECT_EQ(obj.SyncUploadDelCustomer(2), 1);
    roster = serverRoster();
    EXPECT_EQ(roster->Count(), 2);
    EXPECT_EQ(roster->SearchItemKey(2), "");
    EXPECT_EQ(roster->SearchItemKey(3), "K3");
    // The local row stays: the rosters now differ.
    EXPECT_EQ(One(db, "SELECT disabled FROM tCustomer WHERE id = 2"), "0");
    EXPECT_EQ(obj.CompareCustomerList(db), 3);

    // The user keeps the local customer: it goes up again and the rosters agree.
    kit_->OnShow("frmSelectCompareCustList",
                 [](forms::Form& f) { f.Get<forms::Button>("cmdDo").Click(); });
    const Value none;
    EXPECT_EQ(obj.ShowCompareCustListDlg(nullptr, none, none, none, none), 6);
    ASSERT_EQ(kit_->Boxes().size(), 1u);  // the confirmation
    kit_->ClearRecords();
    EXPECT_EQ(obj.GetCompareCustListDlg_AddServerIDs(), "2");
    for (const std::int32_t id : SplitIDs(obj.GetCompareCustListDlg_AddServerIDs()))
        EXPECT_EQ(obj.SyncUploadAddCustomer(db, id), 1);
    EXPECT_EQ(obj.CompareCustomerList(db), 0);
    ASSERT_NE(serverRoster()->Item("K2"), nullptr);
    EXPECT_EQ(serverRoster()->Item("K2")->Code, "X&Y=1");

    NoBoxes();
    EXPECT_TRUE(kit_->Unanswered().empty());
}

}  // namespace
}  // namespace morvane::test
