// Files replaced whole or not at all: a new version is written under an unpredictable name
// beside the old one and renamed over it only once it is complete and on disk.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/ScopedFd.h"

namespace morvane::platform {

class Env;

class AtomicFile {
public:
    // Opens the new version beside target: created exclusively, no link followed. It takes
    // the old file's mode when there is one, else `mode` (under the umask). Nothing when the
    // folder cannot take it; errno tells why. Its writes, flush and rename go through env
    // when one is given, else straight to the system.
    static std::optional<AtomicFile> Create(const std::filesystem::path& target, mode_t mode = 0666,
                                            Env* env = nullptr);
    AtomicFile(AtomicFile&& other) noexcept;
    AtomicFile& operator=(AtomicFile&&) = delete;
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    // An uncommitted version is removed: the old file stays as it was.
    ~AtomicFile();

    // Appends, so a version can be written piece by piece as its bytes arrive.
    bool Write(std::string_view bytes);
    // Appends the whole of a regular file, opened without following a link.
    bool CopyFrom(const std::filesystem::path& source);
    // Sets the mode exactly, whatever the old file's was and whatever the umask.
    bool SetMode(mode_t mode);
    // Sets the modification time of the new version; the access time is left as it is.
    bool SetModified(timespec modified);

    // Flushes the new version to disk, runs beforeReplace (the last moment the old file is
    // still in place; a non-zero errno from it stops the replace), renames the new version
    // over the target and flushes the folder. 0 on success, else an errno value.
    int Commit(const std::function<int()>& beforeReplace = {});

    // Bytes appended so far.
    std::uint64_t Written() const { return written_; }
    const std::filesystem::path& Target() const { return target_; }
    // Where the new version is written until it is committed.
    const std::filesystem::path& TempPath() const { return temp_; }

private:
    AtomicFile(std::filesystem::path target, std::filesystem::path temp, ScopedFd fd, Env* env);
    void Discard();
    bool WriteAll(const char* data, std::size_t size);

    std::filesystem::path target_;
    std::filesystem::path temp_;
    ScopedFd fd_;
    Env* env_ = nullptr;
    std::uint64_t written_ = 0;
    bool committed_ = false;
};

// Replaces target with bytes as above. 0 on success, else an errno value.
int WriteFileAtomically(const std::filesystem::path& target, std::string_view bytes,
                        mode_t mode = 0666, Env* env = nullptr);

// New versions of target that a killed process left beside it: while one is there, a write
// of target was under way and never finished.
std::vector<std::filesystem::path> LeftoverVersions(const std::filesystem::path& target);
// Removes them; the target itself is not touched.
void RemoveLeftoverVersions(const std::filesystem::path& target);

// Flushes a folder's entries (a rename or a new name in it) to disk. 0 or an errno value.
int SyncFolder(const std::filesystem::path& folder);

}  // namespace morvane::platform
