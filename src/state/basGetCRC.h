// The check value of a file or of bytes, as the server's file hash carries it: CRC-32 in
// eight upper-case hexadecimal digits.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace morvane {
namespace platform {
struct FileVersion;
}

// "" when the file does not exist, "00000000" for an empty one.
std::string GetFileCRC(std::string_view path);
std::string GetCRC(std::string_view bytes);
// Keeps the check value of a file just read whole, so that GetFileCRC answers without
// reading it again for as long as the path names that very version.
void RememberFileCRC(std::string_view path, const platform::FileVersion& version,
                     std::uint32_t crc);
// The value as eight upper-case hexadecimal digits, leading zeros kept.
std::string CrcText(std::uint32_t crc);

}  // namespace morvane
