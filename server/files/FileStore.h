// Data files of customers, kept under the data folder by account, customer and kind.
//
// A name from a client is a plain file name; anything that could reach outside its folder is
// refused. Writes go to a temporary file that replaces the old one in one rename, so a failed
// upload leaves the stored file as it was.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace morvane::server {

struct FileInfo {
    std::string name;
    std::uint64_t size = 0;
    std::string crc;  // eight upper-case hex digits
    std::chrono::system_clock::time_point modified;
};

struct FileKey {
    std::int64_t account = 0;
    std::int64_t customer = 0;
    std::string kind;  // "Kessan", "Kyoka", "Other"
};

class FileStore {
public:
    explicit FileStore(std::filesystem::path root);

    // A plain file name: no separators, no "..", no control characters, valid UTF-8.
    static bool ValidName(std::string_view name);

    std::optional<FileInfo> Info(const FileKey& key, const std::string& name) const;
    std::optional<std::string> Read(const FileKey& key, const std::string& name) const;
    FileInfo Write(const FileKey& key, const std::string& name, std::string_view bytes,
                   std::chrono::system_clock::time_point modified);
    // False when there was no such file.
    bool Remove(const FileKey& key, const std::string& name);
    // Moves `from` onto `to`, replacing it; false when `from` does not exist.
    bool Rename(const FileKey& key, const std::string& from, const std::string& to);
    void RemoveCustomer(std::int64_t account, std::int64_t customer);

private:
    std::filesystem::path Folder(const FileKey& key) const;
    std::filesystem::path PathOf(const FileKey& key, const std::string& name) const;
    std::filesystem::path root_;
};

}  // namespace morvane::server
