#include "platform/FileReader.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "platform/Checksum.h"

namespace morvane::platform {
namespace {

FileVersion VersionOf(const struct stat& st) {
    return {st.st_dev, st.st_ino, static_cast<std::uint64_t>(st.st_size), st.st_mtim, st.st_ctim};
}

bool SameTime(const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}  // namespace

bool FileVersion::operator==(const FileVersion& other) const {
    return device == other.device && inode == other.inode && size == other.size &&
           SameTime(modified, other.modified) && SameTime(changed, other.changed);
}

std::optional<FileVersion> VersionAt(const std::filesystem::path& path) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) return std::nullopt;
    return VersionOf(st);
}

std::optional<FileReader> FileReader::Open(const std::filesystem::path& path) {
    ScopedFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!fd.Valid()) return std::nullopt;
    struct stat st {};
    if (::fstat(fd.Get(), &st) != 0) return std::nullopt;
    ::posix_fadvise(fd.Get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    return FileReader(path, std::move(fd), VersionOf(st));
}

FileReader::FileReader(std::filesystem::path path, ScopedFd fd, FileVersion opened)
    : path_(std::move(path)), fd_(std::move(fd)), opened_(opened) {}

FileReader::FileReader(FileReader&& other) noexcept
    : path_(std::move(other.path_)),
      fd_(std::move(other.fd_)),
      opened_(other.opened_),
      consumed_(other.consumed_),
      crc_(other.crc_) {}

std::ptrdiff_t FileReader::Read(char* into, std::size_t max) {
    for (;;) {
        const ssize_t n = ::read(fd_.Get(), into, max);
        if (n < 0 && errno == EINTR) continue;
        if (n > 0) {
            consumed_ += static_cast<std::uint64_t>(n);
            crc_ = Crc32(crc_, std::string_view(into, static_cast<std::size_t>(n)));
        }
        return n;
    }
}

std::ptrdiff_t FileReader::ReadAsOpened(char* into, std::size_t max) {
    const std::uint64_t left = opened_.size - consumed_;
    if (left == 0) return 0;
    std::size_t want = max < left ? max : static_cast<std::size_t>(left);
    std::size_t got = 0;
    // A short read is not the end: the file is read until its opened size is reached.
    while (got < want) {
        const std::ptrdiff_t n = Read(into + got, want - got);
        if (n < 0) return -1;
        if (n == 0) {
            errno = ESTALE;
            return -1;
        }
        got += static_cast<std::size_t>(n);
    }
    if (consumed_ == opened_.size && !StillAsOpened()) {
        errno = ESTALE;
        return -1;
    }
    return static_cast<std::ptrdiff_t>(got);
}

bool FileReader::StillAsOpened() const {
    char probe;
    ssize_t n;
    do n = ::pread(fd_.Get(), &probe, 1, static_cast<off_t>(opened_.size));
    while (n < 0 && errno == EINTR);
    if (n != 0) return false;  // grown, or unreadable past the end
    struct stat now {};
    if (::fstat(fd_.Get(), &now) != 0 || !(VersionOf(now) == opened_)) return false;
    // Unlinked or replaced: the path no longer names what was read.
    const auto atPath = VersionAt(path_);
    return atPath && *atPath == opened_;
}

}  // namespace morvane::platform
