// The DAO layer over real SQLite files: the dialect, dates and Nulls, writing, transactions,
// the numbered errors of missing or broken files, and connections kept between opens.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "platform/Dao.h"
#include "store/LocalDatabases.h"
#include "store/StoreTestUtil.h"
#include "support/FileBytes.h"
#include "support/Golden.h"
#include "support/TempDir.h"
#include "util/RuntimeError.h"

namespace morvane::test {
namespace {
namespace fs = std::filesystem;

std::int32_t ErrorNumber(const std::function<void()>& f) {
    try {
        f();
    } catch (const RuntimeError& e) {
        return e.Number();
    }
    return 0;
}

class DaoTest : public ::testing::Test {
protected:
    void SetUp() override { paths_ = CreateLocalDatabases(temp_.Path()); }
    std::string Customer() const { return paths_.customer.string(); }
    // The first column of the first row, read through the pool.
    std::string Kept(const fs::path& db, const std::string& jetSql) {
        dao::Workspace ws("Morvane", "admin", &pool_);
        auto rs =
            ws.OpenDatabase(db.string()).OpenRecordset(jetSql, dao::dbOpenDynaset, dao::dbReadOnly);
        return rs->Eof() ? std::string() : NzString(rs->FieldAt(0).GetValue());
    }
    // Runs statements in one transaction of a pooled workspace, ended as asked.
    void InTransaction(const std::vector<std::string>& jetSql, bool commit) {
        dao::Workspace ws("Morvane", "admin", &pool_);
        dao::Database& db = ws.OpenDatabase(Customer());
        ws.BeginTrans();
        for (const auto& sql : jetSql) db.Execute(sql);
        if (commit) ws.CommitTrans();
    }
    TempDir temp_;
    LocalDatabasePaths paths_;
    dao::ConnectionPool pool_;
};

TEST(JetDialect, TranslatesLiteralsTopAndDelete) {
    const auto lines = Golden("platform/dao.txt").Lines("translations");
    for (size_t i = 0; i + 1 < lines.size(); i += 2)
        EXPECT_EQ(dao::TranslateJetSql(lines[i]), lines[i + 1]);
    EXPECT_EQ(ErrorNumber([] { dao::TranslateJetSql("SELECT * FROM t WHERE d = #no date#"); }),
              dao::daoerr::kSyntax);
}

TEST_F(DaoTest, MissingBrokenAndFolderPathsAreNumberedErrors) {
    dao::Workspace ws("Morvane", "admin");
    const auto open = [&](const fs::path& p) {
        return ErrorNumber([&] { ws.OpenDatabase(p.string()); });
    };
    EXPECT_EQ(open(temp_.Path() / "none.dat"), dao::daoerr::kFileNotFound);
    EXPECT_EQ(open(WriteBytes(temp_.Path() / "broken.dat", std::string(4096, 'x'))),
              dao::daoerr::kNotADatabase);
    EXPECT_EQ(open(temp_.Path()), dao::daoerr::kCannotOpen);
    dao::Database& db = ws.OpenDatabase(Customer());
    EXPECT_EQ(ErrorNumber([&] { db.OpenRecordset("SELECT * FROM tNothing"); }),
              dao::daoerr::kNoSuchTable);
    auto rs = db.OpenRecordset("SELECT id FROM tCustomer", dao::dbOpenDynaset, dao::dbReadOnly);
    EXPECT_TRUE(rs->Bof() && rs->Eof());
    EXPECT_EQ(ErrorNumber([&] { rs->Fields("Nope"); }), dao::daoerr::kItemNotFound);
    EXPECT_EQ(ErrorNumber([&] { rs->MoveNext(); }), dao::daoerr::kNoCurrentRecord);
    EXPECT_EQ(ErrorNumber([&] { rs->AddNew(); }), dao::daoerr::kReadOnly);
}

// An added row joins no traversal; the schema's default fills what was not written; text that
// is no number is refused. Dates, Nulls and field names without case are held by the record,
// dated and store tests.
TEST_F(DaoTest, AddedRowsNumbersAndTextThatIsNoNumber) {
    dao::Workspace ws("Morvane", "admin");
    dao::Database& db = ws.OpenDatabase(Customer());
    auto rs = db.OpenRecordset("SELECT * FROM tCustomer WHERE id = 7");
    rs->AddNew();
    rs->Fields("id").PutValue(Value(7));
    rs->Fields("PmtCheck0").PutValue(Value(" 12 "));
    rs->Fields("PmtCheck1").PutValue(Value(2.5));
    rs->Update();
    EXPECT_TRUE(rs->Eof());
    rs = db.OpenRecordset("SELECT PmtCheck0, PmtCheck1, disabled FROM tCustomer WHERE id = 7");
    ASSERT_FALSE(rs->Eof());
    EXPECT_EQ(NzString(rs->FieldAt(0).GetValue()) + "|" + NzString(rs->FieldAt(1).GetValue()) +
                  "|" + NzString(rs->FieldAt(2).GetValue()),
              "12|2.5|0");
    rs->Edit();
    rs->Fields("PmtCheck0").PutValue(Value("abc"));
    EXPECT_EQ(ErrorNumber([&] { rs->Update(); }), dao::daoerr::kTypeConversion);
}

// Rolled back at once, not only when the connection closes; the workspaces go through kept
// connections, none of which carries a transaction on.
TEST_F(DaoTest, RollbackAndAnOpenTransactionAtCloseLeaveTheRowsAsTheyWereThroughKeptConnections) {
    Sql(paths_.customer, "INSERT INTO tCustomer (id, Code) VALUES (1, 'a'), (2, 'b');");
    {
        dao::Workspace ws("Morvane", "admin", &pool_);
        dao::Database& db = ws.OpenDatabase(Customer());
        ws.BeginTrans();
        db.Execute("UPDATE tCustomer SET Code = \"z\" WHERE id = 1");
        auto rs = db.OpenRecordset("SELECT * FROM tCustomer WHERE id = 2");
        rs->Edit();
        rs->Fields("Code").PutValue(Value("y"));
        rs->Update();
        ws.Rollback();
        EXPECT_EQ(
            NzString(
                db.OpenRecordset("SELECT Code FROM tCustomer WHERE id = 1")->FieldAt(0).GetValue()),
            "a");
    }
    EXPECT_EQ(Rows(paths_.customer, "SELECT id, Code FROM tCustomer ORDER BY id"),
              (std::vector<std::string>{"1|a", "2|b"}));
    InTransaction({"DELETE * FROM tCustomer"}, false);
    EXPECT_EQ(Kept(paths_.customer, "SELECT COUNT(*) FROM tCustomer"), "2");
    InTransaction({"UPDATE tCustomer SET Code = \"c\" WHERE id = 2"}, true);
    EXPECT_EQ(Kept(paths_.customer, "SELECT Code FROM tCustomer WHERE id = 2"), "c");
    EXPECT_GT(pool_.Tally().reused, 0u);
    EXPECT_EQ(One(paths_.customer, "SELECT Code FROM tCustomer WHERE id = 2"), "c");
}

// A kept connection serves only the file it was opened on, as it was left. A new inode is
// known at once; a file written in place within the same tick of the file clock may be served
// by the kept connection, which then reads its pages anew. A file gone is gone.
TEST_F(DaoTest, AKeptConnectionNeverServesAFileReplacedOrWrittenSince) {
    const fs::path other = temp_.Path() / "other";
    const auto fresh = CreateLocalDatabases(other).customer;
    Sql(fresh, "INSERT INTO tCustomer (id, Code) VALUES (1, 'new');");
    const auto copyOver = [&](const fs::path& db) {
        fs::copy_file(fresh, db, fs::copy_options::overwrite_existing);
    };
    const struct {
        const char* how;
        bool newInode;
        std::function<void(const fs::path&)> replace;
    } cases[] = {
        {"renamed over", true,
         [&](const fs::path& db) {
             copyOver(other / "copy.dat");
             fs::rename(other / "copy.dat", db);
         }},
        {"copied over in place", false, copyOver},
        {"written by another connection", false,
         [](const fs::path& db) { Sql(db, "UPDATE tCustomer SET Code = 'new' WHERE id = 1;"); }},
        {"deleted and made anew", true,
         [&](const fs::path& db) {
             fs::remove(db);
             copyOver(db);
         }},
    };
    const std::string sql = "SELECT Code FROM tCustomer WHERE id = 1";
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.how);
        const auto db = CreateLocalDatabases(temp_.Path() / std::to_string(++n)).customer;
        Sql(db, "INSERT INTO tCustomer (id, Code) VALUES (1, 'old');");
        pool_.Clear();
        EXPECT_EQ(Kept(db, sql) + Kept(db, sql), "oldold");
        EXPECT_EQ(pool_.Tally().reused, 1u);
        c.replace(db);
        EXPECT_EQ(Kept(db, sql), "new");
        if (c.newInode) {
            EXPECT_EQ(pool_.Tally().opened, 2u);
        }
    }
    EXPECT_EQ(Kept(paths_.customer, sql), "");
    fs::remove(paths_.customer);
    EXPECT_EQ(ErrorNumber([&] { Kept(paths_.customer, sql); }), dao::daoerr::kFileNotFound);
}

