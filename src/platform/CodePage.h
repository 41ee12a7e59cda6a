// Text in the host's ANSI code page: Windows code page 932 (Shift-JIS) on the Japanese
// systems it serves, converted by ICU.
#pragma once

#include <string>
#include <string_view>

namespace morvane::platform {

// The UTF-8 text in code page 932; a character the code page lacks becomes "?", as the
// host's own conversion gives it.
std::string ToAnsiCodePage(std::string_view utf8);

}  // namespace morvane::platform
