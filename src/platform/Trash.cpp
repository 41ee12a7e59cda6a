#include "platform/Trash.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <string>

#include "platform/AtomicFile.h"
#include "platform/PercentEncoding.h"
#include "platform/ScopedFd.h"

namespace morvane::platform {
namespace {

namespace fs = std::filesystem;

std::string LocalTimeText() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char buf[32];
    std::strftime(buf, sizeof buf, "%Y-%m-%dT%H:%M:%S", &local);
    return buf;
}

// Creates info/<name>.trashinfo exclusively, so two deletions never take one name.
int ClaimName(const fs::path& infoDir, const std::string& name, const std::string& note) {
    const fs::path info = infoDir / (name + ".trashinfo");
    ScopedFd fd(::open(info.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!fd.Valid()) return errno;
    const ssize_t written = ::write(fd.Get(), note.data(), note.size());
    const int err = written == static_cast<ssize_t>(note.size()) ? 0 : EIO;
    fd.Close();
    if (err) ::unlink(info.c_str());
    return err;
}

// A copy with the original's mode and modification time, written whole or not at all.
int CopyWhole(const fs::path& source, const fs::path& target) {
    struct stat st {};
    if (::stat(source.c_str(), &st) != 0) return errno;
    auto copy = AtomicFile::Create(target, st.st_mode & 07777);
    if (!copy) return errno ? errno : EIO;
    if (!copy->CopyFrom(source) || !copy->SetModified(st.st_mtim)) return errno ? errno : EIO;
    return copy->Commit();
}

// Claims a free name in the trash for the file and fills it by place(source, trashed file).
template <class Place>
int IntoTrash(const fs::path& file, Place place) {
    std::error_code ec;
    const fs::path source = fs::absolute(file, ec);
    if (ec || !fs::exists(fs::symlink_status(source, ec))) return ENOENT;
    const fs::path trash = TrashFolder();
    if (trash.empty()) return ENOENT;
    fs::create_directories(trash / "files", ec);
    fs::create_directories(trash / "info", ec);
    if (ec) return ec.value();

    const std::string note = "[Trash Info]\nPath=" + PercentEncode(source.string(), kPathBare) +
                             "\nDeletionDate=" + LocalTimeText() + "\n";
    const std::string stem = source.filename().string();
    for (int n = 1; n < 10000; ++n) {
        const std::string name = n == 1 ? stem : stem + "." + std::to_string(n);
        const int claimed = ClaimName(trash / "info", name, note);
        if (claimed == EEXIST) continue;
        if (claimed) return claimed;
        if (const int err = place(source, trash / "files" / name)) {
            std::error_code ignored;
            fs::remove(trash / "info" / (name + ".trashinfo"), ignored);
            return err;
        }
        return 0;
    }
    return EEXIST;
}

}  // namespace

fs::path TrashFolder() {
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data)
        return fs::path(data) / "Trash";
    if (const char* home = std::getenv("HOME"); home && *home)
        return fs::path(home) / ".local" / "share" / "Trash";
    return {};
}

int MoveToTrash(const fs::path& file) {
    return IntoTrash(file, [](const fs::path& source, const fs::path& target) {
        std::error_code ec;
        fs::rename(source, target, ec);
        if (ec == std::errc::cross_device_link) {
            // Another file system: copy, then remove the original only once the copy is whole.
            ec.clear();
            fs::copy(source, target, fs::copy_options::recursive, ec);
            if (!ec) fs::remove_all(source, ec);
        }
        return ec.value();
    });
}

int CopyToTrash(const fs::path& file) {
    return IntoTrash(file, [](const fs::path& source, const fs::path& target) {
        if (::link(source.c_str(), target.c_str()) == 0) return 0;
        if (errno != EXDEV && errno != EPERM && errno != EMLINK) return errno;
        return CopyWhole(source, target);
    });
}

}  // namespace morvane::platform
