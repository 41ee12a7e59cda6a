#include "util/mdlFileExist1.h"

#include <sys/stat.h>

#include <filesystem>
#include <system_error>

#include "util/Text.h"

namespace morvane {
namespace {
namespace fs = std::filesystem;

// Folders are compared without regard to case, so that a part met again ends the walk.
bool SamePath(std::string_view a, std::string_view b) { return EqualsNoCase(a, b); }
}  // namespace

bool PathExists(std::string_view path) {
    const std::string trimmed = Trim(path);
    if (trimmed.empty()) return false;
    std::error_code ec;
    return fs::exists(fs::path(trimmed), ec);
}

bool FileExists(std::string_view path) { return PathExists(path); }

bool FolderExists(std::string_view path) {
    if (path.empty()) return false;
    std::error_code ec;
    return fs::is_directory(fs::path(std::string(path)), ec);
}

std::string GetParentPath(std::string_view path) {
    const size_t slash = path.rfind(kPathSeparator);
    return std::string(slash == std::string_view::npos ? path : path.substr(0, slash));
}

std::string GetFileNamePart(std::string_view path, bool noExtension) {
    const size_t slash = path.rfind(kPathSeparator);
    std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
    if (noExtension) {
        const size_t dot = name.rfind('.');
        if (dot != std::string_view::npos) name = name.substr(0, dot);
    }
    return std::string(name);
}

std::string StripTrailingBackslash(std::string_view path) {
    if (!path.empty() && path.back() == kPathSeparator) path.remove_suffix(1);
    return std::string(path);
}

bool MakePath(std::string_view path) {
    if (path.empty()) return false;
    // The root ("/", or "//server/share" of a network path) is never created: the walk
    // begins behind its first separator, as behind a drive letter.
    const size_t from = StartsWith(path, "//") ? path.find(kPathSeparator, 2) : 0;
    if (from == std::string_view::npos) return FolderExists(path);
    size_t pos = path.find(kPathSeparator, from);
    while (true) {
        const size_t next = pos == std::string_view::npos ? std::string_view::npos
                                                          : path.find(kPathSeparator, pos + 1);
        const std::string_view part =
            next == std::string_view::npos ? path : path.substr(0, next + 1);
        if (!part.empty() && !FolderExists(part)) {
            std::error_code ec;
            fs::create_directory(fs::path(std::string(part)), ec);
            if (ec) return false;
        }
        if (SamePath(part, path)) return true;
        pos = next;
    }
}

}  // namespace morvane
