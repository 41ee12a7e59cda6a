#include "SyncCommand.h"

#include <filesystem>
#include <ostream>

#include "ObjectComponent.h"

namespace morvane::cli {

int RunSync(const SyncOptions& options, std::ostream& out, std::ostream& err) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(options.localDb, ec)) {
        err << "morvane: no customer database at " << options.localDb << '\n';
        return 2;
    }
    ObjectComponent component;
    SyncRun run(component, options, out, err);
    const SyncSummary summary = run.Run();
    PrintSummary(summary, out);
    return ExitCode(summary);
}

}  // namespace morvane::cli
