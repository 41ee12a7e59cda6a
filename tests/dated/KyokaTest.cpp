// Permit records: hidden rows stay out of the walk, the rewrite and the upload, yet count;
// dates compare by the day.
#include <gtest/gtest.h>

#include "DatedTestUtil.h"
#include "component/ctrlMorvane.h"
#include "dated/cCustKyoka.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

std::string KyokaItem(int id, const std::map<std::string, std::string>& changed = {}) {
    return ItemXml("KyokaDataItem",
                   {{"KyokaDataItemID", std::to_string(id)},
                    {"other", "permit" + std::to_string(id)},
                    {"PApDate", "2024/04/01"},
                    {"AcPeriod", "3"},
                    {"AcDateS", "2023/04/01"},
                    {"AcDateE", "2024/03/31"},
                    {"DataFile", "kyoka" + std::to_string(id) + ".dat"},
                    {"CheckSync", "1"},
                    {"DefaultUse", "0"},
                    {"Ver511HideFlag", "0"},
                    {"DataFileID", "0"}},
                   changed);
}

class KyokaTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = EmptyCustomerDb(temp_.Path() / "db", clock_).string();
    }

    cCustKyoka Read(const std::vector<std::string>& items, const std::string& stamp) {
        cCustKyoka k;
        EXPECT_TRUE(k.ReadXML(Document(ListPayload("Kyoka", 7, stamp, items))));
        return k;
    }

    std::string db_;
    std::shared_ptr<FixedClock> clock_;
};

TEST_F(KyokaTest, HiddenRowsKeepTheirPlaceCountAndAreNotSent) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_,
        "INSERT INTO tCustomerKyokaHistory (id, CustomerID, disabled, Other, Ver511HideFlag) "
        "VALUES (1, 7, 0, 'hidden', 1), (2, 7, 0, 'old', 0), (3, 8, 1, 'pooled hidden', 1);");
    const std::string later = "2024/06/01 10:00:00";
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 11, 0, 0}));
    ASSERT_EQ(Read({KyokaItem(10), KyokaItem(11), KyokaItem(12)}, later).SyncDownload(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, disabled, vno, Other, Ver511HideFlag FROM "
                   "tCustomerKyokaHistory ORDER BY id"),
              (std::vector<std::string>{"1|7|0|<null>|hidden|1", "2|7|0|1|permit10|0",
                                        "3|7|0|2|permit11|1", "4|7|0|3|permit12|0"}));
    // Four live rows against three items: the count differs for good.
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 12, 0, 0}));
    EXPECT_EQ(Read({KyokaItem(10), KyokaItem(11), KyokaItem(12)}, "2024/06/01 11:30:00")
                  .CompareLocalDB(db_, 7),
              1);

    server_->On("customer/setKyokaData.php", Envelope(1, "T2"));
    ASSERT_EQ(obj.SyncUploadCustomerKyokaList(db_, 7), 1);
    const auto posts = server_->RequestsTo("customer/setKyokaData.php");
    ASSERT_EQ(posts.size(), 2u);
    EXPECT_EQ(posts[0].body,
              "ID=user1&token=T1&CustomerID=7&KyokaDataItemID=2&DISABLEDALL=DISABLEDALL&"
              "other=permit10&PApDate=2024/04/01&AcPeriod=3&AcDateS=2023/04/01&"
              "AcDateE=2024/03/31&DataFile=kyoka10.dat&CheckSync=1&DefaultUse=0&"
              "Ver511HideFlag=0&DataFileID=0&vno=1&");
    EXPECT_EQ(posts[1].body.substr(0, 50), "ID=user1&token=T2&CustomerID=7&KyokaDataItemID=4&o");
}

TEST_F(KyokaTest, DatesCompareByTheDayAndAHiddenServerItemDiffers) {
    ASSERT_EQ(Read({KyokaItem(10)}, "2024/05/01 10:00:00").SyncDownload(db_, 7), 1);
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 10, 0, 0}));
    const std::string later = "2024/06/01 09:30:00";
    EXPECT_EQ(Read({KyokaItem(10, {{"PApDate", "2024/04/01 18:00:00"},
                                   {"AcDateE", "2024/03/31 00:00:01"}})},
                   later)
                  .CompareLocalDB(db_, 7),
              0);
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM tCustomerKyokaHistory"), "2024/06/01 10:00:00");
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 11, 0, 0}));
    const std::string latest = "2024/06/01 10:30:00";
    EXPECT_EQ(Read({KyokaItem(10, {{"PApDate", "2024/04/02"}})}, latest).CompareLocalDB(db_, 7), 1);
    EXPECT_EQ(Read({KyokaItem(10, {{"Ver511HideFlag", "1"}})}, latest).CompareLocalDB(db_, 7), 1);
}

}  // namespace
}  // namespace morvane::test
