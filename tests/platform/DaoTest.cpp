// The DAO layer over real SQLite files: the dialect, dates and Nulls, writing, transactions,
// the numbered errors of missing or broken files, and connections kept between opens.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "platform/Dao.h"
#include "store/LocalDatabases.h"
#include "store/StoreTestUtil.h"
#include "support/TempDir.h"
#include "util/RuntimeError.h"

namespace morvane::test {
namespace {

class DaoTest : public ::testing::Test {
protected:
    void SetUp() override { paths_ = CreateLocalDatabases(temp_.Path()); }
    std::string Customer() const { return paths_.customer.string(); }
    // The first column of the first row, read through the pool.
    std::string Kept(const std::filesystem::path& db, const std::string& jetSql) {
        dao::Workspace ws("Morvane", "admin", &pool_);
        auto rs =
            ws.OpenDatabase(db.string()).OpenRecordset(jetSql, dao::dbOpenDynaset, dao::dbReadOnly);
        return rs->Eof() ? std::string() : NzString(rs->FieldAt(0).GetValue());
    }
    TempDir temp_;
    LocalDatabasePaths paths_;
    dao::ConnectionPool pool_;
};

std::int32_t ErrorNumber(const std::function<void()>& f) {
    try {
        f();
    } catch (const RuntimeError& e) {
        return e.Number();
    }
    return 0;
}

TEST(JetDialect, TranslatesLiteralsTopAndDelete) {
    EXPECT_EQ(
        dao::TranslateJetSql(
            R"(SELECT TOP 1 RecordUpdate FROM t WHERE (a<>"") AND b="it's ""x""" ORDER BY RecordUpdate DESC)"),
        "SELECT RecordUpdate FROM t WHERE (a<>'') AND b='it''s \"x\"' ORDER BY "
        "RecordUpdate DESC LIMIT 1");
    EXPECT_EQ(dao::TranslateJetSql("UPDATE t SET InetCheckDate = #2024/03/05 7:08:09# WHERE x=1"),
              "UPDATE t SET InetCheckDate = '2024-03-05 07:08:09' WHERE x=1");
    EXPECT_EQ(dao::TranslateJetSql(" DELETE * FROM t99_ININ_SUB;"), "DELETE FROM t99_ININ_SUB;");
    // Keywords inside a text constant are left alone.
    EXPECT_EQ(dao::TranslateJetSql("SELECT * FROM [t] WHERE n = \"SELECT TOP 5 \""),
              "SELECT * FROM [t] WHERE n = 'SELECT TOP 5 '");
    EXPECT_EQ(ErrorNumber([] { dao::TranslateJetSql("SELECT * FROM t WHERE d = #no date#"); }),
              dao::daoerr::kSyntax);
}

TEST_F(DaoTest, MissingBrokenAndFolderPathsAreNumberedErrors) {
    dao::Workspace ws("Morvane", "admin");
    EXPECT_EQ(ErrorNumber([&] { ws.OpenDatabase((temp_.Path() / "none.dat").string()); }),
              dao::daoerr::kFileNotFound);
    const auto broken = temp_.Path() / "broken.dat";
    std::ofstream(broken) << std::string(4096, 'x');
    EXPECT_EQ(ErrorNumber([&] { ws.OpenDatabase(broken.string()); }), dao::daoerr::kNotADatabase);
    EXPECT_EQ(ErrorNumber([&] { ws.OpenDatabase(temp_.Path().string()); }),
              dao::daoerr::kCannotOpen);
    dao::Database& db = ws.OpenDatabase(Customer());
    EXPECT_EQ(ErrorNumber([&] { db.OpenRecordset("SELECT * FROM tNothing"); }),
              dao::daoerr::kNoSuchTable);
    auto rs = db.OpenRecordset("SELECT id FROM tCustomer", dao::dbOpenDynaset, dao::dbReadOnly);
    EXPECT_TRUE(rs->Bof() && rs->Eof());
    EXPECT_EQ(ErrorNumber([&] { rs->Fields("Nope"); }), dao::daoerr::kItemNotFound);
    EXPECT_EQ(ErrorNumber([&] { rs->MoveNext(); }), dao::daoerr::kNoCurrentRecord);
    EXPECT_EQ(ErrorNumber([&] { rs->AddNew(); }), dao::daoerr::kReadOnly);
}

TEST_F(DaoTest, WritesDatesNullsAndNumbersAndReadsThemBackTyped) {
    dao::Workspace ws("Morvane", "admin");
    dao::Database& db = ws.OpenDatabase(Customer());
    {
        auto rs = db.OpenRecordset("SELECT * FROM tCustomer WHERE id = 7");
        ASSERT_TRUE(rs->Eof());
        rs->AddNew();
        rs->Fields("id").PutValue(Value(7));
        rs->Fields("Code").PutValue(Value("A&B"));
        rs->Fields("RecordUpdate").PutValue(Value("2024/02/03 04:05:06"));
        rs->Fields("InetCheckDate").PutValue(Value::Null());
        rs->Fields("PmtCheck0").PutValue(Value(" 12 "));
        rs->Fields("PmtCheck1").PutValue(Value(2.5));
        rs->Update();
        EXPECT_TRUE(rs->Eof());  // an added row joins no traversal
    }
    auto rs = db.OpenRecordset("SELECT * FROM tCustomer WHERE id = 7", dao::dbOpenDynaset,
                               dao::dbReadOnly);
    ASSERT_FALSE(rs->Eof());
    const Value stamp = rs->Fields("RecordUpdate").GetValue();
    ASSERT_TRUE(stamp.IsDateValue());
    EXPECT_EQ(stamp.AsDate().StampText(), "2024/02/03 04:05:06");
    EXPECT_TRUE(rs->Fields("InetCheckDate").GetValue().IsNull());
    EXPECT_EQ(rs->Fields("PmtCheck0").GetValue(), Value(12));
    EXPECT_EQ(rs->Fields("pmtcheck1").GetValue(), Value(2.5));
    EXPECT_EQ(rs->Fields("disabled").GetValue(), Value(0));  // the schema's default
    EXPECT_EQ(rs->Fields("Code").GetValue(), Value("A&B"));
    // The aggregate of a date column reads as a date too.
    EXPECT_TRUE(db.OpenRecordset("SELECT MAX(RecordUpdate) AS m FROM tCustomer")
                    ->Fields("m")
                    .GetValue()
                    .IsDateValue());
    // Text that is no number does not go into a number column.
    auto edit = db.OpenRecordset("SELECT * FROM tCustomer WHERE id = 7");
    edit->Edit();
    edit->Fields("PmtCheck0").PutValue(Value("abc"));
    EXPECT_EQ(ErrorNumber([&] { edit->Update(); }), dao::daoerr::kTypeConversion);
}

TEST_F(DaoTest, RollbackAndAnOpenTransactionAtCloseLeaveTheRowsAsTheyWereThroughKeptConnections) {
    Sql(paths_.customer, "INSERT INTO tCustomer (id, Code) VALUES (1, 'a'), (2, 'b');");
    {
        dao::Workspace ws("Morvane", "admin", &pool_);
        dao::Database& db = ws.OpenDatabase(Customer());
        ws.BeginTrans();
        db.Execute("UPDATE tCustomer SET Code = \"z\" WHERE id = 1");
        auto rs = db.OpenRecordset("SELECT * FROM tCustomer ORDER BY id");
        rs->MoveNext();
        rs->Edit();
        rs->Fields("Code").PutValue(Value("y"));
        rs->Update();
        ws.Rollback();
        // Rolled back at once, not only when the connection closes.
        EXPECT_EQ(
            NzString(
                db.OpenRecordset("SELECT Code FROM tCustomer WHERE id = 1")->FieldAt(0).GetValue()),
            "a");
    }
    EXPECT_EQ(Rows(paths_.customer, "SELECT id, Code FROM tCustomer ORDER BY id"),
              (std::vector<std::string>{"1|a", "2|b"}));
    {
        dao::Workspace ws("Morvane", "admin", &pool_);
        dao::Database& db = ws.OpenDatabase(Customer());
        ws.BeginTrans();
        db.Execute("DELETE * FROM tCustomer");
    }  // closed without a commit
    EXPECT_EQ(Kept(paths_.customer, "SELECT COUNT(*) FROM tCustomer"), "2");
    {
        dao::Workspace ws("Morvane", "admin", &pool_);
        dao::Database& db = ws.OpenDatabase(Customer());
        ws.BeginTrans();
        db.Execute("UPDATE tCustomer SET Code = \"c\" WHERE id = 2");
        ws.CommitTrans();
    }
    EXPECT_EQ(Kept(paths_.customer, "SELECT Code FROM tCustomer WHERE id = 2"), "c");
    // The workspaces above went through kept connections: none carried a transaction on.
    EXPECT_GT(pool_.Tally().reused, 0u);
    EXPECT_EQ(One(paths_.customer, "SELECT Code FROM tCustomer WHERE id = 2"), "c");
}

// A kept connection serves only the file it was opened on, as it was left.
TEST_F(DaoTest, AKeptConnectionNeverServesAFileReplacedOrWrittenSince) {
    namespace fs = std::filesystem;
    const fs::path other = temp_.Path() / "other";
    const auto fresh = CreateLocalDatabases(other).customer;
    Sql(fresh, "INSERT INTO tCustomer (id, Code) VALUES (1, 'new');");
    // A new inode is known at once; a file written in place within the same tick of the
    // file clock may be served by the kept connection, which then reads its pages anew.
    const struct {
        const char* how;
        bool newInode;
        std::function<void(const fs::path&)> replace;
    } cases[] = {
        {"renamed over", true,
         [&](const fs::path& db) {
             fs::copy_file(fresh, other / "copy.dat", fs::copy_options::overwrite_existing);
             fs::rename(other / "copy.dat", db);
         }},
        {"copied over in place", false,
         [&](const fs::path& db) {
             fs::copy_file(fresh, db, fs::copy_options::overwrite_existing);
         }},
        {"written by another connection", false,
         [](const fs::path& db) { Sql(db, "UPDATE tCustomer SET Code = 'new' WHERE id = 1;"); }},
        {"deleted and made anew", true,
         [&](const fs::path& db) {
             fs::remove(db);
             fs::copy_file(fresh, db);
         }},
    };
    const std::string sql = "SELECT Code FROM tCustomer WHERE id = 1";
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.how);
        const auto db = CreateLocalDatabases(temp_.Path() / std::to_string(++n)).customer;
        Sql(db, "INSERT INTO tCustomer (id, Code) VALUES (1, 'old');");
        pool_.Clear();
        EXPECT_EQ(Kept(db, sql), "old");
        EXPECT_EQ(Kept(db, sql), "old");
        EXPECT_EQ(pool_.Tally().reused, 1u);  // kept between the two opens
        c.replace(db);
        EXPECT_EQ(Kept(db, sql), "new");
        if (c.newInode) {
            EXPECT_EQ(pool_.Tally().opened, 2u);
        }
    }
    // A file gone is gone, whatever was kept of it.
    EXPECT_EQ(Kept(paths_.customer, sql), "");
    fs::remove(paths_.customer);
    EXPECT_EQ(ErrorNumber([&] { Kept(paths_.customer, sql); }), dao::daoerr::kFileNotFound);
}

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
    EXPECT_EQ(write(true), dao::daoerr::kReadOnly);  // kept, and read-only still
    EXPECT_EQ(write(false), 0);
    EXPECT_EQ(pool_.Tally().opened, 2u);
    EXPECT_EQ(pool_.Tally().reused, 2u);
    EXPECT_EQ(One(paths_.customer, "SELECT COUNT(*) FROM tCustomer WHERE Code = 'w'"), "2");

    // An exclusive connection keeps its lock until it closes: it is closed, not kept.
    EXPECT_EQ(write(false, true), 0);
    EXPECT_NO_THROW(Sql(paths_.customer, "DELETE FROM tCustomer WHERE Code = 'w';"));
    // A statement still running when its database closes keeps the connection from the pool.
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
