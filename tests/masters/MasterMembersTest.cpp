// The master members through the test server: the bodies without a customer, the kept
// comparison, the upload bodies to the letter, and the staff users' Japanese names.
#include <gtest/gtest.h>

#include <algorithm>

#include "MastersTestUtil.h"
#include "component/ctrlMorvane.h"
#include "masters/cMastNyusatsukikan.h"
#include "masters/cMastUserStaff.h"
#include "support/MorvaneTest.h"
#include "transport/mdlServerConst.h"

namespace morvane::test {
namespace {

class MasterMembersTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = EmptyMasterDb(temp_.Path() / "db", clock_);
    }

    std::string db_;
    std::shared_ptr<FixedClock> clock_;
};

std::vector<std::pair<std::string, std::string>> StaffTags(int id, const std::string& pw) {
    return {{"UserStaffItemID", std::to_string(id)},
            {"事務所職員コード", "S" + std::to_string(id)},
            {"事務所職員名", "山田 太郎"},
            {"郵便番号", "530-0001"},
            {"住所", "大阪市北区"},
            {"TEL", "06-1111-2222"},
            {"FAX", ""},
            {"パスワード", pw},
            {"Flag", "1"}};
}

TEST_F(MasterMembersTest, CompareKeepsTheListForTheDownloadAndSendsNoCustomer) {
    ctrlMorvane obj;
    LogIn();
    server_->On(
        std::string(page::kGetKessanTaioh),
        Envelope(1, "T2",
                 MasterPayload("KessanTaioh", "2024/05/01 10:00:00",
                               {TaiohItem(5, "済", "1", "1"), TaiohItem(6, "未", "0", "2")})));
    EXPECT_EQ(obj.CompareMasterKessanTaioh(db_), 1);
    const auto gets = server_->RequestsTo(std::string(page::kGetKessanTaioh));
    ASSERT_EQ(gets.size(), 1u);
    EXPECT_EQ(gets[0].body, "ID=user1&token=T1&");
    EXPECT_EQ(obj.SyncDownloadMasterKessanTaioh(db_), 1);
    EXPECT_EQ(server_->RequestsTo(std::string(page::kGetKessanTaioh)).size(), 1u);
    EXPECT_EQ(Rows(db_, "SELECT ID, Taioh, Flag, vno FROM tKessanTaioh ORDER BY ID"),
              (std::vector<std::string>{"1|済|1|1", "2|未|0|2"}));
    // The slot was emptied: a second download does nothing under option 0.
    Sql(db_, "DELETE FROM tKessanTaioh;");
    EXPECT_EQ(obj.SyncDownloadMasterKessanTaioh(db_), 1);
    EXPECT_TRUE(Rows(db_, "SELECT ID FROM tKessanTaioh").empty());
}

TEST_F(MasterMembersTest, UploadSendsEveryRowWithPositionsAndNothingForAnEmptyTable) {
    ctrlMorvane obj;
    LogIn();
    EXPECT_EQ(obj.SyncUploadMasterKessanTaioh(db_), 0);
    EXPECT_TRUE(server_->RequestsTo(std::string(page::kSetKessanTaioh)).empty());
    Sql(db_,
        "INSERT INTO tKessanTaioh (ID, Taioh, Flag, vno) VALUES (4, 'a&b', NULL, 7), "
        "(9, 'c=d', 2, 3);");
    server_->On(std::string(page::kSetKessanTaioh), Envelope(1, "T2"));
    ASSERT_EQ(obj.SyncUploadMasterKessanTaioh(db_), 1);
    const auto posts = server_->RequestsTo(std::string(page::kSetKessanTaioh));
    ASSERT_EQ(posts.size(), 2u);
    EXPECT_EQ(posts[0].body,
              "ID=user1&token=T1&KessanTaiohItemID=9&DISABLEDALL=DISABLEDALL&Taioh=c=d&Flag=2&"
              "vno=1&");
    EXPECT_EQ(posts[1].body, "ID=user1&token=T2&KessanTaiohItemID=4&Taioh=a&b&Flag=&vno=2&");
    EXPECT_EQ(One(db_, "SELECT MIN(InetCheckDate) FROM tKessanTaioh"), "2024/06/01 9:00:00");
}

