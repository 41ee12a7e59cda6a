// Check values and digests of byte strings, by zlib and OpenSSL: CRC-32 and SHA-256.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace morvane::platform {

// The CRC-32 of IEEE 802.3 (reflected polynomial 0xEDB88320, register preset to all ones,
// result inverted), continued from an earlier value over more bytes; start from 0.
std::uint32_t Crc32(std::uint32_t crc, std::string_view bytes);

// The SHA-256 digest of the bytes, in the standard's byte order.
std::array<std::uint8_t, 32> Sha256(std::string_view bytes);

}  // namespace morvane::platform
