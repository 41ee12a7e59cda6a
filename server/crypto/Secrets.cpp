#include "server/crypto/Secrets.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <zlib.h>

#include <charconv>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include "server/util/Text.h"

namespace morvane::server {

namespace {

constexpr std::uint64_t kScryptN = 1u << 14;
constexpr std::uint64_t kScryptR = 8;
constexpr std::uint64_t kScryptP = 1;
constexpr std::size_t kSaltBytes = 16;
constexpr std::size_t kHashBytes = 32;

std::vector<unsigned char> Scrypt(std::string_view password, const std::vector<unsigned char>& salt,
                                  std::uint64_t n, std::uint64_t r, std::uint64_t p) {
    std::vector<unsigned char> out(kHashBytes);
    if (EVP_PBE_scrypt(password.data(), password.size(), salt.data(), salt.size(), n, r, p,
                       64 * 1024 * 1024, out.data(), out.size()) != 1)
        throw std::runtime_error("scrypt failed");
    return out;
}

bool FromHex(std::string_view hex, std::vector<unsigned char>& out) {
    if (hex.size() % 2) return false;
    out.clear();
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        unsigned value = 0;
        auto [ptr, ec] = std::from_chars(hex.data() + i, hex.data() + i + 2, value, 16);
        if (ec != std::errc() || ptr != hex.data() + i + 2) return false;
        out.push_back(static_cast<unsigned char>(value));
    }
    return true;
}

std::vector<std::string_view> Split(std::string_view s, char sep) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= s.size(); ++i) {
        if (i == s.size() || s[i] == sep) {
            parts.push_back(s.substr(start, i - start));
            start = i + 1;
        }
    }
    return parts;
}

}  // namespace

std::string HashPassword(std::string_view password) {
    std::vector<unsigned char> salt(kSaltBytes);
    if (RAND_bytes(salt.data(), static_cast<int>(salt.size())) != 1)
        throw std::runtime_error("no random bytes");
    const auto hash = Scrypt(password, salt, kScryptN, kScryptR, kScryptP);
    return "scrypt$" + std::to_string(kScryptN) + "$" + std::to_string(kScryptR) + "$" +
           std::to_string(kScryptP) + "$" + HexOf(salt.data(), salt.size()) + "$" +
           HexOf(hash.data(), hash.size());
}

bool VerifyPassword(std::string_view password, std::string_view stored) {
    const auto parts = Split(stored, '$');
    if (parts.size() != 6 || parts[0] != "scrypt") return false;
    std::uint64_t n = 0, r = 0, p = 0;
    for (auto [text, value] : {std::pair{parts[1], &n}, {parts[2], &r}, {parts[3], &p}}) {
        auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), *value);
        if (ec != std::errc() || ptr != text.data() + text.size()) return false;
    }
    if (n < 2 || n > (1u << 20) || r == 0 || r > 32 || p == 0 || p > 16) return false;
    std::vector<unsigned char> salt, expected;
    if (!FromHex(parts[4], salt) || !FromHex(parts[5], expected) || expected.size() != kHashBytes)
        return false;
    try {
        const auto actual = Scrypt(password, salt, n, r, p);
        return CRYPTO_memcmp(actual.data(), expected.data(), kHashBytes) == 0;
    } catch (const std::exception&) {
        return false;
    }
}

std::string RandomHex(std::size_t bytes) {
    std::vector<unsigned char> buf(bytes);
    if (RAND_bytes(buf.data(), static_cast<int>(buf.size())) != 1)
        throw std::runtime_error("no random bytes");
    return HexOf(buf.data(), buf.size());
}

std::uint32_t Crc32Of(std::string_view data) {
    uLong crc = crc32(0L, Z_NULL, 0);
    const auto* p = reinterpret_cast<const Bytef*>(data.data());
    std::size_t left = data.size();
    while (left > 0) {
        const uInt chunk = left > (1u << 30) ? (1u << 30) : static_cast<uInt>(left);
        crc = crc32(crc, p, chunk);
        p += chunk;
        left -= chunk;
    }
    return static_cast<std::uint32_t>(crc);
}

std::string CrcText(std::uint32_t crc) {
    char buf[9];
    std::snprintf(buf, sizeof buf, "%08X", crc);
    return buf;
}

}  // namespace morvane::server
