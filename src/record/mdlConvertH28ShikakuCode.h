// The qualification code of a staff member's text form turned into the number the host
// sorts and groups by: plain numbers stand, a trailing letter adds its thousands.
#pragma once

#include <cstdint>
#include <string_view>

namespace morvane {

// "" gives 0, "17" gives 17, "5A" gives 1050 (the letter counts as a zero units digit);
// anything that does not read as such a code gives 0.
std::int16_t ConvertH28ShikakuCode(std::string_view code);

}  // namespace morvane
