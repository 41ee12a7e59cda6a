#include "store/ServerStamps.h"

#include <cmath>

namespace morvane {

ServerStamps::ServerStamps() {
    days_.fill(kNoDate);
    texts_.reserve(kBackupTableCount * 19);  // one stamp text a table, as the roster sends them
}

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

void ServerStamps::SetText(int index, std::string_view text) {
    if (index < 0 || index >= kBackupTableCount) return;
    const auto i = static_cast<size_t>(index);
    start_[i] = static_cast<std::uint32_t>(texts_.size());
    length_[i] = static_cast<std::uint32_t>(text.size());
    texts_ += text;
    const auto date = DateValue::ParseStamp(text);
    days_[i] = date ? date->Days() : kNoDate;
}

}  // namespace morvane
