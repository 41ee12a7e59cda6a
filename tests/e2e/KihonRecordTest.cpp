// The customer main record between two offices through the reference server: one office
// sends it up, the other finds it newer, takes it, and then agrees.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "OfficeServerTest.h"
#include "component/ctrlMorvane.h"
#include "platform/Dao.h"
#include "record/cCustKihon.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "store/LocalDatabases.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane::test {
namespace {

const OfficeServerTest::CustomerKind kKihon{"customer record", &ctrlMorvane::CompareCustomerKihon,
                                            &ctrlMorvane::SyncDownloadCustomerKihon,
                                            &ctrlMorvane::SyncUploadCustomerKihonNormal};

class KihonRecordTest : public OfficeServerTest {
protected:
    void SetUp() override { StartServer(); }

    // Every field as the upload would send it, without the login part.
    static std::string Fields(const std::string& db, std::int32_t custId) {
        cCustKihon k;
        EXPECT_TRUE(k.ReadLocalNormal(db, custId));
        const std::string body = k.UploadBody(custId);
        return body.substr(body.find("&CustomerID="));
    }
};

TEST_F(KihonRecordTest, OneOfficeSendsTheRecordAndTheOtherTakesItAndAgrees) {
    const std::string dbA = UseOfficeDb("a", {.customers = 3});
    dao::RunScript(
        dbA,
        "UPDATE tCustomer SET Code = 'C&2', AcDate = '2019-03-31 00:00:00', Addr0 = '大阪府', "
        "addr1 = '北区', Addr2 = '梅田1-1', CorpName0 = '梅田建設株式会社', ApfName0 = '梅田 "
        "一郎', Fax0 = '06', FAX1 = '5555', FAX2 = '6666', TAddr0 = '東京都', Other7 = 'x', "
        "PmtNo = '123#45', ExOther13 = 'a' || char(9) || 'b', ExOther17 = '12', PmtCheck0 = 1, "
        "PmtCheck1 = 2, PApDate = '2024-04-01 10:00:00', PmtDate0 = '2024-04-02 00:00:00', "
        "SeturituDate = '2001-02-03 00:00:00', UserStaffID = 4, KengyoExist = 1, "
        "KengyoNaiyo = '不動産', NotKanyo = 1 WHERE id = 2;"
        "UPDATE tCustomerKeisin SET CheckEx = 7 WHERE CustomerID = 2;");
    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    std::string create = LowerCustomerBody(2);
    AppendField(create, "Code", "C&2");
    AppendField(create, "CorpName0", "梅田建設株式会社");
    AppendField(create, "CorpKanaS", "ｳﾒﾀﾞ");
    AppendField(create, "CorpKana0", "ｳﾒﾀﾞ");
    ASSERT_NE(SendRequest(page::kCreateCompKihon, create), "");
    SendAll(a, dbA, 2, {kKihon});

    const std::string dbB = UseOfficeDb("b");
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    EXPECT_EQ(b.CompareCustomerList(dbB), 5);
    ASSERT_EQ(b.SyncDownloadCustomerList(dbB), 1);
    EXPECT_EQ(b.CompareCustomerKihonMain(dbB, 2), 1);
    TakeAll(b, dbB, 2, {kKihon});
    EXPECT_EQ(b.CompareCustomerKihonMain(dbB, 2), 0);

    const std::string fieldsA = Fields(dbA, 2);
    EXPECT_EQ(Fields(dbB, 2), fieldsA);
    EXPECT_NE(fieldsA.find("&PmtNo=123&"), std::string::npos);
    EXPECT_NE(fieldsA.find("&other7=45&"), std::string::npos);
    EXPECT_NE(fieldsA.find("&CheckEx=7&"), std::string::npos);
}

}  // namespace
}  // namespace morvane::test
