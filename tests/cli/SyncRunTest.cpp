// The sync engine's decisions over a scripted component: what it calls, in which order,
// what it refuses to do, and how the summary and exit code come out.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <utility>

#include "SyncRun.h"
#include "support/TempDir.h"
#include "util/Nz.h"

namespace morvane::cli {
namespace {

class ScriptedComponent : public Component {
public:
    std::set<std::string, std::less<>> members{"CompareCustomerList",
                                               "SyncDownloadCustomerList",
                                               "GetUploadCustomerListIDs",
                                               "CustmerBackupedTableSyncFlag",
                                               "ShowCompareMsg",
                                               "CustmerRecordUpdateTable_Server",
                                               "CustmerRecordUpdateTable_Local"};
    std::map<std::string, std::vector<int>, std::less<>> results;          // consumed in order
    std::map<std::string, std::string, std::less<>> texts;                 // members giving a text
    std::map<std::pair<int, int>, int> flags;                              // (customer, table)
    std::map<std::pair<int, int>, std::string> serverStamps, localStamps;  // the snapshot's
    std::vector<std::int32_t> local{1, 2};
    std::string add, del;
    int loginState = 1;
    std::vector<std::string> calls;
    // Exchanges with the server: members whose calls the server refuses or never answers,
    // and whether the login from the settings asks the server.
    std::set<std::string, std::less<>> refused, unanswered;
    // Members that answer 0 at once, sending nothing: a local read that found no row.
    std::set<std::string, std::less<>> sendNothing;
    bool loginAsks = false;
    int loginStateAfterRefusal = 1;
    ExchangeCounts exchanges;
    // The stamps each call of a member shows, in turn; the last repeats.
    std::map<std::string, std::vector<SeenStamps>, std::less<>> stamps;
    SeenStamps pendingStamps;

    void Live(const std::string& middle, const std::string& upload = {}) {
        members.insert("Compare" + middle);
        members.insert("SyncDownload" + middle);
        members.insert(upload.empty() ? "SyncUpload" + middle : upload);
    }
    bool Has(std::string_view m) const override { return members.count(m) > 0; }
    Value Call(std::string_view m, const std::vector<Value>& args) override {
        std::string line(m);
        for (const Value& a : args) line += " " + a.ToText();
        calls.push_back(line);
        if (!Has(m)) return Value();
        if (sendNothing.count(m)) return Value(0);
        if (m.rfind("Show", 0) != 0 && m.rfind("Get", 0) != 0 && m.rfind("Custmer", 0) != 0)
            ++exchanges.tried;
        if (unanswered.count(m)) {
            ++exchanges.unanswered;
            ++exchanges.failed;
            return Value(0);
        }
        if (refused.count(m)) {
            ++exchanges.failed;
            loginState = loginStateAfterRefusal;
            // A refused move may still answer 1: its exchange decides.
            return Value(m.rfind("Compare", 0) == 0 ? 0 : 1);
        }
        if (auto st = stamps.find(m); st != stamps.end() && !st->second.empty()) {
            pendingStamps = st->second.front();
            if (st->second.size() > 1) st->second.erase(st->second.begin());
        }
        if (m == "CustmerBackupedTableSyncFlag") {
            auto it = flags.find({NzLong(args[0]), NzLong(args[1])});
            return Value(it == flags.end() ? 0 : it->second);
        }
        if (m.rfind("CustmerRecordUpdateTable_", 0) == 0) {
            const auto& stamps = m.back() == 'r' ? serverStamps : localStamps;
            auto it = stamps.find({NzLong(args[0]), NzLong(args[1])});
            return Value(it == stamps.end() ? std::string() : it->second);
        }
        if (auto t = texts.find(m); t != texts.end()) return Value(t->second);
        auto it = results.find(m);
        // Unscripted: comparisons agree, everything else succeeds.
        if (it == results.end() || it->second.empty())
            return Value(m.rfind("Compare", 0) == 0 ? 0 : 1);
        const int r = it->second.front();
        if (it->second.size() > 1) it->second.erase(it->second.begin());
        return Value(r);
    }
    int LoginFromSettings() override {
        if (loginAsks) {
            ++exchanges.tried;
            if (unanswered.count("login")) {
                ++exchanges.unanswered;
                ++exchanges.failed;
                return 0;
            }
        }
        return loginState;
    }
    // With a saved password a fresh login is taken and its token accepted.
    bool passwordSaved = false;
    int LoginWithSavedPassword() override {
        if (!passwordSaved) return loginState;
        ++exchanges.tried;
        refused.erase("CompareCustomerList");
        return loginState = 1;
    }
    int LoginState() const override { return loginState; }
    ExchangeCounts Exchanges() const override { return exchanges; }
    SeenStamps TakeComparedStamps() override { return std::exchange(pendingStamps, {}); }
    bool RosterUploadIDs(const std::string&, std::string& a, std::string& d,
                         std::string& u) override {
        a = add;
        d = del;
        u.clear();
        return true;
    }
    std::vector<std::int32_t> LocalCustomerIDs(const std::string&) override { return local; }
    std::map<std::pair<std::string, int>, std::vector<std::string>> files;  // (table, customer)
    std::vector<std::string> DataFiles(const std::string&, const std::string& table,
                                       std::int32_t custId) override {
        auto it = files.find({table, custId});
        return it == files.end() ? std::vector<std::string>{} : it->second;
    }

    std::map<std::pair<std::string, int>, std::vector<FormOwner>> forms;  // (table, customer)
    std::vector<FormOwner> FormOwners(const std::string&, const std::string& table,
                                      std::int32_t custId) override {
        auto it = forms.find({table, custId});
        return it == forms.end() ? std::vector<FormOwner>{} : it->second;
    }

    // Per customer, its local fingerprint and how many rows a list upload would send.
    std::map<std::int32_t, std::uint64_t> fingerprints;
    std::map<std::pair<std::string, int>, int> liveRows;  // (table, customer); unscripted: 1
    std::map<std::int32_t, std::uint64_t> LocalFingerprints(const std::vector<LocalTable>&,
                                                            const std::filesystem::path&) override {
        return fingerprints;
    }
    int LiveRows(const LocalTable& t, std::int32_t custId) override {
        auto it = liveRows.find({t.table, custId});
        return it == liveRows.end() ? 1 : it->second;
    }
    DateValue serverNow{46000.0};
    DateValue ServerNow() override { return serverNow; }

