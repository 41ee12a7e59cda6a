// Whole runs of the host's synchronisation against the reference server, offices each with
// their own databases, settings and journal, logged in with a saved password and synchronised
// as `morvane sync` does, under one clock that the test moves with the server's: a dry run
// that leaves every byte where it was, offices whose clocks disagree with the server's, and an
// edit made within a minute of the other office's download.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <sstream>

#include "LoginCommands.h"
#include "OfficeServerTest.h"
#include "SyncCommand.h"
#include "platform/Checksum.h"
#include "platform/Clock.h"
#include "platform/Dao.h"
#include "state/ProcessState.h"
#include "support/FileBytes.h"

namespace morvane::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using cli::Prefer;
using cli::SyncSummary;

int Moves(const SyncSummary& s) { return s.downloads + s.uploads; }

class ShiftedClock final : public platform::Clock {
public:
    DateValue Now() const override {
        return DateValue(platform::SystemClock().Now().Days() + shift_.count() / 86400.0);
    }
    void Advance(std::chrono::seconds by) { shift_ += by; }

private:
    std::chrono::seconds shift_{0};
};

// Generated customers never synchronised, with trade grids and data files.
SampleDataOptions Generated(std::int32_t customers) {
    return {.customers = customers, .neverSynced = true, .tradeGrid = true, .dataFiles = true};
}

// A fresh host's databases: its sample customer alone.
SampleDataOptions FreshHost() {
    SampleDataOptions data = Generated(0);
    data.hostSampleCustomer = true;
    return data;
}

