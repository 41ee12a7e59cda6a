// The check value of a file or of bytes, as the server's file hash carries it: CRC-32 in
// eight upper-case hexadecimal digits.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace morvane {

// "" when the file does not exist, "00000000" for an empty one.
std::string GetFileCRC(std::string_view path);
std::string GetCRC(std::string_view bytes);
// The value as eight upper-case hexadecimal digits, leading zeros kept.
std::string CrcText(std::uint32_t crc);

}  // namespace morvane