    bool Called(const std::string& prefix) const {
        return std::any_of(calls.begin(), calls.end(),
                           [&](const std::string& c) { return c.rfind(prefix, 0) == 0; });
    }
    long Position(const std::string& prefix) const {
        for (size_t i = 0; i < calls.size(); ++i)
            if (calls[i].rfind(prefix, 0) == 0) return static_cast<long>(i);
        return -1;
    }
};

bool Reported(const SyncSummary& s, const std::string& what) {
    return std::any_of(s.unsupported.begin(), s.unsupported.end(),
                       [&](const Unsupported& u) { return u.what == what; });
}

struct Outcome {
    SyncSummary summary;
    std::string out;
};

Outcome RunWith(ScriptedComponent& c, Prefer prefer = Prefer::Ask, bool dryRun = false,
                bool verbose = false, const std::filesystem::path& journal = {}) {
    std::ostringstream out, err;
    SyncOptions options;
    options.localDb = "/data/Customer.dat";
    options.prefer = prefer;
    options.dryRun = dryRun;
    options.verbose = verbose;
    options.journal = journal;
    SyncRun run(c, options, out, err);
    Outcome o{run.Run(), out.str()};
    PrintSummary(o.summary, out);
    o.out = out.str();
    return o;
}

TEST(SyncKinds, EveryBackedUpTableBelongsToExactlyOneKind) {
    std::map<int, int> owners;
    for (const SyncKind& k : SyncKinds())
        for (int t : k.tables) owners[t]++;
    ASSERT_EQ(owners.size(), 53u);
    for (const auto& [table, n] : owners) {
        EXPECT_GE(table, 0);
        EXPECT_LE(table, 52);
        EXPECT_EQ(n, 1) << "table " << table;
    }
}

TEST(SyncKinds, CombinedFlagsPointOneWayOrAsk) {
    EXPECT_EQ(CombineFlags({}), 0);
    EXPECT_EQ(CombineFlags({0, 0}), 0);
    EXPECT_EQ(CombineFlags({0, 1, 1}), 1);
    EXPECT_EQ(CombineFlags({2, 0}), 2);
    EXPECT_EQ(CombineFlags({1, 2}), 3);
    EXPECT_EQ(CombineFlags({0, 3}), 3);
}

TEST(SyncPrefer, ParsesTheFourChoicesOnly) {
    EXPECT_EQ(ParsePrefer("ask"), Prefer::Ask);
    EXPECT_EQ(ParsePrefer("server"), Prefer::Server);
    EXPECT_EQ(ParsePrefer("local"), Prefer::Local);
    EXPECT_EQ(ParsePrefer("skip"), Prefer::Skip);
    EXPECT_FALSE(ParsePrefer("Server"));
    EXPECT_FALSE(ParsePrefer(""));
}

TEST(SyncRun, WithoutALoginNothingIsAskedAndTheExitCodeIsAFailure) {
    ScriptedComponent c;
    c.loginState = 0;
    Outcome o = RunWith(c);
    EXPECT_TRUE(c.calls.empty());
    EXPECT_EQ(ExitCode(o.summary), 1);
}

TEST(SyncRun, AnEmptyServerRosterNeverTakesTheServersRosterOverTheLocalOne) {
    ScriptedComponent c;
    c.results["CompareCustomerList"] = {4};
    c.add = "1,2";
    for (Prefer p : {Prefer::Ask, Prefer::Server, Prefer::Local, Prefer::Skip}) {
        c.calls.clear();
        Outcome o = RunWith(c, p);
        EXPECT_FALSE(c.Called("SyncDownloadCustomerList")) << "it would delete local customers";
        EXPECT_EQ(o.summary.customers, 0) << "customers the server lacks have no snapshot";
        EXPECT_NE(o.out.find("2 customer(s) to add"), std::string::npos) << o.out;
        EXPECT_EQ(ExitCode(o.summary), 3);
    }
}

TEST(SyncRun, AnEmptyLocalRosterIsDownloadedAndComparedAgain) {
    ScriptedComponent c;
    c.results["CompareCustomerList"] = {5, 0};
    c.local = {7};
    Outcome o = RunWith(c);
    EXPECT_LT(c.Position("SyncDownloadCustomerList"), c.Position("CustmerBackupedTableSync"));
    EXPECT_EQ(std::count_if(c.calls.begin(), c.calls.end(),
                            [](auto& s) { return s.rfind("CompareCustomerList", 0) == 0; }),
              2);
    EXPECT_EQ(o.summary.downloads, 1);
    EXPECT_EQ(o.summary.customers, 1);
    EXPECT_EQ(o.summary.tablesCompared, 53);

    // The host's sample customer alone counts as no data: it is never sent up.
    ScriptedComponent sample;
    sample.members.insert({"SyncUploadAddCustomer", "SyncUploadDelCustomer"});
    sample.results["CompareCustomerList"] = {5, 0};
    sample.add = "1";
    sample.del = "7";
    RunWith(sample, Prefer::Local);
    EXPECT_FALSE(sample.Called("SyncUploadAddCustomer"));
    EXPECT_TRUE(sample.Called("SyncDownloadCustomerList"));

    ScriptedComponent dry;
    dry.results["CompareCustomerList"] = {5};
    Outcome d = RunWith(dry, Prefer::Ask, true);
    EXPECT_FALSE(dry.Called("SyncDownloadCustomerList"));
    EXPECT_EQ(d.summary.planned, 1);
    EXPECT_EQ(ExitCode(d.summary), 3);
}

TEST(SyncRun, WithoutAPersonDifferingRostersAreJoinedAndNothingIsDeleted) {
    for (Prefer p : {Prefer::Server, Prefer::Local}) {
        ScriptedComponent c;
        c.members.insert({"SyncUploadAddCustomer", "SyncUploadDelCustomer"});
        c.results["CompareCustomerList"] = {3, 0};
        c.add = "2";
        c.del = "9";
        Outcome o = RunWith(c, p);
        const long added = c.Position("SyncUploadAddCustomer /data/Customer.dat 2");
        ASSERT_GE(added, 0);
        EXPECT_LT(added, c.Position("SyncDownloadCustomerList")) << "added before it is taken";
        EXPECT_FALSE(c.Called("SyncUploadDelCustomer"));
        EXPECT_EQ(o.summary.uploads, 1);
        EXPECT_EQ(o.summary.downloads, 1);
        EXPECT_EQ(ExitCode(o.summary), 3) << "kinds without a worker remain";
    }

    ScriptedComponent skip;
    skip.results["CompareCustomerList"] = {3};
    skip.add = "2";
    Outcome o = RunWith(skip, Prefer::Skip);
    EXPECT_FALSE(skip.Called("SyncDownloadCustomerList"));
    EXPECT_EQ(o.summary.conflicts, 1);
    EXPECT_EQ(o.summary.customers, 1) << "customer 2 is only local";
    EXPECT_EQ(ExitCode(o.summary), 1);
}

TEST(SyncRun, TheServersRosterIsNotTakenWhenItWouldDeleteLocalCustomers) {
    // The add fails: the server still lacks customer 2, and taking its roster would delete
    // customer 2 locally.
    ScriptedComponent failed;
    failed.members.insert({"SyncUploadAddCustomer", "SyncUploadDelCustomer"});
    failed.results["CompareCustomerList"] = {3, 3};
    failed.results["SyncUploadAddCustomer"] = {0};
    failed.add = "2";
    failed.del = "9";
    Outcome o = RunWith(failed, Prefer::Server);
    EXPECT_FALSE(failed.Called("SyncDownloadCustomerList"));
    EXPECT_EQ(o.summary.failures, 1);
    EXPECT_EQ(ExitCode(o.summary), 1);

    // No add worker at all: the same holds.
    ScriptedComponent absent;
    absent.results["CompareCustomerList"] = {3};
    absent.add = "2";
    absent.del = "9";
    RunWith(absent, Prefer::Server);
    EXPECT_FALSE(absent.Called("SyncDownloadCustomerList"));
}

TEST(SyncRun, TheRosterDialogsAnswerDecidesTheReconciliation) {
    const auto run = [](int answer) {
        auto c = std::make_unique<ScriptedComponent>();
        c->members.insert(
            {"SyncUploadAddCustomer", "SyncUploadDelCustomer", "ShowCompareCustListDlg",
             "GetCompareCustListDlg_AddServerIDs", "GetCompareCustListDlg_DelServerIDs",
             "GetCompareCustListDlg_AddLocalIDs", "GetCompareCustListDlg_DelLocalIDs"});
        c->results["CompareCustomerList"] = {3, 0};
        c->results["ShowCompareCustListDlg"] = {answer};
        c->add = "2,3";
        c->del = "9";
        c->texts["GetCompareCustListDlg_AddServerIDs"] = "3";
        c->texts["GetCompareCustListDlg_DelLocalIDs"] = "2";
        c->texts["GetCompareCustListDlg_DelServerIDs"] = "9";
        c->texts["GetCompareCustListDlg_AddLocalIDs"] = "";
        Outcome o = RunWith(*c, Prefer::Ask);
        return std::pair{std::move(c), o};
    };
    {
        auto [c, o] = run(-1);
        EXPECT_FALSE(c->Called("CustmerBackupedTableSyncFlag")) << "a cancel stops the run";
        EXPECT_FALSE(c->Called("SyncUpload"));
        EXPECT_EQ(ExitCode(o.summary), 1);
    }
    {
        auto [c, o] = run(2);  // the local roster whole
        EXPECT_TRUE(c->Called("SyncUploadAddCustomer /data/Customer.dat 2"));
        EXPECT_TRUE(c->Called("SyncUploadAddCustomer /data/Customer.dat 3"));
        EXPECT_TRUE(c->Called("SyncUploadDelCustomer 9"));
        EXPECT_FALSE(c->Called("SyncDownloadCustomerList"));
    }
    {
        auto [c, o] = run(1);  // the server's roster whole
        EXPECT_TRUE(c->Called("SyncDownloadCustomerList"));
        EXPECT_FALSE(c->Called("SyncUpload"));
    }
    {
        auto [c, o] = run(6);  // customer by customer: 3 up, 9 deleted, 2 deleted locally
        EXPECT_TRUE(c->Called("SyncUploadAddCustomer /data/Customer.dat 3"));
        EXPECT_FALSE(c->Called("SyncUploadAddCustomer /data/Customer.dat 2"));
        EXPECT_LT(c->Position("SyncUploadDelCustomer 9"), c->Position("SyncDownloadCustomerList"));
        EXPECT_EQ(o.summary.uploads, 2);
        EXPECT_EQ(o.summary.downloads, 1);
    }
}

TEST(SyncRun, ADryRunOnlyTellsWhatTheRosterWouldDo) {
    ScriptedComponent c;
    c.members.insert({"SyncUploadAddCustomer", "SyncUploadDelCustomer", "CheckInetEnabledFlags"});
    c.results["CompareCustomerList"] = {3};
    c.add = "2";
    c.del = "9";
    Outcome o = RunWith(c, Prefer::Server, true);
    EXPECT_FALSE(c.Called("SyncUpload"));
    EXPECT_FALSE(c.Called("SyncDownloadCustomerList"));
    EXPECT_FALSE(c.Called("CheckInetEnabledFlags")) << "the check sets flags on the server";
    EXPECT_EQ(o.summary.planned, 2);
    EXPECT_NE(o.out.find("would add customer 2 to the server"), std::string::npos) << o.out;
}

TEST(SyncRun, BackupTargetsOutOfBalanceNeedAPersonAndOnlyTargetsAreWalked) {
    const auto make = [] {
        auto c = std::make_unique<ScriptedComponent>();
        c->members.insert({"CheckInetEnabledFlags", "ShowSelectCustEnabledDlg",
                           "CustmerInetEnabledFlag", "CheckExistCustID"});
        c->results["CheckInetEnabledFlags"] = {3};
        c->results["CustmerInetEnabledFlag"] = {0, 1};  // customer 1 no, customer 2 yes
        return c;
    };
    auto asked = make();
    Outcome a = RunWith(*asked, Prefer::Ask);
    EXPECT_TRUE(asked->Called("ShowSelectCustEnabledDlg  /data/Customer.dat 2"));
    EXPECT_EQ(a.summary.conflicts, 0);
    EXPECT_EQ(a.summary.customers, 1);
    EXPECT_FALSE(asked->Called("CustmerBackupedTableSyncFlag 1 "));

    auto unattended = make();
    Outcome u = RunWith(*unattended, Prefer::Server);
    EXPECT_FALSE(unattended->Called("ShowSelectCustEnabledDlg"));
    EXPECT_EQ(u.summary.conflicts, 1);
    EXPECT_EQ(ExitCode(u.summary), 1);
}

TEST(SyncRun, KindsWithoutAWorkerAreReportedFromTheStampsAndNeverCalled) {
    ScriptedComponent c;
    c.flags[{1, 0}] = 1;   // customer record, server newer
    c.flags[{2, 6}] = 2;   // staff, local newer
    c.flags[{2, 12}] = 2;  // a prefecture form without any worker
    Outcome o = RunWith(c, Prefer::Server);
    EXPECT_FALSE(c.Called("CompareCustomerKihon"));
    EXPECT_FALSE(c.Called("SyncDownloadCustomerKihon"));
    EXPECT_EQ(o.summary.tablesCompared, 106);
    EXPECT_EQ(o.summary.tablesDiffering, 3);
    EXPECT_EQ(o.summary.downloads + o.summary.uploads, 0);
    EXPECT_NE(o.out.find("customer record: 1 customer(s) differ (1 server newer)"),
              std::string::npos)
        << o.out;
    EXPECT_NE(o.out.find("staff: 1 customer(s) differ (1 local newer)"), std::string::npos);
    EXPECT_NE(o.out.find("compared by stamp only"), std::string::npos);
    EXPECT_NE(o.out.find("customer 1: 1 of 53 tables differ (1 server newer)"), std::string::npos)
        << o.out;
    EXPECT_NE(o.out.find("customer 2: 2 of 53 tables differ (2 local newer)"), std::string::npos);
    EXPECT_EQ(ExitCode(o.summary), 3);
    const Outcome named = RunWith(c, Prefer::Server, false, true);
    EXPECT_NE(named.out.find("customer 1: tCustomer server newer\n"), std::string::npos)
        << named.out;
}

TEST(SyncRun, ALiveKindMovesUnderTheCustomersLockTheWayItsComparisonSays) {
    ScriptedComponent c;
    c.Live("CustomerMemoList");
    c.members.insert({"LockCoustomer", "UnlockCoustomer"});
    c.results["CompareCustomerMemoList"] = {1, 2};
    c.flags[{1, 31}] = 1;  // delegation records, server newer
    Outcome o = RunWith(c);
    const long lock = c.Position("LockCoustomer 1");
    const long down = c.Position("SyncDownloadCustomerMemoList /data/Customer.dat 1");
    const long unlock = c.Position("UnlockCoustomer 1");
    ASSERT_GE(lock, 0);
    EXPECT_LT(lock, down);
    EXPECT_LT(down, unlock);
    EXPECT_TRUE(c.Called("SyncUploadCustomerMemoList /data/Customer.dat 2"));
    EXPECT_EQ(o.summary.downloads, 1);
    EXPECT_EQ(o.summary.uploads, 1);
    EXPECT_FALSE(Reported(o.summary, "memos")) << "a live kind is not unsupported";
    EXPECT_TRUE(Reported(o.summary, "delegation records")) << "a kind with no worker still is";
}

TEST(SyncRun, BothSidesMovedFollowsPreferOrTheDialog) {
    const auto run = [](Prefer p, int dialog) {
        ScriptedComponent c;
        c.local = {1};
        c.Live("CustomerMemoList");
        c.members.insert({"LockCoustomer", "UnlockCoustomer"});
        c.results["CompareCustomerMemoList"] = {3};
        c.results["ShowCompareMsg"] = {dialog};
        Outcome o = RunWith(c, p);
        return std::tuple{c.Called("SyncDownloadCustomerMemoList"),
                          c.Called("SyncUploadCustomerMemoList"), c.Called("ShowCompareMsg"),
                          o.summary.conflicts};
    };
    EXPECT_EQ(run(Prefer::Server, 0), std::tuple(true, false, false, 0));
    EXPECT_EQ(run(Prefer::Local, 0), std::tuple(false, true, false, 0));
    EXPECT_EQ(run(Prefer::Skip, 0), std::tuple(false, false, false, 1));
    EXPECT_EQ(run(Prefer::Ask, 2), std::tuple(false, true, true, 0));
    EXPECT_EQ(run(Prefer::Ask, 0), std::tuple(false, false, true, 1)) << "cancelled";
}

TEST(SyncRun, NothingMovesWithoutALockOrInADryRunOrWhenTheLockIsRefused) {
    ScriptedComponent noLock;
    noLock.Live("CustomerMemoList");
    noLock.results["CompareCustomerMemoList"] = {1};
    Outcome a = RunWith(noLock);
    EXPECT_FALSE(noLock.Called("SyncDownloadCustomerMemoList"));
    EXPECT_EQ(ExitCode(a.summary), 3);

    ScriptedComponent dry;
    dry.Live("CustomerMemoList");
    dry.members.insert({"LockCoustomer", "UnlockCoustomer"});
    dry.results["CompareCustomerMemoList"] = {2};
    Outcome b = RunWith(dry, Prefer::Ask, true);
    EXPECT_FALSE(dry.Called("LockCoustomer"));
    EXPECT_FALSE(dry.Called("SyncUploadCustomerMemoList"));
    EXPECT_EQ(b.summary.planned, 2);

    ScriptedComponent refused;
    refused.Live("CustomerMemoList");
    refused.members.insert({"LockCoustomer", "UnlockCoustomer"});
    refused.results["LockCoustomer"] = {0};
    refused.results["CompareCustomerMemoList"] = {1};
    Outcome r = RunWith(refused);
    EXPECT_FALSE(refused.Called("SyncDownloadCustomerMemoList"));
    EXPECT_FALSE(refused.Called("UnlockCoustomer"));
    EXPECT_EQ(r.summary.failures, 2) << "one refusal per customer";
    EXPECT_EQ(ExitCode(r.summary), 1);
}

TEST(SyncRun, AFailedMoveCountsAsAFailure) {
    ScriptedComponent c;
    c.local = {4};
    c.Live("CustomerMemoList");
    c.members.insert({"LockCoustomer", "UnlockCoustomer"});
    c.results["CompareCustomerMemoList"] = {1};
    c.results["SyncDownloadCustomerMemoList"] = {0};
    Outcome o = RunWith(c);
    EXPECT_EQ(o.summary.failures, 1);
    EXPECT_EQ(o.summary.downloads, 0);
    EXPECT_TRUE(c.Called("UnlockCoustomer 4")) << "the lock goes even after a failure";
    EXPECT_EQ(ExitCode(o.summary), 1);
}

TEST(SyncRun, LiveMastersMoveUnderTheMasterLockAndTakeNoneWhenTheyAgree) {
    ScriptedComponent c;
    c.local = {};
    c.Live("MasterYakushoku");
    c.members.insert({"LockMasterData", "UnlockMasterData"});
    c.results["CompareMasterYakushoku"] = {1};
    Outcome o = RunWith(c);
    EXPECT_TRUE(c.Called("CompareMasterYakushoku /data/Master.dat"));
    EXPECT_LT(c.Position("LockMasterData"), c.Position("SyncDownloadMasterYakushoku"));
    EXPECT_LT(c.Position("SyncDownloadMasterYakushoku"), c.Position("UnlockMasterData"));
    EXPECT_EQ(o.summary.downloads, 1);
    EXPECT_FALSE(Reported(o.summary, "post master"));
    EXPECT_NE(o.out.find("minister master: not compared"), std::string::npos);

    ScriptedComponent agreeing;
    agreeing.local = {};
    agreeing.Live("MasterYakushoku");
    agreeing.members.insert({"LockMasterData", "UnlockMasterData"});
    RunWith(agreeing);
    EXPECT_TRUE(agreeing.Called("CompareMasterYakushoku"));
    EXPECT_FALSE(agreeing.Called("LockMasterData"));
}

TEST(SyncRun, DataFilesNamedByTheRecordsAreComparedAndMovedAndCheckedAfterwards) {
    ScriptedComponent c;
    c.local = {1};
    c.Live("CustomerKessanFile");
    c.members.insert({"LockCoustomer", "UnlockCoustomer"});
    c.files[{"tCustomerKessanHistory", 1}] = {"files/1/a.pdf", "/abs/b.pdf", "files/1/c.pdf"};
    // a: server newer, then the same; b: local newer, still different after the upload;
    // c: the same.
    c.results["CompareCustomerKessanFile"] = {1, 0, 2, 2, 0};
    Outcome o = RunWith(c);
    EXPECT_TRUE(c.Called("CompareCustomerKessanFile 1 /data/files/1/a.pdf"))
        << "a relative name lies beside the database";
    EXPECT_TRUE(c.Called("SyncDownloadCustomerKessanFile 1 /data/files/1/a.pdf"));
    EXPECT_TRUE(c.Called("SyncUploadCustomerKessanFile 1 /abs/b.pdf"));
    EXPECT_FALSE(c.Called("SyncUploadCustomerKessanFile 1 /data/files/1/c.pdf"));
    EXPECT_LT(c.Position("LockCoustomer"), c.Position("CompareCustomerKessanFile"));
    EXPECT_EQ(o.summary.downloads, 1);
    EXPECT_EQ(o.summary.uploads, 0);
    EXPECT_EQ(o.summary.failures, 1) << o.out;
    EXPECT_NE(o.out.find("file /abs/b.pdf: the upload did not leave both copies the same"),
              std::string::npos)
        << o.out;
    EXPECT_FALSE(Reported(o.summary, "settlement files"));
    EXPECT_TRUE(Reported(o.summary, "permit files")) << "no worker for them here";
}

TEST(SyncRun, FilesOfRecordsJustSentGoUpEvenWhenTheComparisonSeesNoDifference) {
    // The server answers a file it does not hold as it answers one it holds the same.
    test::TempDir dir;
    const std::string here = (dir.Path() / "a.pdf").string();
    std::ofstream(here) << "bytes";
    const auto run = [&](int records, const std::string& file) {
        auto c = std::make_unique<ScriptedComponent>();
        c->local = {1};
        c->Live("CustomerKessanList");
        c->Live("CustomerKessanFile");
        c->members.insert({"LockCoustomer", "UnlockCoustomer"});
        c->files[{"tCustomerKessanHistory", 1}] = {file};
        c->results["CompareCustomerKessanList"] = {records};
        c->results["CompareCustomerKessanFile"] = {0};
        RunWith(*c);
        return c->Called("SyncUploadCustomerKessanFile 1 " + file);
    };
    EXPECT_TRUE(run(2, here)) << "the records went up";
    EXPECT_FALSE(run(0, here)) << "the records agreed";
    EXPECT_FALSE(run(1, here)) << "the records came down";
    EXPECT_FALSE(run(2, (dir.Path() / "gone.pdf").string())) << "a file named but not here";
}

TEST(SyncRun, DelegationRecordsMoveForCustomersHoldingTheFormOnEitherSide) {
    ScriptedComponent c;
    c.local = {1, 2, 3, 4};
    c.Live("P99Inin");
    c.members.insert({"LockCoustomer", "UnlockCoustomer"});
    c.members.insert("InetDateServer");
    c.texts["InetDateServer"] = "";  // the server holds no form for a customer that moved
    // 1 holds the main row, of a permit record's file; 2 sub rows only; 3 nothing, and
    // neither does the server, though the stamps say "both moved"; 4 nothing locally, but
    // the server's form is newer.
    c.forms[{"t99_ININ_MAIN", 1}] = {{7, false}};
    c.forms[{"t99_ININ_SUB", 2}] = {{0, true}};
    c.results["CompareP99Inin"] = {1, 2, 3, 1};
    Outcome o = RunWith(c, Prefer::Local);
    EXPECT_LT(c.Position("LockCoustomer 1"), c.Position("CompareP99Inin"));
    EXPECT_TRUE(c.Called("SyncDownloadP99Inin /data/prefcustom.dat 1 7 False"));
    EXPECT_TRUE(c.Called("SyncUploadP99Inin /data/prefcustom.dat 2 0 True"));
    EXPECT_TRUE(c.Called("CompareP99Inin /data/prefcustom.dat 3 0 True"));
    EXPECT_FALSE(c.Called("SyncUploadP99Inin /data/prefcustom.dat 3"));
    EXPECT_TRUE(c.Called("SyncDownloadP99Inin /data/prefcustom.dat 4 0 True"));
    EXPECT_EQ(o.summary.conflicts, 0);
    EXPECT_EQ(o.summary.downloads, 2);
    EXPECT_EQ(o.summary.uploads, 1);
    EXPECT_FALSE(Reported(o.summary, "delegation records"));
}

TEST(SyncRun, MachineryListsGoUpPerDataFileWhenTheStampsSaySoAndAreNeverFetched) {
    struct Case {
        const char* name;
        int mainFlag, machineFlag;
        Prefer prefer;
        bool dryRun;
        int uploads, planned, conflicts;
        bool reported;  // the server's newer copy is told, not fetched
    };
    const std::vector<Case> cases = {
        {"local newer", 2, 0, Prefer::Ask, false, 2, 0, 0, false},
        {"only the machines changed", 0, 2, Prefer::Ask, false, 2, 0, 0, false},
        {"machines never stamped as agreed", 0, 3, Prefer::Ask, false, 0, 0, 0, false},
        {"server newer", 1, 0, Prefer::Ask, false, 0, 0, 0, true},
        {"both moved, local preferred", 3, 0, Prefer::Local, false, 2, 0, 0, false},
        {"both moved, skipped", 3, 0, Prefer::Skip, false, 0, 0, 1, false},
        {"dry run", 2, 0, Prefer::Ask, true, 0, 2, 0, false},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.name);
        ScriptedComponent c;
        c.local = {1};
        c.members.insert({"LockCoustomer", "UnlockCoustomer", "SyncUploadP99KikaiIchiran"});
        c.flags[{1, 38}] = k.mainFlag;
        c.flags[{1, 39}] = k.machineFlag;
        c.forms[{"t99_KIKAIICHIRAN_MAIN", 1}] = {{5, true}, {0, true}, {2.5, false}};
        Outcome o = RunWith(c, k.prefer, k.dryRun);
        EXPECT_EQ(o.summary.uploads, k.uploads) << o.out;
        EXPECT_EQ(o.summary.planned, k.planned);
        EXPECT_EQ(o.summary.conflicts, k.conflicts);
        EXPECT_EQ(Reported(o.summary, "customer 1 machinery list"), k.reported);
        EXPECT_EQ(c.Called("SyncUploadP99KikaiIchiran /data/prefcustom.dat 1 5 True"),
                  k.uploads > 0);
        EXPECT_EQ(c.Called("SyncUploadP99KikaiIchiran /data/prefcustom.dat 1 2.5 False"),
                  k.uploads > 0);
        EXPECT_FALSE(Reported(o.summary, "machinery list")) << "the kind has its worker";
    }
}

TEST(SyncSummary, ExitCodeIsZeroOnlyWhenEverythingAgreedOrMoved) {
    SyncSummary s;
    s.loggedIn = true;
    s.downloads = 3;
    EXPECT_EQ(ExitCode(s), 0);
    s.unsupported.push_back({"x", "y"});
    EXPECT_EQ(ExitCode(s), 3);
    s.conflicts = 1;
    EXPECT_EQ(ExitCode(s), 1);
}

bool Says(const Outcome& o, const std::string& text) {
    return o.out.find(text) != std::string::npos;
}

TEST(SyncRun, FailedExchangesAreFailuresNeverAgreement) {
    struct Case {
        const char* name;
        void (*script)(ScriptedComponent&);
        int failures;
        const char* says;
        const char* neverCalled;  // "" when every call may happen
    };
    const Case cases[] = {
        {"roster page refused",
         [](ScriptedComponent& c) {
             c.members.insert({"LockCoustomer", "UnlockCoustomer"});
             c.Live("CustomerMemoList");
             c.refused.insert("CompareCustomerList");
         },
         1, "roster: the server's roster could not be read", "LockCoustomer"},
        {"the saved login refused",
         [](ScriptedComponent& c) {
             c.refused.insert("CompareCustomerList");
             c.loginStateAfterRefusal = 0;
         },
         1, "roster: the server refused the login (state 0)", "CustmerBackupedTableSyncFlag"},
        {"every data page refused",
         [](ScriptedComponent& c) {
             c.members.insert({"LockCoustomer", "UnlockCoustomer"});
             c.Live("CustomerMemoList");
             c.refused.insert("CompareCustomerMemoList");
         },
         2, "customer 2 memos: the comparison failed", "SyncUploadCustomerMemoList"},
        {"an upload refused though the member answered 1",
         [](ScriptedComponent& c) {
             c.local = {1};
             c.members.insert({"LockCoustomer", "UnlockCoustomer"});
             c.Live("CustomerMemoList");
             c.results["CompareCustomerMemoList"] = {2};
             c.refused.insert("SyncUploadCustomerMemoList");
         },
         1, "SyncUploadCustomerMemoList failed", ""},
        {"a master page refused",
         [](ScriptedComponent& c) {
             c.local = {};
             c.members.insert({"LockMasterData", "UnlockMasterData"});
             c.Live("MasterYakushoku");
             c.refused.insert("CompareMasterYakushoku");
         },
         1, ": the comparison failed", "SyncDownloadMasterYakushoku"},
        {"the backup target check refused",
         [](ScriptedComponent& c) {
             c.members.insert("CheckInetEnabledFlags");
             c.refused.insert("CheckInetEnabledFlags");
         },
         1, "backup targets: the check failed", "ShowSelectCustEnabledDlg"},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.name);
        ScriptedComponent c;
        k.script(c);
        const Outcome o = RunWith(c);
        EXPECT_EQ(o.summary.failures, k.failures) << o.out;
        EXPECT_EQ(ExitCode(o.summary), 1);
        EXPECT_TRUE(Says(o, k.says)) << o.out;
        EXPECT_FALSE(Says(o, "failures:    0")) << o.out;
        if (*k.neverCalled) {
            EXPECT_FALSE(c.Called(k.neverCalled)) << o.out;
        }
    }
}

