// The user's folder for temporary files.
#pragma once

#include <cstdint>
#include <string>

namespace morvane {

// The temporary folder ($TMPDIR, else /tmp) ending in the separator; "" when its text does
// not fit a buffer of bufferSize characters with its terminating NUL.
std::string GetTempFolder(std::int32_t bufferSize);

}  // namespace morvane
