#include "support/FaultEnv.h"

#include <sqlite3.h>

#include <cerrno>
#include <cstdint>
#include <string>

namespace morvane::test {

// SQLite's own files wrapped, so that a database's writes meet the same faults as a file's.
struct FaultEnv::Vfs {
    struct File {
        sqlite3_file base;
        FaultEnv* env;
        sqlite3_file* real;  // lives right behind this struct
    };

    explicit Vfs(FaultEnv& owner)
        : env(&owner),
          parent(sqlite3_vfs_find(nullptr)),
          name("morvane-fault-" + std::to_string(reinterpret_cast<std::uintptr_t>(this))) {
        vfs.iVersion = 2;
        vfs.szOsFile = static_cast<int>(sizeof(File)) + parent->szOsFile;
        vfs.mxPathname = parent->mxPathname;
        vfs.zName = name.c_str();
        vfs.pAppData = this;
        vfs.xOpen = Open;
        vfs.xDelete = [](sqlite3_vfs* v, const char* n, int sync) {
            return Parent(v)->xDelete(Parent(v), n, sync);
        };
        vfs.xAccess = [](sqlite3_vfs* v, const char* n, int f, int* out) {
            return Parent(v)->xAccess(Parent(v), n, f, out);
        };
        vfs.xFullPathname = [](sqlite3_vfs* v, const char* n, int size, char* out) {
            return Parent(v)->xFullPathname(Parent(v), n, size, out);
        };
        vfs.xRandomness = [](sqlite3_vfs* v, int n, char* out) {
            return Parent(v)->xRandomness(Parent(v), n, out);
        };
        vfs.xSleep = [](sqlite3_vfs* v, int us) { return Parent(v)->xSleep(Parent(v), us); };
        vfs.xCurrentTime = [](sqlite3_vfs* v, double* t) {
            return Parent(v)->xCurrentTime(Parent(v), t);
        };
        vfs.xGetLastError = [](sqlite3_vfs* v, int n, char* out) {
            return Parent(v)->xGetLastError(Parent(v), n, out);
        };
        vfs.xCurrentTimeInt64 = [](sqlite3_vfs* v, sqlite3_int64* t) {
            return Parent(v)->xCurrentTimeInt64(Parent(v), t);
        };
        sqlite3_vfs_register(&vfs, 0);
    }
    ~Vfs() { sqlite3_vfs_unregister(&vfs); }
    Vfs(const Vfs&) = delete;
    Vfs& operator=(const Vfs&) = delete;

    static Vfs& Of(sqlite3_vfs* v) { return *static_cast<Vfs*>(v->pAppData); }
    static sqlite3_vfs* Parent(sqlite3_vfs* v) { return Of(v).parent; }
    static sqlite3_file* Real(sqlite3_file* f) { return reinterpret_cast<File*>(f)->real; }

    static int Open(sqlite3_vfs* v, sqlite3_filename name, sqlite3_file* f, int flags, int* out) {
        auto* file = reinterpret_cast<File*>(f);
        file->env = Of(v).env;
        file->real = reinterpret_cast<sqlite3_file*>(file + 1);
        file->base.pMethods = nullptr;
        const int rc = Parent(v)->xOpen(Parent(v), name, file->real, flags, out);
        if (file->real->pMethods) file->base.pMethods = &kMethods;
        return rc;
    }

    static const sqlite3_io_methods kMethods;

    FaultEnv* env;
    sqlite3_vfs* parent;
    std::string name;
    sqlite3_vfs vfs{};
};

const sqlite3_io_methods FaultEnv::Vfs::kMethods = {
    3,
    [](sqlite3_file* f) {
        sqlite3_file* real = Real(f);
        const int rc = real->pMethods->xClose(real);
        f->pMethods = nullptr;
        return rc;
    },
    [](sqlite3_file* f, void* into, int n, sqlite3_int64 at) {
        return Real(f)->pMethods->xRead(Real(f), into, n, at);
    },
    [](sqlite3_file* f, const void* from, int n, sqlite3_int64 at) {
        std::size_t size = static_cast<std::size_t>(n);
        if (const int err = reinterpret_cast<File*>(f)->env->AllowWrite(size))
            return err == ENOSPC ? SQLITE_FULL : SQLITE_IOERR_WRITE;
        if (size < static_cast<std::size_t>(n)) {
            // Part of it fits: the disk takes that much, and then it is full.
            Real(f)->pMethods->xWrite(Real(f), from, static_cast<int>(size), at);
            return SQLITE_FULL;
        }
        return Real(f)->pMethods->xWrite(Real(f), from, n, at);
    },
    [](sqlite3_file* f, sqlite3_int64 size) { return Real(f)->pMethods->xTruncate(Real(f), size); },
    [](sqlite3_file* f, int flags) { return Real(f)->pMethods->xSync(Real(f), flags); },
    [](sqlite3_file* f, sqlite3_int64* size) {
        return Real(f)->pMethods->xFileSize(Real(f), size);
    },
    [](sqlite3_file* f, int lock) { return Real(f)->pMethods->xLock(Real(f), lock); },
    [](sqlite3_file* f, int lock) { return Real(f)->pMethods->xUnlock(Real(f), lock); },
    [](sqlite3_file* f, int* out) { return Real(f)->pMethods->xCheckReservedLock(Real(f), out); },
    [](sqlite3_file* f, int op, void* arg) {
        return Real(f)->pMethods->xFileControl(Real(f), op, arg);
    },
    [](sqlite3_file* f) { return Real(f)->pMethods->xSectorSize(Real(f)); },
    [](sqlite3_file* f) { return Real(f)->pMethods->xDeviceCharacteristics(Real(f)); },
    [](sqlite3_file* f, int page, int size, int extend, void volatile** out) {
        return Real(f)->pMethods->xShmMap(Real(f), page, size, extend, out);
    },
    [](sqlite3_file* f, int offset, int n, int flags) {
        return Real(f)->pMethods->xShmLock(Real(f), offset, n, flags);
    },
    [](sqlite3_file* f) { Real(f)->pMethods->xShmBarrier(Real(f)); },
    [](sqlite3_file* f, int remove) { return Real(f)->pMethods->xShmUnmap(Real(f), remove); },
    [](sqlite3_file* f, sqlite3_int64 at, int n, void** out) {
        return Real(f)->pMethods->xFetch(Real(f), at, n, out);
    },
    [](sqlite3_file* f, sqlite3_int64 at, void* p) {
        return Real(f)->pMethods->xUnfetch(Real(f), at, p);
    },
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
