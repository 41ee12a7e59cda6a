// `morvane sync` on the real component: login from the saved settings, then the run.
#pragma once

#include <iosfwd>

#include "SyncRun.h"

namespace morvane::cli {

// Runs the synchronisation, prints the summary; returns the exit code of ExitCode.
int RunSync(const SyncOptions& options, std::ostream& out, std::ostream& err);

}  // namespace morvane::cli
