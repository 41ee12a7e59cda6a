// The customer record's lists (staff, offices, memos) between two offices through the
// reference server: one office sends them up, the other takes them and then agrees.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "OfficeServerTest.h"
#include "platform/Dao.h"
#include "record/cCustKihon.h"
#include "session/ctrlMorvane.h"
#include "session/mdlLogin.h"
#include "store/LocalDatabases.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane::test {
namespace {

class CustomerListsTest : public OfficeServerTest {
protected:
    void SetUp() override { StartServer(); }

    std::string UseOffice(const std::string& name) {
        OfficeServerTest::UseOffice(name);
        return CreateLocalDatabases(temp_.Path() / name / "db", {}).customer.string();
    }

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
        return out;
    }

    void NoBoxes() {
        for (const auto& box : kit_->Boxes()) ADD_FAILURE() << box.title << ": " << box.text;
    }
};

TEST_F(CustomerListsTest, StaffOfficesAndMemosTravelFromOneOfficeToTheOther) {
    const std::string dbA = UseOffice("a");
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
        "(2, 2, 0, 2, '更新', NULL, '2024-05-01 09:00:00', NULL);");
    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    std::string create = LowerCustomerBody(2);
    AppendField(create, "Code", "C2");
    ASSERT_NE(SendRequest(page::kCreateCompKihon, create), "");
    ASSERT_EQ(a.SyncUploadCustomerSyokuinList(dbA, 2), 1);
    ASSERT_EQ(a.SyncUploadCustomerEigyoshoList(dbA, 2), 1);
    ASSERT_EQ(a.SyncUploadCustomerMemoList(dbA, 2), 1);
    EXPECT_EQ(a.CompareCustomerSyokuinList(dbA, 2), 0);
    EXPECT_EQ(a.CompareCustomerEigyoshoList(dbA, 2), 0);
    EXPECT_EQ(a.CompareCustomerMemoList(dbA, 2), 0);
    NoBoxes();

    const std::string dbB = UseOffice("b");
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    EXPECT_EQ(b.CompareCustomerSyokuinList(dbB, 2), 1);
    EXPECT_EQ(b.SyncDownloadCustomerSyokuinList(dbB, 2), 1);
    EXPECT_EQ(b.CompareCustomerEigyoshoList(dbB, 2), 1);
    EXPECT_EQ(b.SyncDownloadCustomerEigyoshoList(dbB, 2), 1);
    EXPECT_EQ(b.CompareCustomerMemoList(dbB, 2), 1);
    EXPECT_EQ(b.SyncDownloadCustomerMemoList(dbB, 2), 1);
    EXPECT_EQ(b.CompareCustomerSyokuinList(dbB, 2), 0);
    EXPECT_EQ(b.CompareCustomerEigyoshoList(dbB, 2), 0);
    EXPECT_EQ(b.CompareCustomerMemoList(dbB, 2), 0);
    NoBoxes();

    const auto sentA = Sent(dbA, 2);
    ASSERT_EQ(sentA.size(), 6u);
    EXPECT_EQ(Sent(dbB, 2), sentA);
    // Staff in position order: the person at vno 1 first.
    EXPECT_EQ(sentA[0].rfind("&no=1&name1=山田&", 0), 0u);
    EXPECT_NE(sentA[1].find("&other10=a=b&c&"), std::string::npos);
    EXPECT_NE(sentA[1].find("&jokin=非常勤&"), std::string::npos);
    EXPECT_NE(sentA[2].find("&Reserved3=r<3>&"), std::string::npos);
    EXPECT_NE(sentA[4].find("&History=初回&面談&"), std::string::npos);
}

}  // namespace
}  // namespace morvane::test
