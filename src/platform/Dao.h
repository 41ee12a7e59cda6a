// The host's file databases as the workers use them: a small DAO-shaped layer (workspace,
// database, recordset, field) over SQLite that speaks the Jet dialect the workers write.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "util/Value.h"

struct sqlite3;

namespace morvane::platform {
class Env;
}

namespace morvane::dao {

// The host's constants, with its numbers.
inline constexpr std::int32_t dbUseJet = 2;
inline constexpr std::int32_t dbOpenDynaset = 2;
inline constexpr std::int32_t dbReadOnly = 4;

// Error numbers of the database engine, as the error trap shows them.
namespace daoerr {
inline constexpr std::int32_t kUpdateWithoutEdit = 3020;
inline constexpr std::int32_t kNoCurrentRecord = 3021;
inline constexpr std::int32_t kDuplicateKey = 3022;
inline constexpr std::int32_t kFileNotFound = 3024;
inline constexpr std::int32_t kReadOnly = 3027;
inline constexpr std::int32_t kNeedsRepair = 3049;
inline constexpr std::int32_t kCannotOpen = 3051;
inline constexpr std::int32_t kSyntax = 3075;
inline constexpr std::int32_t kNoSuchTable = 3078;
inline constexpr std::int32_t kEngine = 3146;
inline constexpr std::int32_t kLocked = 3218;
inline constexpr std::int32_t kItemNotFound = 3265;
inline constexpr std::int32_t kNotUpdatable = 3326;
inline constexpr std::int32_t kNotADatabase = 3343;
inline constexpr std::int32_t kTypeConversion = 3421;
}  // namespace daoerr

// A statement of the Jet dialect in SQLite's: "..." text constants, #date# constants,
// SELECT TOP n, DELETE * FROM. [names] and the rest pass as they are.
std::string TranslateJetSql(std::string_view jet);

class Database;
class Recordset;

// Closes an SQLite connection; statements still open finish on their own.
struct ConnectionCloser {
    void operator()(sqlite3* db) const;
};
using Connection = std::unique_ptr<sqlite3, ConnectionCloser>;

// Connections kept open between the opens of one process, so that a file opened again and
// again is neither reopened nor its schema read anew. A kept connection serves the same
// file only: the same path and mode, and the same device, inode, size and change time as
// when it was put back, so a file replaced, deleted or written by another hand is opened
// afresh. Only a connection left without a transaction or a running statement is kept.
class ConnectionPool {
public:
    static constexpr size_t kDefaultCapacity = 8;
    explicit ConnectionPool(size_t capacity = kDefaultCapacity);
    ~ConnectionPool();
    ConnectionPool(const ConnectionPool&) = delete;
    ConnectionPool& operator=(const ConnectionPool&) = delete;

    struct Counts {
        std::uint64_t opened = 0;  // connections opened anew
        std::uint64_t reused = 0;  // opens served by a kept connection
    };
    Counts Tally() const;
    // 0 keeps nothing: every open opens the file.
    void SetCapacity(size_t capacity);
    // Closes every kept connection and zeroes the counts.
    void Clear();
    // Where its databases are opened; none: straight through SQLite. Kept connections were
    // opened elsewhere and are closed.
    void SetEnv(platform::Env* env);

private:
    friend class Database;
    platform::Env* env_ = nullptr;
    Connection Take(const std::string& key);
    void Keep(const std::string& key, Connection db) noexcept;
    void CountOpened();
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// One column of the current row of a recordset.
class Field {
public:
    const std::string& Name() const;
    // Null for a database Null; a date for a DATETIME column or a MAX() of one.
    Value GetValue() const;
    // Writes into the row being edited or added; kept until Update.
    void PutValue(const Value& value);

    // Reads for hot loops that build no Value. Each answers only the common case on a
    // read-only recordset and otherwise says "read it with GetValue".
    // The integer when the column holds one that fits a Long.
    std::optional<std::int32_t> GetLong() const;
    // Null, a date in this layer's stored form (set into date), or Other.
    enum class StampKind { Null, Date, Other };
    StampKind GetStamp(DateValue& date) const;

private:
    friend class Recordset;
    Field(Recordset& rs, int column) : rs_(&rs), column_(column) {}
    Recordset* rs_;
    int column_;
};

class Recordset {
public:
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    bool Bof() const;
    bool Eof() const;
    void MoveFirst();
    void MoveNext();
    // The column of that name, matched without regard to case; error 3265 if none.
    Field Fields(std::string_view name);
    Value operator[](std::string_view name) { return Fields(name).GetValue(); }
    // Fields.Count and Fields(i), from 0.
    int FieldCount() const;
    Field FieldAt(int index);

    // Writing, on a recordset opened without dbReadOnly over one table.
    void AddNew();
    void Edit();
    void Update();
    void Close();

private:
    friend class Database;
    friend class Field;
    struct Impl;
    explicit Recordset(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

class Database {
public:
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    const std::string& Name() const { return path_; }
    std::unique_ptr<Recordset> OpenRecordset(std::string_view sql,
                                             std::int32_t type = dbOpenDynaset,
                                             std::int32_t options = 0);
    void Execute(std::string_view sql);
    // A kept connection goes back to the workspace's pool.
    void Close();
    bool IsOpen() const { return db_ != nullptr; }

private:
    friend class Workspace;
    Database(std::string path, bool exclusive, bool readOnly, ConnectionPool* pool);
    void Exec(const char* nativeSql);
    std::string path_;
    std::string poolKey_;  // empty: never kept
    ConnectionPool* pool_;
    Connection db_;
};

// A session over one or more databases; its transaction spans every database it opened.
// An open transaction is rolled back when the workspace closes. With a pool, its databases
// take kept connections and give them back on closing; the pool must outlive it.
class Workspace {
public:
    Workspace(std::string name, std::string userName, ConnectionPool* pool = nullptr);
    ~Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    // The file must exist and be a database; errors 3024, 3343, 3051 otherwise. Writing
    // through a read-only database is error 3027.
    Database& OpenDatabase(const std::string& path, bool exclusive = false, bool readOnly = false);
    void BeginTrans();
    void CommitTrans();
    void Rollback();
    bool InTransaction() const { return inTrans_; }
    void Close();

private:
    std::string name_;
    std::string userName_;
    ConnectionPool* pool_;
    std::vector<std::unique_ptr<Database>> databases_;
    bool inTrans_ = false;
};

// The engine: creates workspaces. It holds nothing, so every caller may have its own.
class DBEngine {
public:
    static std::unique_ptr<Workspace> CreateWorkspace(const std::string& name,
                                                      const std::string& userName,
                                                      const std::string& password,
                                                      std::int32_t useType = dbUseJet,
                                                      ConnectionPool* pool = nullptr);
};

// Creates a new database file (an existing one is an error) and runs the native SQL script
// in it, in one transaction: what builds the host's databases and their sample data.
void CreateDatabaseFile(const std::filesystem::path& path, std::string_view script);
// Runs a native SQL script in one transaction on an existing database file.
void RunScript(const std::filesystem::path& path, std::string_view script);

}  // namespace morvane::dao
