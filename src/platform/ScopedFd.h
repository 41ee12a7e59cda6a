// Owns one open file descriptor and closes it when it goes out of scope.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace morvane::platform {

class ScopedFd {
public:
    ScopedFd() = default;
    explicit ScopedFd(int fd) : fd_(fd) {}
    ScopedFd(ScopedFd&& other) noexcept : fd_(other.Release()) {}
    ScopedFd& operator=(ScopedFd&& other) noexcept {
        if (this != &other) {
            Drop();
            fd_ = other.Release();
        }
        return *this;
    }
    ScopedFd(const ScopedFd&) = delete;
    ScopedFd& operator=(const ScopedFd&) = delete;
    ~ScopedFd() { Drop(); }

    int Get() const { return fd_; }
    bool Valid() const { return fd_ >= 0; }
    int Release() { return std::exchange(fd_, -1); }
    // Closes now and says how that went: 0, or -1 with errno set (a delayed write error shows
    // here). Nothing open is 0.
    int Close() { return fd_ >= 0 ? ::close(Release()) : 0; }

private:
    // Cleanup after a failure must not overwrite the errno that tells why it failed.
    void Drop() {
        if (fd_ < 0) return;
        const int saved = errno;
        ::close(Release());
        errno = saved;
    }

    int fd_ = -1;
};

}  // namespace morvane::platform
