// Backup target flags: the snapshot's answers, the check against the limit, the target
// dialog's rules, and the lock, set, unlock sequence that follows a confirmed choice.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RosterTestUtil.h"
#include "component/ctrlMorvane.h"
#include "roster/cCustListSync.h"
#include "roster/frmSelectEnabledCustList.h"
#include "state/ProcessState.h"
#include "store/LocalDatabases.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

constexpr const char* kList = "frmSelectEnabledCustList";
constexpr const char* kMsg = "frmSelectEnabledCustListMsg";
constexpr const char* kOn = frmSelectEnabledCustList::kBackup;
constexpr const char* kOff = frmSelectEnabledCustList::kNoBackup;
constexpr int kTarget = frmSelectEnabledCustList::kColTarget;

class TargetFlagsTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = CreateLocalDatabases(temp_.Path() / "data").customer.string();
        server_->On("gettime.php", TimeReply(State().Clock().Now().StampText()));
        // Customer 13 is held by another user.
        server_->On("customer/lockComp.php", [](const RecordedRequest& r) {
            const bool refused = r.body.find("&CustomerID=13&") != std::string::npos;
            return PageReply{Envelope(1, "TL",
                                      std::string("<LockInfo><Customer><result>") +
                                          (refused ? "0" : "1") +
                                          "</result></Customer></LockInfo>")};
        });
        server_->On("customer/unlockComp.php", Envelope(1, "TU"));
        server_->On("customer/setInetEnableFlag.php", Envelope(1, "TS"));
    }

    // Logs in with the allowance, and leaves a roster of these flags (IDs first..) in the slot.
    void Snapshot(int first, const std::vector<int>& flags, std::int32_t max = 250) {
        LogIn();
        State().login.maxCustomer = max;
        std::vector<RosterEntry> entries;
        for (size_t i = 0; i < flags.size(); ++i) {
            const int id = first + static_cast<int>(i);
            const std::string n = std::to_string(id);
            entries.push_back({id, "C" + n, "株式会社" + n, "ｼｬ", flags[i], {}});
        }
        server_->On("customer/getCompList.php", RosterReply(entries));
        obj_.CompareCustomerList(db_);
        server_->ClearRequests();
        kit_->ClearRecords();
    }

    // "page body" of every request since the snapshot, without the rotating token.
    std::vector<std::string> Sent() const {
        std::vector<std::string> sent;
        for (const auto& r : server_->Requests()) {
            std::string body = r.body;
            const size_t at = body.find("&token=");
            if (at != std::string::npos) body.erase(at, body.find('&', at + 1) - at);
            sent.push_back(r.path.substr(r.path.find('/') + 1) + " " + body);
        }
        return sent;
    }

    std::int32_t ShowDlg(std::int32_t showtype) {
        return obj_.ShowSelectCustEnabledDlg(nullptr, db_, showtype, {}, {}, {}, {});
    }

    Golden data_{"roster/target-flags.txt"};
    std::string db_;
    ctrlMorvane obj_;
};

forms::Grid& GridOf(forms::Form& f) { return f.Get<forms::Grid>("vfaData"); }

TEST_F(TargetFlagsTest, WithoutASnapshotEveryMemberAnswersEmptyAndSendsNothing) {
    LogIn();
    EXPECT_EQ(obj_.CustmerInetEnabledFlag(1) + obj_.CheckExistCustID(1) +
                  obj_.CheckInetEnabledFlags(db_) +
                  obj_.SyncUploadCustomerInetEnabledFlag(db_, 1, 1) + ShowDlg(2),
              0);
    EXPECT_EQ(obj_.CustmerCode_Server(1) + obj_.CustmerCorpName_Server(1), "");
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_TRUE(kit_->ShownForms().empty());
}

TEST_F(TargetFlagsTest, CheckEnablesEveryCustomerButSendsOnlyWhereTheLockIsGranted) {
    Snapshot(11, {1, 0, 0});
    // The name as the server sent it.
    EXPECT_EQ(obj_.CustmerCode_Server(12) + obj_.CustmerCorpName_Server(12), "C12株式会社12");
    EXPECT_EQ(obj_.CheckExistCustID(14), 0);
    EXPECT_EQ(obj_.CheckInetEnabledFlags(db_), 1);
    EXPECT_EQ(Sent(), data_.Lines("check"));
    EXPECT_EQ(kit_->Boxes().size(), 1u);  // the refusal's
    EXPECT_EQ(obj_.CustmerInetEnabledFlag(13), 1);
    server_->ClearRequests();
    EXPECT_EQ(obj_.CheckInetEnabledFlags(db_), 1);
    EXPECT_TRUE(server_->Requests().empty());

    // Above the limit of 9999 the check only counts.
    for (const auto& [enabled, expected] :
         std::vector<std::pair<int, int>>{{9998, 3}, {9999, 2}, {10000, 0}}) {
        cCustListSync sync;
        for (int id = 1; id <= 10000; ++id)
            sync.Add("K" + std::to_string(id), id).InetEnableFlag = id <= enabled ? 1 : 0;
        EXPECT_EQ(sync.CheckInetEnabledFlags(db_), expected) << enabled;
    }
    EXPECT_TRUE(server_->Requests().empty());
}

