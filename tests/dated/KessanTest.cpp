// Settlement records: reading a list reply, which is good only when whole; the comparison and
// the download against the customer database; the upload's bodies and stops through the public
// object.
#include <gtest/gtest.h>

#include "DatedTestUtil.h"
#include "component/ctrlMorvane.h"
#include "dated/cCustKessan.h"
#include "support/Golden.h"

namespace morvane::test {
namespace {

using KessanReaderTest = MorvaneTest;

// Tags match without regard to case, an unknown tag is passed over and an empty element is 0;
// an item short of a tag, a count the items do not reach, one id twice, no stamp or no
// customer, or the payload under another name fail the reply.
TEST_F(KessanReaderTest, OnlyAWholeListIsReadIntoItemsInOrder) {
    cCustKessan k;
    auto sixth = KessanTags(6);
    sixth.push_back({"Unknown", "x"});
    sixth[6].first = "OTHER";
    ASSERT_TRUE(k.ReadXML(Document(
        ListPayload("KessanData", 7, "2024/05/01 10:00:00",
                    {KessanItem(5, {{"CheckOther", ""}}), ItemXml("kessanDataITEM", sixth)}))));
    ASSERT_EQ(k.Items().size(), 2u);
    EXPECT_EQ(
        (std::vector<std::string>{std::to_string(k.CustomerID()), k.RecordUpdate(),
                                  std::to_string(k.Count()), k.Items()[0].Key, k.Items()[1].Key,
                                  std::to_string(k.Items()[0].CheckOther), k.Items()[1].other}),
        (std::vector<std::string>{"7", "2024/05/01 10:00:00", "2", "K5", "K6", "0", "memo"}));

    for (const char* missing : {"KessanDataItemID", "Other", "ProfDate3", "DataFileID"}) {
        EXPECT_FALSE(
            k.ReadXML(Document(ListPayload("KessanData", 7, "2024/05/01 10:00:00",
                                           {KessanItem(5), KessanItem(6, {}, {missing})}))))
            << missing;
        EXPECT_EQ(k.Items().size(), 1u) << missing;
    }
    EXPECT_FALSE(k.ReadXML(
        Document(ListPayload("KessanData", 7, "2024/05/01 10:00:00", {KessanItem(5)}, 2))));
    // A stamp that is no date reads as empty and the reply stands; an empty list is good.
    ASSERT_TRUE(k.ReadXML(Document(ListPayload("KessanData", 7, "later", {KessanItem(5)}))));
    EXPECT_EQ(k.RecordUpdate(), "");
    ASSERT_TRUE(k.ReadXML(Document(ListPayload("KessanData", 7, "2024/05/01 10:00:00", {}))));
    EXPECT_EQ(k.Count(), 0);
    EXPECT_FALSE(k.ReadXML(Document(
        ListPayload("KessanData", 7, "2024/05/01 10:00:00", {KessanItem(5), KessanItem(5)}, 2))));
    for (const std::string& payload : Golden("dated/kessan.txt").Lines("refused payloads"))
        EXPECT_FALSE(k.ReadXML(Document(payload))) << payload;
    EXPECT_FALSE(k.ReadXML("<reply><Customer>"));
    EXPECT_TRUE(kit_->Boxes().empty());
}

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

