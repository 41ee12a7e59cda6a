// Other records: no position anywhere, and both dates kept to the second.
#include <gtest/gtest.h>

#include "DatedTestUtil.h"
#include "component/ctrlMorvane.h"
#include "dated/cCustKihonOther.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

std::string OtherItem(int id, const std::map<std::string, std::string>& changed = {},
                      const std::set<std::string>& leftOut = {}) {
    return ItemXml("OtherDataItem",
                   {{"OtherDataItemID", std::to_string(id)},
                    {"DataFile", "other" + std::to_string(id) + ".pdf"},
                    {"RegDate", "2024/04/01 10:00"},
                    {"UpdateDate", "2024/04/02 11:30:15"},
                    {"other", "note"}},
                   changed, leftOut);
}

class OtherTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = EmptyCustomerDb(temp_.Path() / "db", clock_).string();
    }

    cCustKihonOther Read(const std::vector<std::string>& items, const std::string& stamp) {
        cCustKihonOther k;
        EXPECT_TRUE(k.ReadXML(Document(ListPayload("Other", 7, stamp, items))));
        return k;
    }

    std::string db_;
    std::shared_ptr<FixedClock> clock_;
};

TEST_F(OtherTest, DownloadWritesNoPositionAndTheDatesCompareToTheSecond) {
    cCustKihonOther none;
    EXPECT_FALSE(none.ReadXML(
        Document(ListPayload("Other", 7, "2024/05/01 10:00:00", {OtherItem(1, {}, {"other"})}))));
    ASSERT_EQ(Read({OtherItem(1), OtherItem(2, {{"RegDate", "unknown"}})}, "2024/05/01 10:00:00")
                  .SyncDownload(db_, 7),
              1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, vno, DataFile, RegDate, UpdateDate, Other FROM "
                   "tCustomerOtherFile ORDER BY id"),
              (std::vector<std::string>{
                  "1|7|<null>|other1.pdf|2024/04/01 10:00:00|2024/04/02 11:30:15|note",
                  "2|7|<null>|other2.pdf|<null>|2024/04/02 11:30:15|note"}));
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 10, 0, 0}));
    const std::string later = "2024/06/01 09:30:00";
    // The server's date without seconds and the local one are the same moment.
    EXPECT_EQ(Read({OtherItem(1, {{"RegDate", "2024/04/01 10:00:00"}}),
                    OtherItem(2, {{"RegDate", "unknown"}})},
                   later)
                  .CompareLocalDB(db_, 7),
              1);  // a date that is no date stays a text, and the row holds ""
    EXPECT_EQ(Read({OtherItem(1), OtherItem(2, {{"RegDate", ""}})}, later).CompareLocalDB(db_, 7),
              0);
    // Agreed and stamped; a second more on the server later is a difference.
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 11, 0, 0}));
    EXPECT_EQ(Read({OtherItem(1, {{"UpdateDate", "2024/04/02 11:30:16"}}),
                    OtherItem(2, {{"RegDate", ""}})},
                   "2024/06/01 10:30:00")
                  .CompareLocalDB(db_, 7),
              1);
}

TEST_F(OtherTest, UploadSendsNoPositionAndAnEmptyTextForANonDate) {
    ctrlMorvane obj;
    LogIn();
    EXPECT_EQ(obj.SyncUploadCustomerOtherList(db_, 7), 0);
    EXPECT_TRUE(server_->Requests().empty());
    Sql(db_,
        "INSERT INTO tCustomerOtherFile (id, CustomerID, disabled, vno, DataFile, RegDate, "
        "UpdateDate, Other) VALUES (4, 7, 0, 9, 'a.pdf', 'someday', '2024-04-02 00:00:00', "
        "'x');");
    server_->On("customer/setOtherData.php", Envelope(1, "T2"));
    ASSERT_EQ(obj.SyncUploadCustomerOtherList(db_, 7), 1);
    const auto posts = server_->RequestsTo("customer/setOtherData.php");
    ASSERT_EQ(posts.size(), 1u);
    EXPECT_EQ(posts[0].body,
              "ID=user1&token=T1&CustomerID=7&OtherDataItemID=4&DISABLEDALL=DISABLEDALL&"
              "DataFile=a.pdf&RegDate=&UpdateDate=2024/04/02 00:00:00&other=x&");
}

}  // namespace
}  // namespace morvane::test
