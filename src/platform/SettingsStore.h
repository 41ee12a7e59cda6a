// The per-user settings key: one text file per key under the user's configuration folder,
// every value a text, shared between processes (the running token lives here).
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace morvane::platform {

// Where a key lives: a base path such as "SOFTWARE\Tolmar\", an application name and a
// section, the three parts that name a key of the settings store.
struct SettingsKey {
    std::string basePath;
    std::string application;
    std::string section;
};

class SettingsStore {
public:
    // root is the configuration folder ($XDG_CONFIG_HOME or ~/.config by default).
    explicit SettingsStore(std::filesystem::path root);
    static std::filesystem::path DefaultRoot();

    // Read afresh from the file on every call, so that another process's write is seen.
    std::optional<std::string> Read(const SettingsKey& key, std::string_view name) const;
    // Written atomically under an advisory lock; the file is readable by its owner only.
    // Returns false when the store could not be written.
    bool Write(const SettingsKey& key, std::string_view name, std::string_view value) const;
    std::map<std::string, std::string> ReadAll(const SettingsKey& key) const;

    std::filesystem::path FileFor(const SettingsKey& key) const;
    const std::filesystem::path& Root() const { return root_; }

private:
    std::filesystem::path root_;
};

}  // namespace morvane::platform
