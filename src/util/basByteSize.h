// A byte count as a person reads it: "8.00 MB", "512 バイト".
#pragma once

#include <string>

namespace morvane {

// Divides by 1024 while the rounded value is 1000 or more; two decimals when divided at
// least once and below 100, else whole numbers with thousands separators; then the unit.
std::string FormatByteSize(double bytes);

}  // namespace morvane
