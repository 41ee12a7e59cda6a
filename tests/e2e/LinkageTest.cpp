// The linkage calls between two offices through the reference server: main record, trades,
// staff and offices sent and taken as one, only the kinds that differ written, and the
// customer code sent alone.
#include <gtest/gtest.h>

#include "OfficeServerTest.h"
#include "platform/Dao.h"

namespace morvane::test {
namespace {

const OfficeServerTest::CustomerKind kRendo{"linkage info", &ctrlMorvane::CompareCustomerRendoInfo,
                                            &ctrlMorvane::SyncDownloadCustomerRendoInfo,
                                            &ctrlMorvane::SyncUploadCustomerRendoInfo, -1};

// The four kinds' tables, in flag order.
const char* const kTables[] = {"tCustomer", "tCustomerGyoshu", "tCustomerMeibo",
                               "tCustomerEigyosyo"};

constexpr const char* kOld = "2024-01-01 00:00:00";

class LinkageTest : public OfficeServerTest {
protected:
    // Back-dates every row of the four kinds, so that any row a step writes shows.
    static void BackDate(const std::string& db) {
        std::string sql;
        for (const char* table : kTables)
            sql += "UPDATE " + std::string(table) + " SET RecordUpdate = '" + kOld + "';";
        dao::RunScript(db, sql);
    }
    // Per kind, whether a row of customer 2 was written since the back-dating.
    static std::vector<bool> Written(const std::string& db) {
        std::vector<bool> out;
        for (const char* table : kTables) {
            const std::string owner = std::string(table) == "tCustomer" ? "id" : "CustomerID";
            out.push_back(One(db, "SELECT COUNT(*) FROM " + std::string(table) + " WHERE " + owner +
                                      " = 2 AND RecordUpdate <> '" + kOld + "'") != "0");
        }
        return out;
    }
    // What the server's page holds for customer 2.
    static std::string ServerPage(std::string_view page) {
        return SendRequest(page, UpperCustomerBody(2));
    }
};

TEST_F(LinkageTest, TheFourKindsTravelAsOneAndADownloadWritesOnlyWhatDiffers) {
    const auto [dbA, dbB] = RoundTrip({kRendo}, "", {.customers = 3, .tradeGrid = true});
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    EXPECT_EQ(b.CompareCustomerKihon(dbB, 2), 0);
    EXPECT_EQ(b.CompareCustomerSyokuinList(dbB, 2), 0);
    EXPECT_EQ(b.CompareCustomerEigyoshoList(dbB, 2), 0);

    // Nothing differs: nothing is kept for the download, which then writes nothing.
    BackDate(dbB);
    EXPECT_EQ(b.CompareCustomerRendoInfo(dbB, 2), 0);
    EXPECT_EQ(b.SyncDownloadCustomerRendoInfo(dbB, 2), 1);
    EXPECT_EQ(Written(dbB), (std::vector<bool>{false, false, false, false}));

    // Office A changes an office; office B then writes the offices and nothing else.
    OfficeServerTest::UseOffice("a");
    ctrlMorvane a2;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    dao::RunScript(dbA,
                   "UPDATE tCustomerEigyosyo SET Name = '新支店', RecordUpdate = '2099-01-01 "
                   "00:00:00' WHERE CustomerID = 2 AND disabled = 0;");
    clock_->Advance(std::chrono::minutes(10));
    ASSERT_EQ(a2.SyncUploadCustomerEigyoshoList(dbA, 2), 1);

    OfficeServerTest::UseOffice("b");
    ctrlMorvane b2;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    EXPECT_EQ(b2.CompareCustomerRendoInfo(dbB, 2), 1);
    // Another kind's comparison takes the record's one slot: the linkage flags are gone.
    EXPECT_EQ(b2.CompareCustomerMemoList(dbB, 2), 0);
    EXPECT_EQ(b2.SyncDownloadCustomerRendoInfo(dbB, 2), 1);
    EXPECT_EQ(Written(dbB), (std::vector<bool>{false, false, false, false}));

    EXPECT_EQ(b2.CompareCustomerRendoInfo(dbB, 2), 1);
    EXPECT_EQ(b2.SyncDownloadCustomerRendoInfo(dbB, 2), 1);
    EXPECT_EQ(Written(dbB), (std::vector<bool>{false, false, false, true}));
    EXPECT_EQ(One(dbB,
                  "SELECT COUNT(*) FROM tCustomerEigyosyo WHERE CustomerID = 2 AND "
                  "disabled = 0 AND Name = '新支店'"),
              One(dbA,
                  "SELECT COUNT(*) FROM tCustomerEigyosyo WHERE CustomerID = 2 AND "
                  "disabled = 0"));
    EXPECT_EQ(b2.CompareCustomerRendoInfo(dbB, 2), 0);
    NoBoxes();
}

TEST_F(LinkageTest, AnUploadStopsAtTheFirstKindThatFails) {
    // Office A with three sample customers, each with its whole trade grid.
    const std::string dbA = UseOfficeDb("a", {.customers = 3, .tradeGrid = true});
    // No staff: the staff upload fails without sending, so the offices never go.
    dao::RunScript(dbA, "DELETE FROM tCustomerMeibo WHERE CustomerID = 2;");
    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    CreateCustomer(2);
    EXPECT_EQ(a.SyncUploadCustomerRendoInfo(dbA, 2), 0);
    EXPECT_NE(ServerPage(page::kGetCompKihon).find("<CorpName0>モルヴェイン建設2株式会社<"),
              std::string::npos);
    EXPECT_NE(ServerPage(page::kGetCompGyoshu).find("<EPmtCheck31>"), std::string::npos);
    EXPECT_NE(ServerPage(page::kGetEigyosho).find("<EigyoshoCount>0</EigyoshoCount>"),
              std::string::npos);
}

TEST_F(LinkageTest, TheCodeTravelsAloneAndAnEmptyCodeNotAtAll) {
    // Office A with three sample customers, each with its whole trade grid.
    const std::string dbA = UseOfficeDb("a", {.customers = 3, .tradeGrid = true});
    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    CreateCustomer(2);
    ASSERT_EQ(a.SyncUploadCustomerKihonNormal(dbA, 2), 1);
    const std::string agreed = One(dbA, "SELECT InetCheckDate FROM tCustomer WHERE id = 2");

    dao::RunScript(dbA,
                   "UPDATE tCustomer SET Code = 'N&2', CorpName0 = 'stays home' WHERE id = 2;");
    EXPECT_EQ(a.SyncUploadCustomerCustCode(dbA, 2), 1);
    const std::string record = ServerPage(page::kGetCompKihon);
    EXPECT_NE(record.find("<Code>N&amp;2</Code>"), std::string::npos) << record;
    EXPECT_EQ(record.find("stays home"), std::string::npos);
    EXPECT_EQ(One(dbA, "SELECT InetCheckDate FROM tCustomer WHERE id = 2"), agreed);

    dao::RunScript(dbA, "UPDATE tCustomer SET Code = '' WHERE id = 2;");
    EXPECT_EQ(a.SyncUploadCustomerCustCode(dbA, 2), 0);
    EXPECT_NE(ServerPage(page::kGetCompKihon).find("<Code>N&amp;2</Code>"), std::string::npos);
    NoBoxes();
}

}  // namespace
}  // namespace morvane::test
