#include "support/FaultEnv.h"

#include <sqlite3.h>

#include <cerrno>
#include <cstdint>
#include <string>

namespace morvane::test {

// The system's SQLite files with their writes sent through the environment first, so that a
// database's writes meet the same faults as a file's. A file is the system's own, followed by
// the Vfs it was opened through.
struct FaultEnv::Vfs {
    explicit Vfs(FaultEnv& owner)
        : parent(sqlite3_vfs_find(nullptr)),
          env(&owner),
          name("morvane-fault-" + std::to_string(reinterpret_cast<std::uintptr_t>(this))) {
        vfs = *parent;
        vfs.pNext = nullptr;
        vfs.szOsFile = parent->szOsFile + static_cast<int>(sizeof(Vfs*));
        vfs.zName = name.c_str();
        vfs.pAppData = this;  // the system's xOpen is called with its own
        vfs.xOpen = Open;
        sqlite3_vfs_register(&vfs, 0);
    }
    ~Vfs() { sqlite3_vfs_unregister(&vfs); }
    Vfs(const Vfs&) = delete;
    Vfs& operator=(const Vfs&) = delete;

    static Vfs*& Of(sqlite3_file* f) {
        const auto parentSize = static_cast<std::size_t>(sqlite3_vfs_find(nullptr)->szOsFile);
        return *reinterpret_cast<Vfs**>(reinterpret_cast<char*>(f) + parentSize);
    }

    static int Open(sqlite3_vfs* v, sqlite3_filename name, sqlite3_file* f, int flags, int* out) {
        Vfs& self = *static_cast<Vfs*>(v->pAppData);
        const int rc = self.parent->xOpen(self.parent, name, f, flags, out);
        Of(f) = &self;
        if (f->pMethods && !self.real) {
            self.real = f->pMethods;
            self.methods = *self.real;
            self.methods.xWrite = Write;
        }
        if (f->pMethods == self.real) f->pMethods = &self.methods;
        return rc;
    }

    static int Write(sqlite3_file* f, const void* from, int n, sqlite3_int64 at) {
        const Vfs& self = *Of(f);
        std::size_t size = static_cast<std::size_t>(n);
        if (const int err = self.env->AllowWrite(size))
            return err == ENOSPC ? SQLITE_FULL : SQLITE_IOERR_WRITE;
        // Part of it fits: the disk takes that much, and then it is full.
        const int rc = self.real->xWrite(f, from, static_cast<int>(size), at);
        return size < static_cast<std::size_t>(n) ? SQLITE_FULL : rc;
    }

    sqlite3_vfs vfs{};
    sqlite3_vfs* parent;
    FaultEnv* env;
    std::string name;
    const sqlite3_io_methods* real = nullptr;  // the system's, which every file of it shares
    sqlite3_io_methods methods{};
};

FaultEnv::FaultEnv(platform::Env& target)
    : EnvWrapper(target), vfs_(std::make_unique<Vfs>(*this)) {}

FaultEnv::~FaultEnv() = default;

void FaultEnv::FailWriteAt(int n, int error) {
    failWrite_ = writes_ + static_cast<std::uint64_t>(n);
    writeError_ = error;
}

void FaultEnv::FillDiskAfter(std::uint64_t bytes) { diskLeft_ = bytes; }

void FaultEnv::FailRenameAt(int n) { failRename_ = renames_ + static_cast<std::uint64_t>(n); }

void FaultEnv::DropExchangeAt(int n, Drop how) {
    dropExchange_ = exchanges_ + static_cast<std::uint64_t>(n);
    drop_ = how;
}

void FaultEnv::Heal() {
    failWrite_.reset();
    failRename_.reset();
    dropExchange_.reset();
    diskLeft_.reset();
}

int FaultEnv::AllowWrite(std::size_t& size) {
    ++writes_;
    if (failWrite_ && writes_ == *failWrite_) return writeError_;
    if (!diskLeft_) return 0;
    if (*diskLeft_ == 0) return ENOSPC;
    if (size > *diskLeft_) size = static_cast<std::size_t>(*diskLeft_);
    *diskLeft_ -= size;
    return 0;
}

platform::HttpReply FaultEnv::Exchange(const platform::HttpRequest& request,
                                       const platform::HttpOptions& options) {
    ++exchanges_;
    if (!dropExchange_ || exchanges_ != *dropExchange_) return Target().Exchange(request, options);
    if (drop_ == Drop::AfterAnswer) Target().Exchange(request, options);
    platform::HttpReply lost;
    lost.error = "the connection dropped";
    lost.failure = platform::HttpFailure::Other;
    return lost;
}

ssize_t FaultEnv::Write(int fd, const char* bytes, std::size_t size) {
    if (const int err = AllowWrite(size)) {
        errno = err;
        return -1;
    }
    // A write cut short by a full disk writes what fits; the next one fails.
    return Target().Write(fd, bytes, size);
}

int FaultEnv::Rename(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (++renames_ == failRename_) {
        errno = EIO;
        return -1;
    }
    return Target().Rename(from, to);
}

int FaultEnv::OpenDatabase(const std::string& path, int flags, sqlite3** db) {
    return sqlite3_open_v2(path.c_str(), db, flags, vfs_->name.c_str());
}

}  // namespace morvane::test
