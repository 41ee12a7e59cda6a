// The sync engine's decisions over a scripted component: what it calls, in which order,
// what it refuses to do, and how the summary and exit code come out.
#include "SyncRunTest.h"

#include <fstream>
#include <functional>
#include <optional>
#include <set>
#include <sstream>

#include "support/Golden.h"
#include "support/TempDir.h"
#include "util/Text.h"

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
using Row = std::vector<std::string>;
using Script = std::function<void(ScriptedComponent&)>;
using test::Golden;

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

// The cases' cells, as the notes of the data file read them.
std::vector<Row> Cases(std::string_view table) { return Golden("cli/sync-run.txt").Table(table); }

Calls List(const std::string& cell) {
    return cell == "-" ? Calls{} : Split(ReplaceAll(cell, "\\n", "\n"), "; ");
}

std::vector<int> Ints(const std::string& cell) {
    std::istringstream in(cell);
    std::vector<int> numbers;
    for (int n; in >> n;) numbers.push_back(n);
    return numbers;
}

SyncOptions Choice(const std::string& cell) {
    SyncOptions options;
    std::istringstream words(cell);
    for (std::string word; words >> word;) {
        if (word == "server") options.prefer = Prefer::Server;
        if (word == "local") options.prefer = Prefer::Local;
        if (word == "skip") options.prefer = Prefer::Skip;
        if (word == "dry") options.dryRun = true;
    }
    return options;
}

Counts CountsOf(const std::string& cell) {
    std::vector<int> n = Ints(cell);
    n.resize(6);
    return {n[0], n[1], n[2], n[3], n[4], n[5]};
}

// A case whose last five cells say what the run must do.
void Check(const Row& row, const Script& script) {
    const std::size_t at = row.size() - 5;
    Check(row[0], script, Choice(row[at]), CountsOf(row[at + 1]), List(row[at + 2]),
          List(row[at + 3]), List(row[at + 4]));
}

const SyncOptions kAsk{}, kServer{.prefer = Prefer::Server}, kLocal{.prefer = Prefer::Local};

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
// reconciling it.
TEST(SyncRun, TheRosterIsReconciledWithoutEverDeletingWhatNobodyChoseToDelete) {
    for (const Row& row : Cases("roster")) {
        SCOPED_TRACE(row[0]);
        ScriptedComponent c;
        c.local = {1};  // and those the roster moves, which agree
        c.results["CompareCustomerList"] = {std::stoi(row[1]), 0};
        c.add = row[2] == "-" ? "" : row[2];
        c.del = row[3] == "-" ? "" : row[3];
        const SyncOptions options = Choice(row[4]);
        const int dialog = std::stoi(row[5]);
        c.results["ShowCompareCustListDlg"] = {dialog};
        if (row[6] == "1") c.results["SyncUploadAddCustomer"] = {0};
        const Outcome o = RunWith(c, options);
        Calls requests;
        for (const std::string& call : c.calls)
            if (call.find("CustomerList ") != std::string::npos || call.rfind("SyncUpload", 0) == 0)
                requests.push_back(call);
        EXPECT_EQ(requests, List(row[7])) << o.out;
        EXPECT_EQ(o.counts, CountsOf(row[8])) << o.out;
        for (const std::string& text : List(row[9])) EXPECT_TRUE(o.Says(text)) << text << o.out;
        // The snapshot is read after the roster moved, never after a cancel.
        EXPECT_EQ(c.CalledInOrder({requests.back(), "CustmerBackupedTableSyncFlag"}), dialog != -1);
        EXPECT_EQ(c.Called("CheckInetEnabledFlags"), !options.dryRun && dialog != -1)
            << "it writes flags";
    }
}

// Each kind under its lock, as the comparison or the person says; failed exchanges are
// failures, never agreement.
TEST(SyncRun, AKindMovesUnderItsLockTheWayItsComparisonOrThePersonSaysAndFailuresAreNoAgreement) {
    for (const Row& row : Cases("kinds")) {
        Check(row, [&](ScriptedComponent& c) {
            c.local = Ints(row[1]);
            for (const std::string& answers : List(row[2])) {
                std::istringstream in(answers);
                std::string member;
                in >> member;
                for (int n; in >> n;) c.results[member].push_back(n);
            }
            for (const std::string& member : List(row[3])) c.refused.insert(member);
        });
    }
    Check("a customer just added to the server goes up whole",
          [](ScriptedComponent& c) {
              c.local = {1};
              c.results["CompareCustomerList"] = {3, 0};
              c.add = "1";
          },
          kServer, Counts{0, 11},
          {"SyncUploadAddCustomer /data/Customer.dat 1", "LockCoustomer 1",
           "SyncUploadCustomerKihonNormal /data/Customer.dat 1", "SyncUploadCustomerMemoList"});
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
    test::TempDir dir;
    const std::string here = (dir.Path() / "a.pdf").string();
    std::ofstream(here) << "bytes";
    for (Row row : Cases("record files")) {
        for (std::string& cell : row)
            if (const auto at = cell.find("{file}"); at != std::string::npos)
                cell.replace(at, 6, here);
        const std::string file = here + (row[3] == "-" ? "" : row[3]);
        Check(row, [&](ScriptedComponent& c) {
            c.local = {1};
            c.results["CompareCustomerKessanList"] = Ints(row[1]);
            c.results["CompareCustomerKessanFile"] = Ints(row[2]);
            c.files[{"tCustomerKessanHistory", 1}] = {file};
        });
    }

    Check("delegation records move for customers holding the form on either side",
          [](ScriptedComponent& c) {
              // 1 holds the main row, of a permit record's file; 2 sub rows only; 3 nothing,
              // and neither does the server, though the stamps say both moved; 4 nothing
              // locally, but the server's form is newer.
              c.local = {1, 2, 3, 4};
              c.results["CompareP99Inin"] = {1, 2, 3, 1};
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

    for (const Row& row : Cases("machinery")) {
        Check(row, [&](ScriptedComponent& c) {
            c.local = {1};
            c.flags[{1, 38}] = std::stoi(row[1]);
            c.flags[{1, 39}] = std::stoi(row[2]);
            c.forms[{"t99_KIKAIICHIRAN_MAIN", 1}] = {{5, true}, {0, true}, {2.5, false}};
        });
    }
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
