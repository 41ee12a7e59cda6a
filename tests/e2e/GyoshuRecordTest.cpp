// A customer's trades between two offices through the reference server: one office sends
// its grid up, the other finds it newer, takes it, and then agrees.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "OfficeServerTest.h"
#include "component/ctrlMorvane.h"
#include "platform/Dao.h"
#include "record/cCustKihon.h"
#include "session/mdlLogin.h"
#include "store/LocalDatabases.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane::test {
namespace {

class GyoshuRecordTest : public OfficeServerTest {
protected:
    void SetUp() override { StartServer(); }

    // The header and the grid as the upload would send them, without the login part.
    static std::string Trades(const std::string& db, std::int32_t custId) {
        cCustKihon k;
        EXPECT_TRUE(k.ReadLocalNormal(db, custId));
        const std::string body = k.GyoshuUploadBody(custId);
        return body.substr(body.find("&CustomerID="));
    }
};

TEST_F(GyoshuRecordTest, OneOfficeSendsTheTradesAndTheOtherTakesThemAndAgrees) {
    const std::string dbA = UseOfficeDb("a", {.customers = 3});
    // Customer 2's own 31 trades, some checked and dated, in place of the sample rows.
    std::string grid =
        "DELETE FROM tCustomerGyoshu WHERE CustomerID = 2;"
        "UPDATE tCustomer SET ApfPlace = '大阪府知事', MinName = '建設', MinCode = '27', "
        "PmtCheck0 = 1, PmtYear = '6', PmtNo = '55#1', PApDate = '2024-04-01 10:00:00', "
        "PmtDate0 = '2024-04-02 00:00:00' WHERE id = 2;";
    for (int n = 1; n <= 31; ++n)
        grid +=
            "INSERT INTO tCustomerGyoshu (CustomerID, disabled, GyoshuCode, EPmtCheck, "
            "EPmtDate, RecordUpdate) VALUES (2, 0, " +
            std::to_string(n) + ", " + std::to_string(n % 4) + ", " +
            (n % 5 ? std::string("NULL") : "'2023-0" + std::to_string(n / 5) + "-15 00:00:00'") +
            ", '2024-06-01 08:00:00');";
    dao::RunScript(dbA, grid);

    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    std::string create = LowerCustomerBody(2);
    AppendField(create, "Code", "C2");
    AppendField(create, "CorpName0", "梅田建設株式会社");
    AppendField(create, "CorpKanaS", "ｳﾒﾀﾞ");
    AppendField(create, "CorpKana0", "ｳﾒﾀﾞ");
    ASSERT_NE(SendRequest(page::kCreateCompKihon, create), "");
    ASSERT_EQ(a.SyncUploadCustomerKihonNormal(dbA, 2), 1);
    // The main record just sent carries the header, but the server has no grid yet: the
    // office's grid is the newer one and goes up, never the empty one down.
    EXPECT_EQ(a.CompareCustomerKihonGyosyu(dbA, 2), 2);
    ASSERT_EQ(a.SyncUploadCustomerKihonGyosyu(dbA, 2), 1);
    EXPECT_EQ(a.CompareCustomerKihonGyosyu(dbA, 2), 0);
    NoBoxes();

    const std::string dbB = UseOfficeDb("b");
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    EXPECT_EQ(b.CompareCustomerList(dbB), 5);
    ASSERT_EQ(b.SyncDownloadCustomerList(dbB), 1);
    ASSERT_EQ(b.SyncDownloadCustomerKihon(dbB, 2), 1);
    EXPECT_EQ(b.CompareCustomerKihonGyosyu(dbB, 2), 1);
    EXPECT_EQ(b.SyncDownloadCustomerKihonGyosyu(dbB, 2), 1);
    EXPECT_EQ(b.CompareCustomerKihonGyosyu(dbB, 2), 0);
    NoBoxes();

    const std::string tradesA = Trades(dbA, 2);
    EXPECT_EQ(Trades(dbB, 2), tradesA);
    EXPECT_NE(tradesA.find("&PmtNo=55&"), std::string::npos);
    EXPECT_NE(tradesA.find("&EPmtCheck31=3&EPmtDate1=&"), std::string::npos);
    EXPECT_NE(tradesA.find("&EPmtDate30=2023/06/15&"), std::string::npos);
    EXPECT_EQ(dao::Workspace("Morvane", "admin")
                  .OpenDatabase(dbB)
                  .OpenRecordset("SELECT COUNT(*) FROM tCustomerGyoshu WHERE CustomerID = 2 AND "
                                 "GyoshuCode = 31",
                                 dao::dbOpenDynaset, dao::dbReadOnly)
                  ->FieldAt(0)
                  .GetValue(),
              Value(std::int32_t{1}));

    // A change in office B goes back up, and office A then finds the server newer.
    dao::RunScript(dbB,
                   "UPDATE tCustomerGyoshu SET EPmtCheck = 9, RecordUpdate = '2099-01-01 "
                   "00:00:00' WHERE CustomerID = 2 AND GyoshuCode = 12;");
    clock_->Advance(std::chrono::minutes(10));
    ASSERT_EQ(b.SyncUploadCustomerKihonGyosyu(dbB, 2), 1);
    OfficeServerTest::UseOffice("a");
    ctrlMorvane a2;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    EXPECT_EQ(a2.CompareCustomerKihonGyosyu(dbA, 2), 1);
    ASSERT_EQ(a2.SyncDownloadCustomerKihonGyosyu(dbA, 2), 1);
    EXPECT_EQ(Trades(dbA, 2), Trades(dbB, 2));
    NoBoxes();
}

}  // namespace
}  // namespace morvane::test
