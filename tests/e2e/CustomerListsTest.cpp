// The customer record's lists (staff, offices, memos, bidding agencies and entries) between two
// offices through the reference server: one office sends them up, the other takes them and
// then agrees.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "OfficeServerTest.h"
#include "component/ctrlMorvane.h"
#include "platform/Dao.h"
#include "record/NyusatsuKikanList.h"
#include "record/NyusatsuSankaList.h"
#include "record/cCustKihon.h"
#include "session/mdlLogin.h"
#include "store/LocalDatabases.h"
#include "store/StoreTestUtil.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane::test {
namespace {

const std::vector<OfficeServerTest::CustomerKind> kLists{
    {"staff", &ctrlMorvane::CompareCustomerSyokuinList,
     &ctrlMorvane::SyncDownloadCustomerSyokuinList, &ctrlMorvane::SyncUploadCustomerSyokuinList},
    {"offices", &ctrlMorvane::CompareCustomerEigyoshoList,
     &ctrlMorvane::SyncDownloadCustomerEigyoshoList, &ctrlMorvane::SyncUploadCustomerEigyoshoList},
    {"memos", &ctrlMorvane::CompareCustomerMemoList, &ctrlMorvane::SyncDownloadCustomerMemoList,
     &ctrlMorvane::SyncUploadCustomerMemoList},
    {"bidding agencies", &ctrlMorvane::CompareCustomerNyusatsuKikanList,
     &ctrlMorvane::SyncDownloadCustomerNyusatsuKikanList,
     &ctrlMorvane::SyncUploadCustomerNyusatsuKikanList},
    {"bidding entries", &ctrlMorvane::CompareCustomerNyusatsuSankaList,
     &ctrlMorvane::SyncDownloadCustomerNyusatsuSankaList,
     &ctrlMorvane::SyncUploadCustomerNyusatsuSankaList},
};

class CustomerListsTest : public OfficeServerTest {
protected:
    void SetUp() override { StartServer(); }

