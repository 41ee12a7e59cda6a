#include "server/files/FileStore.h"

#include <sys/stat.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "platform/AtomicFile.h"
#include "server/crypto/Secrets.h"
#include "server/util/Text.h"

namespace morvane::server {

namespace fs = std::filesystem;

namespace {

timespec TimeSpecOf(std::chrono::system_clock::time_point t) {
    const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(t.time_since_epoch());
    return timespec{static_cast<time_t>(ns.count() / 1000000000),
                    static_cast<long>(ns.count() % 1000000000)};
}

[[noreturn]] void Fail(int err, const char* what) {
    throw std::system_error(err, std::generic_category(), what);
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
    auto next = platform::AtomicFile::Create(target, 0640);
    if (!next) Fail(errno, "open");
    if (!next->Write(bytes)) Fail(errno, "write");
    if (!next->SetModified(TimeSpecOf(modified))) Fail(errno, "utimensat");
    if (const int err = next->Commit()) Fail(err, "rename");
    auto out = Info(key, name);
    if (!out) throw std::runtime_error("stored file vanished");
    return *out;
}

bool FileStore::Remove(const FileKey& key, const std::string& name) {
    const auto path = PathOf(key, name);
    std::error_code ec;
    if (!fs::is_regular_file(path, ec)) return false;
    if (!fs::remove(path)) return false;
    platform::SyncFolder(path.parent_path());
    return true;
}

bool FileStore::Rename(const FileKey& key, const std::string& from, const std::string& to) {
    const auto src = PathOf(key, from);
    const auto dst = PathOf(key, to);
    std::error_code ec;
    if (!fs::is_regular_file(src, ec)) return false;
    fs::rename(src, dst);
    platform::SyncFolder(dst.parent_path());
    return true;
}

void FileStore::RemoveCustomer(std::int64_t account, std::int64_t customer) {
    std::error_code ec;
    fs::remove_all(root_ / std::to_string(account) / std::to_string(customer), ec);
}

}  // namespace morvane::server
