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
int OpenNull() { return ::open("/dev/null", O_RDONLY | O_CLOEXEC); }

TEST(ScopedFd, ClosesWhatItOwnsOnceAndKeepsErrno) {
    int raw = -1;
    {
        ScopedFd fd(OpenNull());
        raw = fd.Get();
        ScopedFd moved(std::move(fd));
        EXPECT_FALSE(fd.Valid());
        ScopedFd assigned;
        assigned = std::move(moved);
        EXPECT_TRUE(IsOpen(raw));
        errno = ENOSPC;  // what a failed write left for the caller
    }
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_FALSE(IsOpen(raw));

    ScopedFd other(OpenNull());
    const int kept = other.Release();
    EXPECT_EQ(other.Close(), 0) << "nothing left to close";
    EXPECT_TRUE(IsOpen(kept)) << "released, so not closed";
    ::close(kept);
}

}  // namespace
}  // namespace morvane::test
