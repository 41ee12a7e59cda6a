// `morvane sync`: the host's usual sequence run from the command line over the kind table,
// with a summary of what agreed, what moved, and what no worker can move yet.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ProgressLine.h"
#include "RunReport.h"
#include "SyncJournal.h"
#include "SyncKinds.h"
#include "util/DateValue.h"

namespace morvane::cli {

enum class Prefer { Ask, Server, Local, Skip };
std::optional<Prefer> ParsePrefer(std::string_view text);

// The data file a prefecture form belongs to: a settlement record's (kessan) or a permit
// record's.
struct FormOwner {
    double dataId = 0;
    bool kessan = true;
    friend bool operator==(const FormOwner&, const FormOwner&) = default;
};

// The process's exchanges with the server so far: tried, never answered, and failed
// (unanswered or refused); and the errors the component reported.
struct ExchangeCounts {
    std::uint64_t tried = 0;
    std::uint64_t unanswered = 0;
    std::uint64_t failed = 0;
    std::uint64_t errors = 0;  // errors the component reported, whatever its members returned
};

// The roster reconciliation dialog's answer, and the customers chosen one by one (answer 6).
struct RosterChoice {
    std::int32_t answer = 0;
    std::string addLocal, addServer, delLocal, delServer;  // customer numbers, comma-separated
};

// A table of the local databases whose rows the host folds into a customer's fingerprint.
struct LocalTable {
    int index = -1;  // its backed-up table number
    std::string db;  // the database file
    std::string table;
    std::string key;        // the column holding the customer number
    bool hideFlag = false;  // rows carry Ver511HideFlag
    bool files = false;     // rows name data files in DataFile
};

// What the run needs of the component: the public object's members it calls, by their own
// names and types, and the host's own reads of the local databases. The command line's one
// calls the public object; tests give a scripted one.
class Component {
public:
    virtual ~Component() = default;
    // A kind's compare, download or upload, with the arguments its scope takes.
    virtual std::int32_t Run(const KindMember& member, const KindArgs& args) = 0;

    virtual std::int32_t CompareCustomerList(const std::string& localDb) = 0;
    virtual std::int32_t SyncDownloadCustomerList(const std::string& localDb) = 0;
    virtual std::int32_t SyncUploadAddCustomer(const std::string& localDb, std::int32_t custId) = 0;
    virtual std::int32_t SyncUploadDelCustomer(std::int32_t custId) = 0;
    // GetUploadCustomerListIDs with its output texts; false when it failed.
    virtual bool RosterUploadIDs(const std::string& localDb, std::string& add, std::string& del,
                                 std::string& update) = 0;
    // The roster reconciliation dialog, with the customers it chose one by one.
    virtual RosterChoice ShowCompareCustListDlg() = 0;

    virtual std::int32_t CheckInetEnabledFlags(const std::string& localDb) = 0;
    virtual std::int32_t ShowSelectCustEnabledDlg(const std::string& localDb,
                                                  std::int32_t showType) = 0;
    virtual std::int32_t CheckExistCustID(std::int32_t custId) = 0;
    virtual std::int32_t CustmerInetEnabledFlag(std::int32_t custId) = 0;

    // The roster comparison's snapshot, per customer and backed-up table.
    virtual std::int32_t CustmerBackupedTableSyncFlag(std::int32_t custId, std::int32_t index) = 0;
    virtual std::string CustmerRecordUpdateTable_Server(std::int32_t custId,
                                                        std::int32_t index) = 0;
    virtual std::string CustmerRecordUpdateTable_Local(std::int32_t custId, std::int32_t index) = 0;
    // The server's stamp the last comparison saw.
    virtual std::string InetDateServer() = 0;

    virtual std::int32_t LockCoustomer(std::int32_t custId) = 0;
    virtual std::int32_t UnlockCoustomer(std::int32_t custId) = 0;
    virtual std::int32_t LockMasterData(std::int32_t mastId) = 0;
    virtual std::int32_t UnlockMasterData(std::int32_t mastId) = 0;
    // The user's choice between the two versions of a kind: 1 the server's, 2 the local one.
    virtual std::int32_t ShowCompareMsg(const std::string& title) = 0;
    virtual void setObjectUsage(std::int32_t usage) = 0;

