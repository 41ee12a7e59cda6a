#include "platform/Checksum.h"

#include <openssl/evp.h>
#include <zlib.h>

#include <limits>
#include <memory>
#include <stdexcept>

namespace morvane::platform {

std::uint32_t Crc32(std::uint32_t crc, std::string_view bytes) {
    uLong value = crc;
    const auto* p = reinterpret_cast<const Bytef*>(bytes.data());
    size_t left = bytes.size();
    // zlib counts in uInt; a larger buffer goes in pieces.
    constexpr size_t kChunk = std::numeric_limits<uInt>::max();
    while (left > 0) {
        const size_t n = left < kChunk ? left : kChunk;
        value = crc32(value, p, static_cast<uInt>(n));
        p += n;
        left -= n;
    }
    return static_cast<std::uint32_t>(value);
}

std::array<std::uint8_t, 32> Sha256(std::string_view bytes) {
    std::array<std::uint8_t, 32> digest{};
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> ctx(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    unsigned int length = 0;
    if (!ctx || EVP_DigestInit_ex(ctx.get(), EVP_sha256(), nullptr) != 1 ||
        EVP_DigestUpdate(ctx.get(), bytes.data(), bytes.size()) != 1 ||
        EVP_DigestFinal_ex(ctx.get(), digest.data(), &length) != 1 || length != digest.size())
        throw std::runtime_error("SHA-256 failed");
    return digest;
}

}  // namespace morvane::platform
