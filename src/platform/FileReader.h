// A file read from start to end in pieces, its CRC-32 kept on the way, so that a file of any
// size is checked or sent without ever being held whole in memory.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>

#include "platform/ScopedFd.h"

namespace morvane::platform {

// The identity of one version of a file: the same inode, size and times.
struct FileVersion {
    dev_t device = 0;
    ino_t inode = 0;
    std::uint64_t size = 0;
    timespec modified{};
    timespec changed{};
    bool operator==(const FileVersion& other) const;
};

// The version a path names now, following links; nothing when there is none (errno tells).
std::optional<FileVersion> VersionAt(const std::filesystem::path& path);

class FileReader {
public:
    // Opens the file, following links. Nothing when it cannot be opened; errno tells why.
    static std::optional<FileReader> Open(const std::filesystem::path& path);
    FileReader(FileReader&& other) noexcept;
    FileReader& operator=(FileReader&&) = delete;
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;
    ~FileReader() = default;

    // Up to max bytes on from the last: the count, 0 at the end, -1 when reading fails.
    std::ptrdiff_t Read(char* into, std::size_t max);
    // The same, bounded by the file as it was opened: -1 (errno ESTALE) when it turns out
    // shorter, longer, rewritten, or no longer at its path by the time its last byte is read,
    // so a file changed under the reader is never taken for a whole one.
    std::ptrdiff_t ReadAsOpened(char* into, std::size_t max);

    // The version opened; its size is what ReadAsOpened delivers.
    const FileVersion& Opened() const { return opened_; }
    std::uint64_t Consumed() const { return consumed_; }
    // Of the bytes read so far.
    std::uint32_t Crc() const { return crc_; }

private:
    FileReader(std::filesystem::path path, ScopedFd fd, FileVersion opened);
    bool StillAsOpened() const;

    std::filesystem::path path_;
    ScopedFd fd_;
    FileVersion opened_;
    std::uint64_t consumed_ = 0;
    std::uint32_t crc_ = 0;
};

}  // namespace morvane::platform