    // Every body an upload of each list would post, without login and item ids.
    static std::vector<std::string> Sent(const std::string& db, std::int32_t custId) {
        std::vector<std::string> out;
        auto add = [&](const auto& list, const std::string& firstKey) {
            std::int32_t position = 0;
            for (const auto& item : list.Items()) {
                const std::string body = list.UploadBody(item, custId, ++position);
                out.push_back(body.substr(body.find("&" + firstKey + "=")));
            }
        };
        ShokuinList staff;
        EXPECT_TRUE(staff.ReadLocalDB(db, custId));
        add(staff, "no");
        EigyoshoList offices;
        EXPECT_TRUE(offices.ReadLocalDB(db, custId));
        add(offices, "MainEigyo");
        MemoList memos;
        EXPECT_TRUE(memos.ReadLocalDB(db, custId));
        add(memos, "History");
        NyusatsuKikanList agencies;
        EXPECT_TRUE(agencies.ReadLocalDB(db, custId));
        add(agencies, "KikanName");
        NyusatsuSankaList entries;
        EXPECT_TRUE(entries.ReadLocalDB(db, custId));
        add(entries, "KikanCode");
        return out;
    }
};

TEST_F(CustomerListsTest, EveryListTravelsFromOneOfficeToTheOther) {
    const std::string dbA = UseOfficeDb("a");
    dao::RunScript(
        dbA,
        "INSERT INTO tCustomerMeibo (id, CustomerID, disabled, vno, No, Name1, Name2, FName1, "
        "BirthDate, SikakuCode1, GyoshuCode2, LicenceName1, licencedate1, Bunrui11, Jokin, "
        "Other10, SenninGyosyuN, SenninSikakuCode) VALUES "
        "(1, 2, 0, 2, '2', '佐藤', '花子', 'ｻﾄｳ', '1985-07-07', 17, 3, '一級建築士', "
        "'2010-04-01', '2020-01-01', '非常勤', 'a=b&c', '101', '5A17'), "
        "(2, 2, 0, 1, '1', '山田', '太郎', 'ﾔﾏﾀﾞ', NULL, 0, 0, '', NULL, '', '常勤', '', "
        "NULL, NULL);"
        "INSERT INTO tCustomerEigyosyo (id, CustomerID, disabled, vno, No, MainEigyo, "
        "MainRendo, Name, S_Code, TEL1, Gyosyu, Reserved3) VALUES "
        "(1, 2, 0, 1, 2, 1, 1, '本店', 13, '03', '1\t0\t2', 'r<3>'), "
        "(2, 2, 0, 2, 3, 0, 0, '大阪支店', 27, '06', '', NULL);"
        "INSERT INTO tCustomerHistory (id, CustomerID, disabled, vno, History, RegDate, "
        "UpdateDate, other2) VALUES "
        "(1, 2, 0, 1, '初回&面談', '2024-04-01 10:00:00', '2024-04-02 11:30:15', 'x'), "
        "(2, 2, 0, 2, '更新', NULL, '2024-05-01 09:00:00', NULL);"
        // A grid of three rows, the middle one blank; and a free row of another customer.
        "INSERT INTO tCustomerNyusatsuKanri (id, CustomerID, disabled, LocalIndex, KikanName, "
        "Kubun, Nendo1, Nendo10) VALUES (1, 2, 0, 1, '大阪府', 'A&B', 'R6', ''), "
        "(2, 2, 0, 2, '', '', '', ''), (3, 2, 0, 3, '', '', '', 'R7');"
        "UPDATE tCustomer SET KanriNendoNyusatsu = '2024' WHERE id = 2;"
        "INSERT INTO tCustomerNyusatsuHistory_V5 (id, CustomerID, disabled, vno, KikanCode, "
        "Effective, Reservation, Other, DataFile, CheckSync, Other1) VALUES "
        "(1, 2, 0, 2, 'K-01', 1, 0, 'x=y&z', '入札.pdf', 1, ''), "
        "(2, 2, 0, 1, 'K-02', 0, 3, '', '', 0, '<b>'), (3, 5, 1, 1, 'old', 0, 0, '', '', 0, '');");
    ctrlMorvane a;
    LogInAndCreate("u1", "secret-1", 2, "C2");
    SendAll(a, dbA, 2, kLists);

    const std::string dbB = UseOfficeDb("b");
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    TakeAll(b, dbB, 2, kLists);

    const auto sentA = Sent(dbA, 2);
    ASSERT_EQ(sentA.size(), 10u);
    EXPECT_EQ(Sent(dbB, 2), sentA);
    // Staff in position order: the person at vno 1 first.
    EXPECT_EQ(sentA[0].rfind("&no=1&name1=山田&", 0), 0u);
    EXPECT_NE(sentA[1].find("&other10=a=b&c&"), std::string::npos);
    EXPECT_NE(sentA[1].find("&jokin=非常勤&"), std::string::npos);
    EXPECT_NE(sentA[2].find("&Reserved3=r<3>&"), std::string::npos);
    EXPECT_NE(sentA[4].find("&History=初回&面談&"), std::string::npos);
    // The blank grid row stays home; the filled ones travel with their positions closed up.
    EXPECT_EQ(sentA[6],
              "&KikanName=大阪府&Kubun=A&B&Nendo1=R6&Nendo2=&Nendo3=&Nendo4=&Nendo5=&"
              "Nendo6=&Nendo7=&Nendo8=&Nendo9=&Nendo10=&LocalIndex=1&");
    EXPECT_NE(sentA[7].find("&Nendo10=R7&LocalIndex=2&"), std::string::npos);
    EXPECT_EQ(sentA[8],
              "&KikanCode=K-02&Effective=0&Reservation=3&Other=&DataFile=&"
              "CheckSync=0&Other1=<b>&vno=1&");
    // The office that took the grid has it whole.
    EXPECT_EQ(One(dbB,
                  "SELECT COUNT(*) FROM tCustomerNyusatsuKanri WHERE CustomerID = 2 AND "
                  "disabled = 0"),
              "100");
}

}  // namespace
}  // namespace morvane::test
