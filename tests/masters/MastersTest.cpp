// The master engine on its smallest masters (the reply without a customer, the table replaced
// with ids from 1, the stamps' Master.dat rule), and the master members through the test server:
// the upload bodies to the letter and the staff users' Japanese names.
#include <gtest/gtest.h>

#include <filesystem>

#include "MastersTestUtil.h"
#include "component/ctrlMorvane.h"
#include "masters/cMastKessanTaioh.h"
#include "masters/cMastNyusatsukikan.h"
#include "masters/cMastUserStaff.h"
#include "support/Golden.h"
#include "transport/mdlServerConst.h"

namespace morvane::test {
namespace {

class MasterEngineTest : public RecordDbTest {
protected:
    void SetUp() override {
        RecordDbTest::SetUp();
        db_ = paths_.master.string();
    }

    cMastKessanTaioh Taioh(const std::vector<std::string>& items, const std::string& stamp) {
        cMastKessanTaioh k;
        EXPECT_TRUE(k.ReadXML(Document(MasterPayload("KessanTaioh", stamp, items))));
        return k;
    }
    std::vector<std::string> TaiohRows(const std::string& db) {
        return Rows(db, "SELECT ID, Taioh, Flag, vno FROM tKessanTaioh ORDER BY ID");
    }

    const Golden data_{"masters/masters.txt"};
};

TEST_F(MasterEngineTest, TheReplyHasNoCustomerAndMustBeWhole) {
    cMastKessanTaioh k;
    EXPECT_TRUE(k.ReadXML(Document(MasterPayload("KessanTaioh", "", {}))));
    EXPECT_EQ(k.Count(), 0);
    EXPECT_TRUE(k.Items().empty());
    // Below the Master payload the tags go by any case.
    EXPECT_TRUE(k.ReadXML(Document(data_.Joined("any case below Master"))));
    ASSERT_EQ(k.Items().size(), 1u);
    EXPECT_EQ(k.Items()[0].Key, "K4");
    EXPECT_EQ(k.RecordUpdate(), "2024/05/01 10:00:00");
    // Under another payload, without its stamp, or with an item short of a tag: no list.
    for (const std::string& payload : data_.Lines("refused"))
        EXPECT_FALSE(k.ReadXML(Document(payload))) << payload;
}

TEST_F(MasterEngineTest, DownloadReplacesTheTableNumberingIdsAndPositionsFromOne) {
    Sql(db_, data_["taioh rows"]);
    // Server ids and numbers far from 1..n, and an empty Flag.
    const std::vector<std::string> items{
        TaiohItem(30, "甲", "1", "5"), TaiohItem(10, "乙", "", "7"), TaiohItem(20, "丙", "0", "9")};
    ASSERT_EQ(Taioh(items, "2024/05/01 10:00:00").SyncDownload(db_), 1);
    EXPECT_EQ(TaiohRows(db_), (std::vector<std::string>{"1|甲|1|1", "2|乙|<null>|2", "3|丙|0|3"}));
    EXPECT_EQ(Rows(db_, "SELECT DISTINCT RecordUpdate, InetCheckDate FROM tKessanTaioh"),
              (std::vector<std::string>{"2024/06/01 9:00:00|2024/06/01 9:00:00"}));

    // The server's own numbers are a difference on the next comparison; consecutive ones are not.
    clock_->Set(DateValue::FromCivil({2024, 6, 2, 9, 0, 0}));
    const std::string later = "2024/06/01 12:00:00";
    EXPECT_EQ(Taioh(items, later).CompareLocalDB(db_), 1);
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

TEST_F(MasterEngineTest, NumbersCompareByValueTextsToTheLetterAndOnlyMasterDatIsStamped) {
    Sql(db_, data_["agreed taioh rows"]);
    const auto folder = std::filesystem::path(db_).parent_path();
    const std::string upper = (folder / "other" / "master.DAT").string();
    const std::string wrong = (folder / "Masters.dat").string();
    std::filesystem::create_directories(folder / "other");
    std::filesystem::copy_file(db_, upper);
    std::filesystem::copy_file(db_, wrong);
    for (const auto& db : {upper, wrong})
        EXPECT_EQ(
            Taioh({TaiohItem(1, "Ab", "0", "1"), TaiohItem(2, "c", "", "2")}, "2024/05/02 00:00:00")
                .CompareLocalDB(db),
            0);
    EXPECT_EQ(One(upper, "SELECT MIN(InetCheckDate) FROM tKessanTaioh"), "2024/06/01 9:00:00");
    EXPECT_EQ(One(wrong, "SELECT MAX(InetCheckDate) FROM tKessanTaioh"), "2024/05/01");

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

using MasterMembersTest = MasterEngineTest;

// A staff user's item: its columns under their Japanese names, the password among them.
std::string Staff(int id, const std::string& pw, const std::set<std::string>& leftOut = {}) {
    const std::string n = std::to_string(id);
    return ItemXml("UserStaffItem", TagsOf(Golden("masters/masters.txt").Joined("staff user")),
                   {{"UserStaffItemID", n}, {"事務所職員コード", "S" + n}, {"パスワード", pw}},
                   leftOut);
}

TEST_F(MasterMembersTest, UploadSendsEveryRowWithPositionsAndNothingForAnEmptyTable) {
    ctrlMorvane& obj = LoggedIn();
    EXPECT_EQ(obj.SyncUploadMasterKessanTaioh(db_), 0);
    EXPECT_TRUE(server_->RequestsTo(std::string(page::kSetKessanTaioh)).empty());
    Sql(db_, data_["taioh to send"]);
    server_->On(std::string(page::kSetKessanTaioh), Envelope(1, "T2"));
    ASSERT_EQ(obj.SyncUploadMasterKessanTaioh(db_), 1);
    EXPECT_EQ(server_->BodiesTo(std::string(page::kSetKessanTaioh)), data_.Lines("taioh upload"));
    EXPECT_EQ(One(db_, "SELECT MIN(InetCheckDate) FROM tKessanTaioh"), "2024/06/01 9:00:00");
}

TEST_F(MasterMembersTest, TheBiddingAgencyFirstBodyCarriesAllItsFieldsAndItsItemsEveryTag) {
    Sql(db_, data_["agency"]);
    LogIn();
    cMastNyusatsukikan k;
    ASSERT_TRUE(k.ReadLocalDB(db_));
    EXPECT_EQ(k.UploadBody(k.Items()[0], 0, 1), data_.Joined("agency upload"));

    std::vector<std::pair<std::string, std::string>> tags{{"NyusatsuKikanItemID", "1"}};
    for (const auto& row : cMastNyusatsukikan::Declaration().fields)
        tags.push_back({std::string(row.tag), ""});
    const auto reply = [&](const std::map<std::string, std::string>& changed,
                           const std::set<std::string>& leftOut) {
        return Document(MasterPayload("NyusatsuKikan", "2024/05/01 10:00:00",
                                      {ItemXml("NyusatsuKikanItem", tags, changed, leftOut)}));
    };
    EXPECT_TRUE(k.ReadXML(reply({{"NeedDoc42", ""}}, {})));
    EXPECT_FALSE(k.ReadXML(reply({}, {"NeedDoc57"})));
    // "DistributionPrice" is not the tag: the item lacks DistributionPlice.
    std::string other = reply({}, {"DistributionPlice"});
    other.insert(other.find("<DistributionNote>"), "<DistributionPrice>x</DistributionPrice>");
    EXPECT_FALSE(k.ReadXML(other));

    // An empty checklist flag on the server and 0 at home are equal.
    Sql(db_, "DELETE FROM tNyusatsuKikan;" + data_["agency without a checklist flag"]);
    ASSERT_TRUE(k.ReadXML(reply({{"vno", "1"}}, {})));
    EXPECT_EQ(k.CompareLocalDB(db_), 0);
}

TEST_F(MasterMembersTest, StaffUsersTravelUnderTheirJapaneseNamesPasswordIncluded) {
    const auto reply = [](const std::string& stamp, const std::vector<std::string>& items) {
        return Document(MasterPayload("UserStaff", stamp, items));
    };
    cMastUserStaff s;
    EXPECT_FALSE(s.ReadXML(
        reply("2024/05/01 10:00:00", {Staff(1, "pw1"), Staff(2, "pw2", {"パスワード"})})));
    ASSERT_TRUE(s.ReadXML(reply("2024/05/01 10:00:00", {Staff(8, "pw&1"), Staff(3, "b")})));
    EXPECT_EQ(s.Items()[0].strPW, "pw&1");
    // What the download wrote is what the upload below sends.
    ASSERT_EQ(s.SyncDownload(db_), 1);

    ctrlMorvane& obj = LoggedIn();
    server_->On(std::string(page::kSetUserStaff), Envelope(1, "T2"));
    ASSERT_EQ(obj.SyncUploadMasterUserStaff(db_), 1);
    const auto posts = server_->RequestsTo(std::string(page::kSetUserStaff));
    ASSERT_EQ(posts.size(), 2u);
    EXPECT_EQ(posts[0].body, data_.Joined("staff upload"));

    // A password apart is a difference.
    clock_->Set(DateValue::FromCivil({2024, 6, 2, 9, 0, 0}));
    ASSERT_TRUE(s.ReadXML(reply("2024/06/01 12:00:00", {Staff(8, "pw&1"), Staff(3, "B")})));
    EXPECT_EQ(s.CompareLocalDB(db_), 1);
}

}  // namespace
}  // namespace morvane::test
