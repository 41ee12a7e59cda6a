// The dated records between two offices through the reference server: one office sends its
// list up, the other finds the server newer, takes the list, and then agrees.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "OfficeServerTest.h"
#include "component/ctrlMorvane.h"
#include "dated/cCustKessan.h"
#include "dated/cCustKihonOther.h"
#include "dated/cCustKyoka.h"
#include "platform/Dao.h"
#include "session/mdlLogin.h"
#include "store/LocalDatabases.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane::test {
namespace {

const OfficeServerTest::CustomerKind kKessan{
    "settlement records", &ctrlMorvane::CompareCustomerKessanList,
    &ctrlMorvane::SyncDownloadCustomerKessanList, &ctrlMorvane::SyncUploadCustomerKessanList};
const OfficeServerTest::CustomerKind kKyoka{
    "permit records", &ctrlMorvane::CompareCustomerKyokaList,
    &ctrlMorvane::SyncDownloadCustomerKyokaList, &ctrlMorvane::SyncUploadCustomerKyokaList};
const OfficeServerTest::CustomerKind kOther{"other records", &ctrlMorvane::CompareCustomerOtherList,
                                            &ctrlMorvane::SyncDownloadCustomerOtherList,
                                            &ctrlMorvane::SyncUploadCustomerOtherList};

class DatedRecordsTest : public OfficeServerTest {
protected:
    void SetUp() override { StartServer(); }

    // The fields of each live row as an upload would send them, without login, id and position.
    template <class Worker>
    static std::vector<std::string> Sent(const std::string& db, std::int32_t custId,
                                         const std::string& firstKey) {
        Worker w;
        EXPECT_TRUE(w.ReadLocalDB(db, custId));
        std::vector<std::string> out;
        std::int32_t position = 0;
        for (const auto& item : w.Items()) {
            const std::string body = w.UploadBody(item, custId, ++position);
            const size_t from = body.find("&" + firstKey + "=");
            const size_t to = body.rfind("vno=");
            out.push_back(body.substr(from, to == std::string::npos ? to : to - from));
        }
        return out;
    }
};

TEST_F(DatedRecordsTest, SettlementRecordsTravelFromOneOfficeToTheOther) {
    const std::string dbA = UseOfficeDb("a");
    dao::RunScript(
        dbA,
        "INSERT INTO tCustomerKessanHistory (id, CustomerID, disabled, vno, RecDate, ExDate, "
        "ScDate, DataFile, CheckEx, Other, CheckOther, OtherDate1, OtherDate2, other1, RegDate, "
        "UpdateDate, AcPeriod0, AcPeriod1, AcDateS0, AcDateE0, CheckSync, ZaimuType0, CalcWay4, "
        "DefaultUse, ProfDate2, DataFileID) VALUES "
        "(1, 2, 0, 1, '2024-04-01 10:00:00', '2024-03-31 00:00:00', '2024-05-31 00:00:00', "
        "'決算&1.dat', 1, '<第1期>', NULL, '2024-04-02 08:00:00', '2024-04-03 08:00:00', "
        "'a=b', '2024-04-01 09:00:00', '2024-04-01 09:30:00', '12', '', '2023-04-01 00:00:00', "
        "'2024-03-31 00:00:00', 1, 2, 3, 1, '2024-06-30 00:00:00', 17), "
        "(2, 2, 0, 2, '2023-04-01 10:00:00', NULL, NULL, 'k2.dat', 0, '', 0, "
        "'2023-04-02 08:00:00', '2023-04-03 08:00:00', NULL, '2023-04-01 09:00:00', "
        "'2023-04-01 09:30:00', NULL, NULL, NULL, NULL, 0, 0, 0, 0, NULL, 0);");
    ctrlMorvane a;
    LogInAndCreate("u1", "secret-1", 2, "C2");
    SendAll(a, dbA, 2, {kKessan});

    const std::string dbB = UseOfficeDb("b");
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    TakeAll(b, dbB, 2, {kKessan});

    const auto sentA = Sent<cCustKessan>(dbA, 2, "RecDate");
    ASSERT_EQ(sentA.size(), 2u);
    EXPECT_EQ(Sent<cCustKessan>(dbB, 2, "RecDate"), sentA);
    EXPECT_NE(sentA[0].find("&DataFile=決算&1.dat&"), std::string::npos);
    EXPECT_NE(sentA[0].find("&other=<第1期>&CheckOther=1&"), std::string::npos);
    EXPECT_NE(sentA[0].find("&DataFileID=17&"), std::string::npos);
}

TEST_F(DatedRecordsTest, PermitAndOtherRecordsTravelAndHiddenRowsStayHome) {
    const std::string dbA = UseOfficeDb("a");
    dao::RunScript(
        dbA,
        "INSERT INTO tCustomerKyokaHistory (id, CustomerID, disabled, vno, Other, PApDate, "
        "AcPeriod, AcDateS, AcDateE, DataFile, CheckSync, DefaultUse, Ver511HideFlag, "
        "DataFileID) VALUES (1, 2, 0, 1, '許可&更新', '2024-04-01 00:00:00', '5', "
        "'2024-04-01 00:00:00', '2029-03-31 00:00:00', 'kyoka.pdf', 1, 1, 0, 3), "
        "(2, 2, 0, 2, 'hidden', NULL, '', NULL, NULL, '', 0, 0, 1, 0);"
        "INSERT INTO tCustomerOtherFile (id, CustomerID, disabled, DataFile, RegDate, "
        "UpdateDate, Other) VALUES (1, 2, 0, '図面.pdf', '2024-04-01 10:00:00', "
        "'2024-04-02 11:30:15', 'a=b&c');");
    ctrlMorvane a;
    LogInAndCreate("u1", "secret-1", 2, "C2");
    SendAll(a, dbA, 2, {kKyoka, kOther});

    const std::string dbB = UseOfficeDb("b");
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    TakeAll(b, dbB, 2, {kKyoka, kOther});

    const auto kyokaA = Sent<cCustKyoka>(dbA, 2, "other");
    ASSERT_EQ(kyokaA.size(), 1u);  // the hidden row was never sent
    EXPECT_EQ(Sent<cCustKyoka>(dbB, 2, "other"), kyokaA);
    const auto otherA = Sent<cCustKihonOther>(dbA, 2, "DataFile");
    ASSERT_EQ(otherA.size(), 1u);
    EXPECT_EQ(Sent<cCustKihonOther>(dbB, 2, "DataFile"), otherA);
    EXPECT_NE(otherA[0].find("&other=a=b&c&"), std::string::npos);
}

}  // namespace
}  // namespace morvane::test
