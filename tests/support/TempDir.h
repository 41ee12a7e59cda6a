// A folder under the system's temporary folder, removed with everything in it at the end.
#pragma once

#include <filesystem>

namespace morvane::test {

class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::filesystem::path& Path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace morvane::test
