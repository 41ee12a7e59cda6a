#include "platform/SettingsStore.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/AtomicFile.h"
#include "util/Text.h"

namespace morvane::platform {
namespace {

// Closes a descriptor and so releases its advisory lock.
class FileLock {
public:
    explicit FileLock(const std::filesystem::path& path, int operation) {
        fd_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (fd_ >= 0 && ::flock(fd_, operation) != 0) {
            ::close(fd_);
            fd_ = -1;
        }
    }
    ~FileLock() {
        if (fd_ >= 0) ::close(fd_);
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    bool Held() const { return fd_ >= 0; }

private:
    int fd_ = -1;
};

std::string Escape(std::string_view v) {
    std::string out;
    for (char c : v) {
        switch (c) {
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string Unescape(std::string_view v) {
    std::string out;
    for (size_t i = 0; i < v.size(); ++i) {
        if (v[i] == '\\' && i + 1 < v.size()) {
            const char n = v[++i];
            out += n == 'n' ? '\n' : n == 'r' ? '\r' : n;
        } else {
            out += v[i];
        }
    }
    return out;
}

std::map<std::string, std::string> Parse(const std::filesystem::path& file) {
    std::map<std::string, std::string> values;
    std::ifstream in(file, std::ios::binary);
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        const size_t eq = line.find('=');
        if (eq == std::string::npos) continue;
        values[line.substr(0, eq)] = Unescape(std::string_view(line).substr(eq + 1));
    }
    return values;
}

// Strictly past the replaced file's time, so that each version has a stamp of its own even
// within one tick of the file system's clock.
timespec ModifiedAfter(const timespec& old) {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    if (now.tv_sec > old.tv_sec || (now.tv_sec == old.tv_sec && now.tv_nsec > old.tv_nsec))
        return now;
    timespec next = old;
    if (++next.tv_nsec == 1'000'000'000) {
        next.tv_nsec = 0;
        ++next.tv_sec;
    }
    return next;
}

}  // namespace

SettingsStore::SettingsStore(std::filesystem::path root) : root_(std::move(root)) {}

std::filesystem::path SettingsStore::DefaultRoot() {
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg) return xdg;
    if (const char* home = std::getenv("HOME"); home && *home)
        return std::filesystem::path(home) / ".config";
    return std::filesystem::temp_directory_path();
}

std::filesystem::path SettingsStore::FileFor(const SettingsKey& key) const {
    // "SOFTWARE\Tolmar\" + "ネルダ" + "\" + "Morvane" -> <root>/Tolmar/ネルダ/Morvane.conf
    std::string base = key.basePath;
    if (StartsWith(ToUpperAscii(base), "SOFTWARE\\")) base = base.substr(9);
    std::filesystem::path dir = root_;
    for (const std::string& part : Split(base, "\\"))
        if (!part.empty()) dir /= part;
    for (const std::string& part : Split(key.application, "\\"))
        if (!part.empty()) dir /= part;
    std::string section = key.section;
    return dir / (section.empty() ? std::string("Default.conf") : section + ".conf");
}

const SettingsStore::ParsedFile& SettingsStore::Current(const std::filesystem::path& file) const {
    ParsedFile& entry = parsed_[file];
    struct stat st {};
    if (::stat(file.c_str(), &st) != 0) {
        entry = ParsedFile{};
        return entry;
    }
    const FileStamp stamp{st.st_dev, st.st_ino, st.st_size, st.st_mtim};
    if (entry.stamp == stamp) return entry;
    // Stamped before it is read: a file replaced in between is only read once more.
    entry.values = Parse(file);
    entry.stamp = stamp;
    ++counts_.parses;
    return entry;
}

std::optional<std::string> SettingsStore::Read(const SettingsKey& key,
                                               std::string_view name) const {
    const auto& values = Current(FileFor(key)).values;
    const auto it = values.find(std::string(name));
    if (it == values.end()) return std::nullopt;
    return it->second;
}

std::map<std::string, std::string> SettingsStore::ReadAll(const SettingsKey& key) const {
    return Current(FileFor(key)).values;
}

bool SettingsStore::Write(const SettingsKey& key, std::string_view name, std::string_view value,
                          Durability durability) const {
    if (name.empty() || name.find_first_of("=\n\r") != std::string_view::npos) return false;
    const std::filesystem::path file = FileFor(key);
    const auto holds = [&](const ParsedFile& now) {
        const auto it = now.values.find(std::string(name));
        return it != now.values.end() && it->second == value;
    };
    if (holds(Current(file))) return true;
    std::error_code ec;
    std::filesystem::create_directories(file.parent_path(), ec);
    if (ec) return false;
    ::chmod(file.parent_path().c_str(), 0700);

    FileLock lock(file.string() + ".lock", LOCK_EX);
    if (!lock.Held()) return false;

    // Looked at again under the lock: another process may have written in between.
    const ParsedFile& now = Current(file);
    if (holds(now)) return true;
    auto values = now.values;
    values[std::string(name)] = std::string(value);
    std::ostringstream text;
    text << "# Morvane settings; every value is text.\n";
    for (const auto& [n, v] : values) text << n << '=' << Escape(v) << '\n';

    auto next = AtomicFile::Create(file, 0600);
    // The file holds the running token: its owner alone reads it, whatever it was before.
    if (!next || !next->SetMode(0600) || !next->Write(text.str()) ||
        !next->SetModified(ModifiedAfter(now.stamp ? now.stamp->modified : timespec{})))
        return false;
    if (durability == Durability::Synced) {
        if (next->Commit() != 0) return false;
        ++counts_.syncs;
    } else if (::rename(next->TempPath().c_str(), file.c_str()) != 0) {
        // Renamed by hand, unflushed: a lost token costs a login, never a torn file. Once
        // renamed, the writer finds no new version left to remove.
        return false;
    }
    ++counts_.writes;
    // What was just written need not be read back; under the lock no one else replaced it.
    struct stat st {};
    if (::stat(file.c_str(), &st) == 0)
        parsed_[file] = {FileStamp{st.st_dev, st.st_ino, st.st_size, st.st_mtim},
                         std::move(values)};
    return true;
}

}  // namespace morvane::platform