class HostSyncTest : public OfficeServerTest {
protected:
    // The customer database of an office ("a" logs in as u1, "b" as u2), under its folder.
    fs::path Db(const std::string& name) const {
        return temp_.Path() / name / "data" / kCustomerDatabaseName;
    }
    fs::path Folder(const std::string& name) const { return temp_.Path() / name; }
    void MakeOffice(const std::string& name, const SampleDataOptions& data) {
        CreateLocalDatabases(Db(name).parent_path(), data);
    }
    // The office's login, its password saved; true when logged in.
    bool Login(const std::string& name) {
        UseOffice(name);
        State().SetClock(localClock_);
        const bool first = name == "a";
        std::ostringstream out;
        return cli::RunLogin({server_->ServerName(), kContract, first ? "u1" : "u2",
                              first ? "secret-1" : "secret-2", /*savePassword=*/true},
                             out) == 1;
    }
    // A run of the office as a new process of the host runs it; its output in `out_`.
    SyncSummary Sync(const std::string& name, Prefer prefer = Prefer::Skip, bool dryRun = false,
                     const fs::path& journal = {}) {
        UseOffice(name);
        State().SetClock(localClock_);
        std::ostringstream out;
        SyncSummary summary = cli::SyncLocal(
            {.localDb = Db(name).string(), .prefer = prefer, .dryRun = dryRun, .journal = journal},
            out, out);
        cli::PrintSummary(summary, out);
        out_ = out.str();
        return summary;
    }
    // The last run's output holds the text.
    void ExpectTold(const std::string& text) const {
        EXPECT_NE(out_.find(text), std::string::npos) << out_;
    }
    // Logged in, and nothing failed or was left unresolved.
    void ExpectClean(const SyncSummary& summary) const {
        EXPECT_TRUE(summary.loggedIn) << out_;
        EXPECT_EQ(summary.failures, 0) << out_;
        EXPECT_EQ(summary.conflicts, 0) << out_;
    }
    // The office made, logged in, and its first run clean.
    void FirstSync(const std::string& name, const SampleDataOptions& data) {
        MakeOffice(name, data);
        ASSERT_TRUE(Login(name));
        ExpectClean(Sync(name));
    }
    // Office a's customers sent up, and office b, fresh, taking them two minutes later.
    void BothOfficesHold(std::int32_t customers) {
        FirstSync("a", Generated(customers));
        Advance(2min);
        FirstSync("b", FreshHost());
    }
    // The server's clock and the offices' move on together.
    void Advance(std::chrono::seconds by) {
        clock_->Advance(by);
        localClock_->Advance(by);
    }
    // Sets the text of a customer's live memos, stamped now by the office's clock.
    void EditMemos(const std::string& name, std::int32_t custId, const std::string& text) {
        dao::Workspace ws("", "");
        ws.OpenDatabase(Db(name).string())
            .Execute("UPDATE tCustomerHistory SET History = '" + text + "', RecordUpdate = #" +
                     localClock_->Now().Text() +
                     "# WHERE disabled = 0 AND CustomerID = " + std::to_string(custId));
    }
    std::vector<std::string> Memos(const std::string& name, std::int32_t custId) {
        auto memos = Rows(Db(name),
                          "SELECT History FROM tCustomerHistory WHERE disabled = 0 AND "
                          "CustomerID = " +
                              std::to_string(custId) + " ORDER BY id");
        for (std::string& memo : memos)
            if (memo == "<null>") memo.clear();  // a download writes an empty memo as ""
        return memos;
    }
    // Every file under the folders by its path, with a digest of its bytes; the login token
    // the server rotates with every reply is left out of the settings.
    static std::map<std::string, std::string> Fingerprint(const std::vector<fs::path>& folders) {
        std::map<std::string, std::string> prints;
        for (const fs::path& folder : folders)
            for (const auto& entry : fs::recursive_directory_iterator(folder)) {
                // The run file holds the token alone, which every reply changes.
                if (!entry.is_regular_file() || entry.path().extension() == ".run") continue;
                std::string bytes = ReadBytes(entry.path());
                if (entry.path().extension() == ".conf") {
                    std::istringstream lines(bytes);
                    bytes.clear();
                    for (std::string line; std::getline(lines, line);)
                        if (line.rfind("Param2=", 0) != 0) bytes += line + '\n';
                }
                const auto digest = platform::Sha256(bytes);
                prints[entry.path().string()] = std::string(digest.begin(), digest.end());
            }
        return prints;
    }
    // Office a's two customers taken up to the server.
    void ServerHoldsOfficeA() {
        MakeOffice("a", Generated(2));
        ASSERT_TRUE(Login("a"));
        const SyncSummary up = Sync("a");
        ExpectClean(up);
        ASSERT_GT(up.uploads, 0) << out_;
    }
    // A dry run of the office against the server, which must leave every byte of the
    // office and of the server as it was while finding something to do.
    void DryRunChangesNothing(const std::string& office) {
        ASSERT_TRUE(Login(office));
        const std::vector<fs::path> watched{Folder(office), temp_.Path() / "server"};
        const auto before = Fingerprint(watched);
        const SyncSummary dry = Sync(office, Prefer::Server, true);
        EXPECT_EQ(dry.failures, 0) << out_;
        EXPECT_GT(dry.planned + dry.tablesDiffering, 0) << "the run found nothing to do\n" << out_;
        EXPECT_EQ(Fingerprint(watched), before) << out_;
    }

    std::string out_;
    std::shared_ptr<ShiftedClock> localClock_ = std::make_shared<ShiftedClock>();
};

TEST_F(HostSyncTest, ADryRunWritesNothingLocallyOrOnTheServer) {
    ServerHoldsOfficeA();
    // Different data in every kind: more rows everywhere, other masters.
    SampleDataOptions other = Generated(2);
    other.rowsPerTable = 3;
    other.masterRows = 4;
    MakeOffice("b", other);
    DryRunChangesNothing("b");
    // The same content as the server's under other stamps: agreement would be stamped.
    MakeOffice("c", Generated(2));
    DryRunChangesNothing("c");
}

