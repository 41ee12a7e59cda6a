// Copies of the three local databases in a folder of their own, removed again at the end:
// what a dry run compares against, since a comparison that finds agreement stamps it.
#pragma once

#include <filesystem>

namespace morvane::cli {

class ScratchDatabases {
public:
    // Copies the customer database, Master.dat and prefcustom.dat beside it (those that
    // exist, with their journal files). Raises std::filesystem::filesystem_error on failure,
    // a missing customer database included.
    explicit ScratchDatabases(const std::filesystem::path& customerDb);
    ScratchDatabases(const ScratchDatabases&) = delete;
    ScratchDatabases& operator=(const ScratchDatabases&) = delete;

    // The copy of the customer database; Master.dat lies beside it.
    const std::filesystem::path& CustomerDb() const { return customerDb_; }

private:
    // Removed with everything in it when the copies go, or when copying fails half-way.
    struct Folder {
        std::filesystem::path path;
        Folder() = default;
        Folder(const Folder&) = delete;
        Folder& operator=(const Folder&) = delete;
        ~Folder();
    } dir_;
    std::filesystem::path customerDb_;
};

}  // namespace morvane::cli
