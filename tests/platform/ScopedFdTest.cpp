// The file descriptor owner: closes once, hands ownership on, keeps a failure's errno.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "platform/ScopedFd.h"

namespace morvane::test {
namespace {

using platform::ScopedFd;

bool IsOpen(int fd) { return ::fcntl(fd, F_GETFD) != -1; }

// errno is what a failed write left for the caller; a released descriptor is not closed.
TEST(ScopedFd, ClosesWhatItOwnsOnceAndKeepsErrno) {
    int raw = -1;
    {
        ScopedFd fd(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        raw = fd.Get();
        ScopedFd assigned;
        assigned = ScopedFd(std::move(fd));
        EXPECT_FALSE(fd.Valid());
        EXPECT_TRUE(IsOpen(raw));
        errno = ENOSPC;
    }
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_FALSE(IsOpen(raw));
    ScopedFd other(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    const int kept = other.Release();
    EXPECT_EQ(other.Close(), 0);
    EXPECT_TRUE(IsOpen(kept));
    ::close(kept);
}

}  // namespace
}  // namespace morvane::test