// Read-only is kept read-only; an exclusive connection keeps its lock until it closes, so it
// is closed, not kept.
TEST_F(DaoTest, ReadOnlyStaysReadOnlyAndOnlyIdleSharedConnectionsAreKept) {
    auto write = [&](bool readOnly, bool exclusive = false) {
        return ErrorNumber([&] {
            dao::Workspace ws("Morvane", "admin", &pool_);
            ws.OpenDatabase(Customer(), exclusive, readOnly)
                .Execute("INSERT INTO tCustomer (id, Code) VALUES (NULL, \"w\")");
        });
    };
    EXPECT_EQ(write(false), 0);
    EXPECT_EQ(write(true), dao::daoerr::kReadOnly);
    EXPECT_EQ(write(true), dao::daoerr::kReadOnly);
    EXPECT_EQ(write(false), 0);
    EXPECT_EQ(pool_.Tally().opened, 2u);
    EXPECT_EQ(pool_.Tally().reused, 2u);
    EXPECT_EQ(write(false, true), 0);
    EXPECT_NO_THROW(Sql(paths_.customer, "DELETE FROM tCustomer WHERE Code = 'w';"));

    // A statement still running when its database closes keeps the connection from the pool:
    // handed out again, it would serve two users at once.
    pool_.Clear();
    std::unique_ptr<dao::Recordset> rs;
    {
        dao::Workspace ws("Morvane", "admin", &pool_);
        rs = ws.OpenDatabase(Customer())
                 .OpenRecordset("SELECT COUNT(*) FROM tCustomer", dao::dbOpenDynaset,
                                dao::dbReadOnly);
    }
    EXPECT_EQ(NzString(rs->FieldAt(0).GetValue()), "0");
    rs.reset();
    EXPECT_EQ(Kept(paths_.customer, "SELECT COUNT(*) FROM tCustomer"), "0");
    EXPECT_EQ(pool_.Tally().opened, 2u);
}

}  // namespace
}  // namespace morvane::test
