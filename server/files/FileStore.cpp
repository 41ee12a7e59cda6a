#include "server/files/FileStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "server/crypto/Secrets.h"
#include "server/util/Text.h"

namespace morvane::server {

namespace fs = std::filesystem;

namespace {

// Closes a POSIX descriptor on every way out.
class Fd {
public:
    explicit Fd(int fd) : fd_(fd) {}
    ~Fd() {
        if (fd_ >= 0) ::close(fd_);
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int Get() const { return fd_; }
    int Release() {
        int fd = fd_;
        fd_ = -1;
        return fd;
    }

private:
    int fd_;
};

void WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0) {
            if (errno == EINTR) continue;
            throw std::system_error(errno, std::generic_category(), "write");
        }
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
}

void SetModified(const fs::path& path, std::chrono::system_clock::time_point t) {
    const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(t.time_since_epoch());
    timespec times[2];
    times[0].tv_sec = times[1].tv_sec = static_cast<time_t>(ns.count() / 1000000000);
    times[0].tv_nsec = times[1].tv_nsec = static_cast<long>(ns.count() % 1000000000);
    if (::utimensat(AT_FDCWD, path.c_str(), times, 0) != 0)
        throw std::system_error(errno, std::generic_category(), "utimensat");
}

}  // namespace

FileStore::FileStore(fs::path root) : root_(std::move(root)) {}

bool FileStore::ValidName(std::string_view name) {
    if (name.empty() || name.size() > 255 || name == "." || name == "..") return false;
    if (name.find("..") != std::string_view::npos) return false;
    for (char c : name) {
        const auto u = static_cast<unsigned char>(c);
        if (c == '/' || c == '\\' || u < 0x20 || u == 0x7F) return false;
    }
    return IsXmlSafe(name);
}

fs::path FileStore::Folder(const FileKey& key) const {
    return root_ / std::to_string(key.account) / std::to_string(key.customer) / key.kind;
}

fs::path FileStore::PathOf(const FileKey& key, const std::string& name) const {
    if (!ValidName(name)) throw std::invalid_argument("bad file name");
    return Folder(key) / name;
}

std::optional<FileInfo> FileStore::Info(const FileKey& key, const std::string& name) const {
    auto bytes = Read(key, name);
    if (!bytes) return std::nullopt;
    struct stat st {};
    if (::stat(PathOf(key, name).c_str(), &st) != 0) return std::nullopt;
    FileInfo out;
    out.name = name;
    out.size = bytes->size();
    out.crc = CrcText(Crc32Of(*bytes));
    out.modified = std::chrono::system_clock::time_point(
        std::chrono::duration_cast<std::chrono::system_clock::duration>(
            std::chrono::seconds(st.st_mtim.tv_sec) +
            std::chrono::nanoseconds(st.st_mtim.tv_nsec)));
    return out;
}

std::optional<std::string> FileStore::Read(const FileKey& key, const std::string& name) const {
    const auto path = PathOf(key, name);
    std::error_code ec;
    if (!fs::is_regular_file(path, ec)) return std::nullopt;
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    std::ostringstream buf;
    buf << in.rdbuf();
    return std::move(buf).str();
}

FileInfo FileStore::Write(const FileKey& key, const std::string& name, std::string_view bytes,
                          std::chrono::system_clock::time_point modified) {
    const auto target = PathOf(key, name);
    fs::create_directories(target.parent_path());
    const auto temp = target.parent_path() / (".upload-" + RandomHex(8));
    try {
        {
            Fd fd(::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0640));
            if (fd.Get() < 0) throw std::system_error(errno, std::generic_category(), "open");
            WriteAll(fd.Get(), bytes);
            if (::fsync(fd.Get()) != 0)
                throw std::system_error(errno, std::generic_category(), "fsync");
            if (::close(fd.Release()) != 0)
                throw std::system_error(errno, std::generic_category(), "close");
        }
        SetModified(temp, modified);
        fs::rename(temp, target);
    } catch (...) {
        std::error_code ignored;
        fs::remove(temp, ignored);
        throw;
    }
    auto out = Info(key, name);
    if (!out) throw std::runtime_error("stored file vanished");
    return *out;
}

bool FileStore::Remove(const FileKey& key, const std::string& name) {
    const auto path = PathOf(key, name);
    std::error_code ec;
    if (!fs::is_regular_file(path, ec)) return false;
    return fs::remove(path);
}

bool FileStore::Rename(const FileKey& key, const std::string& from, const std::string& to) {
    const auto src = PathOf(key, from);
    const auto dst = PathOf(key, to);
    std::error_code ec;
    if (!fs::is_regular_file(src, ec)) return false;
    fs::rename(src, dst);
    return true;
}

void FileStore::RemoveCustomer(std::int64_t account, std::int64_t customer) {
    std::error_code ec;
    fs::remove_all(root_ / std::to_string(account) / std::to_string(customer), ec);
}

}  // namespace morvane::server
