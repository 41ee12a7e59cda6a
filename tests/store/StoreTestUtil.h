// Helpers of the local-store tests: real database files in the test's folder, rows written
// and read back through the DAO layer.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/Dao.h"
#include "store/LocalDatabases.h"
#include "util/Nz.h"

namespace morvane::test {

inline void Sql(const std::filesystem::path& db, const std::string& script) {
    dao::RunScript(db, script);
}

inline std::vector<std::string> Rows(const std::filesystem::path& db, const std::string& jetSql) {
    dao::Workspace ws("Morvane", "admin");
    auto rs =
        ws.OpenDatabase(db.string()).OpenRecordset(jetSql, dao::dbOpenDynaset, dao::dbReadOnly);
    std::vector<std::string> rows;
    for (; !rs->Eof(); rs->MoveNext()) {
        std::string row;
        for (int i = 0; i < rs->FieldCount(); ++i) {
            const Value v = rs->FieldAt(i).GetValue();
            row += (i ? "|" : "") + (v.IsNull() ? std::string("<null>") : NzString(v));
        }
        rows.push_back(row);
    }
    return rows;
}

inline std::string One(const std::filesystem::path& db, const std::string& jetSql) {
    dao::Workspace ws("Morvane", "admin");
    auto rs =
        ws.OpenDatabase(db.string()).OpenRecordset(jetSql, dao::dbOpenDynaset, dao::dbReadOnly);
    return rs->Eof() ? std::string() : NzString(rs->FieldAt(0).GetValue());
}

}  // namespace morvane::test