TEST_F(HostSyncTest, AnEditWithinAMinuteOfTheOtherOfficesDownloadIsNeverOverwritten) {
    BothOfficesHold(1);
    ASSERT_EQ(Memos("b", 1), Memos("a", 1));

    // A few seconds later a sends an edit; then b edits the same memos.
    Advance(5s);
    EditMemos("a", 1, "edited by a");
    ExpectClean(Sync("a"));
    ExpectTold("customer 1 memos: uploaded");
    Advance(2min);
    EditMemos("b", 1, "edited by b");

    // The stamps alone see only b's edit: without the journal b would send it over a's.
    Sync("b", Prefer::Skip, true, Folder("b") / "no-journal");
    ExpectTold("customer 1 memos: would upload");

    const SyncSummary skipped = Sync("b", Prefer::Skip);
    ExpectTold("customer 1 memos: the server changed since the last agreement");
    EXPECT_EQ(skipped.conflicts, 1) << out_;
    EXPECT_EQ(out_.find("memos: uploaded"), std::string::npos) << out_;

    const SyncSummary taken = Sync("b", Prefer::Server);
    EXPECT_EQ(taken.failures, 0) << out_;
    ExpectTold("customer 1 memos: downloaded");
    EXPECT_EQ(Memos("b", 1), Memos("a", 1)) << "a's edit reached b";
    EXPECT_EQ(Memos("b", 1).at(0), "edited by a");
    Advance(2min);
    EXPECT_EQ(Moves(Sync("b")), 0) << out_;
}

// The next day's run finds yesterday's login lapsed at the server; the saved password renews
// it without anyone at the screen.
TEST_F(HostSyncTest, ALoginThatLapsedOvernightIsRenewedWithTheSavedPassword) {
    FirstSync("a", Generated(1));
    Advance(std::chrono::hours(20));
    const SyncSummary next = Sync("a");
    ExpectClean(next);
    ExpectTold("login: logged in afresh (the saved login had lapsed)");
    EXPECT_EQ(Moves(next), 0) << out_;
}

// A delegation download commits its main row before it rewrites the list, so a run cut off
// in between leaves a form whose stamps agree with the server's. The next run must take the
// download up again rather than believe the stamps.
TEST_F(HostSyncTest, ADelegationDownloadCutBetweenItsTwoCommitsIsTakenUpAgain) {
    ServerHoldsOfficeA();
    Advance(2min);
    MakeOffice("b", FreshHost());
    ASSERT_TRUE(Login("b"));
    const auto prefDb = Db("b").parent_path() / kPrefCustomDatabaseName;
    const auto list = [&](const std::string& office) {
        return Rows(
            Db(office).parent_path() / kPrefCustomDatabaseName,
            "SELECT IninTitle, IninDetail0, IninDetail3 FROM t99_ININ_SUB WHERE disabled = 0 "
            "ORDER BY id");
    };
    ASSERT_FALSE(list("a").empty());
    // The list's rewrite fails after the main row went in, as a kill there would leave it.
    Sql(prefDb,
        "CREATE TRIGGER cut BEFORE INSERT ON t99_ININ_SUB BEGIN SELECT RAISE(ABORT, 'cut'); END;");
    const SyncSummary cut = Sync("b");
    EXPECT_GT(cut.failures, 0) << out_;
    ExpectTold("customer 1 delegation records: SyncDownloadP99Inin failed");
    ASSERT_TRUE(list("b").empty());
    Sql(prefDb, "DROP TRIGGER cut;");

    Advance(2min);
    ExpectClean(Sync("b"));
    ExpectTold(
        "customer 1 delegation records: the last download was cut off before it finished; it is "
        "taken up again");
    ExpectTold("customer 1 delegation records: downloaded");
    EXPECT_EQ(list("b"), list("a")) << out_;
    Advance(2min);
    const SyncSummary quiet = Sync("b");
    ExpectClean(quiet);
    EXPECT_EQ(Moves(quiet), 0) << out_;
}

// The server's clock off the offices' by the parameter, in seconds.
class ClockSkewTest : public HostSyncTest, public ::testing::WithParamInterface<long> {
protected:
    void SetUp() override { StartServer(50, std::chrono::seconds(GetParam())); }
};

