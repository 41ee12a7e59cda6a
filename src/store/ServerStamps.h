// The server's stamps of one customer's 53 tables as its roster entry brought them: the
// texts in one buffer, each read once as a date, shared by the roster and the snapshot.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "store/BackupTableIndex.h"
#include "util/DateValue.h"

namespace morvane {

class ServerStamps {
public:
    ServerStamps();

    // "" for an index without a text or outside 0..52.
    std::string_view Text(int index) const;
    // The text as a date, when it is one.
    std::optional<DateValue> Date(int index) const;

    // A second text of the same index replaces the first.
    void SetText(int index, std::string_view text);

private:
    static constexpr double kNoDate = std::numeric_limits<double>::quiet_NaN();
    std::string texts_;
    std::array<std::uint32_t, kBackupTableCount> start_{};
    std::array<std::uint32_t, kBackupTableCount> length_{};
    std::array<double, kBackupTableCount> days_;
};

}  // namespace morvane