    // The login from the saved settings; the login state.
    virtual int LoginFromSettings() = 0;
    // A login afresh with the saved password, when one is saved; the login state.
    virtual int LoginWithSavedPassword() = 0;
    virtual int LoginState() const = 0;
    virtual ExchangeCounts Exchanges() const = 0;
    // The stamps the comparisons saw since the last call.
    virtual SeenStamps TakeComparedStamps() = 0;
    // The live customer numbers of the local database, ascending.
    virtual std::vector<std::int32_t> LocalCustomerIDs(const std::string& localDb) = 0;
    // The DataFile names of a customer's live records in `table`, in row order, blanks left out.
    virtual std::vector<std::string> DataFiles(const std::string& localDb, const std::string& table,
                                               std::int32_t custId) = 0;
    // The data file of each of the customer's live rows of a prefecture form's `table`, in
    // row order: DataFileID for a settlement record, else DataFileID_KY for a permit record,
    // else none (a data file number of 0).
    virtual std::vector<FormOwner> FormOwners(const std::string& prefDb, const std::string& table,
                                              std::int32_t custId) = 0;
    // Per customer, a fold of everything local the tables hold for it (deleted and hidden rows
    // too: their count, flags and newest stamps) and of the size and time of the data files
    // its rows name; it changes whenever the office adds, edits, deletes, hides or replaces
    // anything of the customer. Customer 0 holds rows that belong to no customer.
    virtual std::map<std::int32_t, std::uint64_t> LocalFingerprints(
        const std::vector<LocalTable>& tables, const std::filesystem::path& filesDir) = 0;
    // Whether the customer has rows of the table that count (live, not hidden, not a blank
    // grid row): 1 or 0, -1 when unknown.
    virtual int LiveRows(const LocalTable& table, std::int32_t custId) = 0;
    // The server's clock now, as far as the measured offset tells.
    virtual DateValue ServerNow() = 0;
    // How many rows of the table count for the customer (live, not hidden, not blank); -1
    // when unknown.
    virtual int RowCount(const LocalTable&, std::int32_t) { return -1; }
    // Why the last request that got no reply got none, in words telling what to do.
    virtual std::string UnreachableReason() { return {}; }
};

struct SyncOptions {
    std::string localDb{};  // the customer database; Master.dat lies beside it
    Prefer prefer = Prefer::Ask;
    bool dryRun = false;
    bool progress = false;  // a progress bar on the error stream, a terminal
    bool verbose = false;   // every differing table by name, not only their count
    // Every customer walked, even those the snapshot and the journal show unchanged since
    // their last agreement.
    bool full = false;
    // Where relative DataFile names lie; empty: the customer database's folder.
    std::filesystem::path filesDir{};
    // The host's record of the last agreements; empty: none kept.
    std::filesystem::path journal{};
    // Where each write of the run is logged, one JSON line each; empty: not logged.
    std::filesystem::path runLog{};
    bool json = false;  // the outcome as one JSON document on stdout, status lines on stderr
};

// A kind, or a roster step, that differed or could not be compared, and why it stayed.
struct Unsupported {
    std::string what;
    std::string detail;
};

struct SyncSummary {
    bool loggedIn = false;
    int rosterResult = 0;
    int customers = 0;
    int unchanged = 0;  // customers not walked: nothing moved on either side since they agreed
    int tablesCompared = 0;
    int tablesDiffering = 0;
    int downloads = 0;
    int uploads = 0;
    int conflicts = 0;  // result 3 left unresolved (skipped or cancelled)
    int failures = 0;
    int planned = 0;       // moves a dry run left undone
    int keptOnServer = 0;  // kinds the local side had no row to send for; the server kept its own
    bool serverAnswered = false;
    bool unreachable = false;  // the run stopped: the server answered nothing
    bool stopped = false;      // the run stopped: its time limit, or the transport gave up
    std::vector<Unsupported> unsupported;
    // Tables no member of the component moves: told, never an outcome of the run.
    std::vector<Unsupported> outside;
    std::vector<RunEvent> events;  // what was found and done, in order
};

// 0: everything agreed or moved. 1: a failure or an unresolved conflict. 3: data that
// differs, or could not be compared, remains because no worker exists yet (or a dry run).
int ExitCode(const SyncSummary& summary);
void PrintSummary(const SyncSummary& summary, std::ostream& out);

class SyncRun {
public:
    SyncRun(Component& component, SyncOptions options, std::ostream& out, std::ostream& err);
    SyncSummary Run();

private:
    // What the roster reconciliation does: changes on the server first, then, when they all
    // went through, the server's roster taken locally.
    struct RosterPlan {
        std::vector<std::int32_t> addServer, delServer;
        bool download = false;
    };
    // False when the sync stops here.
    bool Roster();
    bool PlanRoster(int result, const std::vector<std::int32_t>& localOnly,
                    const std::vector<std::int32_t>& serverOnly, RosterPlan& plan);
    // False when nothing moved.
    bool RunRosterPlan(const RosterPlan& plan);
    void BackupTargets();
    std::vector<std::int32_t> CustomersToWalk();
    // A backed-up table as the local databases hold it.
    LocalTable TableOf(int index) const;
    // True when the customer has no row of the kind that an upload would send.
    bool NoLocalRows(const SyncKind& kind, std::int32_t custId);
    // The snapshot's and the local fingerprint's word on a customer, folded.
    SeenStamps CustomerStamps(std::int32_t id);
    // True when the snapshot's flags say every live kind of the customer agrees.
    bool SnapshotAgrees(std::int32_t id);
    // True when the snapshot says every live kind agrees and neither side changed anything of
    // the customer since the journal last saw it agree: it is not walked.
    bool Unchanged(std::int32_t id);
    // After a run that moved data: the roster compared once more, and the customers that
    // settled recorded as agreeing when nobody else moved them meanwhile.
    void RecordSettled();
    void Customer(std::int32_t id);
    // The data files of one kind named by the customer's records, each compared and moved.
    void Files(const SyncKind& kind, std::int32_t id, bool recordsSentUp);
    // One prefecture form kind of a customer; `flags` are the snapshot's for its tables.
    void Form(const SyncKind& kind, std::int32_t id, const std::vector<int>& flags, bool locked);
    void Masters();
    // Moves one live kind the way its decision (or the user) says.
    // What was done (or planned): 1 a download, 2 an upload, 0 nothing.
    int Decide(const SyncKind& kind, int decision, const KindArgs& args, const std::string& label);
    // A member's call whose exchanges with the server are watched.
    struct Answer {
        std::int32_t value = 0;
        bool failed =
            false;  // an exchange failed or an error was reported: the result means nothing
        bool unanswered = false;
        bool sent = false;  // a request went out
    };
    Answer Ask(const std::function<std::int32_t()>& call);
    // 1 from the member and no failed exchange.
    bool CallOk(const std::function<std::int32_t()>& call);
    // The comparison of a kind with the journal's word folded in; -1 when it failed.
    int Compare(const SyncKind& kind, const KindArgs& args);
    // A decision with a move of the kind that a kill cut off folded in.
    int WithUnfinishedMove(const SyncKind& kind, std::int32_t custId, int decision,
                           const std::string& label);
    // Runs a move in `way`, noted in the journal first when the kind's moves commit in two
    // steps; false when it did not go through.
    bool Move(const SyncKind& kind, std::int32_t custId, int way, const std::string& label,
              const std::function<bool()>& move);
    // After moves, every live kind of the scope compared again: what agrees now goes into
    // the journal.
    // True when every kind agrees afterwards.
    bool Settle(KindScope scope, const KindArgs& args);
    bool Stopped() const { return summary_.unreachable || summary_.stopped; }
    // The roster, once more after a fresh login when the saved one turned out to have lapsed.
    bool RosterWithFreshLogin(bool savedLogin);
    void Progress(std::size_t done, std::size_t total, std::int32_t id);
    // Notes what the run found or did to a kind of the customer's (0: office-wide); a write
    // goes to the run log as well.
    void Event(std::int32_t customer, const SyncKind* kind, const std::string& name,
               std::string outcome, std::string detail = {}, std::string file = {});

    Component& c_;
    SyncOptions options_;
    ProgressLine progress_;  // before out_, which writes through it
    std::ostream& out_;
    SyncSummary summary_;
    std::filesystem::path dataDir_;  // where relative DataFile names lie: the database's folder
    std::string masterDb_;
    std::string prefDb_;                    // prefcustom.dat beside the customer database
    std::vector<std::string> rosterAdd_;    // local customers the server lacks
    std::set<std::int32_t> addedToServer_;  // customers this run added to the server
    std::vector<LocalTable> localTables_;
    std::map<std::int32_t, std::uint64_t> fingerprints_;
    // Customers whose moves all settled, with the server's time when they did.
    std::vector<std::pair<std::int32_t, DateValue>> settled_;
    SyncJournal journal_;
    std::optional<RunLog> log_;
    bool logFailed_ = false;
    SeenStamps lastSeen_;  // what the last comparison saw
    // The last comparison left the server's data in its worker for the download to use.
    bool keptWorker_ = false;
    int unansweredInARow_ = 0;
    bool loginRefused_ = false;  // a reply refused the login
    // Per kind left unmoved (no worker, or no lock), customers by decision code.
    std::map<std::string, std::map<int, int>> tally_;
};

}  // namespace morvane::cli
