// The component against the reference server: login, token rotation, the clock, and customers
// added and deleted, seen in the rosters that follow.
#include <gtest/gtest.h>

#include "OfficeServerTest.h"
#include "roster/cCustList.h"
#include "state/ProcessState.h"

namespace morvane::test {
namespace {

using ClientServerTest = OfficeServerTest;

TEST_F(ClientServerTest,
       LoginTakesTheAccountRefusesWrongPasswordsAndItsTokenRotatesUntilItExpires) {
    UseOffice("a");
    ctrlMorvane obj;
    EXPECT_TRUE(DoLogin("u1", "secret-1", kContract));
    EXPECT_EQ(obj.LoginState(), 1);
    EXPECT_EQ(obj.LoginAccountUserName(), "事務員一");
    EXPECT_EQ(obj.LoginAccountContractorName(), "テスト建設事務所");
    EXPECT_EQ(obj.LoginAccountContractEnd(), "2027/03/31");
    EXPECT_EQ(obj.LoginAccountMaxCustomer(), "50");
    // Same machine: the offset is the fixed one-second correction, give or take the round trip.
    obj.UpdateServerTimeOffset();
    EXPECT_NEAR(std::stod(obj.InetServerTimeOffset()) * 86400.0, -1.0, 2.5);

    EXPECT_FALSE(DoLogin("u1", "wrong", kContract));
    EXPECT_NE(obj.LoginState(), 1);
    EXPECT_FALSE(DoLogin("u1", "secret-1", "K-999"));
    EXPECT_NE(obj.LoginState(), 1);
    EXPECT_TRUE(kit_->Boxes().empty());  // the login exchange itself tells nothing

    // Each reply brings a new token; an expired one asks for the login dialog.
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    const std::string first = GetLoginToken();
    ASSERT_NE(SendRequest(page::kGetKessanTaioh, UpperBody()), "");
    EXPECT_NE(GetLoginToken(), first);
    EXPECT_EQ(obj.LoginState(), 1);

    clock_->Advance(std::chrono::hours(1));
    kit_->OnShow("frmLogin", [](forms::Form& f) { f.Get<forms::Button>("cmdNoConnect").Click(); });
    EXPECT_EQ(SendRequest(page::kGetKessanTaioh, UpperBody()), "");
    ASSERT_EQ(kit_->ShownForms().size(), 1u);
    EXPECT_EQ(kit_->ShownForms()[0].form, "frmLogin");
    EXPECT_EQ(obj.LoginState(), 99);
}

TEST_F(ClientServerTest, AddedCustomersAppearAndDeletedOnesDisappear) {
    const std::string db = UseOfficeDb("a", {.customers = 3});
    const auto serverRoster = [] {
        auto list = std::make_unique<cCustList>();
        EXPECT_TRUE(list->ReadXML(SendRequest(page::kGetCompList, UpperBody())));
        return list;
    };
    ctrlMorvane obj;  // a new object resets the login: it comes first
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
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
