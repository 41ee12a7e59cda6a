#include "platform/SettingsStore.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/AtomicFile.h"
#include "platform/Checksum.h"
#include "platform/ScopedFd.h"
#include "util/Text.h"

namespace morvane::platform {
namespace {

// Closes a descriptor and so releases its advisory lock.
class FileLock {
public:
    explicit FileLock(const std::filesystem::path& path, int operation)
        : fd_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        if (fd_.Valid() && ::flock(fd_.Get(), operation) != 0) fd_.Close();
    }
    bool Held() const { return fd_.Valid(); }

private:
    ScopedFd fd_;
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

using Values = std::map<std::string, std::string>;

Values ParseText(std::string_view text) {
    Values values;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (line.empty() || line[0] == '#') continue;
        const size_t eq = line.find('=');
        if (eq == std::string_view::npos) continue;
        values[std::string(line.substr(0, eq))] = Unescape(line.substr(eq + 1));
    }
    return values;
}

std::string ReadText(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

constexpr std::string_view kChecksumMark = "#crc32 ";

std::string Checksum(std::string_view bytes) {
    char hex[16];
    std::snprintf(hex, sizeof hex, "%08x", static_cast<unsigned>(Crc32(0, bytes)));
    return hex;
}

std::string Serialize(const Values& values, bool checked) {
    std::string text = checked ? "" : "# Morvane settings; every value is text.\n";
    for (const auto& [n, v] : values) text += n + '=' + Escape(v) + '\n';
    if (checked) text += std::string(kChecksumMark) + Checksum(text) + '\n';
    return text;
}

// The values before the checksum line; nothing when they do not match it (caught half
// written, or torn by a power cut). What follows the line is the tail of a longer old version.
std::optional<Values> ParseChecked(std::string_view text) {
    for (size_t at = 0; at < text.size();) {
        const size_t end = text.find('\n', at);
        if (end == std::string_view::npos) break;
        if (text.substr(at, kChecksumMark.size()) == kChecksumMark) {
            const std::string_view sum =
                text.substr(at + kChecksumMark.size(), end - at - kChecksumMark.size());
            if (sum != Checksum(text.substr(0, at))) break;
            return ParseText(text.substr(0, at));
        }
        at = end + 1;
    }
    return std::nullopt;
}

// Overwrites the file where it is: no new inode, no rename, nothing flushed, as for a value
// that changes with every request such a replace costs more than the request itself.
// oldSize: what the file holds now, if it is there.
bool OverwriteInPlace(const std::filesystem::path& file, std::string_view text, timespec modified,
                      std::optional<off_t> oldSize) {
    const ScopedFd fd(::open(file.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!fd.Valid() || (!oldSize && ::fchmod(fd.Get(), 0600) != 0)) return false;
    for (size_t done = 0; done < text.size();) {
        const ssize_t n =
            ::pwrite(fd.Get(), text.data() + done, text.size() - done, static_cast<off_t>(done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<size_t>(n);
    }
    const timespec times[2] = {{0, UTIME_OMIT}, modified};
    const auto size = static_cast<off_t>(text.size());
    return (oldSize.value_or(size + 1) <= size || ::ftruncate(fd.Get(), size) == 0) &&
           ::futimens(fd.Get(), times) == 0;
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

SettingsStore::KeyFiles SettingsStore::FilesFor(const SettingsKey& key) const {
    KeyFiles files{FileFor(key), RunFileFor(key), {}};
    files.lock = files.conf.string() + ".lock";
    return files;
}

std::filesystem::path SettingsStore::RunFileFor(const SettingsKey& key) const {
    return std::filesystem::path(FileFor(key)).replace_extension(".run");
}

const SettingsStore::ParsedFile& SettingsStore::Current(const std::filesystem::path& file,
                                                        bool checked,
                                                        const std::filesystem::path* lock) const {
    ParsedFile& entry = parsed_[file];
    struct stat st {};
    if (::stat(file.c_str(), &st) != 0) {
        entry = ParsedFile{};
        return entry;
    }
    const FileStamp stamp{st.st_dev, st.st_ino, st.st_size, st.st_mtim};
    if (entry.stamp == stamp) return entry;
    // Stamped before it is read: a file changed in between is only read once more.
    std::optional<Values> values;
    if (!checked) {
        values = ParseText(ReadText(file));
    } else if (values = ParseChecked(ReadText(file)); !values && lock) {
        // Caught half written: the writer holds the lock until it is whole.
        const FileLock shared(*lock, LOCK_SH);
        values = ParseChecked(ReadText(file));
    }
    entry.values = values ? std::move(*values) : Values{};
    entry.stamp = stamp;
    ++counts_.parses;
    return entry;
}

std::optional<std::string> SettingsStore::Lookup(const KeyFiles& files, std::string_view name,
                                                 bool locked) const {
    const std::string n(name);
    const auto& run = Current(files.run, true, locked ? nullptr : &files.lock).values;
    if (const auto it = run.find(n); it != run.end()) return it->second;
    const auto& conf = Current(files.conf).values;
    if (const auto it = conf.find(n); it != conf.end()) return it->second;
    return std::nullopt;
}

std::optional<std::string> SettingsStore::Read(const SettingsKey& key,
                                               std::string_view name) const {
    return Lookup(FilesFor(key), name, false);
}

std::map<std::string, std::string> SettingsStore::ReadAll(const SettingsKey& key) const {
    const KeyFiles files = FilesFor(key);
    Values values = Current(files.run, true, &files.lock).values;
    values.merge(Values(Current(files.conf).values));  // the run file's values stand
    return values;
}

void SettingsStore::Remember(const std::filesystem::path& file, Values values) const {
    // Under the lock no one else changed it since: what was just written need not be read.
    struct stat st {};
    if (::stat(file.c_str(), &st) == 0)
        parsed_[file] = {FileStamp{st.st_dev, st.st_ino, st.st_size, st.st_mtim},
                         std::move(values)};
    else
        parsed_.erase(file);
}

bool SettingsStore::Write(const SettingsKey& key, std::string_view name, std::string_view value,
                          Durability durability) const {
    if (name.empty() || name[0] == '#' || name.find_first_of("=\n\r") != std::string_view::npos)
        return false;
    const KeyFiles files = FilesFor(key);
    if (Lookup(files, name, false) == value) return true;
    const auto folder = files.conf.parent_path();
    const auto ownFolder = [&folder] {
        std::error_code ec;
        std::filesystem::create_directories(folder, ec);
        if (ec) return false;
        ::chmod(folder.c_str(), 0700);
        return true;
    };
    std::optional<FileLock> lock(std::in_place, files.lock, LOCK_EX);
    if (!lock->Held()) {
        if (!ownFolder()) return false;
        lock.emplace(files.lock, LOCK_EX);
        if (!lock->Held()) return false;
    }
    // Looked at again under the lock: another process may have written in between.
    if (Lookup(files, name, true) == value) return true;
    const ParsedFile& run = Current(files.run, true, nullptr);
    Values runValues = run.values;
    const auto writeRun = [&] {
        const bool done =
            OverwriteInPlace(files.run, Serialize(runValues, true),
                             ModifiedAfter(run.stamp ? run.stamp->modified : timespec{}),
                             run.stamp ? std::optional<off_t>(run.stamp->size) : std::nullopt);
        if (!done) {
            parsed_.erase(files.run);
            return false;
        }
        ++counts_.writes;
        Remember(files.run, std::move(runValues));
        return true;
    };
    if (durability == Durability::Replaceable) {
        runValues[std::string(name)] = std::string(value);
        return writeRun();
    }
    // The folder holds the account: its owner alone enters it, whatever it was before.
    if (!ownFolder()) return false;

    const ParsedFile& conf = Current(files.conf);
    Values values = conf.values;
    values[std::string(name)] = std::string(value);
    auto next = AtomicFile::Create(files.conf, 0600, env_);
    // The file holds the account: its owner alone reads it, whatever it was before.
    if (!next || !next->SetMode(0600) || !next->Write(Serialize(values, false)) ||
        !next->SetModified(ModifiedAfter(conf.stamp ? conf.stamp->modified : timespec{})) ||
        next->Commit() != 0)
        return false;
    ++counts_.writes;
    ++counts_.syncs;
    Remember(files.conf, std::move(values));
    // A value kept in the run file would stand for the new one.
    return runValues.erase(std::string(name)) == 0 || writeRun();
}

}  // namespace morvane::platform
