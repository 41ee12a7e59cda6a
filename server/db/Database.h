// A thin RAII layer over one SQLite database file: statements with bound values and transactions.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace morvane::server {

class DbError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class Statement {
public:
    Statement(sqlite3* db, std::string_view sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    Statement(Statement&& other) noexcept;

    Statement& Bind(int index, std::string_view text);
    Statement& Bind(int index, std::int64_t value);
    Statement& Bind(int index, int value) { return Bind(index, static_cast<std::int64_t>(value)); }
    Statement& BindNull(int index);

    // Steps once; true while a row is available.
    bool Step();
    // Runs a statement that returns no rows.
    void Run();
    void Reset();

    std::string Text(int column) const;
    std::int64_t Integer(int column) const;
    bool IsNull(int column) const;

private:
    sqlite3* db_;
    sqlite3_stmt* stmt_ = nullptr;
};

class Database {
public:
    explicit Database(const std::filesystem::path& file);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void Exec(std::string_view sql);
    Statement Prepare(std::string_view sql);
    std::int64_t LastInsertId() const;

private:
    sqlite3* db_ = nullptr;
};

// Rolls back unless committed.
class Transaction {
public:
    explicit Transaction(Database& db);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void Commit();

private:
    Database& db_;
    bool done_ = false;
};

}  // namespace morvane::server
