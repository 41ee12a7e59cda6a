// `morvane call`: members of the public object by name, several in one process so that
// the login and the worker slots carry from one call to the next.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace morvane::cli {

struct MemberCall {
    std::string member;
    std::vector<std::string> args;
};

// Splits "A x y --then B z" into calls.
std::vector<MemberCall> SplitCalls(const std::vector<std::string>& words);
// Runs the calls on one object, printing each result on its own line. Returns 0, or 2 at
// the first call that cannot be made (unknown member, wrong arguments).
int RunCalls(const std::vector<MemberCall>& calls, std::ostream& out, std::ostream& err);
// The members and their parameters, one per line.
void ListMembers(std::ostream& out);

}  // namespace morvane::cli
