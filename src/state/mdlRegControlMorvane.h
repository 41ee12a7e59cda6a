// Reads and writes values of the per-user settings key; every value is stored as text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace morvane {

// The value, or the default when it is missing (a value stored empty reads as empty).
std::string ReadSettingValue(std::string_view application, std::string_view section,
                             std::string_view name, std::string_view defaultValue,
                             std::string_view root, std::string_view basePath);
// A failed write is lost without a word, as a failed registry write was.
void WriteSettingValue(std::string_view application, std::string_view section,
                       std::string_view name, std::string_view value, std::string_view root,
                       std::string_view basePath);
void WriteSettingValue(std::string_view application, std::string_view section,
                       std::string_view name, std::int32_t value, std::string_view root,
                       std::string_view basePath);

// The same on the component's own key.
std::string ReadMorvaneSetting(std::string_view name, std::string_view defaultValue = {});
void WriteMorvaneSetting(std::string_view name, std::string_view value);
// A value the next run can do without, such as the running token: written as atomically, but
// not flushed to disk, as it changes with every reply.
void WriteMorvaneSettingUnsynced(std::string_view name, std::string_view value);

}  // namespace morvane
