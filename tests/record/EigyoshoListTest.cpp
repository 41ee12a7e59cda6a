// Offices: marks read loosely and compared strictly, the trades as tab-separated text, the
// customer's own rows rewritten with a number one ahead of the position.
#include <gtest/gtest.h>

#include "CustListTestUtil.h"
#include "component/ctrlMorvane.h"
#include "record/cCustKihon.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

const std::string kGet = "customer/getEigyosho.php";
const std::string kSet = "customer/setEigyosho.php";

std::string Office(int id, const std::map<std::string, std::string>& changed = {},
                   const std::set<std::string>& leftOut = {}) {
    Tags tags{{"EigyoshoItemID", std::to_string(id)},
              {"MainEigyo", "1"},
              {"MainRendo", "0"},
              {"Name", "office " + std::to_string(id)},
              {"Kana", "ｵﾌｨｽ"},
              {"S_Code", "13"},
              {"PrefName", "東京都"},
              {"CityName", "千代田区"},
              {"Address", "一番町1"},
              {"Yubin1", "100"},
              {"Yubin2", "0001"},
              {"Tel1", "03"},
              {"Tel2", "1111"},
              {"Tel3", "2222"},
              {"Gyosyu", "1\t2\t3"}};
    for (int i = 0; i <= 10; ++i) tags.push_back({"Reserved" + std::to_string(i), ""});
    return ListItemXml("EigyoshoItem", tags, changed, leftOut);
}

std::string Reply(const std::vector<std::string>& items,
                  const std::string& stamp = "2024/05/01 10:00:00") {
    return Document(CustListPayload("Eigyosho", 7, stamp, items));
}

class EigyoshoListTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = EmptyCustomerDb(temp_.Path() / "db", clock_).string();
    }

    std::string db_;
    std::shared_ptr<FixedClock> clock_;
};

TEST_F(EigyoshoListTest, ReaderTakesAnyNumberButZeroAsAMarkAndSplitsTheTrades) {
    std::string forty;
    for (int i = 1; i <= 40; ++i) forty += (i > 1 ? "\t" : "") + std::to_string(i);
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLEigyosho(
        Reply({Office(1, {{"MainEigyo", "2"}, {"MainRendo", "x"}, {"Gyosyu", forty}}),
               Office(2, {{"MainEigyo", "0"}, {"Gyosyu", ""}})})));
    const auto& items = k.Eigyosho().Items();
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].MainEigyo, 1);
    EXPECT_EQ(items[0].MainRendo, 0);  // no number: the mark stays clear
    EXPECT_EQ(items[0].Gyosyu_String, forty);
    const auto slots = items[0].Gyosyu();
    EXPECT_EQ(slots[0], 1);
    EXPECT_EQ(slots[30], 31);
    EXPECT_EQ(items[1].MainEigyo, 0);
    EXPECT_EQ(items[1].Gyosyu(), (std::array<std::int16_t, 31>{}));

    EXPECT_FALSE(k.ReadXMLEigyosho(Reply({Office(1, {}, {"Reserved10"})})));
    // Without any stamp the reply is no good either.
    EXPECT_FALSE(k.ReadXMLEigyosho(
        Document("<Customer><CustomerID>7</CustomerID><EigyoshoList><EigyoshoCount>1"
                 "</EigyoshoCount>" +
                 Office(1) + "</EigyoshoList></Customer>")));
}

TEST_F(EigyoshoListTest, DownloadRewritesOwnRowsOnlyWithNumberAheadOfPosition) {
    Sql(db_,
        "INSERT INTO tCustomerEigyosyo (id, CustomerID, disabled, vno, Name) VALUES "
        "(1, 8, 1, 1, 'free row of 8'), (2, 7, 0, 5, 'old'), (3, 7, 1, 6, 'freed');");
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLEigyosho(Reply({Office(10), Office(11), Office(12)})));
    ASSERT_EQ(k.SyncDownloadEigyosho(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, disabled, vno, No, MainEigyo, MainRendo, Name, S_Code, "
                   "TEL1, Gyosyu FROM tCustomerEigyosyo ORDER BY id"),
              (std::vector<std::string>{"1|8|1|1|<null>|<null>|<null>|free row of 8|<null>|<null>|"
                                        "<null>",
                                        "2|7|0|1|2|1|0|office 10|13|03|1\t2\t3",
                                        "3|7|0|2|3|1|0|office 11|13|03|1\t2\t3",
                                        "4|7|0|3|4|1|0|office 12|13|03|1\t2\t3"}));

    // A shorter list leaves the surplus rows freed, with their data.
    ASSERT_TRUE(k.ReadXMLEigyosho(Reply({Office(10)})));
    ASSERT_EQ(k.SyncDownloadEigyosho(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, disabled, Name FROM tCustomerEigyosyo WHERE CustomerID = 7 "
                   "ORDER BY id"),
              (std::vector<std::string>{"2|0|office 10", "3|1|office 11", "4|1|office 12"}));
}