TEST(SyncRun, TheLoginSaysWhetherTheServerWasReached) {
    ScriptedComponent saved;
    const Outcome s = RunWith(saved);
    EXPECT_TRUE(Says(s, "login: the saved login, not yet confirmed by the server")) << s.out;
    EXPECT_TRUE(Says(s, "server:      answered")) << "the roster came back";

    ScriptedComponent asked;
    asked.loginAsks = true;
    EXPECT_TRUE(Says(RunWith(asked), "login: logged in (the server answered)"));

    // A saved login that lapsed at the server while the office was away: with the password
    // saved, a fresh login and the run goes on.
    ScriptedComponent lapsed;
    lapsed.refused.insert("CompareCustomerList");
    lapsed.loginStateAfterRefusal = 0;
    lapsed.passwordSaved = true;
    const Outcome l = RunWith(lapsed);
    EXPECT_TRUE(Says(l, "login: logged in afresh (the saved login had lapsed)")) << l.out;
    EXPECT_EQ(l.summary.failures, 0) << l.out;
    EXPECT_TRUE(lapsed.Called("CustmerBackupedTableSyncFlag")) << l.out;

    ScriptedComponent silent;
    silent.loginAsks = true;
    silent.unanswered.insert("login");
    silent.loginState = 0;
    const Outcome n = RunWith(silent);
    EXPECT_TRUE(Says(n, "login: the server could not be reached")) << n.out;
    EXPECT_TRUE(Says(n, "server:      unreachable")) << n.out;
    EXPECT_TRUE(silent.calls.empty());
    EXPECT_EQ(ExitCode(n.summary), 1);
}

