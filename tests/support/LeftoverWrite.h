// A replacement of a file that a killed process never finished, made for real: a child
// process begins it and ends at once, as under kill -9, with no clean-up run.
#pragma once

#include <filesystem>

namespace morvane::test {

// The child writes `partial` into the new version of target and dies. Fails the test when
// the child could not begin.
void LeaveUnfinishedWrite(const std::filesystem::path& target, const char* partial = "half of");

}  // namespace morvane::test