TEST_F(MasterMembersTest, TheBiddingAgencyFirstBodyCarriesAllItsFields) {
    Sql(db_,
        "INSERT INTO tNyusatsuKikan (ID, KikanCode, KikanName, ReceptionYear, "
        "DistributionPlace, DistributionPlice, DistributionNote, TEL2, NeedDoc00, NeedDoc57, "
        "NeedDoc99, NeedDocOthers, vno) VALUES (3, 'K1', '大阪府', 2024, 'pl', 'pr', 'no', "
        "'06', 1, 2, 3, 'etc', 8);");
    LogIn();
    cMastNyusatsukikan k;
    ASSERT_TRUE(k.ReadLocalDB(db_));
    const std::string body = k.UploadBody(k.Items()[0], 0, 1);
    std::string expected =
        "ID=user1&token=T1&NyusatsuKikanItemID=3&DISABLEDALL=DISABLEDALL&KikanCode=K1&KikanName="
        "大阪府&"
        "ReceptionYear=2024&ValidityTerm=&ReceptionDateFrom=&ReceptionDateTo=&"
        "ReceptionTime1From=&ReceptionTime1To=&ReceptionTime2From=&ReceptionTime2To=&";
    for (int i = 0; i < 10; ++i) expected += "ReceptionFlags" + std::to_string(i) + "=&";
    expected +=
        "PresentationPlace=&PresentationNote=&DistributionDate=&DistributionPlace=pl&"
        "DistributionPlice=pr&DistributionNote=no&ZipCode1=&ZipCode2=&Address=&Station=&"
        "TEL1=&TEL2=06&TEL3=&FAX1=&FAX2=&FAX3=&Mail=&ApplicationPlace=&ApplicationName=&"
        "ApplicationNote=&";
    for (int i = 0; i < 100; ++i) {
        const std::string n = (i < 10 ? "0" : "") + std::to_string(i);
        expected += "NeedDoc" + n + "=" + (i == 0 ? "1" : i == 57 ? "2" : i == 99 ? "3" : "") + "&";
    }
    expected += "NeedDocOthers=etc&vno=1&";
    EXPECT_EQ(body, expected);
    EXPECT_EQ(std::count(body.begin(), body.end(), '&'), 146);
}

TEST_F(MasterMembersTest, BiddingAgencyItemsNeedEveryTagUnderItsOwnSpelling) {
    std::vector<std::pair<std::string, std::string>> tags{{"NyusatsuKikanItemID", "1"}};
    for (const auto& row : cMastNyusatsukikan::Declaration().fields)
        tags.push_back({std::string(row.tag), ""});
    ASSERT_EQ(tags.size(), 143u);
    cMastNyusatsukikan k;
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
    Sql(db_,
        "INSERT INTO tNyusatsuKikan (ID, NeedDoc42, vno, RecordUpdate, InetCheckDate) "
        "VALUES (1, 0, 1, '2024-04-01 00:00:00', '2024-04-01 00:00:00');");
    ASSERT_TRUE(k.ReadXML(reply({{"vno", "1"}}, {})));
    EXPECT_EQ(k.CompareLocalDB(db_), 0);
}

TEST_F(MasterMembersTest, StaffUsersTravelUnderTheirJapaneseNamesPasswordIncluded) {
    cMastUserStaff s;
    EXPECT_FALSE(s.ReadXML(Document(
        MasterPayload("UserStaff", "2024/05/01 10:00:00",
                      {ItemXml("UserStaffItem", StaffTags(1, "pw1")),
                       ItemXml("UserStaffItem", StaffTags(2, "pw2"), {}, {"パスワード"})}))));
    ASSERT_TRUE(s.ReadXML(Document(MasterPayload("UserStaff", "2024/05/01 10:00:00",
                                                 {ItemXml("UserStaffItem", StaffTags(8, "pw&1")),
                                                  ItemXml("UserStaffItem", StaffTags(3, "b"))}))));
    EXPECT_EQ(s.Items()[0].strPW, "pw&1");
    ASSERT_EQ(s.SyncDownload(db_), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT ID, [事務所職員コード], [事務所職員名], [郵便番号], [住所], TEL, "
                   "FAX, [パスワード], Flag FROM tUserStaff ORDER BY ID"),
              (std::vector<std::string>{"1|S8|山田 太郎|530-0001|大阪市北区|06-1111-2222||pw&1|1",
                                        "2|S3|山田 太郎|530-0001|大阪市北区|06-1111-2222||b|1"}));

    ctrlMorvane obj;
    LogIn();
    server_->On(std::string(page::kSetUserStaff), Envelope(1, "T2"));
    ASSERT_EQ(obj.SyncUploadMasterUserStaff(db_), 1);
    const auto posts = server_->RequestsTo(std::string(page::kSetUserStaff));
    ASSERT_EQ(posts.size(), 2u);
    EXPECT_EQ(posts[0].body,
              "ID=user1&token=T1&UserStaffItemID=1&DISABLEDALL=DISABLEDALL&事務所職員コード=S8&"
              "事務所職員名=山田 太郎&郵便番号=530-0001&住所=大阪市北区&TEL=06-1111-2222&FAX=&"
              "パスワード=pw&1&Flag=1&");

    // A password apart is a difference.
    clock_->Set(DateValue::FromCivil({2024, 6, 2, 9, 0, 0}));
    ASSERT_TRUE(s.ReadXML(Document(MasterPayload("UserStaff", "2024/06/01 12:00:00",
                                                 {ItemXml("UserStaffItem", StaffTags(8, "pw&1")),
                                                  ItemXml("UserStaffItem", StaffTags(3, "B"))}))));
    EXPECT_EQ(s.CompareLocalDB(db_), 1);
}

}  // namespace
}  // namespace morvane::test
