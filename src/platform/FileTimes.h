// A file's three times (creation, last access, last change) as local dates, read from the
// file system and written back to it.
#pragma once

#include <filesystem>
#include <optional>

#include "util/DateValue.h"

namespace morvane::platform {

struct FileTimes {
    // The birth time where the file system keeps one, else the last status change.
    DateValue created;
    DateValue accessed;
    DateValue modified;
};

std::optional<FileTimes> ReadFileTimes(const std::filesystem::path& file);

// Sets the access and modification times to whole seconds of local time; a time not given
// is left as it is. A creation time cannot be set on this platform. False on failure.
bool WriteFileTimes(const std::filesystem::path& file, std::optional<DateValue> accessed,
                    std::optional<DateValue> modified);

}  // namespace morvane::platform
