#include "platform/AtomicFile.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "platform/Env.h"

namespace morvane::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSuffix = ".new";
constexpr size_t kRandomDigits = 16;

std::string RandomHex() {
    static constexpr char kHex[] = "0123456789abcdef";
    unsigned char bytes[kRandomDigits / 2];
    size_t got = 0;
    while (got < sizeof bytes) {
        const ssize_t n = ::getrandom(bytes + got, sizeof bytes - got, 0);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) throw std::system_error(errno, std::generic_category(), "getrandom");
        got += static_cast<size_t>(n);
    }
    std::string out;
    for (const unsigned char b : bytes) {
        out += kHex[b >> 4];
        out += kHex[b & 15];
    }
    return out;
}

// ".<name>." and a random part and ".new": hidden, and told apart from the file itself.
std::string VersionPrefix(const fs::path& target) { return "." + target.filename().string() + "."; }

bool IsVersionOf(const std::string& entry, const std::string& prefix) {
    if (entry.size() != prefix.size() + kRandomDigits + kSuffix.size()) return false;
    if (entry.compare(0, prefix.size(), prefix) != 0) return false;
    if (entry.compare(entry.size() - kSuffix.size(), kSuffix.size(), kSuffix) != 0) return false;
    for (size_t i = prefix.size(); i < prefix.size() + kRandomDigits; ++i)
        if (!std::isxdigit(static_cast<unsigned char>(entry[i]))) return false;
    return true;
}

fs::path FolderOf(const fs::path& target) {
    const fs::path parent = target.parent_path();
    return parent.empty() ? fs::path(".") : parent;
}

}  // namespace

bool AtomicFile::WriteAll(const char* data, size_t size) {
    while (size > 0) {
        const ssize_t n =
            env_ ? env_->Write(fd_.Get(), data, size) : ::write(fd_.Get(), data, size);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        data += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

std::optional<AtomicFile> AtomicFile::Create(const fs::path& target, mode_t mode, Env* env) {
    if (target.filename().empty()) {
        errno = EISDIR;
        return std::nullopt;
    }
    struct stat old {};
    const bool hasOld = ::lstat(target.c_str(), &old) == 0 && S_ISREG(old.st_mode);
    const fs::path folder = FolderOf(target);
    for (int attempt = 0; attempt < 16; ++attempt) {
        const fs::path temp = folder / (VersionPrefix(target) + RandomHex() + std::string(kSuffix));
        ScopedFd fd(
            ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
        if (!fd.Valid() && errno == EEXIST) continue;
        if (!fd.Valid()) return std::nullopt;
        AtomicFile file(target, temp, std::move(fd), env);
        // The old file's mode is kept exactly, whatever the umask says.
        if (hasOld && !file.SetMode(old.st_mode & 07777)) {
            const int err = errno;
            file.Discard();
            errno = err;
            return std::nullopt;
        }
        return file;
    }
    errno = EEXIST;
    return std::nullopt;
}

AtomicFile::AtomicFile(fs::path target, fs::path temp, ScopedFd fd, Env* env)
    : target_(std::move(target)), temp_(std::move(temp)), fd_(std::move(fd)), env_(env) {}

AtomicFile::AtomicFile(AtomicFile&& other) noexcept
    : target_(std::move(other.target_)),
      temp_(std::move(other.temp_)),
      fd_(std::move(other.fd_)),
      env_(other.env_),
      written_(other.written_),
      committed_(std::exchange(other.committed_, true)) {}

AtomicFile::~AtomicFile() { Discard(); }

void AtomicFile::Discard() {
    fd_.Close();
    if (!committed_) {
        ::unlink(temp_.c_str());
        committed_ = true;
    }
}

bool AtomicFile::Write(std::string_view bytes) {
    if (!fd_.Valid() || !WriteAll(bytes.data(), bytes.size())) return false;
    written_ += bytes.size();
    return true;
}

bool AtomicFile::CopyFrom(const fs::path& source) {
    if (!fd_.Valid()) return false;
    const ScopedFd in(::open(source.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!in.Valid()) return false;
    struct stat st {};
    bool ok = ::fstat(in.Get(), &st) == 0 && S_ISREG(st.st_mode);
    char buf[1 << 16];
    while (ok) {
        const ssize_t n = ::read(in.Get(), buf, sizeof buf);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            ok = n == 0;
            break;
        }
        ok = WriteAll(buf, static_cast<size_t>(n));
        if (ok) written_ += static_cast<std::uint64_t>(n);
    }
    return ok;
}

bool AtomicFile::SetMode(mode_t mode) { return fd_.Valid() && ::fchmod(fd_.Get(), mode) == 0; }

bool AtomicFile::SetModified(timespec modified) {
    const timespec times[2] = {{0, UTIME_OMIT}, modified};
    return fd_.Valid() && ::futimens(fd_.Get(), times) == 0;
}

int AtomicFile::Commit(const std::function<int()>& beforeReplace) {
    if (!fd_.Valid() || committed_) return EBADF;
    if ((env_ ? env_->Sync(fd_.Get()) : ::fsync(fd_.Get())) != 0 || fd_.Close() != 0) {
        const int err = errno;
        Discard();
        return err;
    }
    if (beforeReplace) {
        if (const int err = beforeReplace()) {
            Discard();
            return err;
        }
    }
    if ((env_ ? env_->Rename(temp_, target_) : ::rename(temp_.c_str(), target_.c_str())) != 0) {
        const int err = errno;
        Discard();
        return err;
    }
    committed_ = true;
    // The new name is on disk only once its folder is.
    return SyncFolder(FolderOf(target_));
}

int WriteFileAtomically(const fs::path& target, std::string_view bytes, mode_t mode, Env* env) {
    auto file = AtomicFile::Create(target, mode, env);
    if (!file) return errno ? errno : EIO;
    if (!file->Write(bytes)) return errno ? errno : EIO;
    return file->Commit();
}

std::vector<fs::path> LeftoverVersions(const fs::path& target) {
    std::vector<fs::path> found;
    if (target.filename().empty()) return found;
    const std::string prefix = VersionPrefix(target);
    std::error_code ec;
    for (fs::directory_iterator it(FolderOf(target), ec), end; !ec && it != end; it.increment(ec)) {
        if (IsVersionOf(it->path().filename().string(), prefix)) found.push_back(it->path());
    }
    return found;
}

void RemoveLeftoverVersions(const fs::path& target) {
    std::error_code ec;
    for (const fs::path& left : LeftoverVersions(target)) fs::remove(left, ec);
}

int SyncFolder(const fs::path& folder) {
    const ScopedFd fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fd.Valid()) return errno;
    return ::fsync(fd.Get()) == 0 ? 0 : errno;
}

}  // namespace morvane::platform
