// Backup target flags: the snapshot's answers, the check against the limit, the target
// dialog's rules, and the lock, set, unlock sequence that follows a confirmed choice.
#include "RosterTestUtil.h"
#include "component/ctrlMorvane.h"
#include "roster/cCustListSync.h"
#include "roster/frmSelectEnabledCustList.h"
#include "state/ProcessState.h"

namespace morvane::test {
namespace {

constexpr const char* kList = "frmSelectEnabledCustList";
constexpr const char* kMsg = "frmSelectEnabledCustListMsg";
constexpr const char* kOn = frmSelectEnabledCustList::kBackup;
constexpr const char* kOff = frmSelectEnabledCustList::kNoBackup;
constexpr int kTarget = frmSelectEnabledCustList::kColTarget;

class TargetFlagsTest : public RosterDbTest {
protected:
    void SetUp() override {
        RosterDbTest::SetUp();
        // Customer 13 is held by another user.
        server_->On("customer/lockComp.php", [](const RecordedRequest& r) {
            const bool refused = r.body.find("&CustomerID=13&") != std::string::npos;
            return PageReply{Envelope(1, "T1",
                                      std::string("<LockInfo><Customer><result>") +
                                          (refused ? "0" : "1") +
                                          "</result></Customer></LockInfo>")};
        });
        server_->On("customer/unlockComp.php", Envelope(1, "T1"));
        server_->On("customer/setInetEnableFlag.php", Envelope(1, "T1"));
        LogIn();
    }

    // Leaves a roster of these flags (IDs first..) in the slot, under the allowance.
    void Snapshot(int first, const std::vector<int>& flags, std::int32_t max = 250) {
        State().login.maxCustomer = max;
        std::vector<RosterEntry> entries;
        for (size_t i = 0; i < flags.size(); ++i) {
            entries.push_back(Customer(first + static_cast<int>(i)));
            entries.back().name = "株式会社" + std::to_string(entries.back().id);
            entries.back().enableFlag = flags[i];
        }
        Serve(entries);
        obj_.CompareCustomerList(Db());
        server_->ClearRequests();
        kit_->ClearRecords();
    }

    // "page body" of every request since the snapshot; the token stays the login's.
    std::vector<std::string> Sent() const {
        std::vector<std::string> sent;
        for (const auto& r : server_->Requests()) sent.push_back(r.path + " " + r.body);
        return sent;
    }

    // Shows the target dialog, running `script` in it and confirming the warning that follows.
    std::int32_t ShowDlg(std::int32_t showtype, std::function<void(forms::Form&)> script = {}) {
        if (script) kit_->OnShow(kList, std::move(script));
        return obj_.ShowSelectCustEnabledDlg(nullptr, Db(), showtype, {}, {}, {}, {});
    }
    void ConfirmWarning() {
        kit_->OnShow(kMsg, [](forms::Form& f) { f.Get<forms::Button>("cmdOK").Click(); });
    }

