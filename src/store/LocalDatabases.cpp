#include "store/LocalDatabases.h"

#include <SchemaSql.h>

#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/AtomicFile.h"
#include "platform/Dao.h"
#include "store/BackupTableIndex.h"
#include "util/Nz.h"
#include "util/RuntimeError.h"

namespace morvane {
namespace {

namespace fs = std::filesystem;

// The host keeps one row per trade of the permit law, numbered 1 to 31.
constexpr std::int32_t kTradeGridRows = 31;

// The prefecture forms that carry content of their own.
constexpr int kIndexIninMain = 31;
constexpr int kIndexIninSub = 32;
constexpr int kIndexKikaiIchiranMain = 38;
constexpr int kIndexKikaiIchiranSub = 39;

// Numbers 1..n and, per number, 1..rows, as a common table expression.
std::string Sequences(std::int32_t n, std::int32_t rows) {
    return "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
           std::to_string(n) + "), r(j) AS (SELECT 1 UNION ALL SELECT j + 1 FROM r WHERE j < " +
           std::to_string(rows) + ") ";
}

// A stamp from 2024-01-01 on, Null for one row in `nullEvery` (seeded by `salt`).
std::string Stamp(const std::string& seed, int salt, int nullEvery, int shiftMinutes) {
    const std::string k = "((" + seed + ") * 7919 + " + std::to_string(salt * 104729) + ")";
    return "CASE WHEN " + k + " % " + std::to_string(nullEvery) +
           " = 0 THEN NULL ELSE datetime('2024-01-01', '+' || (" + k + " % 500000 + 1000 + " +
           std::to_string(shiftMinutes) + ") || ' minutes') END";
}

// The stamp of the last agreement: none at all for an office never backed up.
std::string CheckStamp(const SampleDataOptions& o, const std::string& seed, int salt, int nullEvery,
                       int shiftMinutes) {
    return o.neverSynced ? "NULL" : Stamp(seed, salt, nullEvery, shiftMinutes);
}

std::string CustomerRows(const SampleDataOptions& o) {
    std::string sql;
    if (o.customers > 0) {
        sql += Sequences(o.customers, 1) +
               "INSERT INTO tCustomer (id, Code, CorpName0, CorpKanaS, CorpKana0, ZipCode0, "
               "ZipCode1, Addr0, Tel0, TEL1, TEL2, disabled, InetSyncFlag, RecordUpdate, "
               "InetCheckDate) SELECT i, printf('C%05d', i), 'モルヴェイン建設' || i || "
               "'株式会社', 'ﾓﾙｳﾞｪｲﾝｹﾝｾﾂ' || i, 'ﾓﾙｳﾞｪｲﾝｹﾝｾﾂ', '100', '0001', '東京都千代田区', "
               "'03', '1234', printf('%04d', i % 10000), 0, 0, " +
               Stamp("i", 0, 7, 0) + ", " + CheckStamp(o, "i", 0, 5, 3) + " FROM n;\n";
    }
    if (o.hostSampleCustomer) {
        sql +=
            "INSERT INTO tCustomer (id, Code, CorpName0, CorpKanaS, disabled, InetSyncFlag) "
            "VALUES (" +
            std::to_string(o.customers + 1) + ", 'SAMPLE', '" + kSampleCustomerName +
            "', 'ﾄﾙﾏｰｹﾝｾﾂ', 0, 0);\n";
    }
    return sql;
}

// Rows for every customer in a table owned by customers: deleted ones, unstamped ones.
std::string OwnedRows(const std::string& table, int salt, const SampleDataOptions& o,
                      const std::string& extraColumns = {}, const std::string& extraValues = {}) {
    return Sequences(o.customers, o.rowsPerTable) + "INSERT INTO [" + table +
           "] (CustomerID, disabled, RecordUpdate, InetCheckDate" + extraColumns +
           ") SELECT i, CASE WHEN (i + j * 3 + " + std::to_string(salt) +
           ") % 11 = 0 THEN 1 ELSE 0 END, " + Stamp("i * 31 + j", salt, 9, 0) + ", " +
           CheckStamp(o, "i * 31 + j", salt, 6, (salt % 3 == 0) ? -600 : 2) + extraValues +
           " FROM n, r;\n";
}

// The delegation form and the machinery lists, whose rows carry content: edited on
// 2024/05/01 and never sent up. The delegation form counts every live row whoever owns it,
// so the office has one, kept under customer 1. A machinery list belongs to a data file of a
// settlement record (odd rows) or of a permit record (even rows), with two machines each.
std::string FormRows(int index, const SampleDataOptions& o) {
    const std::string edited = "'2024-05-01 10:00:00'";
    switch (index) {
        case kIndexIninMain:
            return "INSERT INTO [t99_ININ_MAIN] (CustomerID, disabled, vno, MakeDate, SubShokuin, "
                   "SelectDetail, SelectSubShokuin, PrintDate, PrintSubShokuin, RecordUpdate) "
                   "VALUES (1, 0, 1, '2024-03-01 00:00:00', '補助者 一郎', 1, 2, 1, 0, " +
                   edited + ");\n";
        case kIndexIninSub:
            return Sequences(1, o.rowsPerTable) +
                   "INSERT INTO [t99_ININ_SUB] (CustomerID, disabled, vno, IninTitle, IninDetail0, "
                   "IninDetail1, IninDetail2, IninDetail3, RecordUpdate) SELECT 1, 0, j, "
                   "'委任事項' || j, '詳細' || j || '-0', '詳細' || j || '-1', '', '詳細' || j || "
                   "'-3', " +
                   edited + " FROM n, r;\n";
        case kIndexKikaiIchiranMain:
            return Sequences(o.customers, o.rowsPerTable) +
                   "INSERT INTO [t99_KIKAIICHIRAN_MAIN] (CustomerID, disabled, DataFileID, "
                   "DataFileID_KY, vno, CorpName0, ApfName0, ISO9001_Ninsho, SubmitDate, "
                   "RecordUpdate) SELECT i, CASE WHEN (i + j * 3 + 38) % 11 = 0 THEN 1 ELSE 0 END, "
                   "CASE WHEN j % 2 = 1 THEN i * 100 + j END, CASE WHEN j % 2 = 0 THEN i * 100 + j "
                   "END, '1', 'モルヴェイン建設' || i || '株式会社', '代表 ' || i, "
                   "CAST(j % 2 AS TEXT), '2024/06/30', " +
                   edited + " FROM n, r;\n";
        case kIndexKikaiIchiranSub: {
            const std::string list = "((j + 1) / 2)";
            return Sequences(o.customers, o.rowsPerTable * 2) +
                   "INSERT INTO [t99_KIKAIICHIRAN_SUB] (CustomerID, disabled, DataFileID, "
                   "DataFileID_KY, vno, No, MachineType, Maker, Model, SerialNum, GetDate, "
                   "RecordUpdate) SELECT i, CASE WHEN (i + j + 39) % 13 = 0 THEN 1 ELSE 0 END, "
                   "CASE WHEN " +
                   list + " % 2 = 1 THEN i * 100 + " + list + " END, CASE WHEN " + list +
                   " % 2 = 0 THEN i * 100 + " + list +
                   " END, CAST(2 - j % 2 AS TEXT), CAST(2 - j % 2 AS TEXT), 'バックホウ', "
                   "'メーカー' || i, 'M-' || j, printf('SN%05d', i * 100 + j), '2020/04/01', " +
                   edited + " FROM n, r;\n";
        }
        default:
            return {};
    }
}

std::string ChildRows(bool prefcustom, const SampleDataOptions& o) {
    std::string sql;
    if (o.customers <= 0 || o.rowsPerTable <= 0) return sql;
    for (int index = 1; index < kBackupTableCount; ++index) {
        const BackupTable& t = BackupTables()[index];
        if (t.inPrefCustom != prefcustom) continue;
        if (index == kIndexNyusatsuKanri) {
            // The grid's rows by position; the second row of each customer is blank.
            sql += OwnedRows(t.name, index, o, ", LocalIndex, KikanName, Kubun, Nendo1",
                             ", j, CASE WHEN j = 1 THEN '国土交通省' || i ELSE '' END, "
                             "CASE WHEN j = 1 THEN '1' ELSE '' END, "
                             "CASE WHEN j = 1 THEN '2024' ELSE '' END");
            // The host stamps every grid row it fills.
            sql +=
                "UPDATE tCustomerNyusatsuKanri SET RecordUpdate = datetime('2024-03-01', '+' "
                "|| CustomerID || ' hours') WHERE RecordUpdate IS NULL AND KikanName <> '';\n";
        } else if (index == kIndexNyusatsuHistory) {
            sql += OwnedRows(t.name, index, o,
                             ", vno, KikanCode, Effective, Reservation, Other, CheckSync",
                             ", j, printf('K%03d', i * 10 + j), (i + j) % 2, j % 3, "
                             "'入札' || j, 0");
        } else if (index == kIndexGyoshu && o.tradeGrid) {
            sql += Sequences(o.customers, kTradeGridRows) +
                   "INSERT INTO [tCustomerGyoshu] (CustomerID, disabled, GyoshuCode, EPmtCheck, "
                   "EPmtDate, RecordUpdate, InetCheckDate) SELECT i, 0, j, CASE WHEN (i + j) % 4 "
                   "= 0 THEN 1 ELSE 0 END, CASE WHEN (i + j) % 4 = 0 THEN datetime('2020-04-01', "
                   "'+' || (i * 37 + j) || ' days') END, " +
                   Stamp("i * 31 + j", index, 9, 0) + ", " +
                   CheckStamp(o, "i * 31 + j", index, 6, 2) + " FROM n, r;\n";
        } else if (!FormRows(index, o).empty()) {
            sql += FormRows(index, o);
        } else if (index == kIndexKyokaHistory) {
            sql += OwnedRows(t.name, index, o, ", Ver511HideFlag",
                             ", CASE WHEN (i + j) % 13 = 0 THEN 1 ELSE 0 END");
        } else {
            sql += OwnedRows(t.name, index, o);
        }
    }
    if (!prefcustom) {
        sql +=
            Sequences(o.customers, 1) +
            "INSERT INTO tCustomerKeisin (CustomerID, disabled, CheckEx) SELECT i, 0, 1 FROM n;\n" +
            Sequences(o.customers, 1) +
            "INSERT INTO tCustomerNyusatsu (CustomerID, disabled, Manage) SELECT i, 0, 0 FROM "
            "n;\n";
    }
    return sql;
}

// The records that carry a data file, and the word their files are named by.
constexpr std::pair<const char*, const char*> kFileRecords[] = {
    {"tCustomerKessanHistory", "kessan"},
    {"tCustomerKyokaHistory", "kyoka"},
    {"tCustomerOtherFile", "other"}};

// Names a small text file in each live record's DataFile, relative to the databases' folder,
// and writes it there.
void WriteDataFiles(const fs::path& customerDb, const fs::path& folder) {
    std::string sql;
    for (const auto& [table, word] : kFileRecords)
        sql += std::string("UPDATE [") + table + "] SET DataFile = 'files/' || CustomerID || '/" +
               word + "-' || id || '.txt' WHERE disabled = 0;\n";
    dao::RunScript(customerDb.string(), sql);
    dao::Workspace ws("", "");
    dao::Database& db = ws.OpenDatabase(customerDb.string());
    for (const auto& [table, word] : kFileRecords) {
        auto rs = db.OpenRecordset(std::string("SELECT id, CustomerID, DataFile FROM [") + table +
                                   "] WHERE DataFile <> '' ORDER BY id");
        for (; !rs->Eof(); rs->MoveNext()) {
            // Now and then a record names a file that is not there: moved away by hand.
            if (NzLong((*rs)["id"]) % 17 == 0) continue;
            const fs::path file = folder / NzString((*rs)["DataFile"]);
            fs::create_directories(file.parent_path());
            const std::string text = std::string(word) + " data of customer " +
                                     NzString((*rs)["CustomerID"]) + ": " +
                                     file.filename().string() + "\n";
            if (platform::WriteFileAtomically(file, text) != 0)
                throw RuntimeError(errnum::kPathNotFound, "Cannot write " + file.string());
        }
    }
}

std::string MasterRows(const SampleDataOptions& o) {
    if (o.masterRows <= 0 || o.customers <= 0) return {};
    const std::vector<std::pair<std::string, std::string>> masters = {
        {"tBunsekiKikan", "KikanName"},   {"tKessanTaioh", "Taioh"},   {"tMinister", "MinName"},
        {"tNyusatsuKikan", "KikanName"},  {"tNyusatsuShorui", "Name"}, {"tSakuseisha", "UserName"},
        {"tUserStaff", "[事務所職員名]"}, {"tYakushoku", "Yakushoku"}};
    std::string sql;
    int salt = 100;
    for (const auto& [table, column] : masters) {
        sql += Sequences(o.masterRows, 1) + "INSERT INTO [" + table + "] (" + column +
               ", RecordUpdate, InetCheckDate) SELECT '" + table + "' || i, " +
               Stamp("i", salt, 97, 0) + ", " + CheckStamp(o, "i", salt, 97, 2) + " FROM n;\n";
        ++salt;
    }
    return sql;
}

}  // namespace

std::string CustomerSchemaSql() { return schema::k_customer; }
std::string MasterSchemaSql() { return schema::k_master; }
std::string PrefCustomSchemaSql() { return schema::k_prefcustom; }

LocalDatabasePaths CreateLocalDatabases(const fs::path& folder, const SampleDataOptions& options) {
    std::error_code ec;
    fs::create_directories(folder, ec);
    if (ec) throw RuntimeError(errnum::kPathNotFound, "Cannot create " + folder.string());
    LocalDatabasePaths paths{folder / kCustomerDatabaseName, folder / kMasterDatabaseName,
                             folder / kPrefCustomDatabaseName};
    std::vector<fs::path> made;
    try {
        dao::CreateDatabaseFile(paths.customer, CustomerSchemaSql() + CustomerRows(options) +
                                                    ChildRows(false, options));
        made.push_back(paths.customer);
        dao::CreateDatabaseFile(paths.master, MasterSchemaSql() + MasterRows(options));
        made.push_back(paths.master);
        dao::CreateDatabaseFile(paths.prefcustom, PrefCustomSchemaSql() + ChildRows(true, options));
        if (options.dataFiles) WriteDataFiles(paths.customer, folder);
    } catch (...) {
        for (const auto& p : made) fs::remove(p, ec);
        throw;
    }
    return paths;
}

}  // namespace morvane
