#include "platform/SHA256String.h"

#include "platform/Checksum.h"
#include "platform/CodePage.h"
#include "util/RuntimeError.h"

namespace morvane {
namespace {
constexpr size_t kLargestMessage = size_t{1} << 28;  // its bit count overflows 31 bits
}

std::array<std::uint8_t, 32> SHA256String::Hash(std::vector<std::uint8_t>& message) const {
    if (message.size() >= kLargestMessage) throw RuntimeError(errnum::kOverflow, "Overflow");
    const auto digest = platform::Sha256(
        std::string_view(reinterpret_cast<const char*>(message.data()), message.size()));
    const auto bits = static_cast<std::uint32_t>(message.size() * 8);
    message.push_back(0x80);
    while (message.size() % 64 != 56) message.push_back(0);
    for (int i = 0; i < 4; ++i) message.push_back(0);
    for (int shift = 24; shift >= 0; shift -= 8)
        message.push_back(static_cast<std::uint8_t>(bits >> shift));
    return digest;
}

std::string SHA256String::HashString(std::string_view text) const {
    const std::string ansi = platform::ToAnsiCodePage(text);
    std::vector<std::uint8_t> bytes(ansi.begin(), ansi.end());
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    for (const std::uint8_t b : Hash(bytes)) {
        out += kHex[b >> 4];
        out += kHex[b & 15];
    }
    return out;
}

}  // namespace morvane
