// Small text helpers shared by the page code: case-insensitive keys, numbers, stamps, names.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace morvane::server {

std::string ToUpperAscii(std::string_view s);
bool Iequals(std::string_view a, std::string_view b);
// True when `s` starts with `prefix`, ASCII letters compared without case.
bool IstartsWith(std::string_view s, std::string_view prefix);

// The number that a text begins with (blanks, sign, digits), 0 when there is none.
std::int64_t LeadingNumber(std::string_view s);
// A whole text that is a decimal integer within 32 bits, or nothing.
std::optional<std::int32_t> ParseInt32(std::string_view s);

// True when the text is valid UTF-8 and holds only characters an XML 1.0 document may carry.
bool IsXmlSafe(std::string_view s);

// Server clock text "yyyy/MM/dd hh:mm:ss" in local time (24-hour).
std::string StampText(std::chrono::system_clock::time_point t);

std::string HexOf(const unsigned char* data, std::size_t n);

}  // namespace morvane::server
