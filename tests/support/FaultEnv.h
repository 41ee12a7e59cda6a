// An environment that breaks where a test tells it to (the Nth write of a file or of a
// database fails, the disk fills up, a rename fails, an exchange is dropped before it goes
// or after the server answered) and hands everything else to the system's.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/Env.h"

namespace morvane::test {

class FaultEnv final : public platform::EnvWrapper {
public:
    explicit FaultEnv(platform::Env& target);
    ~FaultEnv() override;
    FaultEnv(const FaultEnv&) = delete;
    FaultEnv& operator=(const FaultEnv&) = delete;

    // Counted from the call on, files and databases alike; 1 is the next write.
    void FailWriteAt(int n, int error = EIO);
    // Writes fail with ENOSPC once this many more bytes went to disk.
    void FillDiskAfter(std::uint64_t bytes);
    void FailRenameAt(int n);
    // The nth exchange from the call on gets no reply: never sent, or sent and answered by
    // the server with its answer lost on the way back.
    enum class Drop { BeforeSending, AfterAnswer };
    void DropExchangeAt(int n, Drop how);
    // Everything works again.
    void Heal();

    std::uint64_t Exchanges() const { return exchanges_; }

    platform::HttpReply Exchange(const platform::HttpRequest& request,
                                 const platform::HttpOptions& options) override;
    ssize_t Write(int fd, const char* bytes, std::size_t size) override;
    int Rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
    int OpenDatabase(const std::string& path, int flags, sqlite3** db) override;

    // A write of size bytes is about to go: 0 lets it go, shortened to what fits on the
    // disk; else the errno it fails with.
    int AllowWrite(std::size_t& size);

private:
    struct Vfs;
    std::unique_ptr<Vfs> vfs_;
    std::uint64_t writes_ = 0, exchanges_ = 0, renames_ = 0;
    std::optional<std::uint64_t> failWrite_, failRename_, dropExchange_;
    int writeError_ = EIO;
    std::optional<std::uint64_t> diskLeft_;
    Drop drop_ = Drop::BeforeSending;
};

}  // namespace morvane::test
