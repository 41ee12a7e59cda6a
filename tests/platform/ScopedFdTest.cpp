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

TEST(ScopedFd, ClosesWhatItOwnsOnceAndKeepsErrno) {
    int raw = -1;
    {
        ScopedFd fd(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        raw = fd.Get();
        ASSERT_TRUE(fd.Valid());
        ScopedFd moved(std::move(fd));
        EXPECT_FALSE(fd.Valid());
        EXPECT_EQ(moved.Get(), raw);
        ScopedFd assigned;
        assigned = std::move(moved);
        EXPECT_TRUE(IsOpen(raw));
        errno = ENOSPC;  // what a failed write left for the caller
    }
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_FALSE(IsOpen(raw));

    ScopedFd other(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    const int kept = other.Release();
    other = ScopedFd(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(other.Close(), 0);
    EXPECT_EQ(other.Close(), 0) << "nothing left to close";
    EXPECT_TRUE(IsOpen(kept)) << "released, so not closed";
    ::close(kept);
}

}  // namespace
}  // namespace morvane::test
