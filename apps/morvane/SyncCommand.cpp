#include "SyncCommand.h"

#include <filesystem>
#include <optional>
#include <ostream>

#include "ObjectComponent.h"
#include "ScratchDatabases.h"
#include "state/ProcessState.h"

namespace morvane::cli {

std::filesystem::path DefaultJournalPath() {
    return State().Settings().Root() / "morvane-sync-journal.tsv";
}

SyncSummary SyncLocal(SyncOptions options, std::ostream& out, std::ostream& err) {
    if (options.journal.empty()) options.journal = DefaultJournalPath();
    std::optional<ScratchDatabases> scratch;
    if (options.dryRun) {
        if (options.filesDir.empty())
            options.filesDir = std::filesystem::path(options.localDb).parent_path();
        scratch.emplace(options.localDb);
        options.localDb = scratch->CustomerDb().string();
    }
    ObjectComponent component;
    SyncRun run(component, options, out, err);
    return run.Run();
}

int RunSync(const SyncOptions& options, std::ostream& out, std::ostream& err) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(options.localDb, ec)) {
        err << "morvane: no customer database at " << options.localDb << '\n';
        return 2;
    }
    SyncSummary summary;
    try {
        // With --json the document alone goes to stdout.
        summary = SyncLocal(options, options.json ? err : out, err);
    } catch (const std::filesystem::filesystem_error& e) {
        err << "morvane: " << e.what() << '\n';
        return 2;
    }
    const int code = ExitCode(summary);
    if (options.json)
        PrintJson(summary, code, out);
    else
        PrintSummary(summary, out);
    return code;
}

}  // namespace morvane::cli
