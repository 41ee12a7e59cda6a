// Dates in the host's Format patterns; the era of a date comes from whoever knows the
// calendar.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "util/DateValue.h"

namespace morvane {

struct EraDate {
    std::string name;    // "令和"
    std::string letter;  // "R"
    int year = 0;        // 1 in the era's first year
};

// The era of a date, or nothing when it cannot be placed.
using EraOf = std::function<std::optional<EraDate>(DateValue)>;

// A date in a pattern of the host's Format: yyyy yy MM M dd d hh h mm m (minutes after an
// hour) nn ss s, and the Japanese era's g gg ggg e ee; any other character stands as it is.
// Without an era, g gives nothing and e the year.
std::string FormatDate(DateValue date, std::string_view pattern, const EraOf& eraOf);

}  // namespace morvane
