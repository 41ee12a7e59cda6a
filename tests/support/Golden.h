// Expected wire texts, fixture rows and case tables kept as data beside the tests, so a reader
// sees the exact bytes the component must send or read without C++ quoting around them.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::test {

// The named blocks of one file under tests/data. A line "=== key" opens a block, whose text runs
// to the next such line; blank lines at its end are not part of it. Lines before the first block
// are the file's own notes. A missing file or key throws, which fails the test that asked.
class Golden {
public:
    explicit Golden(std::string_view file);

    const std::string& operator[](std::string_view key) const;
    // The block's lines.
    std::vector<std::string> Lines(std::string_view key) const;
    // The block's lines run together: a long body kept one key a line.
    std::string Joined(std::string_view key) const;
    // The block as a table: a line a row, cells parted by " | " (a lone "|" stays inside a cell,
    // as in the rows the database helpers print).
    std::vector<std::vector<std::string>> Table(std::string_view key) const;

private:
    std::string file_;
    std::map<std::string, std::string, std::less<>> blocks_;
};

}  // namespace morvane::test
