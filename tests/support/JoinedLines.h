// Several texts as one, a text a line, to check them against one block of a data file.
#pragma once

#include <string>
#include <vector>

namespace morvane::test {

inline std::string JoinedLines(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) joined += (joined.empty() ? "" : "\n") + text;
    return joined;
}

}  // namespace morvane::test
