#include "support/LeftoverWrite.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/AtomicFile.h"

namespace morvane::test {

void LeaveUnfinishedWrite(const std::filesystem::path& target, const char* partial) {
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
