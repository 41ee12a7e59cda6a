// Password hashing, random tokens and file checksums: the server's uses of OpenSSL and zlib.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace morvane::server {

// "scrypt$N$r$p$<salt hex>$<hash hex>" with a fresh random salt.
std::string HashPassword(std::string_view password);
// Constant-time check of a password against a stored hash; false for a malformed hash.
bool VerifyPassword(std::string_view password, std::string_view stored);

// `bytes` random bytes as lower-case hex.
std::string RandomHex(std::size_t bytes);

std::uint32_t Crc32Of(std::string_view data);
// Eight upper-case hex digits.
std::string CrcText(std::uint32_t crc);

}  // namespace morvane::server
