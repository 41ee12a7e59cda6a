// The master engine on its smallest masters: the reply without a customer, the table
// replaced with ids from 1, the position numbering, and the stamps' Master.dat rule.
#include <gtest/gtest.h>

#include <filesystem>

#include "MastersTestUtil.h"
#include "masters/cMastKessanTaioh.h"
#include "masters/cMastYakushoku.h"
#include "support/TempDir.h"

namespace morvane::test {
namespace {

class MasterEngineTest : public ::testing::Test {
protected:
    void SetUp() override { db_ = EmptyMasterDb(temp_.Path() / "db", clock_); }

    cMastKessanTaioh Taioh(const std::vector<std::string>& items, const std::string& stamp) {
        cMastKessanTaioh k;
        EXPECT_TRUE(k.ReadXML(Document(MasterPayload("KessanTaioh", stamp, items))));
        return k;
    }
    std::vector<std::string> TaiohRows(const std::string& db) {
        return Rows(db, "SELECT ID, Taioh, Flag, vno FROM tKessanTaioh ORDER BY ID");
    }

    TempDir temp_;
};

TEST_F(MasterEngineTest, TheReplyHasNoCustomerAndMustBeWhole) {
    cMastKessanTaioh k;
    EXPECT_TRUE(k.ReadXML(Document(MasterPayload("KessanTaioh", "", {}))));
    EXPECT_EQ(k.Count(), 0);
    EXPECT_TRUE(k.Items().empty());
    // The payload is Master, to the letter; below it the tags go by any case.
    EXPECT_FALSE(k.ReadXML(Document("<Customer><CustomerID>1</CustomerID>" +
                                    MasterPayload("KessanTaioh", "", {}).substr(8))));
    EXPECT_TRUE(k.ReadXML(Document(
        "<Master><kessantaiohlist><KESSANTAIOHCOUNT>1</KESSANTAIOHCOUNT><recordupdate>2024/05/01 "
        "10:00:00</recordupdate><kessantaiohitem><kessantaiohitemid>4</kessantaiohitemid>"
        "<taioh>x</taioh><flag>1</flag><VNO>2</VNO></kessantaiohitem></kessantaiohlist></"
        "Master>")));
    ASSERT_EQ(k.Items().size(), 1u);
    EXPECT_EQ(k.Items()[0].Key, "K4");
    EXPECT_EQ(k.RecordUpdate(), "2024/05/01 10:00:00");
    // Without its stamp, or with an item short of a tag, the reply is no list.
    EXPECT_FALSE(
        k.ReadXML(Document("<Master><KessanTaiohList><KessanTaiohCount>0</KessanTaiohCount>"
                           "</KessanTaiohList></Master>")));
    EXPECT_FALSE(k.ReadXML(Document(
        MasterPayload("KessanTaioh", "2024/05/01 10:00:00",
                      {TaiohItem(1, "a", "1", "1"),
                       ItemXml("KessanTaiohItem",
                               {{"KessanTaiohItemID", "2"}, {"Taioh", "b"}, {"vno", "2"}})}))));
}

TEST_F(MasterEngineTest, DownloadReplacesTheTableNumberingIdsAndPositionsFromOne) {
    Sql(db_,
        "INSERT INTO tKessanTaioh (ID, Taioh, Flag, vno) VALUES (7, 'old', 1, 1), "
        "(8, 'older', 1, 2);");
    // Server ids and numbers far from 1..n, and an empty Flag.
    ASSERT_EQ(Taioh({TaiohItem(30, "甲", "1", "5"), TaiohItem(10, "乙", "", "7"),
                     TaiohItem(20, "丙", "0", "9")},
                    "2024/05/01 10:00:00")
                  .SyncDownload(db_),
              1);
    EXPECT_EQ(TaiohRows(db_), (std::vector<std::string>{"1|甲|1|1", "2|乙|<null>|2", "3|丙|0|3"}));
    EXPECT_EQ(Rows(db_, "SELECT DISTINCT RecordUpdate, InetCheckDate FROM tKessanTaioh"),
              (std::vector<std::string>{"2024/06/01 9:00:00|2024/06/01 9:00:00"}));

    // The server's own numbers are a difference on the next comparison; consecutive ones are not.
    clock_->Set(DateValue::FromCivil({2024, 6, 2, 9, 0, 0}));
    const std::string later = "2024/06/01 12:00:00";
    EXPECT_EQ(Taioh({TaiohItem(30, "甲", "1", "5"), TaiohItem(10, "乙", "", "7"),
                     TaiohItem(20, "丙", "0", "9")},
                    later)
                  .CompareLocalDB(db_),
              1);
    EXPECT_EQ(Taioh({TaiohItem(30, "甲", "1", "1"), TaiohItem(10, "乙", "", "2"),
                     TaiohItem(20, "丙", "0", "3")},
                    later)
                  .CompareLocalDB(db_),
              0);
    EXPECT_EQ(One(db_, "SELECT MIN(InetCheckDate) FROM tKessanTaioh"), "2024/06/02 9:00:00");

    // An empty master on the server empties the table.
    ASSERT_EQ(Taioh({}, later).SyncDownload(db_), 1);
    EXPECT_TRUE(TaiohRows(db_).empty());
}

TEST_F(MasterEngineTest, JobTitlesKeepTheServersNumbers) {
    cMastYakushoku y;
    ASSERT_TRUE(y.ReadXML(Document(MasterPayload(
        "Yakushoku", "2024/05/01 10:00:00",
        {ItemXml("YakushokuItem",
                 {{"YakushokuItemID", "40"}, {"Yakushoku", "部長"}, {"Flag", "1"}, {"vno", "9"}}),
         ItemXml(
             "YakushokuItem",
             {{"YakushokuItemID", "41"}, {"Yakushoku", "課長"}, {"Flag", "0"}, {"vno", "4"}})}))));
    ASSERT_EQ(y.SyncDownload(db_), 1);
    EXPECT_EQ(Rows(db_, "SELECT ID, Yakushoku, Flag, vno FROM tYakushoku ORDER BY ID"),
              (std::vector<std::string>{"1|部長|1|9", "2|課長|0|4"}));
    // The upload sends them as they stand, in the comparison's order (vno, then ID).
    ASSERT_TRUE(y.ReadLocalDB(db_));
    const std::string body = y.UploadBody(y.Items()[0], 0, 1);
    EXPECT_EQ(body.substr(body.find("&YakushokuItemID")),
              "&YakushokuItemID=2&DISABLEDALL=DISABLEDALL&Yakushoku=課長&Flag=0&vno=4&");
}

TEST_F(MasterEngineTest, NumbersCompareByValueAndTextsToTheLetter) {
    Sql(db_,
        "INSERT INTO tKessanTaioh (ID, Taioh, Flag, vno, RecordUpdate, InetCheckDate) "
        "VALUES (1, 'Ab', 0, 1, '2024-05-01 00:00:00', '2024-05-01 00:00:00'), "
        "(2, 'c', NULL, 2, '2024-05-01 00:00:00', '2024-05-01 00:00:00');");
    const std::string later = "2024/05/02 00:00:00";
    EXPECT_EQ(Taioh({TaiohItem(1, "Ab", "", "1"), TaiohItem(2, "c", "0", "2")}, later)
                  .CompareLocalDB(db_),
              0);
    EXPECT_EQ(One(db_, "SELECT MIN(InetCheckDate) FROM tKessanTaioh"), "2024/06/01 9:00:00");
    Sql(db_, "UPDATE tKessanTaioh SET InetCheckDate = '2024-05-01 00:00:00';");
    EXPECT_EQ(Taioh({TaiohItem(1, "AB", "0", "1"), TaiohItem(2, "c", "0", "2")}, later)
                  .CompareLocalDB(db_),
              1);
    // A count apart is a difference before any field is looked at.
    EXPECT_EQ(Taioh({TaiohItem(1, "Ab", "0", "1")}, later).CompareLocalDB(db_), 1);
    // Stamps that agree leave the content unread.
    EXPECT_EQ(Taioh({TaiohItem(1, "zz", "0", "1")}, "2024/04/01 00:00:00").CompareLocalDB(db_), 0);
}

TEST_F(MasterEngineTest, OnlyADatabaseNamedMasterDatIsStamped) {
    Sql(db_,
        "INSERT INTO tKessanTaioh (ID, Taioh, Flag, vno, RecordUpdate, InetCheckDate) "
        "VALUES (1, 'a', 1, 1, '2024-05-01 00:00:00', '2024-05-01 00:00:00');");
    const auto folder = std::filesystem::path(db_).parent_path();
    const std::string upper = (folder / "other" / "master.DAT").string();
    const std::string wrong = (folder / "Masters.dat").string();
    std::filesystem::create_directories(folder / "other");
    std::filesystem::copy_file(db_, upper);
    std::filesystem::copy_file(db_, wrong);
    for (const auto& db : {upper, wrong})
        EXPECT_EQ(Taioh({TaiohItem(1, "a", "1", "1")}, "2024/05/02 00:00:00").CompareLocalDB(db),
                  0);
    EXPECT_EQ(One(upper, "SELECT InetCheckDate FROM tKessanTaioh"), "2024/06/01 9:00:00");
    EXPECT_EQ(One(wrong, "SELECT InetCheckDate FROM tKessanTaioh"), "2024/05/01");
}

}  // namespace
}  // namespace morvane::test
