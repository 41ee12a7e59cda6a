// Staff: shared flags, padded Sennin texts, the Jokin labels, readings compared wide, and
// the body with the position before the Sennin keys.
#include <gtest/gtest.h>

#include "CustListTestUtil.h"
#include "component/ctrlMorvane.h"
#include "record/cCustKihon.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

const std::string kSet = "customer/setCompShokuin.php";

Tags PersonTags(int id) {
    Tags t{{"ShokuinItemID", std::to_string(id)},
           {"No", "S" + std::to_string(id)},
           {"Name1", "山田"},
           {"Name2", "太郎"},
           {"FName1", "ﾔﾏﾀﾞ"},
           {"FName2", "ﾀﾛｳ"},
           {"BirthDate", "1980/04/01"},
           {"SaiyoDate", ""}};
    for (int i = 1; i <= 10; ++i) t.push_back({"SikakuCode" + std::to_string(i), "0"});
    t.push_back({"GyoshuCode1", "12abc"});
    t.push_back({"GyoshuCode2", ""});
    for (const char* tag : {"KofuCode", "Seibetu", "Yakushoku", "School", "Senko"})
        t.push_back({tag, ""});
    for (int i = 1; i <= 5; ++i) t.push_back({"LicenceName" + std::to_string(i), ""});
    for (int i = 1; i <= 5; ++i) t.push_back({"licencedate" + std::to_string(i), ""});
    t.push_back({"Keireki", ""});
    for (int i = 1; i <= 4; ++i) t.push_back({"JitumuNen" + std::to_string(i), ""});
    t.push_back({"shokushu", ""});
    t.push_back({"Biko", ""});
    for (int i = 1; i <= 16; ++i) t.push_back({"Bunrui" + std::to_string(i), ""});
    t.push_back({"EigyoSho", "本店"});
    t.push_back({"Jokin", "常勤"});
    t.push_back({"Addr", ""});
    for (int i = 1; i <= 10; ++i) t.push_back({"Other" + std::to_string(i), ""});
    t.push_back({"SenninGyosyuN", "123"});
    t.push_back({"SenninGyosyu", std::string(40, '1')});
    t.push_back({"SenninSikakuCode", ""});
    return t;
}

std::string Person(int id, const std::map<std::string, std::string>& changed = {},
                   const std::set<std::string>& leftOut = {}) {
    return ListItemXml("ShokuinItem", PersonTags(id), changed, leftOut);
}

std::string Reply(const std::vector<std::string>& items,
                  const std::string& stamp = "2024/05/01 10:00:00") {
    return Document(CustListPayload("Shokuin", 7, stamp, items));
}

class ShokuinListTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = EmptyCustomerDb(temp_.Path() / "db", clock_).string();
    }

    std::string db_;
    std::shared_ptr<FixedClock> clock_;
};

TEST_F(ShokuinListTest, EitherTagOfASharedFlagKeepsThePerson) {
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLShokuin(
        Reply({Person(1, {}, {"shokushu", "Bunrui8"}), Person(2, {}, {"licencedate1"})})));
    EXPECT_EQ(k.ShokuinCount(), 2);
    // Both tags of a pair missing, or an unshared tag missing: the person is dropped.
    EXPECT_FALSE(k.ReadXMLShokuin(Reply({Person(1, {}, {"shokushu", "licencedate1"})})));
    EXPECT_FALSE(k.ReadXMLShokuin(Reply({Person(1, {}, {"Name2"})})));
}

