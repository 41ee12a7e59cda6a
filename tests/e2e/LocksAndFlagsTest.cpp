// Locks and backup target flags against the reference server: two users of one account
// taking turns at a customer and a master, and the flags chosen in the dialog reaching the
// server's roster.
#include <gtest/gtest.h>

#include "OfficeServerTest.h"
#include "state/ProcessState.h"

namespace morvane::test {
namespace {

class LocksAndFlagsTest : public OfficeServerTest {
protected:
    void SetUp() override { StartServer(2); }

    // One office of the host, with its own settings, logged in as its user.
    void UseOffice(const std::string& office, const std::string& user,
                   const std::string& password) {
        OfficeServerTest::UseOffice(office);
        ASSERT_TRUE(DoLogin(user, password, kContract));
    }
};

TEST_F(LocksAndFlagsTest, TheSecondUserWaitsWhileTheFirstHoldsTheLocksAndOnlyTheHolderUnlocks) {
    {
        ctrlMorvane a;
        UseOffice("a", "u1", "secret-1");
        CreateCustomer(7);
        EXPECT_EQ(a.LockCoustomer(7), 1);
        EXPECT_EQ(a.LockMasterData(2), 1);
        EXPECT_TRUE(kit_->Boxes().empty());
    }
    {
        ctrlMorvane b;
        UseOffice("b", "u2", "secret-2");
        EXPECT_EQ(b.LockCoustomer(7), 0);
        EXPECT_EQ(b.LockMasterData(2), 0);
        EXPECT_EQ(kit_->Boxes().size(), 2u);
        EXPECT_EQ(b.LoginState(), 1);
        // Another user's unlock leaves the lock where it is.
        EXPECT_EQ(b.UnlockCoustomer(7), 1);
        EXPECT_EQ(b.LockCoustomer(7), 0);
    }
    {
        ctrlMorvane a;
        UseOffice("a", "u1", "secret-1");
        EXPECT_EQ(a.UnlockCoustomer(7), 1);
        EXPECT_EQ(a.UnlockMasterData(2), 1);
    }
    {
        ctrlMorvane b;
        UseOffice("b", "u2", "secret-2");
        EXPECT_EQ(b.LockCoustomer(7), 1);
        EXPECT_EQ(b.LockMasterData(2), 1);
        EXPECT_TRUE(kit_->Boxes().empty());
    }
}

TEST_F(LocksAndFlagsTest, FlagsChosenInTheDialogReachTheServer) {
    ctrlMorvane obj;
    UseOffice("a", "u1", "secret-1");
    const auto db = CreateLocalDatabases(temp_.Path() / "a" / "db").customer.string();
    for (std::int32_t id = 1; id <= 3; ++id) CreateCustomer(id);
    // The account allows two: the first two are backed up; take the second out for now.
    obj.CompareCustomerList(db);
    EXPECT_EQ(obj.CustmerInetEnabledFlag(2), 1);
    EXPECT_EQ(obj.CustmerInetEnabledFlag(3), 0);
    ASSERT_EQ(obj.SyncUploadCustomerInetEnabledFlag(db, 2, 0), 1);
    obj.CompareCustomerList(db);
    ASSERT_EQ(obj.CustmerInetEnabledFlag(2), 0);

    // Put customer 3 in: the count meets the allowance of two.
    kit_->OnShow("frmSelectEnabledCustList", [](forms::Form& f) {
        auto& grid = f.Get<forms::Grid>("vfaData");
        ASSERT_EQ(grid.Rows(), 3);
        EXPECT_EQ(grid.At(2, 2).text, "3");
        grid.ClickCell(2, 5);
        f.Get<forms::Button>("cmdDo").Click();
    });
    kit_->OnShow("frmSelectEnabledCustListMsg",
                 [](forms::Form& f) { f.Get<forms::Button>("cmdOK").Click(); });
    EXPECT_EQ(obj.ShowSelectCustEnabledDlg(nullptr, db, 2, Value(), Value(), Value(), Value()), 1);

    // A fresh look at the server's roster shows what the dialog set.
    obj.CompareCustomerList(db);
    EXPECT_EQ(obj.CustmerInetEnabledFlag(1), 1);
    EXPECT_EQ(obj.CustmerInetEnabledFlag(2), 0);
    EXPECT_EQ(obj.CustmerInetEnabledFlag(3), 1);
    // The dialog's lock was let go: the other user can take the customer.
    NoBoxes();
    UseOffice("b", "u2", "secret-2");
    EXPECT_EQ(obj.LockCoustomer(3), 1);
}

}  // namespace
}  // namespace morvane::test