TEST(SyncRun, AServerThatStopsAnsweringEndsTheRunAfterAFewRequests) {
    ScriptedComponent c;
    c.local = {1, 2, 3, 4, 5, 6};
    c.members.insert({"LockCoustomer", "UnlockCoustomer", "LockMasterData", "UnlockMasterData"});
    c.Live("CustomerMemoList");
    c.Live("MasterYakushoku");
    c.unanswered.insert({"LockCoustomer", "UnlockCoustomer", "CompareCustomerMemoList",
                         "LockMasterData", "CompareMasterYakushoku"});
    const Outcome o = RunWith(c);
    EXPECT_TRUE(o.summary.unreachable);
    EXPECT_TRUE(Says(o, "3 requests in a row went unanswered; the run stops here")) << o.out;
    EXPECT_FALSE(c.Called("LockCoustomer 3")) << o.out;
    EXPECT_FALSE(c.Called("LockMasterData"));
    EXPECT_TRUE(Says(o, "server:      unreachable"));
    EXPECT_EQ(ExitCode(o.summary), 1);

    // Nothing answered from the first request on: the roster says so and the run stops.
    ScriptedComponent none;
    none.unanswered.insert("CompareCustomerList");
    const Outcome n = RunWith(none);
    EXPECT_TRUE(n.summary.unreachable);
    EXPECT_TRUE(Says(n, "roster: the server did not answer")) << n.out;
    EXPECT_FALSE(none.Called("CustmerBackupedTableSyncFlag"));
}

