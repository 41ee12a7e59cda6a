#include "platform/basFileTime.h"

#include <optional>
#include <string>

#include "platform/FileTimes.h"

namespace morvane {

std::int32_t GetFileTimes(std::string_view path, DateValue& created, DateValue& accessed,
                          DateValue& modified) {
    const auto times = platform::ReadFileTimes(std::string(path));
    if (!times) return 0;
    created = times->created;
    accessed = times->accessed;
    modified = times->modified;
    return 1;
}

std::int32_t SetFileTimes(std::string_view path, DateValue /*created*/, DateValue accessed,
                          DateValue modified) {
    const auto given = [](DateValue d) {
        return d.Days() != 0.0 ? std::optional<DateValue>(d) : std::nullopt;
    };
    return platform::WriteFileTimes(std::string(path), given(accessed), given(modified)) ? 1 : 0;
}

}  // namespace morvane
