// What the sync engine's tests share: a run over the scripted component and what came of it.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>
#include <string>

#include "ScriptedComponent.h"
#include "SyncRun.h"

namespace morvane::cli {

// What moved and what stayed, with the exit code.
struct Counts {
    int downloads = 0, uploads = 0, conflicts = 0, failures = 0, planned = 0, exitCode = 0;
    friend bool operator==(const Counts&, const Counts&) = default;
};
std::ostream& operator<<(std::ostream& out, const Counts& c);

struct Outcome {
    SyncSummary summary;
    std::string out;  // the status lines and the summary
    Counts counts;
    bool Says(const std::string& text) const { return out.find(text) != std::string::npos; }
};

// One run over the customer database /data/Customer.dat.
Outcome RunWith(ScriptedComponent& c, SyncOptions options = {});

}  // namespace morvane::cli
