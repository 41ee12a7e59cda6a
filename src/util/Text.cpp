#include "util/Text.h"

#include <algorithm>

namespace morvane {
namespace {
constexpr std::string_view kIdeographicSpace = "\xE3\x80\x80";

bool IsBlankAt(std::string_view s, size_t pos, size_t& len) {
    const char c = s[pos];
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
        len = 1;
        return true;
    }
    if (s.substr(pos, 3) == kIdeographicSpace) {
        len = 3;
        return true;
    }
    return false;
}
}  // namespace

std::string_view TrimView(std::string_view s) {
    size_t len = 0;
    while (!s.empty() && IsBlankAt(s, 0, len)) s.remove_prefix(len);
    while (!s.empty()) {
        if (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n') {
            s.remove_suffix(1);
        } else if (s.size() >= 3 && s.substr(s.size() - 3) == kIdeographicSpace) {
            s.remove_suffix(3);
        } else {
            break;
        }
    }
    return s;
}

std::string Trim(std::string_view s) { return std::string(TrimView(s)); }

std::string ToUpperAscii(std::string_view s) {
    std::string out(s);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return out;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        char x = a[i], y = b[i];
        if (x >= 'a' && x <= 'z') x = static_cast<char>(x - 32);
        if (y >= 'a' && y <= 'z') y = static_cast<char>(y - 32);
        if (x != y) return false;
    }
    return true;
}

std::vector<std::string> Split(std::string_view s, std::string_view sep) {
    std::vector<std::string> parts;
    if (sep.empty()) {
        parts.emplace_back(s);
        return parts;
    }
    size_t start = 0;
    for (;;) {
        const size_t at = s.find(sep, start);
        if (at == std::string_view::npos) {
            parts.emplace_back(s.substr(start));
            return parts;
        }
        parts.emplace_back(s.substr(start, at - start));
        start = at + sep.size();
    }
}

std::string Join(const std::vector<std::string>& parts, std::string_view sep) {
    std::string out;
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i) out += sep;
        out += parts[i];
    }
    return out;
}

std::string ReplaceAll(std::string s, std::string_view from, std::string_view to) {
    if (from.empty()) return s;
    size_t pos = 0;
    while ((pos = s.find(from, pos)) != std::string::npos) {
        s.replace(pos, from.size(), to);
        pos += to.size();
    }
    return s;
}

bool StartsWith(std::string_view s, std::string_view prefix) {
    return s.substr(0, prefix.size()) == prefix;
}

char32_t NextCodePoint(std::string_view s, size_t& i) {
    const auto b0 = static_cast<unsigned char>(s[i]);
    size_t len = b0 < 0x80           ? 1
                 : (b0 >> 5) == 0x6  ? 2
                 : (b0 >> 4) == 0xE  ? 3
                 : (b0 >> 3) == 0x1E ? 4
                                     : 0;
    if (len == 0 || i + len > s.size()) {
        ++i;
        return 0xFFFD;
    }
    char32_t cp = len == 1 ? b0 : b0 & (0x7F >> len);
    for (size_t k = 1; k < len; ++k) {
        const auto b = static_cast<unsigned char>(s[i + k]);
        if ((b & 0xC0) != 0x80) {
            ++i;
            return 0xFFFD;
        }
        cp = (cp << 6) | (b & 0x3F);
    }
    i += len;
    return cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF) ? 0xFFFD : cp;
}

void AppendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

std::string FirstCharacter(std::string_view text) {
    if (text.empty()) return {};
    size_t n = 1;
    while (n < text.size() && (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80) ++n;
    return std::string(text.substr(0, n));
}

}  // namespace morvane
