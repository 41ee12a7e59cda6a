// `morvane sync`: the host's usual sequence run from the command line over the kind table,
// with a summary of what agreed, what moved, and what no worker can move yet.
#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SyncKinds.h"
#include "util/Value.h"

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

// What the run needs of the component; the command line's own one calls the public object
// by member name, tests give a scripted one.
class Component {
public:
    virtual ~Component() = default;
    virtual bool Has(std::string_view member) const = 0;
    // Calls a member; object parameters get no owner. A failed call gives an empty value.
    virtual Value Call(std::string_view member, const std::vector<Value>& args) = 0;
    // The login from the saved settings; the login state.
    virtual int LoginFromSettings() = 0;
    // GetUploadCustomerListIDs with its output texts; false when it failed.
    virtual bool RosterUploadIDs(const std::string& localDb, std::string& add, std::string& del,
                                 std::string& update) = 0;
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
};

struct SyncOptions {
    std::string localDb;  // the customer database; Master.dat lies beside it
    Prefer prefer = Prefer::Ask;
    bool dryRun = false;
    bool progress = false;  // a progress bar on the error stream
    bool verbose = false;   // every differing table by name, not only their count
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
    int tablesCompared = 0;
    int tablesDiffering = 0;
    int downloads = 0;
    int uploads = 0;
    int conflicts = 0;  // result 3 left unresolved (skipped or cancelled)
    int failures = 0;
    int planned = 0;  // moves a dry run left undone
    std::vector<Unsupported> unsupported;
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
    void Customer(std::int32_t id);
    // The data files of one kind named by the customer's records, each compared and moved.
    void Files(const SyncKind& kind, std::int32_t id, bool recordsSentUp);
    // One prefecture form kind of a customer; `flags` are the snapshot's for its tables.
    void Form(const SyncKind& kind, std::int32_t id, const std::vector<int>& flags, bool locked);
    void Masters();
    // Moves one live kind the way its decision (or the user) says.
    // What was done (or planned): 1 a download, 2 an upload, 0 nothing.
    int Decide(const SyncKind& kind, int decision, const std::vector<Value>& args,
               const std::string& label);
    bool CallOk(std::string_view member, const std::vector<Value>& args);
    void Progress(std::size_t done, std::size_t total, std::int32_t id);
    bool Live(const SyncKind& kind) const;

    Component& c_;
    SyncOptions options_;
    std::ostream& out_;
    std::ostream& err_;
    SyncSummary summary_;
    std::filesystem::path dataDir_;  // where relative DataFile names lie: the database's folder
    std::string masterDb_;
    std::vector<std::string> rosterAdd_;  // local customers the server lacks
    struct Tally {
        int notCompared = 0;
        std::map<int, int> differ;  // decision code -> customers
    };
    std::map<std::string, Tally> tally_;  // kinds no worker moves yet
};

}  // namespace morvane::cli
