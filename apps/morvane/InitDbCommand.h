// `morvane init-db`: the host's three local databases in a folder, as a fresh host has
// them or filled with generated customers.
#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>

namespace morvane::cli {

// sample 0: a fresh host's files, holding only the host's sample customer. Returns the
// exit code; existing files are left untouched and refused.
int RunInitDb(const std::filesystem::path& dir, std::int32_t sample, std::ostream& out,
              std::ostream& err);

}  // namespace morvane::cli
