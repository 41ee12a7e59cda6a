// The sync engine's decisions over a scripted component: what it calls, in which order,
// what it refuses to do, and how the summary and exit code come out.
#include "SyncRunTest.h"

#include <fstream>
#include <functional>
#include <optional>
#include <set>

#include "support/TempDir.h"

namespace morvane::cli {

std::ostream& operator<<(std::ostream& out, const Counts& c) {
    return out << "down " << c.downloads << ", up " << c.uploads << ", conflicts " << c.conflicts
               << ", failures " << c.failures << ", planned " << c.planned << ", exit "
               << c.exitCode;
}

Outcome RunWith(ScriptedComponent& c, SyncOptions options) {
    std::ostringstream out, err;
    options.localDb = "/data/Customer.dat";
    SyncRun run(c, options, out, err);
    Outcome o{run.Run(), {}, {}};
    PrintSummary(o.summary, out);
    o.out = out.str();
    o.counts = {o.summary.downloads, o.summary.uploads, o.summary.conflicts,
                o.summary.failures,  o.summary.planned, ExitCode(o.summary)};
    return o;
}

namespace {

using Calls = std::vector<std::string>;
using Script = std::function<void(ScriptedComponent&)>;

// The office's customers, and the answers of members in turn.
Script Answers(std::vector<std::int32_t> local, std::map<std::string, std::vector<int>> answers) {
    return [=](ScriptedComponent& c) {
        c.local = local;
        for (const auto& [member, results] : answers) c.results[member] = results;
    };
}

// Runs a scripted office: the counts must come out (none: only the run fails), the calls
// `inOrder` come in that order, those of `never` not at all, and the run says `says`.
void Check(const std::string& name, const Script& script, const SyncOptions& options,
           std::optional<Counts> counts, const Calls& inOrder, const Calls& never = {},
           const Calls& says = {}) {
    SCOPED_TRACE(name);
    ScriptedComponent c;
    script(c);
    const Outcome o = RunWith(c, options);
    if (counts) {
        EXPECT_EQ(o.counts, *counts) << o.out;
    } else {
        EXPECT_EQ(o.counts.exitCode, 1) << o.out;
    }
    EXPECT_TRUE(c.CalledInOrder(inOrder)) << o.out;
    for (const std::string& call : never) EXPECT_FALSE(c.Called(call)) << call;
    for (const std::string& text : says) EXPECT_TRUE(o.Says(text)) << text << "\n" << o.out;
}

const SyncOptions kAsk{}, kServer{.prefer = Prefer::Server}, kLocal{.prefer = Prefer::Local},
    kSkip{.prefer = Prefer::Skip}, kDry{.dryRun = true};
const std::string kMemoUp = "SyncUploadCustomerMemoList",
                  kMemoDown = "SyncDownloadCustomerMemoList";

TEST(SyncKinds, EachTableHasOneKindAndEachMemberOneUse) {
    std::map<int, int> owners;
    std::set<std::string> members;
    std::size_t named = 0;
    for (const SyncKind& k : SyncKinds()) {
        for (int t : k.tables) owners[t]++;
        for (const KindMember* m : {&k.compare, &k.download, &k.upload}) {
            EXPECT_EQ(m->name.empty(), !*m) << k.name;
            if (!*m) continue;
            ++named;
            members.insert(m->name);
        }
    }
    ASSERT_EQ(owners.size(), 53u);
    EXPECT_EQ(owners.rbegin()->first, 52);
    for (const auto& [table, n] : owners) EXPECT_EQ(n, 1) << "table " << table;
    EXPECT_EQ(named, members.size()) << "a member serves two kinds";
    const std::pair<std::vector<int>, int> flags[] = {{{}, 0},     {{0, 0}, 0}, {{0, 1, 1}, 1},
                                                      {{2, 0}, 2}, {{1, 2}, 3}, {{0, 3}, 3}};
    for (const auto& [in, folded] : flags) EXPECT_EQ(CombineFlags(in), folded);
}

// The roster's requests, in order, for each answer of its comparison and each way of
// reconciling it. Customers 2 and 3 are only local, 9 only on the server.
TEST(SyncRun, TheRosterIsReconciledWithoutEverDeletingWhatNobodyChoseToDelete) {
    const std::string kList = "CompareCustomerList /data/Customer.dat";
    const std::string kTake = "SyncDownloadCustomerList /data/Customer.dat";
    const std::string kDel9 = "SyncUploadDelCustomer 9";
    const auto up = [](int id) {
        return "SyncUploadAddCustomer /data/Customer.dat " + std::to_string(id);
    };
    const auto check = [](const char* name, int result, const std::string& add,
                          const std::string& del, SyncOptions options, int dialog, bool addFails,
                          const Calls& expected, Counts counts) {
        SCOPED_TRACE(name);
        ScriptedComponent c;
        c.local = {1};  // and those the roster moves, which agree
        c.results["CompareCustomerList"] = {result, 0};
        c.add = add;
        c.del = del;
        c.results["ShowCompareCustListDlg"] = {dialog};
        if (addFails) c.results["SyncUploadAddCustomer"] = {0};
        const Outcome o = RunWith(c, options);
        Calls requests;
        for (const std::string& call : c.calls)
            if (call.find("CustomerList ") != std::string::npos || call.rfind("SyncUpload", 0) == 0)
                requests.push_back(call);
        EXPECT_EQ(requests, expected) << o.out;
        EXPECT_EQ(o.counts, counts) << o.out;
        // The snapshot is read after the roster moved, never after a cancel.
        EXPECT_EQ(c.CalledInOrder({requests.back(), "CustmerBackupedTableSyncFlag"}), dialog != -1);
        EXPECT_EQ(c.Called("CheckInetEnabledFlags"), !options.dryRun && dialog != -1)
            << "it writes flags";
    };
    check("server has none", 4, "2,3", "", kAsk, 0, false, {kList, up(2), up(3), kList}, {0, 2});
    check("local has none", 5, "", "9", kAsk, 0, false, {kList, kTake, kList}, {1});
    check("the sample customer alone is no data", 5, "1", "9", kLocal, 0, false,
          {kList, kTake, kList}, {1});
    check("a person's choice, unattended", 3, "2,3", "9", kServer, 0, false,
          {kList, up(2), up(3), kTake, kList}, {1, 2});
    check("skipped", 3, "2,3", "9", kSkip, 0, false, {kList}, {0, 0, 1, 0, 0, 1});
    check("an add failed", 3, "2,3", "9", kLocal, 0, true, {kList, up(2), up(3), kList},
          {0, 0, 0, 2, 0, 1});
    check("dialog: the server's roster", 3, "2,3", "9", kAsk, 1, false, {kList, kTake, kList}, {1});
    check("dialog: the local roster", 3, "2,3", "9", kAsk, 2, false,
          {kList, up(2), up(3), kDel9, kList}, {0, 3});
    check("dialog: add only", 3, "2,3", "9", kAsk, 4, false, {kList, up(2), up(3), kList}, {0, 2});
    check("dialog: customer by customer", 3, "2,3", "9", kAsk, 6, false,
          {kList, up(3), kDel9, kTake, kList}, {1, 2});
    check("dialog cancelled", 3, "2,3", "9", kAsk, -1, false, {kList}, {0, 0, 1, 0, 0, 1});
    check("dry run", 3, "2", "9", {.prefer = Prefer::Server, .dryRun = true}, 0, false, {kList},
          {0, 0, 0, 0, 2, 3});
}

TEST(SyncRun, AKindMovesUnderItsLockTheWayItsComparisonOrThePersonSays) {
    // Masters that agree take no lock; the saved login is told as not yet confirmed.
    Check("the comparison decides", Answers({1, 2}, {{"CompareCustomerMemoList", {1, 2}}}), kAsk,
          Counts{1, 1},
          {"LockCoustomer 1", kMemoDown + " /data/Customer.dat 1", "UnlockCoustomer 1",
           "LockCoustomer 2", kMemoUp + " /data/Customer.dat 2", "UnlockCoustomer 2",
           "CompareMasterYakushoku"},
          {"LockMasterData"},
          {"login: the saved login, not yet confirmed", "server:      answered"});
    const auto bothMoved = [](int dialog) {
        return Answers({1}, {{"CompareCustomerMemoList", {3}}, {"ShowCompareMsg", {dialog}}});
    };
    Check("both moved, the server preferred", bothMoved(0), kServer, Counts{1}, {kMemoDown},
          {"ShowCompareMsg", kMemoUp});
    Check("both moved, the local side preferred", bothMoved(0), kLocal, Counts{0, 1}, {kMemoUp},
          {"ShowCompareMsg", kMemoDown});
    Check("both moved, skipped", bothMoved(0), kSkip, Counts{0, 0, 1, 0, 0, 1}, {},
          {"ShowCompareMsg", kMemoDown, kMemoUp}, {"customer 1 memos: both sides moved"});
    Check("both moved, the person sends it", bothMoved(2), kAsk, Counts{0, 1},
          {"ShowCompareMsg memos", kMemoUp});
    Check("both moved, the person cancels", bothMoved(0), kAsk, Counts{0, 0, 1, 0, 0, 1},
          {"ShowCompareMsg memos"}, {kMemoDown, kMemoUp});
    Check("a dry run takes no lock and moves nothing",
          Answers({1, 2}, {{"CompareCustomerMemoList", {2}}}), kDry, Counts{0, 0, 0, 0, 2, 3}, {},
          {"LockCoustomer", kMemoUp}, {"customer 1 memos: would upload"});
    Check("a refused lock moves nothing and releases nothing",
          Answers({1, 2}, {{"LockCoustomer", {0}}, {"CompareCustomerMemoList", {1}}}), kAsk,
          Counts{0, 0, 0, 2, 0, 1}, {}, {kMemoDown, "UnlockCoustomer"},
          {"customer 1: lock refused"});
    Check("a move answering 0 fails, and the lock still goes",
          Answers({4}, {{"CompareCustomerMemoList", {1}}, {kMemoDown, {0}}}), kAsk,
          Counts{0, 0, 0, 1, 0, 1}, {kMemoDown, "UnlockCoustomer 4"}, {},
          {"customer 4 memos: SyncDownloadCustomerMemoList failed"});
    Check("a master moves under the master lock, compared again there",
          Answers({}, {{"CompareMasterYakushoku", {1}}}), kAsk, Counts{1},
          {"CompareMasterYakushoku /data/Master.dat", "LockMasterData 1", "CompareMasterYakushoku",
           "SyncDownloadMasterYakushoku /data/Master.dat", "UnlockMasterData 1"});
    Check("a customer just added to the server goes up whole",
          [](ScriptedComponent& c) {
              c.local = {1};
              c.results["CompareCustomerList"] = {3, 0};
              c.add = "1";
          },
          kServer, Counts{0, 11},
          {"SyncUploadAddCustomer /data/Customer.dat 1", "LockCoustomer 1",
           "SyncUploadCustomerKihonNormal /data/Customer.dat 1", kMemoUp});
}

TEST(SyncRun, DataFilesAndFormsMoveWithTheRecordsTheyBelongTo) {
    Check("data files are compared where they lie, moved, and compared again",
          [](ScriptedComponent& c) {
              c.local = {1};
              c.files[{"tCustomerKessanHistory", 1}] = {"files/1/a.pdf", "/abs/b.pdf", "c.pdf"};
              // a: server newer, then the same; b: still different after the upload; c: same.
              c.results["CompareCustomerKessanFile"] = {1, 0, 2, 2, 0};
          },
          kAsk, Counts{1, 0, 0, 1, 0, 1},
          {"LockCoustomer 1", "CompareCustomerKessanFile 1 /data/files/1/a.pdf",
           "SyncDownloadCustomerKessanFile 1 /data/files/1/a.pdf",
           "SyncUploadCustomerKessanFile 1 /abs/b.pdf", "UnlockCoustomer 1"},
          {"SyncUploadCustomerKessanFile 1 /data/c.pdf"},
          {"file /abs/b.pdf: the upload did not leave both copies the same"});
    // The server answers a file it lacks as one it holds the same: files of records just
    // sent go up with them; a file sent alone sends its records again.
    test::TempDir dir;
    const std::string here = (dir.Path() / "a.pdf").string();
    std::ofstream(here) << "bytes";
    const auto recordsThenFile = [](int records, std::vector<int> file, std::string name) {
        return [=](ScriptedComponent& c) {
            Answers({1}, {{"CompareCustomerKessanList", {records}},
                          {"CompareCustomerKessanFile", file}})(c);
            c.files[{"tCustomerKessanHistory", 1}] = {name};
        };
    };
    const std::string kFileUp = "SyncUploadCustomerKessanFile";
    Check("the file of records just sent goes up", recordsThenFile(2, {0}, here), kAsk,
          Counts{0, 2}, {"SyncUploadCustomerKessanList", kFileUp + " 1 " + here});
    Check("the file of records that agreed stays", recordsThenFile(0, {0}, here), kAsk, Counts{},
          {}, {kFileUp});
    Check("the file of records that came down stays", recordsThenFile(1, {0}, here), kAsk,
          Counts{1}, {}, {kFileUp});
    Check("a file named but missing stays", recordsThenFile(2, {0}, here + ".gone"), kAsk,
          Counts{0, 1}, {}, {kFileUp});
    Check("a file sent alone sends its records again", recordsThenFile(0, {2, 0}, here), kAsk,
          Counts{0, 2}, {kFileUp, "SyncUploadCustomerKessanList"});

    Check("delegation records move for customers holding the form on either side",
          [](ScriptedComponent& c) {
              // 1 holds the main row, of a permit record's file; 2 sub rows only; 3 nothing,
              // and neither does the server, though the stamps say both moved; 4 nothing
              // locally, but the server's form is newer.
              Answers({1, 2, 3, 4}, {{"CompareP99Inin", {1, 2, 3, 1}}})(c);
              c.forms[{"t99_ININ_MAIN", 1}] = {{7, false}};
              c.forms[{"t99_ININ_SUB", 2}] = {{0, true}};
          },
          kLocal, Counts{2, 1},
          {"LockCoustomer 1", "CompareP99Inin /data/prefcustom.dat 1 7 False",
           "SyncDownloadP99Inin /data/prefcustom.dat 1 7 False",
           "SyncUploadP99Inin /data/prefcustom.dat 2 0 True",
           "CompareP99Inin /data/prefcustom.dat 3 0 True",
           "SyncDownloadP99Inin /data/prefcustom.dat 4 0 True"},
          {"SyncUploadP99Inin /data/prefcustom.dat 3"});

    // Machinery lists go up per data file when the stamps say so, and are never fetched.
    const auto machinery = [](int mainFlag, int machineFlag) {
        return [=](ScriptedComponent& c) {
            c.local = {1};
            c.flags[{1, 38}] = mainFlag;
            c.flags[{1, 39}] = machineFlag;
            c.forms[{"t99_KIKAIICHIRAN_MAIN", 1}] = {{5, true}, {0, true}, {2.5, false}};
        };
    };
    const std::string kListUp = "SyncUploadP99KikaiIchiran";
    const Calls kBothUp = {kListUp + " /data/prefcustom.dat 1 5 True",
                           kListUp + " /data/prefcustom.dat 1 2.5 False"};
    Check("local newer", machinery(2, 0), kAsk, Counts{0, 2}, kBothUp,
          {kListUp + " /data/prefcustom.dat 1 0"});
    Check("only the machines changed", machinery(0, 2), kAsk, Counts{0, 2}, kBothUp);
    Check("machines never stamped as agreed", machinery(0, 3), kAsk, Counts{}, {}, {kListUp});
    Check("the server's copy newer", machinery(1, 0), kAsk, Counts{0, 0, 0, 0, 0, 3}, {}, {kListUp},
          {"customer 1 machinery list: the server's copy is newer; it cannot be"});
    Check("both moved, local preferred", machinery(3, 0), kLocal, Counts{0, 2}, kBothUp);
    Check("both moved, skipped", machinery(3, 0), kSkip, Counts{0, 0, 1, 0, 0, 1}, {}, {kListUp});
    Check("dry run", machinery(2, 0), kDry, Counts{0, 0, 0, 0, 2, 3}, {}, {kListUp});
}

TEST(SyncRun, FailedExchangesAreFailuresNeverAgreement) {
    const auto refused = [](std::string member, std::vector<std::int32_t> local = {1, 2}) {
        return [=](ScriptedComponent& c) {
            Answers(local, {{"CompareCustomerMemoList", {2}}})(c);
            c.refused.insert(member);
        };
    };
    const Counts kOne{0, 0, 0, 1, 0, 1};
    Check("the roster refused", refused("CompareCustomerList"), kAsk, kOne, {}, {"LockCoustomer"},
          {"roster: the server's roster could not be read"});
    Check("every comparison of a kind refused", refused("CompareCustomerMemoList"), kAsk,
          Counts{0, 0, 0, 2, 0, 1}, {}, {kMemoUp}, {"customer 2 memos: the comparison failed"});
    Check("an upload refused though it answered 1", refused(kMemoUp, {1}), kAsk, kOne, {}, {},
          {"customer 1 memos: SyncUploadCustomerMemoList failed"});
    Check("a master page refused", refused("CompareMasterYakushoku", {}), kAsk, kOne, {},
          {"SyncDownloadMasterYakushoku", "LockMasterData"},
          {"post master: the comparison failed"});
    Check("the backup target check refused", refused("CheckInetEnabledFlags"), kAsk,
          Counts{0, 2, 0, 1, 0, 1}, {}, {"ShowSelectCustEnabledDlg"},
          {"backup targets: the check failed"});
    Check("backup targets out of balance: a person chooses, only targets are walked",
          Answers({1, 2}, {{"CheckInetEnabledFlags", {3}}, {"CustmerInetEnabledFlag", {0, 1}}}),
          kAsk, Counts{}, {"ShowSelectCustEnabledDlg /data/Customer.dat 2", "LockCoustomer 2"},
          {"LockCoustomer 1", "CustmerBackupedTableSyncFlag 1 "},
          {"customer 1: not a backup target", "customers:   1\n"});
    Check("backup targets out of balance, unattended",
          Answers({1, 2}, {{"CheckInetEnabledFlags", {0}}}), kServer, Counts{0, 0, 1, 0, 0, 1}, {},
          {"ShowSelectCustEnabledDlg"}, {"the choice of customers needs a person"});
}

TEST(SyncRun, TablesNoMemberMovesAreToldByTheirStamps) {
    const Script flags = [](ScriptedComponent& c) {
        c.flags[{1, 0}] = 1;   // customer record, server newer
        c.flags[{2, 6}] = 2;   // staff, local newer
        c.flags[{2, 12}] = 2;  // a prefecture form no member moves
    };
    Check(
        "counted", flags, kAsk, Counts{}, {}, {"SyncDownloadCustomerKihon"},
        {"customer 1: 1 of 53 tables differ (1 server newer)",
         "customer 2: 2 of 53 tables differ (2 local newer)", "tables:      106 compared, 3 differ",
         "not backed up by this component:\n    prefecture forms (stamps only): 1 customer(s) "
         "differ (1 local newer): compared by stamp only"});
    Check("by name", flags, {.verbose = true}, Counts{}, {}, {},
          {"customer 1: tCustomer server newer\n"});
}

TEST(SyncRun, TheLoginSaysWhetherTheServerWasReachedAndAServerThatStopsAnsweringEndsTheRun) {
    Check("no login", [](ScriptedComponent& c) { c.loginState = 0; }, kAsk,
          Counts{0, 0, 0, 0, 0, 1}, {}, {"CompareCustomerList"}, {"run `morvane login` first"});
    Check("a login the server confirmed", [](ScriptedComponent& c) { c.loginAsks = true; }, kAsk,
          Counts{}, {}, {}, {"login: logged in (the server answered)"});
    // A saved login that lapsed, with no password saved to take it afresh.
    Check("a refused login",
          [](ScriptedComponent& c) {
              c.refused.insert("CompareCustomerList");
              c.loginStateAfterRefusal = 0;
          },
          kAsk, Counts{0, 0, 0, 1, 0, 1}, {}, {"CustmerBackupedTableSyncFlag"},
          {"roster: the server refused the login (state 0)"});
    const auto answering = [](int requests, bool loginAsks) {
        return [=](ScriptedComponent& c) {
            c.local = {1, 2, 3, 4, 5, 6};
            c.answersLeft = requests;
            c.loginAsks = loginAsks;
        };
    };
    Check("a login that reached no server", answering(0, true), kAsk, std::nullopt, {},
          {"CompareCustomerList"},
          {"login: the server could not be reached", "server:      unreachable"});
    Check("a roster nobody answers", answering(0, false), kAsk, std::nullopt, {},
          {"CustmerBackupedTableSyncFlag"},
          {"roster: the server did not answer", "server:      unreachable"});
    // The roster, the targets check and two per customer are answered, then nothing.
    Check("a server that stops answering", answering(14, false), kAsk, std::nullopt,
          {"LockCoustomer 1"}, {"LockCoustomer 2", "LockMasterData"},
          {"3 requests in a row went unanswered; the run stops here", "server:      unreachable"});
}

}  // namespace
}  // namespace morvane::cli