TEST_F(TargetFlagsTest, OkOnlyAtTheAllowanceAndARowToggledBackIsNotSent) {
    Snapshot(1, {1, 0, 0, 0}, 3);
    std::vector<bool> okAt;
    kit_->OnShow(kList, [&](forms::Form& f) {
        auto& grid = GridOf(f);
        const auto& ok = f.Get<forms::Button>("cmdDo");
        grid.ClickCell(1, kTarget);
        okAt.push_back(ok.Enabled());  // 2: one below
        grid.ChooseInCell(2, kTarget, kOn);
        okAt.push_back(ok.Enabled());  // 3
        grid.ClickCell(3, kTarget);
        okAt.push_back(ok.Enabled());  // 4: one above
        EXPECT_EQ(f.Get<forms::Label>("lblInfo(3)").Text(), "4件 です ");
        grid.ClickCell(3, kTarget);  // and back
        // A row that may not change takes neither a click nor a choice.
        grid.ClickCell(0, kTarget);
        grid.ChooseInCell(0, kTarget, kOff);
        okAt.push_back(ok.Enabled());
        f.Get<forms::Button>("cmdDo").Click();
    });
    kit_->OnShow(kMsg, [](forms::Form& f) { f.Get<forms::Button>("cmdOK").Click(); });
    EXPECT_EQ(ShowDlg(2), 1);
    EXPECT_EQ(okAt, (std::vector<bool>{false, true, false, true}));
    EXPECT_EQ(kit_->ShownForms().at(1).owner, kList);
    EXPECT_EQ(Sent(), data_.Lines("two and three in"));
    EXPECT_EQ(obj_.CustmerInetEnabledFlag(4), 0);
}

TEST_F(TargetFlagsTest, TakingCustomersOutSetsZeroAndARefusedLockSendsNoFlag) {
    Snapshot(11, {1, 1, 1, 0}, 1);
    kit_->OnShow(kList, [](forms::Form& f) {
        auto& grid = GridOf(f);
        EXPECT_EQ(grid.At(3, kTarget).text, std::string(kOff) + "(変更不可)");
        EXPECT_TRUE(grid.At(3, kTarget).choices.empty());
        EXPECT_EQ(grid.At(0, kTarget).choices, (std::vector<std::string>{kOn, kOff}));
        grid.ClickCell(0, kTarget);
        grid.ChooseInCell(2, kTarget, kOff);
        f.Get<forms::Button>("cmdDo").Click();
    });
    kit_->OnShow(kMsg, [](forms::Form& f) { f.Get<forms::Button>("cmdOK").Click(); });
    EXPECT_EQ(ShowDlg(1), 1);
    EXPECT_EQ(Sent(), data_.Lines("eleven and thirteen out"));
    // The refused customer shows the new flag here, though the server keeps the old one.
    EXPECT_EQ(obj_.CustmerInetEnabledFlag(13), 0);
    EXPECT_EQ(obj_.CustmerInetEnabledFlag(12), 1);
}

TEST_F(TargetFlagsTest, TheListByShowtypeAndTheWaysOutWithoutAChoice) {
    Snapshot(1, {1, 0}, 1);
    kit_->OnShow(kList, [&](forms::Form& f) {
        EXPECT_EQ(f.Get<forms::Label>("lblMsg(2)").Text(), data_["allowance"]);
        auto& grid = GridOf(f);
        EXPECT_EQ(grid.At(0, 2).text, "1");
        EXPECT_EQ(grid.At(0, kTarget).text, std::string(kOn) + "(変更不可)");
        // The "all" buttons touch only the rows that may change.
        f.Get<forms::Button>("cmdAllSel").Click();
        EXPECT_EQ(grid.At(1, kTarget).text, kOn);
        EXPECT_FALSE(f.Get<forms::Button>("cmdDo").Enabled());
        f.Get<forms::Button>("cmdAllNot").Click();
        EXPECT_EQ(grid.At(0, kTarget).text, std::string(kOn) + "(変更不可)");
        f.Get<forms::Button>("cmdDo").Click();  // allowed again, but the warning is declined
        EXPECT_TRUE(f.Visible());
        f.Get<forms::Button>("cmdCancel").Click();
    });
    kit_->OnShow(kMsg, [](forms::Form& f) {
        f.Get<forms::Panel>("lblURL").Click();
        f.Get<forms::Button>("cmdClose").Click();
    });
    EXPECT_EQ(ShowDlg(2), 0);
    EXPECT_EQ(kit_->OpenedUrls(), std::vector<std::string>{"https://" + server_->HostName() + "/"});

    // Any other Showtype only shows the list; closing the window is a cancel.
    kit_->OnShow(kList, [](forms::Form& f) {
        EXPECT_FALSE(f.Get<forms::Label>("lblMsg(2)").Visible());
        EXPECT_EQ(GridOf(f).At(1, kTarget).text, std::string(kOff) + "(変更不可)");
        GridOf(f).ClickCell(1, kTarget);
        EXPECT_EQ(GridOf(f).At(1, kTarget).text, std::string(kOff) + "(変更不可)");
    });
    EXPECT_EQ(ShowDlg(0), 0);
    EXPECT_TRUE(server_->Requests().empty());
}

}  // namespace
}  // namespace morvane::test
