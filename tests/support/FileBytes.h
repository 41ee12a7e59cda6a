// Files written and read whole, as bytes, for tests that check what reached the disk.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/basFileTime.h"

namespace morvane::test {

// Writes the bytes, making the file's folder first, and gives the path back.
inline std::filesystem::path WriteBytes(const std::filesystem::path& path,
                                        const std::string& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

// The bytes of a file; "" when it cannot be read.
inline std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The file's modification time as a stamp text; "" when it has none.
inline std::string ModifiedStamp(const std::filesystem::path& path) {
    DateValue c, a, m;
    return GetFileTimes(path.string(), c, a, m) == 1 ? m.StampText() : "";
}

}  // namespace morvane::test