    Golden data_{"roster/target-flags.txt"};
    ctrlMorvane obj_;
};

forms::Grid& GridOf(forms::Form& f) { return f.Get<forms::Grid>("vfaData"); }

TEST_F(TargetFlagsTest, WithoutASnapshotEveryMemberAnswersEmptyAndSendsNothing) {
    EXPECT_EQ(obj_.CustmerInetEnabledFlag(1) + obj_.CheckExistCustID(1) +
                  obj_.CheckInetEnabledFlags(Db()) +
                  obj_.SyncUploadCustomerInetEnabledFlag(Db(), 1, 1) + ShowDlg(2),
              0);
    EXPECT_EQ(obj_.CustmerCode_Server(1) + obj_.CustmerCorpName_Server(1), "");
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_TRUE(kit_->ShownForms().empty());
}

// A second check finds nothing left to send; above the limit of 9999 the check only counts.
TEST_F(TargetFlagsTest, CheckEnablesEveryCustomerButSendsOnlyWhereTheLockIsGranted) {
    Snapshot(11, {1, 0, 0});
    // The name as the server sent it.
    EXPECT_EQ(obj_.CustmerCode_Server(12) + obj_.CustmerCorpName_Server(12), "C12株式会社12");
    EXPECT_EQ(obj_.CheckExistCustID(14), 0);
    EXPECT_EQ(obj_.CheckInetEnabledFlags(Db()), 1);
    EXPECT_EQ(Sent(), data_.Lines("check"));
    EXPECT_EQ(kit_->Boxes().size(), 1u);  // the refusal's
    EXPECT_EQ(obj_.CustmerInetEnabledFlag(13), 1);
    server_->ClearRequests();
    EXPECT_EQ(obj_.CheckInetEnabledFlags(Db()), 1);
    for (const auto& [enabled, expected] :
         std::vector<std::pair<int, int>>{{9998, 3}, {9999, 2}, {10000, 0}}) {
        cCustListSync sync;
        for (int id = 1; id <= 10000; ++id)
            sync.Add("K" + std::to_string(id), id).InetEnableFlag = id <= enabled ? 1 : 0;
        EXPECT_EQ(sync.CheckInetEnabledFlags(Db()), expected) << enabled;
    }
    EXPECT_TRUE(server_->Requests().empty());
}

// OK is there at the allowance of 3 only; a row that may not change takes neither a click
// nor a choice, and a row toggled back is not sent.
TEST_F(TargetFlagsTest, OkOnlyAtTheAllowanceAndARowToggledBackIsNotSent) {
    Snapshot(1, {1, 0, 0, 0}, 3);
    std::vector<bool> okAt;
    ConfirmWarning();
    EXPECT_EQ(ShowDlg(2,
                      [&](forms::Form& f) {
                          auto& grid = GridOf(f);
                          const auto ok = [&] {
                              okAt.push_back(f.Get<forms::Button>("cmdDo").Enabled());
                          };
                          grid.ClickCell(1, kTarget);
                          ok();
                          grid.ChooseInCell(2, kTarget, kOn);
                          ok();
                          grid.ClickCell(3, kTarget);
                          ok();
                          EXPECT_EQ(f.Get<forms::Label>("lblInfo(3)").Text(), "4件 です ");
                          grid.ClickCell(3, kTarget);
                          grid.ClickCell(0, kTarget);
                          grid.ChooseInCell(0, kTarget, kOff);
                          ok();
                          f.Get<forms::Button>("cmdDo").Click();
                      }),
              1);
    EXPECT_EQ(okAt, (std::vector<bool>{false, true, false, true}));
    EXPECT_EQ(kit_->ShownForms().at(1).owner, kList);
    EXPECT_EQ(Sent(), data_.Lines("two and three in"));
    EXPECT_EQ(obj_.CustmerInetEnabledFlag(4), 0);
}

// The refused customer shows the new flag here, though the server keeps the old one.
TEST_F(TargetFlagsTest, TakingCustomersOutSetsZeroAndARefusedLockSendsNoFlag) {
    Snapshot(11, {1, 1, 1, 0}, 1);
    ConfirmWarning();
    EXPECT_EQ(
        ShowDlg(1,
                [&](forms::Form& f) {
                    auto& grid = GridOf(f);
                    EXPECT_EQ(GridRows(grid), data_.Lines("out at start"));
                    EXPECT_TRUE(grid.At(3, kTarget).choices.empty());
                    EXPECT_EQ(grid.At(0, kTarget).choices, (std::vector<std::string>{kOn, kOff}));
                    grid.ClickCell(0, kTarget);
                    grid.ChooseInCell(2, kTarget, kOff);
                    f.Get<forms::Button>("cmdDo").Click();
                }),
        1);
    EXPECT_EQ(Sent(), data_.Lines("eleven and thirteen out"));
    EXPECT_EQ(obj_.CustmerInetEnabledFlag(13) * 10 + obj_.CustmerInetEnabledFlag(12), 1);
}

// The "all" buttons touch only the rows that may change; OK is allowed again after them, but
// the warning is declined. Any other Showtype only shows the list; closing it is a cancel.
TEST_F(TargetFlagsTest, TheListByShowtypeAndTheWaysOutWithoutAChoice) {
    Snapshot(1, {1, 0}, 1);
    kit_->OnShow(kMsg, [](forms::Form& f) {
        f.Get<forms::Panel>("lblURL").Click();
        f.Get<forms::Button>("cmdClose").Click();
    });
    EXPECT_EQ(ShowDlg(2,
                      [&](forms::Form& f) {
                          EXPECT_EQ(f.Get<forms::Label>("lblMsg(2)").Text(), data_["allowance"]);
                          f.Get<forms::Button>("cmdAllSel").Click();
                          EXPECT_EQ(GridRows(GridOf(f)), data_.Lines("all in"));
                          EXPECT_FALSE(f.Get<forms::Button>("cmdDo").Enabled());
                          f.Get<forms::Button>("cmdAllNot").Click();
                          EXPECT_EQ(GridRows(GridOf(f)), data_.Lines("all out"));
                          f.Get<forms::Button>("cmdDo").Click();
                          EXPECT_TRUE(f.Visible());
                          f.Get<forms::Button>("cmdCancel").Click();
                      }),
              0);
    EXPECT_EQ(kit_->OpenedUrls(), std::vector<std::string>{"https://" + server_->HostName() + "/"});

    EXPECT_EQ(ShowDlg(0,
                      [&](forms::Form& f) {
                          EXPECT_FALSE(f.Get<forms::Label>("lblMsg(2)").Visible());
                          GridOf(f).ClickCell(1, kTarget);
                          EXPECT_EQ(GridRows(GridOf(f)), data_.Lines("list only"));
                      }),
              0);
    EXPECT_TRUE(server_->Requests().empty());
}

}  // namespace
}  // namespace morvane::test
