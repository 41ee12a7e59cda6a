// Numbered names ("NeedDoc00" to "NeedDoc99", "Bunrui1" to "Bunrui16") made at compile time,
// so that declarations can point at them for as long as the program runs.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace morvane::record {

template <std::size_t N, std::size_t Len>
struct NameTable {
    std::array<std::array<char, Len>, N> text{};
    constexpr std::string_view operator[](std::size_t i) const { return text[i].data(); }
    static constexpr std::size_t size() { return N; }
};

// N names: the prefix and the numbers from `from`, zero-padded to `digits`.
template <std::size_t N, std::size_t Len>
constexpr NameTable<N, Len> Numbered(std::string_view prefix, int from, int digits) {
    NameTable<N, Len> t;
    for (std::size_t i = 0; i < N; ++i) {
        std::size_t at = 0;
        for (char c : prefix) t.text[i][at++] = c;
        char digitsText[12] = {};
        int n = from + static_cast<int>(i);
        int len = 0;
        do {
            digitsText[len++] = static_cast<char>('0' + n % 10);
            n /= 10;
        } while (n > 0);
        for (; len < digits; ++len) digitsText[len] = '0';
        while (len > 0) t.text[i][at++] = digitsText[--len];
        t.text[i][at] = '\0';
    }
    return t;
}

}  // namespace morvane::record
