#include "util/Nz.h"

#include <cmath>
#include <cstdlib>
#include <limits>

#include "util/Text.h"

namespace morvane {
namespace {

// Length of the number at the start of s (after blanks were skipped), 0 when none.
size_t NumberLength(std::string_view s) {
    size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    size_t digits = 0;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') ++i, ++digits;
    if (i < s.size() && s[i] == '.') {
        ++i;
        while (i < s.size() && s[i] >= '0' && s[i] <= '9') ++i, ++digits;
    }
    if (digits == 0) return 0;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
        size_t j = i + 1;
        if (j < s.size() && (s[j] == '+' || s[j] == '-')) ++j;
        size_t expDigits = 0;
        while (j < s.size() && s[j] >= '0' && s[j] <= '9') ++j, ++expDigits;
        if (expDigits) i = j;
    }
    return i;
}

std::string_view SkipLeadingBlanks(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    return s;
}

}  // namespace

std::optional<std::int32_t> RoundToLong(double d) {
    if (!std::isfinite(d)) return std::nullopt;
    const double r = std::nearbyint(d);  // the default rounding mode is half to even
    if (r < std::numeric_limits<std::int32_t>::min() ||
        r > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    return static_cast<std::int32_t>(r);
}

double LeadingNumber(std::string_view text) {
    const std::string_view s = SkipLeadingBlanks(text);
    const size_t n = NumberLength(s);
    if (n == 0) return 0.0;
    return std::strtod(std::string(s.substr(0, n)).c_str(), nullptr);
}

bool IsNumericText(std::string_view text) {
    const std::string_view s = TrimView(text);
    return !s.empty() && NumberLength(s) == s.size();
}

bool IsNumeric(const Value& v) {
    if (v.IsNumber() || v.IsEmpty()) return true;
    if (v.IsText()) return IsNumericText(v.AsText());
    return false;
}

std::string NzString(const Value& v) { return v.ToText(); }

std::int32_t NzLong(std::string_view text) { return RoundToLong(LeadingNumber(text)).value_or(0); }

std::int32_t NzLong(const Value& v) {
    if (v.IsEmpty() || v.IsNull()) return 0;
    if (v.IsBool()) return v.AsBool() ? -1 : 0;
    if (v.IsLong()) return v.AsLong();
    if (v.IsDouble()) return RoundToLong(v.AsDouble()).value_or(0);
    if (v.IsDateValue()) return RoundToLong(v.AsDate().Days()).value_or(0);
    return NzLong(v.AsText());
}

std::string NzDateText(const Value& v) {
    if (v.IsDateValue()) return v.AsDate().Text();
    if (v.IsText() && IsDateText(v.AsText())) return v.AsText();
    return {};
}

}  // namespace morvane