TEST_F(EigyoshoListTest, AColumnMarkCountsOnlyWhenItIsOne) {
    Sql(db_,
        "INSERT INTO tCustomerEigyosyo (id, CustomerID, disabled, vno, MainEigyo, MainRendo, "
        "Name, Kana, S_Code, PrefName, CityName, Address, Yubin1, Yubin2, TEL1, TEL2, TEL3, "
        "Gyosyu, Reserved0, Reserved1, Reserved2, Reserved3, Reserved4, Reserved5, Reserved6, "
        "Reserved7, Reserved8, Reserved9, Reserved10, RecordUpdate, InetCheckDate) VALUES "
        "(1, 7, 0, 1, 2, 0, 'office 1', 'ｵﾌｨｽ', 13, '東京都', '千代田区', '一番町1', '100', "
        "'0001', '03', '1111', '2222', '1\t2\t3', '', '', '', '', '', '', '', '', '', '', '', "
        "'2024-05-01 08:00:00', '2024-05-01 08:00:00');");
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLEigyosho(Reply({Office(1, {{"MainEigyo", "2"}})})));
    EXPECT_NE(k.CompareLocalDBEigyosho(db_, 7), 0);
    Sql(db_, "UPDATE tCustomerEigyosyo SET MainEigyo = 1;");
    EXPECT_EQ(k.CompareLocalDBEigyosho(db_, 7), 0);
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM tCustomerEigyosyo WHERE id = 1"),
              "2024/06/01 9:00:00");
}

TEST_F(EigyoshoListTest, UploadSendsFixedMarksAndThePosition) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_,
        "INSERT INTO tCustomerEigyosyo (id, CustomerID, disabled, vno, MainEigyo, MainRendo, "
        "Name, S_Code, TEL1, Gyosyu, Reserved10) VALUES "
        "(3, 7, 0, 2, 0, 2, 'branch', NULL, '06', '4\t5', 'r&10'), "
        "(4, 7, 0, 1, 1, 0, 'main', 9, '03', '', NULL);");
    server_->On(kSet, Envelope(1, "T2"));
    EXPECT_EQ(obj.SyncUploadCustomerEigyoshoList(db_, 7), 1);
    const auto posts = server_->RequestsTo(kSet);
    ASSERT_EQ(posts.size(), 2u);
    EXPECT_EQ(posts[0].body,
              "ID=user1&token=T1&CustomerID=7&EigyoshoItemID=4&DISABLEDALL=DISABLEDALL&"
              "MainEigyo=1&MainRendo=0&Name=main&Kana=&S_Code=9&PrefName=&CityName=&Address=&"
              "Yubin1=&Yubin2=&Tel1=03&Tel2=&Tel3=&Gyosyu=&Reserved0=&Reserved1=&Reserved2=&"
              "Reserved3=&Reserved4=&Reserved5=&Reserved6=&Reserved7=&Reserved8=&Reserved9=&"
              "Reserved10=&vno=1&");
    // A column mark of 2 is no mark, as in the comparison.
    const std::string second = posts[1].body;
    EXPECT_EQ(second.substr(0, 77),
              "ID=user1&token=T2&CustomerID=7&EigyoshoItemID=3&MainEigyo=0&MainRendo=0&Name=");
    EXPECT_NE(second.find("&S_Code=0&"), std::string::npos);
    EXPECT_NE(second.find("&Gyosyu=4\t5&"), std::string::npos);
    EXPECT_NE(second.find("&Reserved10=r&10&vno=2&"), std::string::npos);
}

TEST_F(EigyoshoListTest, MembersCompareKeepAndDownloadThroughTheRecordSlot) {
    ctrlMorvane obj;
    LogIn();
    server_->On(kGet, Envelope(1, "T2",
                               CustListPayload("Eigyosho", 7, "2024/05/01 10:00:00",
                                               {Office(10), Office(11)})));
    EXPECT_EQ(obj.CompareCustomerEigyoshoList(db_, 7), 1);
    EXPECT_EQ(obj.SyncDownloadCustomerEigyoshoList(db_, 7), 1);
    EXPECT_EQ(server_->RequestsTo(kGet).size(), 2u);
    EXPECT_EQ(Rows(db_, "SELECT vno, No, Name FROM tCustomerEigyosyo ORDER BY id"),
              (std::vector<std::string>{"1|2|office 10", "2|3|office 11"}));
    EXPECT_EQ(obj.CompareCustomerEigyoshoList(db_, 7), 0);
    EXPECT_TRUE(kit_->Boxes().empty());
}

}  // namespace
}  // namespace morvane::test