    const Golden data_{"dated/kessan.txt"};
};

TEST_F(KessanRowsTest, DownloadTakesFreeRowsKeepsTheirLinkOnZeroAndNormalisesEachField) {
    Sql(db_, data_["free rows"]);
    cCustKessan k =
        Read({KessanItem(100, {{"RecDate", "someday"},
                               {"ExDate", "2024/03/31 15:00:00"},
                               {"ScDate", "soon"},
                               {"AcPeriod0", "x1"},
                               {"AcPeriod1", "-2.5"},
                               {"Other", "A&B"},
                               {"CheckOther", ""}}),
              KessanItem(101, {{"DataFileID", "9"}}), KessanItem(102, {{"DataFileID", "-3"}})},
             "2024/05/01 10:00:00");
    ASSERT_EQ(k.SyncDownload(db_, 7), 1);
    ASSERT_EQ(Table("id, CustomerID, disabled, vno, DataFileID, DataFile"),
              data_.Lines("downloaded on free rows"));
    EXPECT_EQ(Table("RecDate, ExDate, ScDate, AcPeriod0, AcPeriod1, Other, CheckOther, RegDate")[0],
              "2024/06/01 9:00:00|2024/03/31|<null>||-2.5|A&B|0|2024/04/01 9:00:00");
    EXPECT_EQ(Table("RecordUpdate, InetCheckDate")[3], "2024/06/01 9:00:00|2024/06/01 9:00:00");

    // An empty list frees this customer's rows only.
    ASSERT_EQ(Read({}, "2024/05/01 10:00:00").SyncDownload(db_, 7), 1);
    EXPECT_EQ(Table("id, CustomerID, disabled"),
              (std::vector<std::string>{"1|7|1", "2|7|1", "3|8|0", "4|7|1"}));
}

TEST_F(KessanRowsTest, AfterADownloadEqualContentAgreesAndCountOrderOrFieldsDiffer) {
    ASSERT_EQ(Read({KessanItem(100), KessanItem(101)}, "2024/05/01 10:00:00").SyncDownload(db_, 7),
              1);
    At(10);
    const std::string later = "2024/06/01 09:30:00";
    // One more on the server: no field is compared, nothing stamped.
    EXPECT_EQ(
        Read({KessanItem(100), KessanItem(101), KessanItem(102)}, later).CompareLocalDB(db_, 7), 1);
    // The position pairs rows and items: the same two in the other order differ.
    EXPECT_EQ(Read({KessanItem(101), KessanItem(100)}, later).CompareLocalDB(db_, 7), 1);
    EXPECT_EQ(Table("InetCheckDate")[0], "2024/06/01 9:00:00");
    // The same content, a date now with a midnight time: agreed, and the rows stamped.
    EXPECT_EQ(Read({KessanItem(100, {{"ExDate", "2024/03/31 00:00:00"}}), KessanItem(101)}, later)
                  .CompareLocalDB(db_, 7),
              0);
    EXPECT_EQ(Table("InetCheckDate"),
              (std::vector<std::string>{"2024/06/01 10:00:00", "2024/06/01 10:00:00"}));
    // A term's date moved on one row.
    At(11);
    Sql(db_, "UPDATE tCustomerKessanHistory SET AcDateE4 = '2024-04-01 00:00:00' WHERE id = 2;");
    EXPECT_EQ(
        Read({KessanItem(100), KessanItem(101)}, "2024/06/01 10:30:00").CompareLocalDB(db_, 7), 1);
    // The stamps alone decide when they agree: content is not looked at.
    EXPECT_EQ(Read({KessanItem(100)}, "2024/05/01 10:00:00").CompareLocalDB(db_, 7), 0);
}

constexpr const char* kGet = "customer/getKessanData.php";
constexpr const char* kSet = "customer/setKessanData.php";
constexpr const char* kNow = "2024/06/01 9:00:00";

using KessanSyncTest = KessanRowsTest;

TEST_F(KessanSyncTest, UploadSendsEachLiveRowAndClearsTheServerListWithTheFirst) {
    ctrlMorvane& obj = LoggedIn();
    Sql(db_, data_["to send"]);
    server_->On(kSet, Envelope(1, "T2"));
    ASSERT_EQ(obj.SyncUploadCustomerKessanList(db_, 7), 1);
    // The second: no DISABLEDALL, a CheckOther of 0 kept, its own link and position.
    EXPECT_EQ(server_->BodiesTo(kSet),
              (std::vector<std::string>{data_.Joined("upload 1"), data_.Joined("upload 2")}));
    // Both rows are now agreed; the freed row and the other customer's are not.
    EXPECT_EQ(Table("InetCheckDate"), (std::vector<std::string>{kNow, kNow, "<null>", "<null>"}));
}

TEST_F(KessanSyncTest, UploadStopsAtTheFirstFailedPostAndSendsNothingWithoutRows) {
    ctrlMorvane& obj = LoggedIn();
    Sql(db_, data_["three live rows"]);
    server_->OnSequence(kSet, {Envelope(1, "T2"), Envelope(-1, "T3"), Envelope(1, "T4")});
    EXPECT_EQ(obj.SyncUploadCustomerKessanList(db_, 7), 0);
    EXPECT_EQ(server_->RequestsTo(kSet).size(), 2u);
    EXPECT_EQ(Table("InetCheckDate")[0], "<null>");

    server_->ClearRequests();
    EXPECT_EQ(obj.SyncUploadCustomerKessanList(db_, 9), 0);
    EXPECT_TRUE(server_->Requests().empty());
}

TEST_F(KessanSyncTest, UnderTheUsageOptionTheDownloadFetchesForItself) {
    ctrlMorvane& obj = LoggedIn();
    server_->On(
        kGet,
        Envelope(1, "T2", ListPayload("KessanData", 7, "2024/05/01 10:00:00", {KessanItem(100)})));
    EXPECT_EQ(obj.SyncDownloadCustomerKessanList(db_, 7), 1);  // option 0: nothing fetched
    EXPECT_TRUE(server_->Requests().empty());
    obj.setObjectUsage(1);
    EXPECT_EQ(obj.SyncDownloadCustomerKessanList(db_, 7), 1);
    EXPECT_EQ(server_->RequestsTo(kGet).size(), 1u);
    EXPECT_EQ(Table("DataFile"), std::vector<std::string>{"kessan100.dat"});
}

}  // namespace
}  // namespace morvane::test
