// The server's one SQLite database in the data folder, with its schema.
#pragma once

#include <filesystem>

#include "server/db/Database.h"

namespace morvane::server {

class Storage {
public:
    explicit Storage(const std::filesystem::path& dataDir);
    Database& Db() { return db_; }
    static std::filesystem::path DatabaseFile(const std::filesystem::path& dataDir);

private:
    Database db_;
};

}  // namespace morvane::server
