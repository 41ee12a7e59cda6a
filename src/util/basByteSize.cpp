#include "util/basByteSize.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace morvane {
namespace {

std::string Grouped(double value) {
    const std::string digits = std::to_string(static_cast<long long>(std::llround(value)));
    std::string out;
    const size_t sign = !digits.empty() && digits[0] == '-' ? 1 : 0;
    out += digits.substr(0, sign);
    for (size_t i = sign; i < digits.size(); ++i) {
        if (i > sign && (digits.size() - i) % 3 == 0) out += ',';
        out += digits[i];
    }
    return out;
}

}  // namespace

std::string FormatByteSize(double bytes) {
    static constexpr std::array<const char*, 9> kUnits{" バイト", " KB", " MB", " GB", " TB",
                                                       " PB",     " EB", " ZB", " YB"};
    size_t steps = 0;
    double value = bytes;
    while (std::round(value) >= 1000 && steps + 1 < kUnits.size()) {
        value /= 1024;
        ++steps;
    }
    std::string number;
    if (steps > 0 && std::round(value) < 100) {
        char text[32];
        std::snprintf(text, sizeof text, "%.2f", value);
        number = text;
    } else {
        number = Grouped(value);
    }
    return number + kUnits[steps];
}

}  // namespace morvane
