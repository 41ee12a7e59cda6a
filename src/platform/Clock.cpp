#include "platform/Clock.h"

#include <ctime>

namespace morvane::platform {

DateValue SystemClock::Now() const {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return DateValue::FromCivil({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                                 local.tm_hour, local.tm_min, local.tm_sec});
}

}  // namespace morvane::platform
