// The server's one SQLite database in the data folder, with its schema.
#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/VariadicBind.h>

#include <filesystem>

namespace morvane::server {

class Storage {
public:
    explicit Storage(const std::filesystem::path& dataDir);
    SQLite::Database& Db() { return db_; }
    static std::filesystem::path DatabaseFile(const std::filesystem::path& dataDir);

private:
    SQLite::Database db_;
};

// Runs one statement that returns no rows, with `values` bound to its parameters in order.
template <typename... Values>
void Execute(SQLite::Database& db, const char* sql, const Values&... values) {
    SQLite::Statement st(db, sql);
    SQLite::bind(st, values...);
    st.exec();
}

}  // namespace morvane::server
