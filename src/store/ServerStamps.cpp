#include "store/ServerStamps.h"

#include <cmath>

namespace morvane {

std::string_view ServerStamps::Text(int index) const {
    if (index < 0 || index >= kBackupTableCount) return {};
    const auto i = static_cast<size_t>(index);
    return std::string_view(texts_).substr(start_[i], length_[i]);
}

std::optional<DateValue> ServerStamps::Date(int index) const {
    if (index < 0 || index >= kBackupTableCount) return std::nullopt;
    const double days = days_[static_cast<size_t>(index)];
    if (std::isnan(days)) return std::nullopt;
    return DateValue(days);
}

void ServerStamps::Mark(int index, size_t start) {
    const auto i = static_cast<size_t>(index);
    start_[i] = static_cast<std::uint32_t>(start);
    length_[i] = static_cast<std::uint32_t>(texts_.size() - start);
    const auto date = DateValue::Parse(Text(index));
    days_[i] = date ? date->Days() : kNoDate;
}

}  // namespace morvane
