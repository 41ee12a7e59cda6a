// The prefecture forms of one customer in `morvane sync`: their members take prefcustom.dat
// beside the customer database and the data file a form belongs to.
#include <filesystem>
#include <ostream>

#include "SyncRun.h"
#include "store/BackupTableIndex.h"
#include "util/Nz.h"

namespace morvane::cli {

void SyncRun::Form(const SyncKind& kind, std::int32_t id, const std::vector<int>& flags,
                   bool locked) {
    const std::string& prefDb = prefDb_;  // beside the customer database, a dry run's copy too
    const std::string label = "customer " + std::to_string(id) + " " + kind.name;
    const auto owners = [&](std::size_t table) {
        return table < kind.tables.size()
                   ? c_.FormOwners(prefDb, BackupTables()[kind.tables[table]].name, id)
                   : std::vector<FormOwner>{};
    };
    if (kind.compare) {
        const std::vector<FormOwner> main = owners(0);
        const bool holds = !main.empty() || !owners(1).empty();
        // The host opens the form from the record its main row names, if any.
        const FormOwner owner = main.empty() ? FormOwner{} : main.front();
        const KindArgs args{
            .db = prefDb, .custId = id, .dataId = owner.dataId, .kessan = owner.kessan};
        const int decision = Compare(kind, args);
        if (decision < 0) {
            ++summary_.failures;
            out_ << label << ": the comparison failed\n";
            return;  // noted by the comparison
        }
        // Every live row counts as the one form, and a download leaves its rows to no one:
        // a customer holding no rows of it, for whom the server holds no form either, has
        // none, whatever the stamps of the others' say.
        if ((decision == 2 || decision == 3) && !holds && c_.InetDateServer().empty()) return;
        if (decision != 0 && !options_.dryRun && !locked) {
            tally_[kind.name][decision]++;
            return;
        }
        Decide(kind, decision, args, label);
        return;
    }
    // Sent up only, so the snapshot decides.
    int decision = SnapshotDecision(kind, flags);
    if (decision == 0 && addedToServer_.count(id)) decision = 2;
    decision = WithUnfinishedMove(kind, id, decision, label);
    if (decision == 0) return;
    if (!options_.dryRun && !locked) {
        tally_[kind.name][decision]++;
        return;
    }
    if (decision == 3) {
        if (options_.prefer == Prefer::Local) {
            decision = 2;
        } else {
            ++summary_.conflicts;
            out_ << label << ": both sides moved; left as it is (only --prefer local sends it)\n";
            Event(id, &kind, kind.name, "conflict", "both sides moved");
            return;
        }
    }
    if (decision == 1) {
        summary_.unsupported.push_back(
            {label, "the server's copy is newer, but a machinery list can only be sent up"});
        out_ << label << ": the server's copy is newer; it cannot be downloaded\n";
        Event(id, &kind, kind.name, "not supported", "the server's copy is newer");
        return;
    }
    const auto send = [&] {
        bool all = true;
        for (const FormOwner& owner : owners(0)) {
            if (owner.dataId == 0) continue;  // a list of no data file is no one's to send
            const std::string what = label + " of " + (owner.kessan ? "settlement" : "permit") +
                                     " file " + DoubleText(owner.dataId);
            if (options_.dryRun) {
                ++summary_.planned;
                out_ << what << ": would upload\n";
                Event(id, &kind, kind.name, "would upload", what);
                continue;
            }
            const KindArgs args{
                .db = prefDb, .custId = id, .dataId = owner.dataId, .kessan = owner.kessan};
            if (CallOk([&] { return c_.Run(kind.upload, args); })) {
                ++summary_.uploads;
                out_ << what << ": uploaded\n";
                Event(id, &kind, kind.name, "uploaded", what);
            } else {
                ++summary_.failures;
                out_ << what << ": " << kind.upload.name << " failed\n";
                Event(id, &kind, kind.name, "failed", what + ": " + kind.upload.name + " failed");
                all = false;
            }
        }
        return all;
    };
    if (options_.dryRun)
        send();
    else
        Move(kind, id, 2, label, send);
}

}  // namespace morvane::cli
