#include "server/core/Storage.h"

#include <stdexcept>

namespace morvane::server {

namespace {

constexpr const char* kSchema = R"sql(
CREATE TABLE IF NOT EXISTS accounts(
    id INTEGER PRIMARY KEY,
    contract_no TEXT NOT NULL UNIQUE,
    contractor_name TEXT NOT NULL DEFAULT '',
    contract_begin TEXT NOT NULL DEFAULT '',
    contract_end TEXT NOT NULL DEFAULT '',
    shared_count INTEGER NOT NULL DEFAULT 1,
    max_customer INTEGER NOT NULL DEFAULT 0,
    single_login INTEGER NOT NULL DEFAULT 0);
CREATE TABLE IF NOT EXISTS users(
    account_id INTEGER NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
    user_id TEXT NOT NULL,
    user_name TEXT NOT NULL DEFAULT '',
    password_hash TEXT NOT NULL,
    PRIMARY KEY(account_id, user_id));
CREATE TABLE IF NOT EXISTS customers(
    account_id INTEGER NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
    customer_id INTEGER NOT NULL,
    inet_enable_flag INTEGER NOT NULL DEFAULT 1,
    PRIMARY KEY(account_id, customer_id));
CREATE TABLE IF NOT EXISTS stamps(
    account_id INTEGER NOT NULL,
    customer_id INTEGER NOT NULL,
    store TEXT NOT NULL,
    stamp TEXT NOT NULL,
    PRIMARY KEY(account_id, customer_id, store));
CREATE TABLE IF NOT EXISTS items(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    account_id INTEGER NOT NULL,
    customer_id INTEGER NOT NULL,
    store TEXT NOT NULL,
    scope TEXT NOT NULL,
    item_id TEXT NOT NULL,
    ord INTEGER NOT NULL DEFAULT 0,
    UNIQUE(account_id, customer_id, store, scope, item_id));
CREATE TABLE IF NOT EXISTS item_fields(
    item INTEGER NOT NULL REFERENCES items(id) ON DELETE CASCADE,
    name TEXT NOT NULL,
    value TEXT NOT NULL,
    PRIMARY KEY(item, name));
)sql";

SQLite::Database Open(const std::filesystem::path& file) {
    try {
        SQLite::Database db(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, 5000);
        db.exec("PRAGMA journal_mode=WAL");
        db.exec("PRAGMA foreign_keys=ON");
        return db;
    } catch (const SQLite::Exception& e) {
        // The command line shows this message, so it names the file.
        throw std::runtime_error("open " + file.string() + ": " + e.what());
    }
}

}  // namespace

std::filesystem::path Storage::DatabaseFile(const std::filesystem::path& dataDir) {
    return dataDir / "morvane-server.db";
}

Storage::Storage(const std::filesystem::path& dataDir) : db_(Open(DatabaseFile(dataDir))) {
    db_.exec(kSchema);
}

}  // namespace morvane::server
