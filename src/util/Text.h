// Small text helpers over UTF-8 std::string used across the component.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace morvane {

// Outer blanks (space, tab, CR, LF and the ideographic space) removed.
std::string_view TrimView(std::string_view s);
std::string Trim(std::string_view s);
// ASCII letters folded; other bytes, Japanese among them, are kept as they are.
std::string ToUpperAscii(std::string_view s);
bool EqualsNoCase(std::string_view a, std::string_view b);
std::vector<std::string> Split(std::string_view s, std::string_view sep);
std::string Join(const std::vector<std::string>& parts, std::string_view sep);
std::string ReplaceAll(std::string s, std::string_view from, std::string_view to);
bool StartsWith(std::string_view s, std::string_view prefix);
// The first character of a UTF-8 text, all its bytes.
std::string FirstCharacter(std::string_view text);
// One code point from UTF-8 at i, moving i past it; an invalid sequence gives U+FFFD and
// moves one byte.
char32_t NextCodePoint(std::string_view s, size_t& i);
void AppendUtf8(std::string& out, char32_t cp);

}  // namespace morvane
