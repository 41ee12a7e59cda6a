#include "state/mdlRegControlMorvane.h"

#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"

namespace morvane {
namespace {
platform::SettingsKey KeyOf(std::string_view application, std::string_view section,
                            std::string_view basePath) {
    return {std::string(basePath), std::string(application), std::string(section)};
}
}  // namespace

std::string ReadSettingValue(std::string_view application, std::string_view section,
                             std::string_view name, std::string_view defaultValue,
                             std::string_view /*root*/, std::string_view basePath) {
    const auto value = State().Settings().Read(KeyOf(application, section, basePath), name);
    if (!value) return std::string(defaultValue);
    // A value reads as text cut at its first zero character.
    return value->substr(0, value->find('\0'));
}

void WriteSettingValue(std::string_view application, std::string_view section,
                       std::string_view name, std::string_view value, std::string_view /*root*/,
                       std::string_view basePath) {
    State().Settings().Write(KeyOf(application, section, basePath), name, value);
}

void WriteSettingValue(std::string_view application, std::string_view section,
                       std::string_view name, std::int32_t value, std::string_view root,
                       std::string_view basePath) {
    WriteSettingValue(application, section, name, std::to_string(value), root, basePath);
}

std::string ReadMorvaneSetting(std::string_view name, std::string_view defaultValue) {
    return ReadSettingValue(reg::kApplication, reg::kSection, name, defaultValue,
                            reg::kRootCurrentUser, reg::kBasePath);
}

void WriteMorvaneSetting(std::string_view name, std::string_view value) {
    WriteSettingValue(reg::kApplication, reg::kSection, name, value, reg::kRootCurrentUser,
                      reg::kBasePath);
}

void WriteMorvaneSettingUnsynced(std::string_view name, std::string_view value) {
    State().Settings().Write(KeyOf(reg::kApplication, reg::kSection, reg::kBasePath), name, value,
                             platform::SettingsStore::Durability::Replaceable);
}

}  // namespace morvane
