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

std::optional<std::string> SettingsStore::Read(const SettingsKey& key,
                                               std::string_view name) const {
    const auto values = Parse(FileFor(key));
    const auto it = values.find(std::string(name));
    if (it == values.end()) return std::nullopt;
    return it->second;
}

std::map<std::string, std::string> SettingsStore::ReadAll(const SettingsKey& key) const {
    return Parse(FileFor(key));
}

bool SettingsStore::Write(const SettingsKey& key, std::string_view name,
                          std::string_view value) const {
    if (name.empty() || name.find_first_of("=\n\r") != std::string_view::npos) return false;
    const std::filesystem::path file = FileFor(key);
    std::error_code ec;
    std::filesystem::create_directories(file.parent_path(), ec);
    if (ec) return false;
    ::chmod(file.parent_path().c_str(), 0700);

    FileLock lock(file.string() + ".lock", LOCK_EX);
    if (!lock.Held()) return false;

    auto values = Parse(file);
    values[std::string(name)] = std::string(value);
    std::ostringstream text;
    text << "# Morvane settings; every value is text.\n";
    for (const auto& [n, v] : values) text << n << '=' << Escape(v) << '\n';

    auto next = AtomicFile::Create(file, 0600);
    // The file holds the running token: its owner alone reads it, whatever it was before.
    return next && next->SetMode(0600) && next->Write(text.str()) && next->Commit() == 0;
}

}  // namespace morvane::platform
