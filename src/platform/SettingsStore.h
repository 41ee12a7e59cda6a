// The per-user settings key: text files under the user's configuration folder, every value a
// text, shared between processes (the running token lives here).
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

class Env;

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
    // Synced: in the key's file, replaced whole and flushed to disk. Replaceable: a value the
    // next run can do without and that changes often (the running token), in the key's run
    // file beside it, overwritten in place and never flushed: a power cut can cost it, but
    // never the synced values. A torn or half-written run file fails its checksum and is read
    // again under the lock, or counts as empty.
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
    // Beside it: the replaceable values, which stand for the same names in FileFor.
    std::filesystem::path RunFileFor(const SettingsKey& key) const;
    const std::filesystem::path& Root() const { return root_; }
    const SettingsStoreCounts& Counts() const { return counts_; }
    // Where the synced file's writes and rename go; null: the system.
    void SetEnv(Env* env) { env_ = env; }

private:
    // Which version of a file was parsed. Every write gives the file a modification time past
    // the old one's, so that a rewrite of the same size within one tick of the file system's
    // clock, or a reused inode number, is still told apart.
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
    struct KeyFiles {
        std::filesystem::path conf, run, lock;
    };
    KeyFiles FilesFor(const SettingsKey& key) const;
    // The file's values, parsed again only when it changed. checked: a run file; when it is
    // caught half written, it is read again under `lock` (null: the caller holds it).
    const ParsedFile& Current(const std::filesystem::path& file, bool checked = false,
                              const std::filesystem::path* lock = nullptr) const;
    std::optional<std::string> Lookup(const KeyFiles& files, std::string_view name,
                                      bool locked) const;
    void Remember(const std::filesystem::path& file,
                  std::map<std::string, std::string> values) const;

    std::filesystem::path root_;
    mutable std::map<std::filesystem::path, ParsedFile> parsed_;
    mutable SettingsStoreCounts counts_;
    Env* env_ = nullptr;
};

}  // namespace morvane::platform
