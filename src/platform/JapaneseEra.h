// The Japanese era of a date, from the platform's Japanese calendar, for the host's era
// date patterns.
#pragma once

#include <optional>
#include <string>

#include "util/DateFormat.h"
#include "util/DateValue.h"

namespace morvane::platform {

// nullopt when the calendar cannot place the date.
std::optional<EraDate> JapaneseEra(DateValue date);

}  // namespace morvane::platform
