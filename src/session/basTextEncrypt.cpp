#include "session/basTextEncrypt.h"

#include <BuildConfig.h>

#include <cstdint>
#include <vector>

#include "util/Nz.h"
#include "util/Text.h"

namespace morvane {
namespace {

// The key index wraps at the phrase's length in characters, not at its byte length: only
// the first 64 bytes of its 16-bit form are used. Installations depend on this reading.
constexpr size_t kKeyWrap = 64;

// The text's internal 16-bit form: two bytes per unit, low byte first.
std::vector<std::uint8_t> ToUtf16Bytes(std::string_view s) {
    std::vector<std::uint8_t> out;
    out.reserve(s.size() * 2);
    auto put = [&](std::uint16_t u) {
        out.push_back(static_cast<std::uint8_t>(u & 0xFF));
        out.push_back(static_cast<std::uint8_t>(u >> 8));
    };
    for (size_t i = 0; i < s.size();) {
        const char32_t cp = NextCodePoint(s, i);
        if (cp >= 0x10000) {
            put(static_cast<std::uint16_t>(0xD800 + ((cp - 0x10000) >> 10)));
            put(static_cast<std::uint16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
        } else {
            put(static_cast<std::uint16_t>(cp));
        }
    }
    return out;
}

// Back from 16-bit units; a lone surrogate becomes U+FFFD, an odd last byte is dropped.
std::string FromUtf16Bytes(const std::vector<std::uint8_t>& bytes) {
    std::string out;
    const size_t units = bytes.size() / 2;
    auto unit = [&](size_t k) {
        return static_cast<char16_t>(bytes[2 * k] | (bytes[2 * k + 1] << 8));
    };
    for (size_t k = 0; k < units; ++k) {
        const char16_t u = unit(k);
        if (u >= 0xD800 && u <= 0xDBFF && k + 1 < units && unit(k + 1) >= 0xDC00 &&
            unit(k + 1) <= 0xDFFF) {
            AppendUtf8(out, 0x10000 + ((static_cast<char32_t>(u) - 0xD800) << 10) +
                                (unit(k + 1) - 0xDC00));
            ++k;
        } else if (u >= 0xD800 && u <= 0xDFFF) {
            AppendUtf8(out, 0xFFFD);
        } else {
            AppendUtf8(out, u);
        }
    }
    return out;
}

void Cipher(std::vector<std::uint8_t>& bytes, std::string_view passPhrase) {
    const std::vector<std::uint8_t> key = ToUtf16Bytes(passPhrase);
    if (key.empty()) return;
    size_t index = 0;
    for (auto& b : bytes) {
        b ^= key[index % key.size()];
        if (++index == kKeyWrap) index = 0;
    }
}

}  // namespace

std::string EncryptText(std::string_view plain, std::string_view passPhrase) {
    if (plain.empty()) return {};
    std::vector<std::uint8_t> bytes = ToUtf16Bytes(plain);
    Cipher(bytes, passPhrase);
    std::string out;
    for (const auto b : bytes) {
        out += std::to_string(b);
        out += ' ';
    }
    return Trim(out);
}

std::string DecryptText(std::string_view cipher, std::string_view passPhrase) {
    if (cipher.empty()) return {};
    const auto parts = Split(cipher, " ");
    std::vector<std::uint8_t> bytes(parts.size(), 0);
    for (size_t i = 0; i < parts.size(); ++i) {
        // Judged before rounding: 255.4 lies outside the byte range and is not rounded in.
        const double v = LeadingNumber(parts[i]);
        if (v >= 0 && v <= 255) bytes[i] = static_cast<std::uint8_t>(RoundToLong(v).value_or(0));
    }
    Cipher(bytes, passPhrase);
    return FromUtf16Bytes(bytes);
}

std::string EncryptText(std::string_view plain) { return EncryptText(plain, build::kPassPhrase); }
std::string DecryptText(std::string_view cipher) { return DecryptText(cipher, build::kPassPhrase); }

}  // namespace morvane
