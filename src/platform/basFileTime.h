// A file's creation, access and modification times as local dates, read and written
// together so that one of them can be changed alone.
#pragma once

#include <cstdint>
#include <string_view>

#include "util/DateValue.h"

namespace morvane {

// 1 with the three times filled, 0 when the file cannot be read.
std::int32_t GetFileTimes(std::string_view path, DateValue& created, DateValue& accessed,
                          DateValue& modified);
// Writes each time other than 0, to the whole second; 1 on success, 0 otherwise. The
// creation time is accepted and left alone: this platform cannot set it.
std::int32_t SetFileTimes(std::string_view path, DateValue created, DateValue accessed,
                          DateValue modified);

}  // namespace morvane
