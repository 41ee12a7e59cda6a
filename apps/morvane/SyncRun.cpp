#include "SyncRun.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <map>
#include <ostream>
#include <set>

#include "store/BackupTableIndex.h"
#include "store/LocalDatabases.h"
#include "transport/TransportRun.h"
#include "util/Nz.h"
#include "util/Text.h"

namespace morvane::cli {
namespace {

const char* Way(int flag) {
    switch (flag) {
        case 1:
            return "server newer";
        case 2:
            return "local newer";
        case 3:
            return "both moved";
        default:
            return "agree";
    }
}

// Requests in a row that got no answer before the run counts the server as unreachable.
constexpr int kUnreachableAfter = 3;

// The journal's entry for a whole customer, beside those of its kinds.
const std::string kCustomerEntry = "(customer)";

bool CustomerKind(const SyncKind& kind) {
    return kind.scope != KindScope::Master && kind.scope != KindScope::StampsOnly;
}

std::vector<std::int32_t> SplitIDs(const std::string& text) {
    std::vector<std::int32_t> ids;
    for (const std::string& part : Split(text, ","))
        if (!Trim(part).empty()) ids.push_back(NzLong(part));
    return ids;
}

}  // namespace

std::optional<Prefer> ParsePrefer(std::string_view text) {
    if (text == "ask") return Prefer::Ask;
    if (text == "server") return Prefer::Server;
    if (text == "local") return Prefer::Local;
    if (text == "skip") return Prefer::Skip;
    return std::nullopt;
}

int ExitCode(const SyncSummary& s) {
    if (!s.loggedIn || s.unreachable || s.stopped || s.failures > 0 || s.conflicts > 0) return 1;
    if (!s.unsupported.empty() || s.planned > 0) return 3;
    return 0;
}

void PrintSummary(const SyncSummary& s, std::ostream& out) {
    out << "Summary\n"
        << "  server:      "
        << (s.unreachable      ? "unreachable"
            : s.stopped        ? "answered, but the run stopped early"
            : s.serverAnswered ? "answered"
                               : "not reached")
        << '\n'
        << "  customers:   " << s.customers;
    if (s.unchanged > 0) out << " (" << s.unchanged << " unchanged since they last agreed)";
    out << '\n'
        << "  tables:      " << s.tablesCompared << " compared, " << s.tablesDiffering
        << " differ\n"
        << "  downloads:   " << s.downloads << '\n'
        << "  uploads:     " << s.uploads << '\n'
        << "  conflicts:   " << s.conflicts << " left unresolved\n"
        << "  failures:    " << s.failures << '\n';
    if (s.keptOnServer > 0)
        out << "  kept:        " << s.keptOnServer
            << " kind(s) with no local row to send (deleted or hidden here); the server keeps "
               "its copy\n";
    if (s.planned > 0) out << "  dry run:     " << s.planned << " move(s) not made\n";
    if (!s.unsupported.empty()) {
        out << "  not yet supported:\n";
        for (const Unsupported& u : s.unsupported)
            out << "    " << u.what << ": " << u.detail << '\n';
    }
    if (!s.outside.empty()) {
        out << "  not backed up by this component:\n";
        for (const Unsupported& u : s.outside) out << "    " << u.what << ": " << u.detail << '\n';
    }
}

SyncRun::SyncRun(Component& component, SyncOptions options, std::ostream& out, std::ostream& err)
    : c_(component),
      options_(std::move(options)),
      progress_(out, err, options_.progress),
      out_(progress_.Lines()),
      journal_(options_.journal) {
    if (!options_.runLog.empty() && !options_.dryRun) log_.emplace(options_.runLog);
    const std::filesystem::path dbDir = std::filesystem::path(options_.localDb).parent_path();
    dataDir_ = options_.filesDir.empty() ? dbDir : options_.filesDir;
    masterDb_ = (dbDir / "Master.dat").string();
    prefDb_ = (dbDir / kPrefCustomDatabaseName).string();
}

void SyncRun::Event(std::int32_t customer, const SyncKind* kind, const std::string& name,
                    std::string outcome, std::string detail, std::string file) {
    RunEvent e;
    e.customer = customer;
    e.kind = name;
    e.outcome = std::move(outcome);
    e.detail = std::move(detail);
    e.file = std::move(file);
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    char text[32] = {0};
    if (localtime_r(&now, &local)) std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
    e.time = text;
    if (kind) {
        if (kind->scope == KindScope::CustomerFile) e.tables.push_back(kind->fileTable);
        for (int t : kind->tables)
            e.tables.push_back(std::string(BackupTables()[static_cast<std::size_t>(t)].name));
        if (Wrote(e) && customer != 0 && e.file.empty()) {
            int rows = 0;
            for (int t : kind->tables) {
                const int n = c_.RowCount(TableOf(t), customer);
                if (n < 0) {
                    rows = -1;
                    break;
                }
                rows += n;
            }
            e.rows = rows;
        }
    }
    if (log_ && Wrote(e) &&
        !log_->Append(e, std::filesystem::absolute(options_.localDb).string()) && !logFailed_) {
        logFailed_ = true;
        out_ << "run log: " << options_.runLog.string() << " could not be written\n";
    }
    summary_.events.push_back(std::move(e));
}

SyncRun::Answer SyncRun::Ask(const std::function<std::int32_t()>& call) {
    const ExchangeCounts before = c_.Exchanges();
    Answer answer{call()};
    const ExchangeCounts after = c_.Exchanges();
    answer.failed = after.failed > before.failed || after.unanswered > before.unanswered ||
                    after.errors > before.errors;
    answer.unanswered = after.unanswered > before.unanswered;
    answer.sent = after.tried > before.tried;
    if (after.tried - after.unanswered > before.tried - before.unanswered) {
        summary_.serverAnswered = true;
        unansweredInARow_ = 0;
    } else if (after.unanswered > before.unanswered) {
        unansweredInARow_ += static_cast<int>(after.unanswered - before.unanswered);
        if (unansweredInARow_ >= kUnreachableAfter && !summary_.unreachable) {
            summary_.unreachable = true;
            ++summary_.failures;
            const std::string why = c_.UnreachableReason();
            out_ << "server: " << unansweredInARow_
                 << " requests in a row went unanswered; the run stops here"
                 << (why.empty() ? std::string() : " (" + why + ")") << '\n';
        }
    }
    return answer;
}

bool SyncRun::CallOk(const std::function<std::int32_t()>& call) {
    const Answer answer = Ask(call);
    return !answer.failed && answer.value == 1;
}

int SyncRun::Compare(const SyncKind& kind, const KindArgs& args) {
    const std::int32_t custId = args.custId;
    c_.TakeComparedStamps();
    const Answer answer = Ask([&] { return c_.Run(kind.compare, args); });
    const SeenStamps seen = c_.TakeComparedStamps();
    lastSeen_ = seen;
    if (answer.failed) {
        Event(custId, &kind, kind.name, "failed", "the comparison failed");
        return -1;
    }
    const int decision = answer.value;
    keptWorker_ = decision != 0;
    const std::optional<SeenStamps> agreed = journal_.Find(custId, kind.name);
    int folded = WithJournal(decision, agreed, seen);
    const std::string label =
        custId == 0 ? kind.name : "customer " + std::to_string(custId) + " " + kind.name;
    if (folded != decision)
        out_ << label << ": " << (agreed->server != seen.server ? "the server" : "the local side")
             << " changed since the last agreement (" << Way(decision) << " by the stamps)\n";
    folded = WithUnfinishedMove(kind, custId, folded, label);
    if (folded == 0) {
        Event(custId, &kind, kind.name, "agreed");
        if (!options_.dryRun) journal_.Agreed(custId, kind.name, seen);
    }
    return folded;
}

int SyncRun::WithUnfinishedMove(const SyncKind& kind, std::int32_t custId, int decision,
                                const std::string& label) {
    const int way = journal_.Unfinished(custId, kind.name);
    if (way == 0) return decision;
    const int folded = WithUnfinished(decision, way);
    out_ << label << ": the last " << (way == 1 ? "download" : "upload")
         << " was cut off before it finished; "
         << (folded == way ? "it is taken up again" : "the other side moved since") << '\n';
    return folded;
}

bool SyncRun::Move(const SyncKind& kind, std::int32_t custId, int way, const std::string& label,
                   const std::function<bool()>& move) {
    const bool noted = kind.splitMove && !options_.journal.empty();
    if (noted && !journal_.Begin(custId, kind.name, way)) {
        ++summary_.failures;
        out_ << label << ": the journal could not be written, so a cut move could not be "
             << "taken up again; not moved\n";
        return false;
    }
    const bool done = move();
    // Left noted when it failed: part of it may have gone through.
    if (done && noted) journal_.Finished(custId, kind.name);
    return done;
}

bool SyncRun::Settle(KindScope scope, const KindArgs& args) {
    const std::int32_t custId = args.custId;
    if (options_.journal.empty() || options_.dryRun) return false;
    bool agree = true;
    // Once every kind has moved: a later kind's move may change an earlier one's stamps.
    for (const SyncKind& kind : SyncKinds()) {
        if (kind.scope != scope || Stopped()) continue;
        c_.TakeComparedStamps();
        const Answer answer = Ask([&] { return c_.Run(kind.compare, args); });
        const SeenStamps seen = c_.TakeComparedStamps();
        if (!answer.failed && answer.value == 0) {
            journal_.Agreed(custId, kind.name, seen);
        } else if (!answer.failed && journal_.Find(custId, kind.name + " kept") == seen) {
            // Still nothing to send: settled as the server keeps it.
        } else {
            journal_.Forget(custId, kind.name);
            agree = false;
        }
    }
    return agree && !Stopped();
}

LocalTable SyncRun::TableOf(int index) const {
    return {index,
            index < 10 ? options_.localDb : prefDb_,
            std::string(BackupTables()[static_cast<std::size_t>(index)].name),
            index == 0 ? "id" : "CustomerID",
            index == 5,
            false};
}

bool SyncRun::NoLocalRows(const SyncKind& kind, std::int32_t custId) {
    return std::all_of(kind.tables.begin(), kind.tables.end(),
                       [&](int t) { return c_.LiveRows(TableOf(t), custId) == 0; });
}

SeenStamps SyncRun::CustomerStamps(std::int32_t id) {
    // The check stamps are left out: a comparison that agrees rewrites them, and they say
    // nothing of what either side holds.
    SeenStamps folded;
    for (const SyncKind& kind : SyncKinds()) {
        if (!CustomerKind(kind)) continue;
        for (int t : kind.tables) {
            folded.server = FoldText(folded.server, c_.CustmerRecordUpdateTable_Server(id, t));
            folded.local = FoldText(folded.local, c_.CustmerRecordUpdateTable_Local(id, t));
        }
    }
    const auto local = [&](std::int32_t who) {
        const auto it = fingerprints_.find(who);
        return it == fingerprints_.end() ? std::string("-") : std::to_string(it->second);
    };
    folded.local = FoldText(folded.local, local(id) + "/" + local(0));
    return folded;
}

bool SyncRun::SnapshotAgrees(std::int32_t id) {
    for (const SyncKind& kind : SyncKinds()) {
        if (!CustomerKind(kind)) continue;
        std::vector<int> flags;
        for (int t : kind.tables) flags.push_back(c_.CustmerBackupedTableSyncFlag(id, t));
        if (SnapshotDecision(kind, flags) != 0) return false;
    }
    return true;
}

bool SyncRun::Unchanged(std::int32_t id) {
    if (options_.full || options_.journal.empty() || addedToServer_.count(id) ||
        journal_.AnyUnfinished(id))
        return false;
    const std::optional<SeenStamps> agreed = journal_.Find(id, kCustomerEntry);
    return agreed && SnapshotAgrees(id) && *agreed == CustomerStamps(id);
}

void SyncRun::RecordSettled() {
    if (settled_.empty() || options_.dryRun || Stopped()) return;
    // Once more for the stamps the moves left; a failure only means the next run walks them.
    const Answer again = Ask([&] { return c_.CompareCustomerList(options_.localDb); });
    if (again.failed) return;
    fingerprints_ = c_.LocalFingerprints(localTables_, dataDir_);
    for (const auto& [id, when] : settled_) {
        bool quiet = SnapshotAgrees(id);
        for (const LocalTable& t : localTables_) {
            if (t.index < 0) continue;
            // A server stamp after the customer settled is somebody else's move.
            const auto stamp = DateValue::Parse(c_.CustmerRecordUpdateTable_Server(id, t.index));
            if (stamp && *stamp > when) quiet = false;
        }
        if (quiet) journal_.Agreed(id, kCustomerEntry, CustomerStamps(id));
    }
}

SyncSummary SyncRun::Run() {
    summary_ = {};
    tally_.clear();
    rosterAdd_.clear();
    unansweredInARow_ = 0;
    const ExchangeCounts before = c_.Exchanges();
    const int state = c_.LoginFromSettings();
    const ExchangeCounts after = c_.Exchanges();
    summary_.loggedIn = state == 1;
    summary_.serverAnswered = after.tried - after.unanswered > before.tried - before.unanswered;
    if (!summary_.loggedIn) {
        if (after.unanswered > before.unanswered && !summary_.serverAnswered) {
            summary_.unreachable = true;
            const std::string why = c_.UnreachableReason();
            out_ << "login: the server could not be reached"
                 << (why.empty() ? std::string() : ": " + why) << "; not logged in\n";
        } else {
            out_ << "login: not logged in (state " << state
                 << "); run `morvane login` first, or save the password\n";
        }
        return summary_;
    }
    const bool savedLogin = after.tried == before.tried;
    out_ << (savedLogin ? "login: the saved login, not yet confirmed by the server\n"
                        : "login: logged in (the server answered)\n");
    if (!RosterWithFreshLogin(savedLogin)) return summary_;
    BackupTargets();
    const std::vector<std::int32_t> ids =
        Stopped() ? std::vector<std::int32_t>{} : CustomersToWalk();
    summary_.customers = static_cast<int>(ids.size());
    localTables_.clear();
    for (const SyncKind& kind : SyncKinds()) {
        if (!CustomerKind(kind)) continue;
        for (int t : kind.tables) localTables_.push_back(TableOf(t));
        if (kind.scope == KindScope::CustomerFile)
            localTables_.push_back(
                {-1, options_.localDb, kind.fileTable, "CustomerID", false, true});
    }
    fingerprints_.clear();
    settled_.clear();
    if (!options_.journal.empty() && !ids.empty())
        fingerprints_ = c_.LocalFingerprints(localTables_, dataDir_);
    for (std::size_t i = 0; i < ids.size() && !Stopped(); ++i) {
        if (const std::string stop = TransportStopReason(); !stop.empty()) {
            out_ << "stopped: " << stop << '\n';  // the rest would fail the same way
            ++summary_.failures;
            summary_.stopped = true;
            break;
        }
        Progress(i, ids.size(), ids[i]);
        if (Unchanged(ids[i]))
            ++summary_.unchanged;
        else
            Customer(ids[i]);
    }
    Progress(ids.size(), ids.size(), 0);
    RecordSettled();
    if (!Stopped()) Masters();
    if (!options_.dryRun && !journal_.Save())
        out_ << "journal: the record of this run's agreements could not be written\n";
    return summary_;
}

bool SyncRun::RosterWithFreshLogin(bool savedLogin) {
    loginRefused_ = false;
    if (Roster()) return true;
    if (!loginRefused_) return false;
    // A saved login lapses at the server once idle for a while, as a daily run finds it.
    if (savedLogin && !Stopped() && (c_.LoginState() == 1 || c_.LoginWithSavedPassword() == 1)) {
        out_ << "login: logged in afresh (the saved login had lapsed)\n";
        --summary_.failures;  // the refusal, now answered
        loginRefused_ = false;
        if (Roster()) return true;
    }
    if (loginRefused_) out_ << "  nothing is compared without the roster\n";
    return false;
}

bool SyncRun::Roster() {
    const auto compare = [&] { return c_.CompareCustomerList(options_.localDb); };
    const Answer compared = Ask(compare);
    if (compared.failed) {
        ++summary_.failures;
        if (Stopped() || (compared.unanswered && !summary_.serverAnswered)) {
            summary_.unreachable = true;
            out_ << "roster: the server did not answer\n";
            Event(0, nullptr, "roster", "failed", "the server did not answer");
        } else if (c_.LoginState() != 1) {
            loginRefused_ = true;
            out_ << "roster: the server refused the login (state " << c_.LoginState() << ")\n";
            return false;  // the caller may log in afresh
        } else {
            out_ << "roster: the server's roster could not be read\n";
            Event(0, nullptr, "roster", "failed", "the server's roster could not be read");
        }
        out_ << "  nothing is compared without the roster\n";
        return false;
    }
    int result = compared.value;
    summary_.rosterResult = result;
    const char* meaning[] = {"agree", "", "", "differ", "server has none", "local has none"};
    out_ << "roster: " << (result >= 0 && result <= 5 ? meaning[result] : "?") << " (result "
         << result << ")\n";
    if (result == 0) return true;
    std::string add, del, upd;
    if (!c_.RosterUploadIDs(options_.localDb, add, del, upd)) {
        ++summary_.failures;
        out_ << "  roster: the lists of differing customers could not be read\n";
        return true;
    }
    for (std::int32_t id : SplitIDs(add)) rosterAdd_.push_back(std::to_string(id));
    out_ << "  only local: " << (add.empty() ? "-" : add)
         << "; only on the server: " << (del.empty() ? "-" : del) << '\n';

    RosterPlan plan;
    if (!PlanRoster(result, SplitIDs(add), SplitIDs(del), plan)) return false;
    if (!RunRosterPlan(plan)) return true;
    // A roster that moved is compared again so the per-table snapshot is current.
    if (!options_.dryRun && (!plan.addServer.empty() || !plan.delServer.empty() || plan.download)) {
        rosterAdd_.clear();
        const Answer again = Ask(compare);
        if (again.failed) {
            ++summary_.failures;
            out_ << "roster after reconciliation: the comparison failed\n";
            return false;
        }
        result = again.value;
        summary_.rosterResult = result;
        out_ << "roster after reconciliation: result " << result << '\n';
        if (result != 0 && c_.RosterUploadIDs(options_.localDb, add, del, upd))
            for (std::int32_t id : SplitIDs(add)) rosterAdd_.push_back(std::to_string(id));
    }
    return true;
}

bool SyncRun::PlanRoster(int result, const std::vector<std::int32_t>& localOnly,
                         const std::vector<std::int32_t>& serverOnly, RosterPlan& plan) {
    const auto join = [&] {
        // Without a person to choose, the rosters are joined and nothing is deleted.
        plan.addServer = localOnly;
        plan.download = !serverOnly.empty();
    };
    if (result == 5) {
        // Nothing local counts, the host's sample customer included: it is not sent up.
        plan.download = true;
        return true;
    }
    if (result == 3 && options_.prefer == Prefer::Skip) {
        ++summary_.conflicts;
        out_ << "  roster: left as it is (--prefer skip)\n";
        return true;
    }
    if (result != 3 || options_.prefer != Prefer::Ask) {
        join();
        return true;
    }
    const RosterChoice chosen = c_.ShowCompareCustListDlg();
    const int choice = chosen.answer;
    switch (choice) {
        case -1:
            ++summary_.conflicts;
            out_ << "  roster: the reconciliation was cancelled; nothing more is synchronised\n";
            return false;
        case 1:
        case 5:
            plan.download = true;
            break;
        case 2:
            plan.addServer = localOnly;
            plan.delServer = serverOnly;
            break;
        case 4:
            plan.addServer = localOnly;
            break;
        case 6: {
            plan.addServer = SplitIDs(chosen.addServer);
            plan.delServer = SplitIDs(chosen.delServer);
            // The server's roster, once changed, holds exactly what the user chose to keep.
            plan.download = !chosen.addLocal.empty() || !chosen.delLocal.empty();
            break;
        }
        default:
            break;
    }
    out_ << "  roster: the dialog answered " << choice << '\n';
    return true;
}

bool SyncRun::RunRosterPlan(const RosterPlan& plan) {
    if (options_.dryRun) {
        for (std::int32_t id : plan.addServer)
            out_ << "  roster: would add customer " << id << " to the server\n";
        for (std::int32_t id : plan.delServer)
            out_ << "  roster: would delete customer " << id << " on the server\n";
        if (plan.download) out_ << "  roster: would take the server's roster\n";
        summary_.planned += static_cast<int>(plan.addServer.size() + plan.delServer.size()) +
                            (plan.download ? 1 : 0);
        return false;
    }
    bool allMoved = true;
    const auto move = [&](const char* member, std::int32_t id,
                          const std::function<std::int32_t()>& call, const std::string& what) {
        if (CallOk(call)) {
            ++summary_.uploads;
            out_ << "  roster: " << what << '\n';
            Event(id, nullptr, "roster", "uploaded", what);
        } else {
            ++summary_.failures;
            allMoved = false;
            out_ << "  roster: " << member << " failed for customer " << id << '\n';
            Event(id, nullptr, "roster", "failed", std::string(member) + " failed");
        }
    };
    for (std::int32_t id : plan.addServer) {
        const int failuresBefore = summary_.failures;
        move(
            "SyncUploadAddCustomer", id,
            [&] { return c_.SyncUploadAddCustomer(options_.localDb, id); },
            "added customer " + std::to_string(id) + " to the server");
        if (summary_.failures == failuresBefore) addedToServer_.insert(id);
    }
    for (std::int32_t id : plan.delServer)
        move(
            "SyncUploadDelCustomer", id, [&] { return c_.SyncUploadDelCustomer(id); },
            "deleted customer " + std::to_string(id) + " on the server");
    if (!plan.download) return true;
    if (!allMoved) {
        // The server's roster now lacks what failed; taking it would delete those locally.
        out_ << "  roster: the server's roster is not taken after a failure\n";
        return true;
    }
    if (CallOk([&] { return c_.SyncDownloadCustomerList(options_.localDb); })) {
        ++summary_.downloads;
        out_ << "  roster: took the server's roster\n";
        Event(0, nullptr, "roster", "downloaded", "took the server's roster");
    } else {
        ++summary_.failures;
        out_ << "  roster: download failed\n";
    }
    return true;
}

void SyncRun::BackupTargets() {
    if (options_.dryRun) {
        // The check itself sets flags on the server.
        out_ << "backup targets: not checked in a dry run\n";
        return;
    }
    const Answer checked = Ask([&] { return c_.CheckInetEnabledFlags(options_.localDb); });
    if (checked.failed) {
        ++summary_.failures;
        out_ << "backup targets: the check failed\n";
        return;
    }
    const int result = checked.value;
    out_ << "backup targets: result " << result << '\n';
    if (result == 1 || result == 2) return;
    // 0: more customers are backed up than the account allows, 3: fewer.
    const int showType = result == 0 ? 1 : 2;
    if (options_.prefer != Prefer::Ask) {
        ++summary_.conflicts;
        out_ << "  backup targets: the choice of customers needs a person; run with --prefer ask\n";
        return;
    }
    const int chosen = c_.ShowSelectCustEnabledDlg(options_.localDb, showType);
    if (chosen != 1) {
        ++summary_.conflicts;
        out_ << "  backup targets: the choice was cancelled\n";
    }
}

std::vector<std::int32_t> SyncRun::CustomersToWalk() {
    // Customers both sides hold: the snapshot knows only those the server lists.
    std::vector<std::int32_t> ids;
    const std::set<std::string> localOnly(rosterAdd_.begin(), rosterAdd_.end());
    for (std::int32_t id : c_.LocalCustomerIDs(options_.localDb)) {
        if (localOnly.count(std::to_string(id))) continue;
        const Answer exists = Ask([&] { return c_.CheckExistCustID(id); });
        const Answer enabled =
            exists.value == 1 ? Ask([&] { return c_.CustmerInetEnabledFlag(id); }) : Answer{1};
        if (Stopped()) break;
        if (exists.failed || enabled.failed) {
            ++summary_.failures;
            out_ << "customer " << id << ": whether it is a backup target is unknown\n";
            continue;
        }
        if (enabled.value != 1) {
            out_ << "customer " << id << ": not a backup target\n";
            continue;
        }
        ids.push_back(id);
    }
    return ids;
}

void SyncRun::Customer(std::int32_t id) {
    const auto& tables = BackupTables();
    const KindArgs args{.db = options_.localDb, .custId = id};
    const int movedBefore = summary_.downloads + summary_.uploads;
    const SyncSummary before = summary_;
    const SeenStamps stampsBefore = options_.journal.empty() ? SeenStamps{} : CustomerStamps(id);
    bool locked = false;
    if (!options_.dryRun) {
        if (CallOk([&] { return c_.LockCoustomer(id); })) {
            locked = true;
        } else {
            ++summary_.failures;
            out_ << "customer " << id << ": lock refused\n";
            Event(id, nullptr, "customer", "failed", "lock refused");
        }
    }
    // The snapshot's word on every table first, as it stood before anything moved.
    std::vector<std::vector<int>> flags(SyncKinds().size());
    std::vector<std::string> differing;
    std::map<int, int> ways;
    int compared = 0;
    for (std::size_t k = 0; k < SyncKinds().size(); ++k) {
        const SyncKind& kind = SyncKinds()[k];
        if (kind.scope == KindScope::Master) continue;
        for (int t : kind.tables) {
            const int f = c_.CustmerBackupedTableSyncFlag(id, t);
            ++compared;
            if (f != 0) {
                ways[f]++;
                differing.push_back(std::string(tables[static_cast<std::size_t>(t)].name) + " " +
                                    Way(f));
            }
            flags[k].push_back(f);
        }
    }
    summary_.tablesCompared += compared;
    summary_.tablesDiffering += static_cast<int>(differing.size());
    if (!differing.empty()) {
        out_ << "customer " << id << ": ";
        if (options_.verbose) {
            out_ << Join(differing, ", ") << '\n';
        } else {
            std::vector<std::string> counts;
            for (const auto& [flag, n] : ways)
                counts.push_back(std::to_string(n) + " " + Way(flag));
            out_ << differing.size() << " of " << compared << " tables differ ("
                 << Join(counts, ", ") << ")\n";
        }
    }
    std::set<std::string> sentUp;  // kinds whose records went up in this pass
    for (std::size_t k = 0; k < SyncKinds().size(); ++k) {
        const SyncKind& kind = SyncKinds()[k];
        if (kind.scope == KindScope::Master) continue;
        if (Stopped()) break;
        const std::string label = "customer " + std::to_string(id) + " " + kind.name;
        if (kind.scope == KindScope::StampsOnly) {
            if (const int combined = CombineFlags(flags[k]); combined != 0)
                tally_[kind.name][combined]++;
            continue;
        }
        if (kind.scope == KindScope::CustomerFile) {
            if (options_.dryRun || locked) Files(kind, id, sentUp.count(kind.records) > 0);
            continue;
        }
        if (kind.scope == KindScope::CustomerForm) {
            Form(kind, id, flags[k], locked);
            continue;
        }
        int decision = Compare(kind, args);
        if (decision < 0) {
            ++summary_.failures;
            out_ << label << ": the comparison failed\n";
            continue;
        }
        if (decision == 2 && journal_.Find(id, kind.name + " kept") == lastSeen_) {
            ++summary_.keptOnServer;  // nothing moved since the server was left its copy
            continue;
        }
        // The server holds only what adding the customer sent: the rest goes up whole.
        if (decision == 0 && addedToServer_.count(id)) decision = 2;
        if (decision != 0 && !options_.dryRun && !locked) {
            tally_[kind.name][decision]++;
            continue;
        }
        if (Decide(kind, decision, args, label) == 2) sentUp.insert(kind.name);
    }
    const bool moved = summary_.downloads + summary_.uploads > movedBefore;
    const bool clean = locked && !options_.dryRun && !Stopped() &&
                       summary_.failures == before.failures &&
                       summary_.conflicts == before.conflicts &&
                       summary_.unsupported.size() == before.unsupported.size();
    const bool settled = locked && moved ? Settle(KindScope::Customer, args) : !moved;
    if (clean && settled && !options_.journal.empty()) {
        if (moved)
            settled_.push_back({id, c_.ServerNow()});
        else
            journal_.Agreed(id, kCustomerEntry, stampsBefore);
    }
    if (locked && !CallOk([&] { return c_.UnlockCoustomer(id); })) {
        ++summary_.failures;
        out_ << "customer " << id << ": unlock failed\n";
        Event(id, nullptr, "customer", "failed", "unlock failed");
    }
}

void SyncRun::Files(const SyncKind& kind, std::int32_t id, bool recordsSentUp) {
    bool sentAlone = false;
    for (const std::string& name : c_.DataFiles(options_.localDb, kind.fileTable, id)) {
        const std::filesystem::path named(name);
        const std::string path = (named.is_absolute() ? named : dataDir_ / named).string();
        // 0 the same (or on neither side), 1 the server's copy is to be taken, 2 the local one
        // is to be sent; never "both moved", so never a question.
        const KindArgs fileArgs{.custId = id, .file = path};
        const auto compare = [&] { return c_.Run(kind.compare, fileArgs); };
        const Answer compared = Ask(compare);
        if (compared.failed) {
            ++summary_.failures;
            out_ << "customer " << id << " file " << name << ": the comparison failed\n";
            Event(id, &kind, kind.name, "failed", "the comparison failed", name);
            if (Stopped()) return;
            continue;
        }
        int decision = compared.value;
        // The comparison cannot tell a file the server lacks from one it holds the same: files
        // of records just sent go up with them, those that are here.
        std::error_code ec;
        if (decision == 0 && recordsSentUp && std::filesystem::is_regular_file(path, ec))
            decision = 2;
        if (decision != 1 && decision != 2) continue;
        const std::string label = "customer " + std::to_string(id) + " file " + name;
        const bool down = decision == 1;
        if (options_.dryRun) {
            ++summary_.planned;
            out_ << label << ": would " << (down ? "download" : "upload") << '\n';
            Event(id, &kind, kind.name, down ? "would download" : "would upload", {}, name);
            continue;
        }
        // A download answers 1 even when no whole file came: the copies are compared again.
        if (CallOk([&] { return c_.Run(down ? kind.download : kind.upload, fileArgs); }) && [&] {
                const Answer again = Ask(compare);
                return !again.failed && again.value == 0;
            }()) {
            ++(down ? summary_.downloads : summary_.uploads);
            out_ << label << ": " << (down ? "downloaded" : "uploaded") << '\n';
            Event(id, &kind, kind.name, down ? "downloaded" : "uploaded", {}, name);
            sentAlone = sentAlone || (!down && !recordsSentUp);
        } else {
            ++summary_.failures;
            out_ << label << ": the " << (down ? "download" : "upload")
                 << " did not leave both copies the same\n";
            Event(id, &kind, kind.name, "failed",
                  std::string("the ") + (down ? "download" : "upload") +
                      " did not leave both copies the same",
                  name);
        }
    }
    // A file carries no stamp of its own on the server: its records go up again, so that
    // their new server stamp shows the other offices that the customer moved.
    if (!sentAlone || Stopped()) return;
    for (const SyncKind& records : SyncKinds())
        if (records.name == kind.records)
            Decide(records, 2, {.db = options_.localDb, .custId = id},
                   "customer " + std::to_string(id) + " " + records.name);
}

int SyncRun::Decide(const SyncKind& kind, int decision, const KindArgs& args,
                    const std::string& label) {
    const std::int32_t custId = args.custId;
    if (decision == 3) {
        switch (options_.prefer) {
            case Prefer::Server:
                decision = 1;
                break;
            case Prefer::Local:
                decision = 2;
                break;
            case Prefer::Skip:
                decision = 0;
                break;
            case Prefer::Ask:
                decision = c_.ShowCompareMsg(kind.name);
                break;
        }
        if (decision == 0) {
            ++summary_.conflicts;
            out_ << label << ": both sides moved; left as it is\n";
            Event(custId, &kind, kind.name, "conflict", "both sides moved");
            return 0;
        }
    }
    if (decision != 1 && decision != 2) return 0;
    if (options_.dryRun) {
        ++summary_.planned;
        out_ << label << ": would " << (decision == 1 ? "download" : "upload") << '\n';
        Event(custId, &kind, kind.name, decision == 1 ? "would download" : "would upload");
        return decision;
    }
    const KindMember& member = decision == 1 ? kind.download : kind.upload;
    // A download its comparison did not call for finds no worker kept from it, and the
    // member would do nothing: it is told to fetch for itself.
    const bool fetch = decision == 1 && !keptWorker_;
    keptWorker_ = false;
    Answer answer;
    const bool moved = Move(kind, custId, decision, label, [&] {
        if (fetch) c_.setObjectUsage(1);
        answer = Ask([&] { return c_.Run(member, args); });
        if (fetch) c_.setObjectUsage(0);
        // An upload that sent nothing left nothing half done.
        return (!answer.failed && answer.value == 1) || (decision == 2 && !answer.sent);
    });
    if (moved && !answer.failed && answer.value == 1) {
        ++(decision == 1 ? summary_.downloads : summary_.uploads);
        out_ << label << ": " << (decision == 1 ? "downloaded" : "uploaded") << '\n';
        Event(custId, &kind, kind.name, decision == 1 ? "downloaded" : "uploaded");
        return decision;
    }
    // An upload that sent nothing because the customer has no live row of the kind here: a
    // list emptied locally is never emptied on the server, so the server keeps its copy, and
    // the kind counts as settled until either side moves.
    if (decision == 2 && custId != 0 && !answer.sent && answer.value == 0 &&
        kind.scope == KindScope::Customer && NoLocalRows(kind, custId)) {
        ++summary_.keptOnServer;
        out_ << label << ": no local row to send (deleted or hidden here); the server keeps "
             << "its copy\n";
        if (!options_.journal.empty()) journal_.Agreed(custId, kind.name + " kept", lastSeen_);
        Event(custId, &kind, kind.name, "kept on server", "no local row to send");
        return 0;
    }
    ++summary_.failures;
    out_ << label << ": " << member.name << " failed\n";
    Event(custId, &kind, kind.name, "failed", member.name + " failed");
    return 0;
}

void SyncRun::Masters() {
    std::vector<const SyncKind*> live;
    for (const SyncKind& k : SyncKinds())
        if (k.scope == KindScope::Master) live.push_back(&k);
    const KindArgs args{.db = masterDb_};
    // Compared first without the lock: masters that agree, as on most days, need none.
    std::vector<std::pair<const SyncKind*, int>> differing;
    for (const SyncKind* k : live) {
        const int decision = Compare(*k, args);
        if (decision < 0) {
            ++summary_.failures;
            out_ << k->name << ": the comparison failed\n";
            if (Stopped()) break;
            continue;
        }
        if (decision != 0) differing.push_back({k, decision});
    }
    if (!differing.empty() && !Stopped()) {
        const int movedBefore = summary_.downloads + summary_.uploads;
        bool locked = false;
        if (!options_.dryRun) {
            if (CallOk([&] { return c_.LockMasterData(1); })) {
                locked = true;
            } else {
                ++summary_.failures;
                out_ << "masters: lock refused\n";
                Event(0, nullptr, "masters", "failed", "lock refused");
            }
        }
        for (auto [k, decision] : differing) {
            if (!options_.dryRun && !locked) {
                tally_[k->name][decision]++;
                continue;
            }
            // Under the lock once more: another office may have moved it meanwhile.
            if (locked) decision = Compare(*k, args);
            if (decision < 0) {
                ++summary_.failures;
                out_ << k->name << ": the comparison failed\n";
                if (Stopped()) break;
                continue;
            }
            Decide(*k, decision, args, k->name);
        }
        if (locked && summary_.downloads + summary_.uploads > movedBefore)
            Settle(KindScope::Master, args);
        if (locked && !CallOk([&] { return c_.UnlockMasterData(1); })) ++summary_.failures;
    }
    // The kinds no worker moves yet, in the table's order.
    for (const SyncKind& k : SyncKinds()) {
        auto it = tally_.find(k.name);
        if (it == tally_.end()) continue;
        int differ = 0;
        std::vector<std::string> ways;
        for (const auto& [flag, n] : it->second) {
            differ += n;
            ways.push_back(std::to_string(n) + " " + Way(flag));
        }
        if (differ == 0) continue;
        const std::string detail =
            std::to_string(differ) + " customer(s) differ (" + Join(ways, ", ") + ")";
        if (k.scope == KindScope::StampsOnly)
            summary_.outside.push_back(
                {k.name, detail + ": compared by stamp only, no member moves these tables"});
        else
            summary_.unsupported.push_back({k.name, detail + ": no worker yet"});
    }
}

void SyncRun::Progress(std::size_t done, std::size_t total, std::int32_t id) {
    if (!options_.progress || total == 0) return;
    if (done == total) return progress_.Clear();
    constexpr std::size_t kWidth = 30;
    const std::size_t filled = done * kWidth / total;
    progress_.Show("[" + std::string(filled, '#') + std::string(kWidth - filled, '.') + "] " +
                   std::to_string(done) + "/" + std::to_string(total) +
                   (id != 0 ? " customer " + std::to_string(id) : std::string()));
}

}  // namespace morvane::cli
