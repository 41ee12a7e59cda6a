// Several texts as one, a text a line, to check them against one block of a data file.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace morvane::test {

inline std::string JoinedLines(const std::vector<std::string>& texts) {
    std::string joined;
    for (std::size_t i = 0; i < texts.size(); ++i) joined += (i == 0 ? "" : "\n") + texts[i];
    return joined;
}

}  // namespace morvane::test