TEST(SyncJournal, ASideWhoseStampChangedSinceTheLastAgreementHasMoved) {
    const SeenStamps was{11, 22};
    const SeenStamps serverMoved{12, 22}, localMoved{11, 23}, bothMoved{12, 23};
    struct Row {
        int decision;
        std::optional<SeenStamps> agreed;
        SeenStamps seen;
        int expected;
    };
    const Row rows[] = {
        {2, was, serverMoved, 3},  // the blind minute: an upload would overwrite the server
        {1, was, localMoved, 3},   // and the other way round
        {0, was, serverMoved, 1},
        {0, was, localMoved, 2},
        {0, was, bothMoved, 3},
        {0, was, was, 0},
        {2, was, localMoved, 2},
        {1, was, serverMoved, 1},
        {3, was, was, 3},
        {2, std::nullopt, serverMoved, 2},  // no agreement known: the
                                            // stamps alone decide
        {2, was, SeenStamps{}, 2},          // the comparison looked at no stamp
    };
    for (const Row& r : rows)
        EXPECT_EQ(WithJournal(r.decision, r.agreed, r.seen), r.expected)
            << r.decision << " seen " << r.seen.server << "/" << r.seen.local;
    // A move cut off is taken up again unless the other side moved since.
    const int cut[][3] = {{0, 1, 1}, {1, 1, 1}, {2, 1, 3}, {3, 1, 3}, {0, 2, 2},
                          {2, 2, 2}, {1, 2, 3}, {3, 2, 3}, {2, 0, 2}};
    for (const auto& [decision, way, expected] : cut)
        EXPECT_EQ(WithUnfinished(decision, way), expected) << decision << " after way " << way;
}

