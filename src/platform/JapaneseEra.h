// The Japanese era of a date, from the platform's Japanese calendar, for the host's era
// date patterns.
#pragma once

#include <optional>
#include <string>

#include "util/DateValue.h"

namespace morvane::platform {

struct EraDate {
    std::string name;    // "令和"
    std::string letter;  // "R"
    int year = 0;        // 1 in the era's first year
};

// nullopt when the calendar cannot place the date.
std::optional<EraDate> JapaneseEra(DateValue date);

}  // namespace morvane::platform
