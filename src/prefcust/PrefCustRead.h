// What the two prefecture form workers share: their customer number narrowed as their read
// routine takes it, and the closing block of a worker routine that failed.
#pragma once

#include <cstdint>
#include <exception>

#include "session/mdlErrTrap.h"

namespace morvane::prefcust {

// The customer number as the forms' read routines take it: 16 bits, so a larger number
// fails there with an overflow.
std::int16_t FormCustomerNumber(std::int32_t custId);

// The error trap for the exception in flight, then the failure value.
template <class T>
T TrapFailure(T failure) {
    CaptureError(std::current_exception());
    ErrTrap();
    return failure;
}

}  // namespace morvane::prefcust
