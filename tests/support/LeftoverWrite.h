// A replacement of a file that a killed process never finished, made for real: a child
// process begins it and ends at once, as under kill -9, with no clean-up run.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "platform/AtomicFile.h"

namespace morvane::test {

// The child writes `partial` into the new version of target and dies. Fails the test when
// the child could not begin.
inline void LeaveUnfinishedWrite(const std::filesystem::path& target,
                                 const char* partial = "half of") {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        auto next = platform::AtomicFile::Create(target);
        const bool begun = next && next->Write(partial);
        ::_exit(begun ? 0 : 1);  // no destructor runs
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace morvane::test
