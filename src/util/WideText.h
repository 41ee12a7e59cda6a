// Full-width widening of a UTF-8 text, as the host's wide conversion does it: ASCII and
// half-width katakana (with their voicing marks) become their full-width forms.
#pragma once

#include <string>
#include <string_view>

namespace morvane {

std::string WidenText(std::string_view text);

}  // namespace morvane