TEST(SyncJournal, KeepsItsEntriesAcrossRunsAndSkipsTornLines) {
    test::TempDir dir;
    const auto path = dir.Path() / "config" / "journal";
    {
        SyncJournal j(path);
        j.Agreed(1, "memos", {0xabc, 0xdef});
        j.Agreed(0, "post master", {1, 2});
        j.Agreed(2, "memos", {3, 4});
        j.Forget(2, "memos");
        ASSERT_TRUE(j.Save());
        // Noted at once, with the agreements as last saved and not those of the run so far:
        // a kill after this leaves only the note new.
        j.Agreed(3, "memos", {5, 6});
        ASSERT_TRUE(j.Begin(4, "delegation records", 1));
        ASSERT_TRUE(j.Begin(5, "machinery list", 2));
        ASSERT_TRUE(j.Begin(6, "delegation records", 2));
        ASSERT_TRUE(j.Finished(6, "delegation records"));
    }
    {
        std::ofstream torn(path, std::ios::app);
        torn << "8\tmemos\tunfinished\t7\n7\tmemos\tzz";
    }
    SyncJournal again(path);
    EXPECT_EQ(again.Find(1, "memos"), (SeenStamps{0xabc, 0xdef}));
    EXPECT_EQ(again.Find(0, "post master"), (SeenStamps{1, 2}));
    EXPECT_FALSE(again.Find(2, "memos"));
    EXPECT_FALSE(again.Find(3, "memos"));
    EXPECT_FALSE(again.Find(7, "memos"));
    EXPECT_EQ(again.Unfinished(4, "delegation records"), 1);
    EXPECT_EQ(again.Unfinished(5, "machinery list"), 2);
    EXPECT_EQ(again.Unfinished(6, "delegation records"), 0);
    EXPECT_EQ(again.Unfinished(8, "memos"), 0);
    EXPECT_TRUE(again.AnyUnfinished(4));
    EXPECT_FALSE(again.AnyUnfinished(3));
    EXPECT_FALSE(again.AnyUnfinished(6));
    for (const auto& entry : std::filesystem::directory_iterator(path.parent_path()))
        EXPECT_EQ(entry.path(), path) << "no temporary file is left";
}

