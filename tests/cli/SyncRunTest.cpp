// The sync engine's decisions over a scripted component: what it calls, in which order,
// what it refuses to do, and how the summary and exit code come out.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "SyncRun.h"
#include "util/Nz.h"

namespace morvane::cli {
namespace {

class ScriptedComponent : public Component {
public:
    std::set<std::string, std::less<>> members{"CompareCustomerList", "SyncDownloadCustomerList",
                                               "GetUploadCustomerListIDs",
                                               "CustmerBackupedTableSyncFlag", "ShowCompareMsg"};
    std::map<std::string, std::vector<int>, std::less<>> results;  // consumed in order
    std::map<std::pair<int, int>, int> flags;                      // (customer, table)
    std::vector<std::int32_t> local{1, 2};
    std::string add, del;
    int loginState = 1;
    std::vector<std::string> calls;

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
        if (m == "CustmerBackupedTableSyncFlag") {
            auto it = flags.find({NzLong(args[0]), NzLong(args[1])});
            return Value(it == flags.end() ? 0 : it->second);
        }
        auto it = results.find(m);
        // Unscripted: comparisons agree, everything else succeeds.
        if (it == results.end() || it->second.empty())
            return Value(m.rfind("Compare", 0) == 0 ? 0 : 1);
        const int r = it->second.front();
        if (it->second.size() > 1) it->second.erase(it->second.begin());
        return Value(r);
    }
    int LoginFromSettings() override { return loginState; }
    bool RosterUploadIDs(const std::string&, std::string& a, std::string& d,
                         std::string& u) override {
        a = add;
        d = del;
        u.clear();
        return true;
    }
    std::vector<std::int32_t> LocalCustomerIDs(const std::string&) override { return local; }

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

Outcome RunWith(ScriptedComponent& c, Prefer prefer = Prefer::Ask, bool dryRun = false) {
    std::ostringstream out, err;
    SyncOptions options;
    options.localDb = "/data/Customer.dat";
    options.prefer = prefer;
    options.dryRun = dryRun;
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

    ScriptedComponent dry;
    dry.results["CompareCustomerList"] = {5};
    Outcome d = RunWith(dry, Prefer::Ask, true);
    EXPECT_FALSE(dry.Called("SyncDownloadCustomerList"));
    EXPECT_EQ(d.summary.planned, 1);
    EXPECT_EQ(ExitCode(d.summary), 3);
}

TEST(SyncRun, DifferingRostersFollowPrefer) {
    ScriptedComponent server;
    server.results["CompareCustomerList"] = {3, 0};
    RunWith(server, Prefer::Server);
    EXPECT_TRUE(server.Called("SyncDownloadCustomerList"));

    ScriptedComponent skip;
    skip.results["CompareCustomerList"] = {3};
    skip.add = "2";
    Outcome o = RunWith(skip, Prefer::Skip);
    EXPECT_FALSE(skip.Called("SyncDownloadCustomerList"));
    EXPECT_EQ(o.summary.conflicts, 1);
    EXPECT_EQ(o.summary.customers, 1) << "customer 2 is only local";
    EXPECT_EQ(ExitCode(o.summary), 1);
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
    EXPECT_NE(o.out.find("customer 1: tCustomer server newer"), std::string::npos);
    EXPECT_EQ(ExitCode(o.summary), 3);
}

TEST(SyncRun, ALiveKindMovesUnderTheCustomersLockTheWayItsComparisonSays) {
    ScriptedComponent c;
    c.Live("CustomerMemoList");
    c.members.insert({"LockCoustomer", "UnlockCoustomer"});
    c.results["CompareCustomerMemoList"] = {1, 2};
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
    EXPECT_TRUE(Reported(o.summary, "linkage info")) << "a kind with no worker still is";
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

TEST(SyncRun, LiveMastersAreComparedOnTheMasterFileUnderTheMasterLock) {
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

}  // namespace
}  // namespace morvane::cli
