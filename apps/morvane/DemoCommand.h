// `morvane demo`: the whole system on one machine, from nothing: the reference server on
// 127.0.0.1 with a fresh data folder and certificate, an account, and the offices that
// work against it. Leaves nothing running.
#pragma once

#include <filesystem>
#include <iosfwd>

namespace morvane::cli {

struct DemoOptions {
    std::filesystem::path workDir;  // empty: a new temporary folder, removed at the end
    bool keep = false;              // keep the work folder for a look afterwards
};

int RunDemo(const DemoOptions& options, std::ostream& out);

}  // namespace morvane::cli