TEST(SyncRun, AServerThatMovedWithinAMinuteOfTheLastAgreementIsAskedAbout) {
    test::TempDir dir;
    const auto journal = dir.Path() / "journal";
    const auto office = [] {
        auto c = std::make_unique<ScriptedComponent>();
        c->local = {1};
        c->members.insert({"LockCoustomer", "UnlockCoustomer"});
        c->Live("CustomerMemoList");
        return c;
    };
    // The first run agrees on the server's stamp 5.
    auto first = office();
    first->stamps["CompareCustomerMemoList"] = {{5, 9}};
    RunWith(*first, Prefer::Ask, false, false, journal);
    ASSERT_TRUE(std::filesystem::exists(journal));

    // Another office uploaded a few seconds later (stamp 6) and this one edited (10): the
    // stamps alone call it local newer.
    const auto second = [&](Prefer prefer, int dialog, bool dryRun) {
        auto c = office();
        c->results["CompareCustomerMemoList"] = {2, 0};  // then agreement after a move
        c->results["ShowCompareMsg"] = {dialog};
        c->stamps["CompareCustomerMemoList"] = {{6, 10}};
        c->serverStamps[{1, 3}] = "6";  // the roster shows the other office's stamp
        Outcome o = RunWith(*c, prefer, dryRun, false, journal);
        return std::pair{std::move(c), o};
    };
    {
        auto [c, o] = second(Prefer::Ask, 0, false);
        EXPECT_TRUE(c->Called("ShowCompareMsg")) << o.out;
        EXPECT_FALSE(c->Called("SyncUploadCustomerMemoList")) << "the other office's edit stays";
        EXPECT_TRUE(Says(o, "customer 1 memos: the server changed since the last agreement"))
            << o.out;
        EXPECT_EQ(o.summary.conflicts, 1);
    }
    const auto bytes = [&] {
        std::ifstream in(journal);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    const std::string agreed = bytes();
    {
        auto [c, o] = second(Prefer::Local, 0, true);
        EXPECT_TRUE(Says(o, "customer 1 memos: would upload")) << "--prefer local decides";
        EXPECT_EQ(bytes(), agreed) << "a dry run writes no journal";
    }
    {
        auto [c, o] = second(Prefer::Server, 0, false);
        EXPECT_TRUE(c->Called("SyncDownloadCustomerMemoList"));
        EXPECT_FALSE(c->Called("SyncUploadCustomerMemoList"));
        EXPECT_NE(bytes(), agreed);
    }
    // The download above settled on the stamps its second comparison saw.
    auto third = office();
    third->stamps["CompareCustomerMemoList"] = {{6, 10}};
    third->serverStamps[{1, 3}] = "6";
    const Outcome o = RunWith(*third, Prefer::Ask, false, false, journal);
    EXPECT_FALSE(third->Called("ShowCompareMsg")) << o.out;
    EXPECT_EQ(o.summary.downloads + o.summary.uploads, 0) << o.out;
}

}  // namespace
}  // namespace morvane::cli

