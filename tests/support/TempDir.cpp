#include "support/TempDir.h"

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

namespace morvane::test {

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "morvane-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
}

}  // namespace morvane::test
