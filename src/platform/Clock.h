// The local clock, behind an interface so that tests can set the time.
#pragma once

#include "util/DateValue.h"

namespace morvane::platform {

class Clock {
public:
    virtual ~Clock() = default;
    // The local date and time, to the second.
    virtual DateValue Now() const = 0;
};

class SystemClock final : public Clock {
public:
    DateValue Now() const override;
};

}  // namespace morvane::platform
