// SHA-256 digests of bytes and of texts in the host's ANSI code page.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

class SHA256String {
public:
    // The digest of the message. The padding is appended to the message itself, which
    // comes back grown to a multiple of 64 bytes. The bit count is kept in 32 signed bits:
    // a message of 2^28 bytes or more is an overflow (error 6).
    std::array<std::uint8_t, 32> Hash(std::vector<std::uint8_t>& message) const;
    // The digest of the text's code page 932 bytes as 64 upper-case hexadecimal digits.
    std::string HashString(std::string_view text) const;
};

}  // namespace morvane
