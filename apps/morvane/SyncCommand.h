// `morvane sync` on the real component: login from the saved settings, then the run.
#pragma once

#include <filesystem>
#include <iosfwd>

#include "SyncRun.h"

namespace morvane::cli {

// Where the host keeps its record of the last agreements: beside the settings.
std::filesystem::path DefaultJournalPath();

// One run on the real component. The journal is the default one unless set. A dry run
// compares copies of the databases, so that nothing local changes.
SyncSummary SyncLocal(SyncOptions options, std::ostream& out, std::ostream& err);

// Runs the synchronisation, prints the summary; returns the exit code of ExitCode.
int RunSync(const SyncOptions& options, std::ostream& out, std::ostream& err);

}  // namespace morvane::cli
