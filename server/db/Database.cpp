#include "server/db/Database.h"

#include <sqlite3.h>

namespace morvane::server {

namespace {
[[noreturn]] void Fail(sqlite3* db, std::string_view what) {
    throw DbError(std::string(what) + ": " + (db ? sqlite3_errmsg(db) : "no database"));
}
}  // namespace

Statement::Statement(sqlite3* db, std::string_view sql) : db_(db) {
    if (sqlite3_prepare_v2(db, sql.data(), static_cast<int>(sql.size()), &stmt_, nullptr) !=
        SQLITE_OK)
        Fail(db, "prepare");
}

Statement::~Statement() { sqlite3_finalize(stmt_); }

Statement::Statement(Statement&& other) noexcept : db_(other.db_), stmt_(other.stmt_) {
    other.stmt_ = nullptr;
}

Statement& Statement::Bind(int index, std::string_view text) {
    if (sqlite3_bind_text(stmt_, index, text.data(), static_cast<int>(text.size()),
                          SQLITE_TRANSIENT) != SQLITE_OK)
        Fail(db_, "bind");
    return *this;
}

Statement& Statement::Bind(int index, std::int64_t value) {
    if (sqlite3_bind_int64(stmt_, index, value) != SQLITE_OK) Fail(db_, "bind");
    return *this;
}

Statement& Statement::BindNull(int index) {
    if (sqlite3_bind_null(stmt_, index) != SQLITE_OK) Fail(db_, "bind");
    return *this;
}

bool Statement::Step() {
    const int rc = sqlite3_step(stmt_);
    if (rc == SQLITE_ROW) return true;
    if (rc == SQLITE_DONE) return false;
    Fail(db_, "step");
}

void Statement::Run() {
    while (Step()) {
    }
    Reset();
}

void Statement::Reset() {
    sqlite3_reset(stmt_);
    sqlite3_clear_bindings(stmt_);
}

std::string Statement::Text(int column) const {
    const auto* p = sqlite3_column_text(stmt_, column);
    const int n = sqlite3_column_bytes(stmt_, column);
    return p ? std::string(reinterpret_cast<const char*>(p), static_cast<std::size_t>(n))
             : std::string();
}

std::int64_t Statement::Integer(int column) const { return sqlite3_column_int64(stmt_, column); }

bool Statement::IsNull(int column) const {
    return sqlite3_column_type(stmt_, column) == SQLITE_NULL;
}

Database::Database(const std::filesystem::path& file) {
    if (sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
        SQLITE_OK) {
        std::string msg = db_ ? sqlite3_errmsg(db_) : "out of memory";
        sqlite3_close(db_);
        db_ = nullptr;
        throw DbError("open " + file.string() + ": " + msg);
    }
    sqlite3_busy_timeout(db_, 5000);
    Exec("PRAGMA journal_mode=WAL");
    Exec("PRAGMA foreign_keys=ON");
}

Database::~Database() { sqlite3_close(db_); }

void Database::Exec(std::string_view sql) {
    char* err = nullptr;
    if (sqlite3_exec(db_, std::string(sql).c_str(), nullptr, nullptr, &err) != SQLITE_OK) {
        std::string msg = err ? err : "error";
        sqlite3_free(err);
        throw DbError("exec: " + msg);
    }
}

Statement Database::Prepare(std::string_view sql) { return Statement(db_, sql); }

std::int64_t Database::LastInsertId() const { return sqlite3_last_insert_rowid(db_); }

Transaction::Transaction(Database& db) : db_(db) { db_.Exec("BEGIN IMMEDIATE"); }

Transaction::~Transaction() {
    if (!done_) {
        try {
            db_.Exec("ROLLBACK");
        } catch (...) {
        }
    }
}

void Transaction::Commit() {
    db_.Exec("COMMIT");
    done_ = true;
}

}  // namespace morvane::server
