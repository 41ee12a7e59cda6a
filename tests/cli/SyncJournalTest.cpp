// The host's journal of agreements: how its word folds into a comparison's, what it keeps
// across runs, and the runs it spares or changes.
#include <filesystem>
#include <fstream>
#include <sstream>

#include "SyncJournal.h"
#include "SyncRunTest.h"
#include "support/FileBytes.h"
#include "support/Golden.h"
#include "support/TempDir.h"

namespace morvane::cli {
namespace {

TEST(SyncJournal, ASideWhoseStampChangedSinceTheLastAgreementHasMoved) {
    const test::Golden cases("cli/sync-journal.txt");
    for (const auto& row : cases.Table("with journal")) {
        std::istringstream seen(row[1]);
        std::uint64_t server = 0, local = 0;
        seen >> server >> local;
        EXPECT_EQ(WithJournal(std::stoi(row[0]), SeenStamps{11, 22}, {server, local}),
                  std::stoi(row[2]))
            << row[0] << " seen " << row[1];
    }
    EXPECT_EQ(WithJournal(2, std::nullopt, {12, 22}), 2) << "no agreement: the stamps decide";
    // A move cut off is taken up again unless the other side moved since.
    for (const auto& row : cases.Table("with unfinished"))
        EXPECT_EQ(WithUnfinished(std::stoi(row[0]), std::stoi(row[1])), std::stoi(row[2]))
            << row[0] << " after way " << row[1];
}

TEST(SyncJournal, KeepsItsEntriesAcrossRunsAndSkipsTornLines) {
    test::TempDir dir;
    const auto path = dir.Path() / "config" / "journal";
    {
        SyncJournal j(path);
        j.Agreed(1, "memos", {0xabc, 0xdef});
        j.Agreed(2, "memos", {3, 4});
        j.Forget(2, "memos");
        ASSERT_TRUE(j.Save());
        // Noted at once, with the agreements as last saved and not those of the run so far:
        // a kill after this leaves only the note new.
        j.Agreed(3, "memos", {5, 6});
        ASSERT_TRUE(j.Begin(4, "delegation records", 1));
        ASSERT_TRUE(j.Begin(5, "machinery list", 2));
        ASSERT_TRUE(j.Finished(5, "machinery list"));
    }
    std::ofstream(path, std::ios::app) << "8\tmemos\tunfinished\t7\n7\tmemos\tzz";
    SyncJournal again(path);
    EXPECT_EQ(again.Find(1, "memos"), (SeenStamps{0xabc, 0xdef}));
    for (int forgotten : {2, 3, 7}) EXPECT_FALSE(again.Find(forgotten, "memos")) << forgotten;
    EXPECT_EQ(again.Unfinished(4, "delegation records"), 1);
    EXPECT_EQ(again.Unfinished(8, "memos"), 0);
    EXPECT_TRUE(again.AnyUnfinished(4));
    EXPECT_FALSE(again.AnyUnfinished(5));
    for (const auto& entry : std::filesystem::directory_iterator(path.parent_path()))
        EXPECT_EQ(entry.path(), path) << "no temporary file is left";
}

// An office with one customer whose memos the runs compare.
ScriptedComponent MemoOffice() {
    ScriptedComponent c;
    c.local = {1};
    c.serverStamps[{1, 3}] = "2026/11/01 10:00:00";
    c.localStamps[{1, 3}] = "2026-10-30 09:00:00";
    c.fingerprints = {{1, 77}};
    return c;
}

TEST(SyncJournal, ACustomerUnchangedOnBothSidesSinceItAgreedIsNotWalked) {
    test::TempDir dir;
    const auto journal = dir.Path() / "journal";
    ScriptedComponent first = MemoOffice();
    first.stamps["CompareCustomerMemoList"] = {5, 9};
    EXPECT_EQ(RunWith(first, {.journal = journal}).counts, Counts{});
    ASSERT_TRUE(first.Called("CompareCustomerMemoList"));
    const std::string agreed = test::ReadBytes(journal);

    // Anything that moved brings the walk back, as does --full. (Stamps and rows moved on
    // either side are run whole, against the server, in HostSyncTest.)
    const char* moves[] = {"nothing", "a row of no customer", "the snapshot's flag", "--full"};
    for (int m = 0; m < 4; ++m) {
        ScriptedComponent c = MemoOffice();
        if (m == 1) c.fingerprints[0] = 1;
        if (m == 2) c.flags[{1, 3}] = 1;
        const Outcome o = RunWith(c, {.dryRun = true, .full = m == 3, .journal = journal});
        EXPECT_EQ(c.Called("CompareCustomerMemoList"), m != 0) << moves[m];
        EXPECT_EQ(o.summary.unchanged, m == 0 ? 1 : 0) << moves[m];
    }
    EXPECT_EQ(test::ReadBytes(journal), agreed) << "a dry run writes no journal";
}

TEST(SyncJournal, AKindWithNoLocalRowToSendLeavesTheServersCopyAndSettles) {
    test::TempDir dir;
    const auto journal = dir.Path() / "journal";
    const auto office = [] {
        ScriptedComponent c = MemoOffice();
        c.results["CompareCustomerMemoList"] = {2, 2};
        c.stamps["CompareCustomerMemoList"] = {5, 9};
        c.sendNothing.insert("SyncUploadCustomerMemoList");
        c.liveRows[{"tCustomerHistory", 1}] = 0;  // every row deleted or hidden here
        return c;
    };
    ScriptedComponent first = office();
    Outcome o = RunWith(first, {.journal = journal});
    EXPECT_TRUE(first.Called("SyncUploadCustomerMemoList"));
    EXPECT_EQ(o.summary.keptOnServer, 1) << o.out;
    EXPECT_EQ(o.counts, Counts{});
    EXPECT_TRUE(
        o.Says("customer 1 memos: no local row to send (deleted or hidden here); the "
               "server keeps its copy"))
        << o.out;

    // Nothing moved since: no second attempt, still told, still settled.
    ScriptedComponent second = office();
    o = RunWith(second, {.journal = journal});
    EXPECT_FALSE(second.Called("SyncUploadCustomerMemoList")) << o.out;
    EXPECT_EQ(o.summary.keptOnServer + o.summary.unchanged, 1) << o.out;
    EXPECT_EQ(o.counts, Counts{});

    // An upload that sent nothing while rows exist stays a failure.
    ScriptedComponent failing = office();
    failing.liveRows.clear();
    o = RunWith(failing);
    EXPECT_EQ(o.counts, (Counts{0, 0, 0, 1, 0, 1})) << o.out;
    EXPECT_EQ(o.summary.keptOnServer, 0);
}

}  // namespace
}  // namespace morvane::cli
