// The per-user settings key: one text file per key under the user's configuration folder,
// every value a text, shared between processes (the running token lives here).
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <ctime>
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

// What a store did to its files since it was made.
struct SettingsStoreCounts {
    std::uint64_t parses = 0;  // files read and parsed
    std::uint64_t writes = 0;  // files replaced
    std::uint64_t syncs = 0;   // of them, flushed to disk before the rename
};

class SettingsStore {
public:
    // Synced: flushed to disk before it replaces the old file. Replaceable: a value that the
    // next run can do without (the running token), renamed into place unflushed.
    enum class Durability { Synced, Replaceable };

    // root is the configuration folder ($XDG_CONFIG_HOME or ~/.config by default).
    explicit SettingsStore(std::filesystem::path root);
    static std::filesystem::path DefaultRoot();

    // Every call looks at the file, so that another process's write is seen; it is parsed
    // again only when it was replaced or changed since the last read.
    std::optional<std::string> Read(const SettingsKey& key, std::string_view name) const;
    // Written atomically under an advisory lock; the file is readable by its owner only. A
    // value equal to the stored one writes nothing. Returns false when the store could not
    // be written.
    bool Write(const SettingsKey& key, std::string_view name, std::string_view value,
               Durability durability = Durability::Synced) const;
    std::map<std::string, std::string> ReadAll(const SettingsKey& key) const;

    std::filesystem::path FileFor(const SettingsKey& key) const;
    const std::filesystem::path& Root() const { return root_; }
    const SettingsStoreCounts& Counts() const { return counts_; }

private:
    // Which version of a file was parsed. Every write renames a new inode into place with a
    // modification time past the old one's, so a reused inode number is still told apart.
    struct FileStamp {
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        timespec modified{};
        bool operator==(const FileStamp& o) const {
            return device == o.device && inode == o.inode && size == o.size &&
                   modified.tv_sec == o.modified.tv_sec && modified.tv_nsec == o.modified.tv_nsec;
        }
    };
    struct ParsedFile {
        std::optional<FileStamp> stamp;
        std::map<std::string, std::string> values;
    };
    const ParsedFile& Current(const std::filesystem::path& file) const;

    std::filesystem::path root_;
    mutable std::map<std::filesystem::path, ParsedFile> parsed_;
    mutable SettingsStoreCounts counts_;
};

}  // namespace morvane::platform
