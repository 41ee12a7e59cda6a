#include "server/util/Text.h"

#include <cctype>
#include <charconv>
#include <ctime>
#include <limits>

namespace morvane::server {

namespace {
char Upper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }
}  // namespace

std::string ToUpperAscii(std::string_view s) {
    std::string out(s);
    for (char& c : out) c = Upper(c);
    return out;
}

bool Iequals(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (Upper(a[i]) != Upper(b[i])) return false;
    return true;
}

bool IstartsWith(std::string_view s, std::string_view prefix) {
    return s.size() >= prefix.size() && Iequals(s.substr(0, prefix.size()), prefix);
}

std::int64_t LeadingNumber(std::string_view s) {
    std::size_t i = 0;
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t')) ++i;
    bool negative = false;
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) negative = s[i++] == '-';
    std::int64_t value = 0;
    for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) {
        if (value > std::numeric_limits<std::int32_t>::max()) break;
        value = value * 10 + (s[i] - '0');
    }
    return negative ? -value : value;
}

std::optional<std::int32_t> ParseInt32(std::string_view s) {
    std::int32_t value = 0;
    if (s.empty()) return std::nullopt;
    const char* begin = s.data();
    if (*begin == '+') ++begin;
    auto [ptr, ec] = std::from_chars(begin, s.data() + s.size(), value);
    if (ec != std::errc() || ptr != s.data() + s.size()) return std::nullopt;
    return value;
}

bool IsXmlSafe(std::string_view s) {
    std::size_t i = 0;
    while (i < s.size()) {
        const auto c = static_cast<unsigned char>(s[i]);
        if (c < 0x80) {
            if (c < 0x20 && c != '\t' && c != '\n' && c != '\r') return false;
            ++i;
            continue;
        }
        std::size_t len = 0;
        std::uint32_t cp = 0;
        if ((c & 0xE0) == 0xC0) {
            len = 2;
            cp = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            len = 3;
            cp = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            len = 4;
            cp = c & 0x07;
        } else {
            return false;
        }
        if (i + len > s.size()) return false;
        for (std::size_t k = 1; k < len; ++k) {
            const auto cc = static_cast<unsigned char>(s[i + k]);
            if ((cc & 0xC0) != 0x80) return false;
            cp = (cp << 6) | (cc & 0x3F);
        }
        const bool overlong =
            (len == 2 && cp < 0x80) || (len == 3 && cp < 0x800) || (len == 4 && cp < 0x10000);
        if (overlong || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF) || cp == 0xFFFE ||
            cp == 0xFFFF)
            return false;
        i += len;
    }
    return true;
}

std::string StampText(std::chrono::system_clock::time_point t) {
    const std::time_t tt = std::chrono::system_clock::to_time_t(t);
    std::tm tm{};
    localtime_r(&tt, &tm);
    char buf[32];
    std::strftime(buf, sizeof buf, "%Y/%m/%d %H:%M:%S", &tm);
    return buf;
}

std::string HexOf(const unsigned char* data, std::size_t n) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string out;
    out.reserve(n * 2);
    for (std::size_t i = 0; i < n; ++i) {
        out += digits[data[i] >> 4];
        out += digits[data[i] & 0x0F];
    }
    return out;
}

}  // namespace morvane::server
