// The conversions every reader and worker leans on: Null-safe texts and numbers, and the
// number tests of the host's language.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "util/Value.h"

namespace morvane {

// Null or Empty gives "", anything else its text.
std::string NzString(const Value& v);
// Null or Empty gives 0; a number its value as a Long (rounded half to even); a text the
// number that it begins with, rounded the same way. Out of the Long range gives 0.
std::int32_t NzLong(const Value& v);
std::int32_t NzLong(std::string_view text);
inline std::int32_t NzLong(const std::string& text) { return NzLong(std::string_view(text)); }
inline std::int32_t NzLong(const char* text) { return NzLong(std::string_view(text)); }
// The date's text when the value is a date (or a text that reads as one), else "".
std::string NzDateText(const Value& v);

// The number a text begins with: blanks skipped, an optional sign, digits, one decimal
// point, an optional exponent. A text without a leading number gives 0.
double LeadingNumber(std::string_view text);
// Whether the whole text (outer blanks aside) is a number.
bool IsNumericText(std::string_view text);
bool IsNumeric(const Value& v);
// Rounds half to even and checks the Long range.
std::optional<std::int32_t> RoundToLong(double d);

}  // namespace morvane