TEST_F(ShokuinListTest, ReaderPadsTheSenninTextsAndMapsJokin) {
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLShokuin(
        Reply({Person(1, {{"SenninSikakuCode", "175A"}}), Person(2, {{"Jokin", "パート"}})})));
    const auto& p = k.Shokuin().Items()[0];
    EXPECT_EQ(p.SenninGyosyuN_String, "123" + std::string(28, '0'));
    EXPECT_EQ(p.SenninGyosyuN()[1], 2);
    EXPECT_EQ(p.SenninGyosyu_String, std::string(31, '1'));
    EXPECT_EQ(p.SenninSikakuCode_String, "175A000000000000");
    EXPECT_EQ(p.SenninSikakuCode(), (std::array<std::int16_t, 8>{17, 1050, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(p.Jokin, 1);
    EXPECT_EQ(p.GyoshuCode[0], 12);
    EXPECT_EQ(p.BirthDate, "S55/04/01");
    const auto& q = k.Shokuin().Items()[1];
    EXPECT_EQ(q.Jokin, 0);
    EXPECT_EQ(q.SenninSikakuCode_String, std::string(16, '0'));
}

TEST_F(ShokuinListTest, DownloadThenCompareAgreesAndReadingsCompareWide) {
    Sql(db_,
        "INSERT INTO tCustomerMeibo (id, CustomerID, disabled, vno, Name1) VALUES "
        "(1, 7, 0, 1, 'old'), (2, 8, 1, 1, 'free row of 8');");
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLShokuin(Reply({Person(10), Person(11, {{"Jokin", "非常勤"}})})));
    ASSERT_EQ(k.SyncDownloadShokuin(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, vno, No, Jokin, SenninGyosyuN FROM "
                   "tCustomerMeibo ORDER BY id"),
              (std::vector<std::string>{"1|7|1|S10|常勤|123" + std::string(28, '0'),
                                        "2|8|1|<null>|<null>|<null>",
                                        "3|7|2|S11|非常勤|123" + std::string(28, '0')}));
    // A later reply whose readings are full width is the same list.
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 10, 0, 0}));
    ASSERT_TRUE(k.ReadXMLShokuin(Reply({Person(10, {{"FName1", "ヤマダ"}}),
                                        Person(11, {{"Jokin", "非常勤"}, {"FName2", "タロウ"}})},
                                       "2024/06/01 09:30:00")));
    EXPECT_EQ(k.CompareLocalDBShokuin(db_, 7), 0);
    // The same people in another order differ.
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 11, 0, 0}));
    ASSERT_TRUE(k.ReadXMLShokuin(
        Reply({Person(11, {{"Jokin", "非常勤"}}), Person(10)}, "2024/06/01 10:30:00")));
    EXPECT_NE(k.CompareLocalDBShokuin(db_, 7), 0);
}

TEST_F(ShokuinListTest, UploadBodyPutsThePositionBeforeTheSenninKeys) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_,
        "INSERT INTO tCustomerMeibo (id, CustomerID, disabled, vno, No, Name1, FName1, "
        "SikakuCode1, licencedate2, Bunrui11, Jokin, SenninGyosyuN, SenninSikakuCode) VALUES "
        "(5, 7, 0, 3, 'A&1', '山田', 'ﾔﾏﾀﾞ', 17, 'x', 'y', 'パート', '9', NULL);");
    server_->On(kSet, Envelope(1, "T2"));
    EXPECT_EQ(obj.SyncUploadCustomerSyokuinList(db_, 7), 1);
    const auto posts = server_->RequestsTo(kSet);
    ASSERT_EQ(posts.size(), 1u);
    std::string expected =
        "ID=user1&token=T1&CustomerID=7&ShokuinItemID=5&DISABLEDALL=DISABLEDALL&no=A&1&"
        "name1=山田&name2=&fname1=ﾔﾏﾀﾞ&fname2=&BirthDate=&SaiyoDate=&sikakucode1=17&";
    for (int i = 2; i <= 10; ++i) expected += "sikakucode" + std::to_string(i) + "=0&";
    expected += "gyoshucode1=0&gyoshucode2=0&kofucode=&seibetu=&Yakushoku=&school=&senko=&";
    for (int i = 1; i <= 5; ++i)
        expected += "LicenceName" + std::to_string(i) + "=&LicenceDate" + std::to_string(i) + "=" +
                    (i == 2 ? "x" : "") + "&";
    expected += "keireki=&jitumunen1=&jitumunen2=&jitumunen3=&jitumunen4=&shokushu=&biko=&";
    for (int i = 1; i <= 16; ++i)
        expected += "bunrui" + std::to_string(i) + "=" + (i == 11 ? "y" : "") + "&";
    expected += "eigyosho=&jokin=&addr=&";
    for (int i = 1; i <= 10; ++i) expected += "other" + std::to_string(i) + "=&";
    expected += "vno=1&SenninGyosyuN=9" + std::string(30, '0') +
                "&SenninGyosyu=" + std::string(31, '0') +
                "&SenninSikakuCode=" + std::string(16, '0') + "&";
    EXPECT_EQ(posts[0].body, expected);
}

}  // namespace
}  // namespace morvane::test
