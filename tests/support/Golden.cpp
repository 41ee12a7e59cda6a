#include "support/Golden.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "util/Text.h"

namespace morvane::test {

Golden::Golden(std::string_view file) : file_(file) {
    const std::string path = std::string(MORVANE_TEST_DATA_DIR) + "/" + file_;
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("no test data file " + path);
    std::stringstream whole;
    whole << in.rdbuf();

    std::vector<std::string> lines = Split(whole.str(), "\n");
    if (!lines.empty() && lines.back().empty()) lines.pop_back();  // the file's last newline
    std::string* block = nullptr;
    bool first = true;
    for (const std::string& line : lines) {
        if (line.rfind("=== ", 0) == 0) {
            block = &blocks_[line.substr(4)];
            block->clear();
            first = true;
        } else if (block) {
            if (!first) *block += '\n';
            *block += line;
            first = false;
        }
    }
    // Blank lines between blocks are for the reader.
    for (auto& [key, text] : blocks_)
        while (!text.empty() && text.back() == '\n') text.pop_back();
}

const std::string& Golden::operator[](std::string_view key) const {
    const auto it = blocks_.find(key);
    if (it == blocks_.end()) throw std::out_of_range(file_ + " has no block " + std::string(key));
    return it->second;
}

std::vector<std::string> Golden::Lines(std::string_view key) const {
    const std::string& text = (*this)[key];
    if (text.empty()) return {};
    return Split(text, "\n");
}

std::string Golden::Joined(std::string_view key) const { return Join(Lines(key), ""); }

std::vector<std::vector<std::string>> Golden::Table(std::string_view key) const {
    std::vector<std::vector<std::string>> rows;
    for (const std::string& line : Lines(key)) rows.push_back(Split(line, " | "));
    return rows;
}

}  // namespace morvane::test
