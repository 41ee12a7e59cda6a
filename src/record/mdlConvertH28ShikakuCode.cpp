#include "record/mdlConvertH28ShikakuCode.h"

#include <limits>
#include <optional>
#include <string>

#include "util/Nz.h"
#include "util/Text.h"

namespace morvane {
namespace {

// The text as a 16-bit number when it is numeric and in range.
std::optional<std::int16_t> AsInteger(std::string_view text) {
    if (!IsNumericText(text)) return std::nullopt;
    const auto n = RoundToLong(LeadingNumber(Trim(text)));
    if (!n || *n < std::numeric_limits<std::int16_t>::min() ||
        *n > std::numeric_limits<std::int16_t>::max())
        return std::nullopt;
    return static_cast<std::int16_t>(*n);
}

// Where the last character starts, a multi-byte one taken whole.
size_t LastCharStart(std::string_view text) {
    size_t at = text.size() - 1;
    while (at > 0 && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80) --at;
    return at;
}

}  // namespace

std::int16_t ConvertH28ShikakuCode(std::string_view code) {
    if (code.empty()) return 0;
    if (const auto n = AsInteger(code)) return *n;
    const size_t last = LastCharStart(code);
    int base = 0;
    if (code.size() - last == 1) {
        const char c = ToUpperAscii(code.substr(last))[0];
        if (c >= 'A' && c <= 'Z') base = 1000 * (c - 'A' + 1);
    }
    const std::string rest = std::string(code.substr(0, last)) + "0";
    const auto n = AsInteger(rest);
    if (!n) return 0;
    const int sum = *n + base;
    // Two-character codes stay far below the limit; a longer one that would not fit gives 0.
    if (sum > std::numeric_limits<std::int16_t>::max()) return 0;
    return static_cast<std::int16_t>(sum);
}

}  // namespace morvane
