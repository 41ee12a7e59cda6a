// Settlement records against the customer database: the comparison and the download.
#include <gtest/gtest.h>

#include "DatedTestUtil.h"
#include "dated/cCustKessan.h"

namespace morvane::test {
namespace {

constexpr const char* kTable = "tCustomerKessanHistory";

class KessanRowsTest : public RecordDbTest {
protected:
    cCustKessan Read(const std::vector<std::string>& items, const std::string& stamp) {
        cCustKessan k;
        EXPECT_TRUE(k.ReadXML(Document(ListPayload("KessanData", 7, stamp, items))));
        return k;
    }

    std::vector<std::string> Table(const std::string& columns) {
        return Rows(db_, "SELECT " + columns + " FROM " + kTable + " ORDER BY id");
    }
};

TEST_F(KessanRowsTest, DownloadTakesFreeRowsOfAnyCustomerAndKeepsTheirLinkOnZero) {
    Sql(db_,
        "INSERT INTO tCustomerKessanHistory (id, CustomerID, disabled, DataFileID) VALUES "
        "(1, 8, 1, 55), (2, 7, 0, 66), (3, 8, 0, 77);");
    cCustKessan k = Read({KessanItem(100), KessanItem(101, {{"DataFileID", "9"}}),
                          KessanItem(102, {{"DataFileID", "-3"}})},
                         "2024/05/01 10:00:00");
    ASSERT_EQ(k.SyncDownload(db_, 7), 1);
    EXPECT_EQ(Table("id, CustomerID, disabled, vno, DataFileID, DataFile"),
              (std::vector<std::string>{"1|7|0|1|55|kessan100.dat", "2|7|0|2|9|kessan101.dat",
                                        "3|8|0|<null>|77|<null>", "4|7|0|3|<null>|kessan102.dat"}));
    EXPECT_EQ(Table("RecordUpdate, InetCheckDate")[3], "2024/06/01 9:00:00|2024/06/01 9:00:00");
}

TEST_F(KessanRowsTest, DownloadNormalisesEachKindOfField) {
    cCustKessan k = Read({KessanItem(100, {{"RecDate", "someday"},
                                           {"ExDate", "2024/03/31 15:00:00"},
                                           {"ScDate", "soon"},
                                           {"AcPeriod0", "x1"},
                                           {"AcPeriod1", "-2.5"},
                                           {"Other", "A&B"},
                                           {"CheckOther", ""}})},
                         "2024/05/01 10:00:00");
    ASSERT_EQ(k.SyncDownload(db_, 7), 1);
    EXPECT_EQ(Table("RecDate, ExDate, ScDate, AcPeriod0, AcPeriod1, Other, CheckOther, RegDate"),
              (std::vector<std::string>{"2024/06/01 9:00:00|2024/03/31|<null>||-2.5|A&B|0|"
                                        "2024/04/01 9:00:00"}));
}

TEST_F(KessanRowsTest, AnEmptyServerListFreesOnlyThisCustomersRows) {
    Sql(db_,
        "INSERT INTO tCustomerKessanHistory (id, CustomerID, disabled) VALUES (1, 7, 0), "
        "(2, 7, 0), (3, 8, 0);");
    cCustKessan k = Read({}, "2024/05/01 10:00:00");
    ASSERT_EQ(k.SyncDownload(db_, 7), 1);
    EXPECT_EQ(Table("id, CustomerID, disabled"),
              (std::vector<std::string>{"1|7|1", "2|7|1", "3|8|0"}));
}

TEST_F(KessanRowsTest, StampsApartWithEqualContentAgreeAndStampTheRows) {
    ASSERT_EQ(Read({KessanItem(100), KessanItem(101)}, "2024/05/01 10:00:00").SyncDownload(db_, 7),
              1);
    At(10);
    // The server moved an hour later; the same content, a date now with a midnight time.
    cCustKessan k = Read({KessanItem(100, {{"ExDate", "2024/03/31 00:00:00"}}), KessanItem(101)},
                         "2024/06/01 09:30:00");
    EXPECT_EQ(k.CompareLocalDB(db_, 7), 0);
    EXPECT_EQ(Table("InetCheckDate"),
              (std::vector<std::string>{"2024/06/01 10:00:00", "2024/06/01 10:00:00"}));
}

TEST_F(KessanRowsTest, ACountOrFieldDifferenceGivesTheDecisionCode) {
    ASSERT_EQ(Read({KessanItem(100), KessanItem(101)}, "2024/05/01 10:00:00").SyncDownload(db_, 7),
              1);
    At(10);
    const std::string later = "2024/06/01 09:30:00";
    // One more on the server: no field is compared, nothing stamped.
    EXPECT_EQ(
        Read({KessanItem(100), KessanItem(101), KessanItem(102)}, later).CompareLocalDB(db_, 7), 1);
    // The position pairs rows and items: the same two in the other order differ.
    EXPECT_EQ(Read({KessanItem(101), KessanItem(100)}, later).CompareLocalDB(db_, 7), 1);
    // A term's date moved on one row.
    Sql(db_, "UPDATE tCustomerKessanHistory SET AcDateE4 = '2024-04-01 00:00:00' WHERE id = 2;");
    EXPECT_EQ(Read({KessanItem(100), KessanItem(101)}, later).CompareLocalDB(db_, 7), 1);
    EXPECT_EQ(Table("InetCheckDate")[0], "2024/06/01 9:00:00");
    // The stamps alone decide when they agree: content is not looked at.
    EXPECT_EQ(Read({KessanItem(100)}, "2024/05/01 10:00:00").CompareLocalDB(db_, 7), 0);
}

TEST_F(KessanRowsTest, ABrokenDatabaseIsReportedAndGivesZero) {
    cCustKessan k = Read({KessanItem(100)}, "2024/05/01 10:00:00");
    const std::string missing = (temp_.Path() / "none.mdb").string();
    EXPECT_EQ(k.SyncDownload(missing, 7), 0);
    EXPECT_EQ(k.SyncUpload(missing, 7), 0);
    EXPECT_FALSE(kit_->Boxes().empty());
    EXPECT_TRUE(server_->Requests().empty());
}

}  // namespace
}  // namespace morvane::test
