// Permit records, whose hidden rows stay out of the walk, the rewrite and the upload yet count,
// and other records, which have no position and keep both dates to the second.
#include <gtest/gtest.h>

#include "DatedTestUtil.h"
#include "component/ctrlMorvane.h"
#include "dated/cCustKihonOther.h"
#include "dated/cCustKyoka.h"
#include "support/Golden.h"

namespace morvane::test {
namespace {

std::string KyokaItem(int id, std::map<std::string, std::string> changed = {}) {
    const std::string n = std::to_string(id);
    changed.insert(
        {{"KyokaDataItemID", n}, {"other", "permit" + n}, {"DataFile", "kyoka" + n + ".dat"}});
    return ItemXml("KyokaDataItem", TagsOf(Golden("dated/permit-other.txt").Joined("permit item")),
                   changed);
}

std::string OtherItem(int id, std::map<std::string, std::string> changed = {},
                      const std::set<std::string>& leftOut = {}) {
    const std::string n = std::to_string(id);
    changed.insert({{"OtherDataItemID", n}, {"DataFile", "other" + n + ".pdf"}});
    return ItemXml("OtherDataItem", TagsOf(Golden("dated/permit-other.txt").Joined("other item")),
                   changed, leftOut);
}

class PermitOtherTest : public RecordDbTest {
protected:
    cCustKyoka Permits(const std::vector<std::string>& items, const std::string& stamp) {
        cCustKyoka k;
        EXPECT_TRUE(k.ReadXML(Document(ListPayload("KyokaData", 7, stamp, items))));
        return k;
    }
    cCustKihonOther Others(const std::vector<std::string>& items, const std::string& stamp) {
        cCustKihonOther k;
        EXPECT_TRUE(k.ReadXML(Document(ListPayload("OtherData", 7, stamp, items))));
        return k;
    }
    const Golden data_{"dated/permit-other.txt"};
};
using KyokaTest = PermitOtherTest;
using OtherTest = PermitOtherTest;

TEST_F(KyokaTest, HiddenRowsKeepTheirPlaceCountAndAreNotSent) {
    ctrlMorvane& obj = LoggedIn();
    Sql(db_, data_["permit rows"]);
    const std::string later = "2024/06/01 10:00:00";
    At(11);
    ASSERT_EQ(Permits({KyokaItem(10), KyokaItem(11), KyokaItem(12)}, later).SyncDownload(db_, 7),
              1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, disabled, vno, Other, Ver511HideFlag FROM "
                   "tCustomerKyokaHistory ORDER BY id"),
              data_.Lines("permits downloaded"));
    // Four live rows against three items: the count differs for good.
    At(12);
    EXPECT_EQ(Permits({KyokaItem(10), KyokaItem(11), KyokaItem(12)}, "2024/06/01 11:30:00")
                  .CompareLocalDB(db_, 7),
              1);

    server_->On("customer/setKyokaData.php", Envelope(1, "T2"));
    ASSERT_EQ(obj.SyncUploadCustomerKyokaList(db_, 7), 1);
    EXPECT_EQ(
        server_->BodiesTo("customer/setKyokaData.php"),
        (std::vector<std::string>{data_.Joined("permit upload"), data_.Joined("permit upload 2")}));
}

TEST_F(KyokaTest, DatesCompareByTheDayAndAHiddenRowOnEitherSideDiffers) {
    ASSERT_EQ(Permits({KyokaItem(10)}, "2024/05/01 10:00:00").SyncDownload(db_, 7), 1);
    At(10);
    const std::string later = "2024/06/01 09:30:00";
    EXPECT_EQ(Permits({KyokaItem(10, {{"PApDate", "2024/04/01 18:00:00"},
                                      {"AcDateE", "2024/03/31 00:00:01"}})},
                      later)
                  .CompareLocalDB(db_, 7),
              0);
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM tCustomerKyokaHistory"), "2024/06/01 10:00:00");
    At(11);
    const std::string latest = "2024/06/01 10:30:00";
    EXPECT_EQ(Permits({KyokaItem(10, {{"PApDate", "2024/04/02"}})}, latest).CompareLocalDB(db_, 7),
              1);
    EXPECT_EQ(Permits({KyokaItem(10, {{"Ver511HideFlag", "1"}})}, latest).CompareLocalDB(db_, 7),
              1);
    // A hidden local row is walked past but counted: the lists differ.
    Sql(db_,
        "INSERT INTO tCustomerKyokaHistory (id, CustomerID, disabled, Ver511HideFlag) "
        "VALUES (9, 7, 0, 1);");
    EXPECT_EQ(Permits({KyokaItem(10)}, latest).CompareLocalDB(db_, 7), 1);
}

TEST_F(OtherTest, DownloadWritesNoPositionAndTheDatesCompareToTheSecond) {
    cCustKihonOther none;
    EXPECT_FALSE(none.ReadXML(Document(
        ListPayload("OtherData", 7, "2024/05/01 10:00:00", {OtherItem(1, {}, {"other"})}))));
    ASSERT_EQ(Others({OtherItem(1), OtherItem(2, {{"RegDate", "unknown"}})}, "2024/05/01 10:00:00")
                  .SyncDownload(db_, 7),
              1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, vno, DataFile, RegDate, UpdateDate, Other FROM "
                   "tCustomerOtherFile ORDER BY id"),
              data_.Lines("others downloaded"));
    At(10);
    const std::string later = "2024/06/01 09:30:00";
    // The server's date without seconds and the local one are the same moment.
    EXPECT_EQ(Others({OtherItem(1, {{"RegDate", "2024/04/01 10:00:00"}}),
                      OtherItem(2, {{"RegDate", "unknown"}})},
                     later)
                  .CompareLocalDB(db_, 7),
              1);  // a date that is no date stays a text, and the row holds ""
    EXPECT_EQ(Others({OtherItem(1), OtherItem(2, {{"RegDate", ""}})}, later).CompareLocalDB(db_, 7),
              0);
    // Agreed and stamped; a second more on the server later is a difference.
    At(11);
    EXPECT_EQ(Others({OtherItem(1, {{"UpdateDate", "2024/04/02 11:30:16"}}),
                      OtherItem(2, {{"RegDate", ""}})},
                     "2024/06/01 10:30:00")
                  .CompareLocalDB(db_, 7),
              1);
}

TEST_F(OtherTest, UploadSendsNoPositionAndAnEmptyTextForANonDate) {
    ctrlMorvane& obj = LoggedIn();
    EXPECT_EQ(obj.SyncUploadCustomerOtherList(db_, 7), 0);
    EXPECT_TRUE(server_->Requests().empty());
    Sql(db_, data_["other to send"]);
    server_->On("customer/setOtherData.php", Envelope(1, "T2"));
    ASSERT_EQ(obj.SyncUploadCustomerOtherList(db_, 7), 1);
    EXPECT_EQ(server_->BodiesTo("customer/setOtherData.php"),
              std::vector<std::string>{data_.Joined("other upload")});
}

}  // namespace
}  // namespace morvane::test
