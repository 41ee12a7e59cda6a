// The error trap: every failure end of a facade member tells the pending run-time error to
// the user here, clears it and sets the mouse pointer back.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace morvane {

// Makes the exception the pending error, to be shown by ErrTrap.
void CaptureError(std::exception_ptr error);
// Shows the pending error by its number, clears it, and sets the pointer back.
void ErrTrap();
// The text the trap shows for an error number and description ("" for none).
std::string ErrTrapMessage(std::int32_t number, const std::string& description);

}  // namespace morvane