TEST_P(ClockSkewTest, ASecondSyncMovesNothingAndAnEditOnEitherSideIsFound) {
    BothOfficesHold(1);
    Advance(2min);
    EXPECT_EQ(Moves(Sync("b")), 0) << out_;
    EXPECT_EQ(Moves(Sync("a")), 0) << out_;

    struct Edit {
        const char* by;
        const char* other;
    };
    for (const Edit e : {Edit{"a", "b"}, Edit{"b", "a"}}) {
        SCOPED_TRACE(std::string("edited by ") + e.by);
        Advance(2min);
        EditMemos(e.by, 1, std::string("edited by ") + e.by);
        Advance(2min);
        ExpectClean(Sync(e.by));
        ExpectTold("customer 1 memos: uploaded");
        Advance(2min);
        ExpectClean(Sync(e.other));
        ExpectTold("customer 1 memos: downloaded");
        EXPECT_EQ(Memos(e.other, 1), Memos(e.by, 1));
        Advance(2min);
        EXPECT_EQ(Moves(Sync(e.by)), 0) << out_;
        EXPECT_EQ(Moves(Sync(e.other)), 0) << out_;
    }
}

INSTANTIATE_TEST_SUITE_P(ServerClockOff, ClockSkewTest,
                         ::testing::Values(-86400L, -3600L, -61L, -1L, 1L, 61L, 3600L, 86400L),
                         [](const auto& info) {
                             const long s = info.param;
                             return std::string(s < 0 ? "minus" : "plus") +
                                    std::to_string(s < 0 ? -s : s) + "s";
                         });

TEST_F(HostSyncTest, UnchangedCustomersAreNotWalkedYetAnEditOnEitherSideIsStillFound) {
    BothOfficesHold(2);
    Advance(2min);
    for (const char* office : {"a", "b", "a"}) {
        const SyncSummary quiet = Sync(office);
        ExpectClean(quiet);
        EXPECT_EQ(quiet.unchanged, 2) << office << " walked a customer that agrees\n" << out_;
        EXPECT_EQ(Moves(quiet), 0) << out_;
    }
    const auto firstFile = [&](const std::string& office) {
        const auto files =
            Rows(Db(office),
                 "SELECT DataFile FROM tCustomerKessanHistory WHERE disabled = 0 AND "
                 "CustomerID = 1 AND DataFile <> '' ORDER BY id");
        return files.empty() ? fs::path() : Db(office).parent_path() / files[0];
    };
    struct Change {
        const char* what;
        const char* office;  // where it is made; the other office runs next
        std::function<void()> make;
        const char* here;   // what the office's run says
        const char* there;  // what the other office's run then says
    };
    const std::vector<Change> changes{
        {"a memo edited", "a", [&] { EditMemos("a", 1, "edited by a"); },
         "customer 1 memos: uploaded", "customer 1 memos: downloaded"},
        {"a memo edited on the other side", "b", [&] { EditMemos("b", 2, "edited by b"); },
         "customer 2 memos: uploaded", "customer 2 memos: downloaded"},
        {"a data file replaced outside the program", "a",
         [&] {
             const auto file = firstFile("a");
             ASSERT_FALSE(file.empty());
             WriteBytes(file, "a new version");
         },
         "customer 1 file", "customer 1 file"},
    };
    for (const Change& change : changes) {
        SCOPED_TRACE(change.what);
        change.make();
        const std::string other = std::string(change.office) == "a" ? "b" : "a";
        const SyncSummary here = Sync(change.office);
        ExpectClean(here);
        EXPECT_EQ(here.unchanged, 1) << out_;
        ExpectTold(change.here);
        Advance(2min);
        const SyncSummary there = Sync(other);
        ExpectClean(there);
        ExpectTold(change.there);
        EXPECT_EQ(there.unchanged, 1) << out_;
        Advance(2min);
        for (const std::string& office : {std::string(change.office), other})
            EXPECT_EQ(Moves(Sync(office)), 0) << out_;
    }
    EXPECT_EQ(Memos("a", 1), Memos("b", 1));
    EXPECT_EQ(Memos("a", 2).at(0), "edited by b");

    // A row deleted without a stamp is no move by the stamps, yet its customer is compared.
    Sql(Db("a"),
        "UPDATE tCustomerHistory SET disabled = 1 WHERE id = (SELECT MIN(id) FROM "
        "tCustomerHistory WHERE disabled = 0 AND CustomerID = 2);");
    EXPECT_EQ(Sync("a", Prefer::Skip, true).unchanged, 1) << out_;
    ExpectTold("customer 2 memos");
}

}  // namespace
}  // namespace morvane::test