namespace morvane::cli {
namespace {

std::unique_ptr<ScriptedComponent> MemoOffice() {
    auto c = std::make_unique<ScriptedComponent>();
    c->local = {1};
    c->members.insert({"LockCoustomer", "UnlockCoustomer"});
    c->Live("CustomerMemoList");
    c->serverStamps[{1, 3}] = "2026/11/01 10:00:00";
    c->localStamps[{1, 3}] = "2026-10-30 09:00:00";
    c->fingerprints = {{1, 77}};
    return c;
}

TEST(SyncRun, ACustomerUnchangedOnBothSidesSinceItAgreedIsNotWalked) {
    test::TempDir dir;
    const auto journal = dir.Path() / "journal";
    auto first = MemoOffice();
    first->stamps["CompareCustomerMemoList"] = {{5, 9}};
    EXPECT_EQ(RunWith(*first, Prefer::Ask, false, false, journal).summary.failures, 0);
    ASSERT_TRUE(first->Called("CompareCustomerMemoList"));

    auto again = MemoOffice();
    const Outcome o = RunWith(*again, Prefer::Ask, false, false, journal);
    EXPECT_EQ(o.summary.unchanged, 1) << o.out;
    EXPECT_FALSE(again->Called("LockCoustomer")) << "no request for a customer that agrees";
    EXPECT_FALSE(again->Called("CompareCustomerMemoList"));

    // Anything that moved on either side brings the walk back.
    const std::vector<std::pair<const char*, std::function<void(ScriptedComponent&)>>> moves{
        {"the server's stamp",
         [](ScriptedComponent& c) {
             c.serverStamps[{1, 3}] += "x";
         }},
        {"the local stamp",
         [](ScriptedComponent& c) {
             c.localStamps[{1, 3}] = "2026-11-24";
         }},
        {"a row deleted, hidden or a file replaced",
         [](ScriptedComponent& c) { c.fingerprints[1] = 78; }},
        {"a row of no customer", [](ScriptedComponent& c) { c.fingerprints[0] = 1; }},
        {"the snapshot's flag",
         [](ScriptedComponent& c) {
             c.flags[{1, 3}] = 1;
         }},
    };
    for (const auto& [what, move] : moves) {
        auto c = MemoOffice();
        move(*c);
        const Outcome moved = RunWith(*c, Prefer::Skip, true, false, journal);
        EXPECT_TRUE(c->Called("CompareCustomerMemoList")) << what;
        EXPECT_EQ(moved.summary.unchanged, 0) << what;
    }
    auto full = MemoOffice();
    std::ostringstream out, err;
    SyncOptions options;
    options.localDb = "/data/Customer.dat";
    options.journal = journal;
    options.full = true;
    SyncRun(*full, options, out, err).Run();
    EXPECT_TRUE(full->Called("CompareCustomerMemoList")) << "--full walks every customer";
}

TEST(SyncRun, AKindWithNoLocalRowToSendLeavesTheServersCopyAndSettles) {
    test::TempDir dir;
    const auto journal = dir.Path() / "journal";
    const auto office = [] {
        auto c = MemoOffice();
        c->results["CompareCustomerMemoList"] = {2, 2};
        c->stamps["CompareCustomerMemoList"] = {{5, 9}};
        c->sendNothing.insert("SyncUploadCustomerMemoList");
        c->liveRows[{"tCustomerHistory", 1}] = 0;  // every row deleted or hidden here
        return c;
    };
    auto first = office();
    Outcome o = RunWith(*first, Prefer::Ask, false, false, journal);
    EXPECT_TRUE(first->Called("SyncUploadCustomerMemoList"));
    EXPECT_EQ(o.summary.keptOnServer, 1) << o.out;
    EXPECT_EQ(o.summary.failures + o.summary.conflicts, 0);
    EXPECT_TRUE(Says(o, "customer 1 memos: no local row to send")) << o.out;
    EXPECT_TRUE(Says(o, "the server keeps its copy")) << o.out;

    // Nothing moved since: no second attempt, still told, still settled.
    auto second = office();
    o = RunWith(*second, Prefer::Ask, false, false, journal);
    EXPECT_FALSE(second->Called("SyncUploadCustomerMemoList")) << o.out;
    EXPECT_EQ(o.summary.keptOnServer + o.summary.unchanged, 1) << o.out;
    EXPECT_EQ(o.summary.failures + o.summary.conflicts, 0);

    // An upload that failed while rows exist stays a failure.
    auto failing = office();
    failing->liveRows.clear();
    o = RunWith(*failing, Prefer::Ask, false, false, {});
    EXPECT_EQ(o.summary.failures, 1) << o.out;
    EXPECT_EQ(o.summary.keptOnServer, 0);
}

TEST(SyncRun, ACustomerJustAddedToTheServerGoesUpWholeAndStampsOnlyTablesAreNoOutcome) {
    auto c = MemoOffice();
    c->members.insert({"SyncUploadAddCustomer", "SyncUploadDelCustomer"});
    c->results["CompareCustomerList"] = {3, 0};
    c->add = "1";
    c->flags[{1, 10}] = 2;  // a prefecture table no member moves
    const Outcome o = RunWith(*c, Prefer::Server);
    EXPECT_TRUE(c->Called("SyncUploadAddCustomer")) << o.out;
    EXPECT_TRUE(c->Called("SyncUploadCustomerMemoList")) << "the server held only the roster's";
    EXPECT_TRUE(Says(o, "not backed up by this component")) << o.out;
    EXPECT_FALSE(Reported(o.summary, "prefecture forms (stamps only)"));
}

}  // namespace
}  // namespace morvane::cli
