// Memos: optional other texts, dates to the second or Null, rows taken from any customer's
// free rows, and the walk in id order.
#include <gtest/gtest.h>

#include "CustListTestUtil.h"
#include "component/ctrlMorvane.h"
#include "record/cCustKihon.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

const std::string kGet = "customer/getMemo.php";
const std::string kSet = "customer/setMemo.php";

std::string MemoItem(int id, const std::map<std::string, std::string>& changed = {},
                     const std::set<std::string>& leftOut = {}) {
    return ListItemXml("MemoItem",
                       {{"MemoItemID", std::to_string(id)},
                        {"History", "note " + std::to_string(id)},
                        {"RegDate", "2024/04/01 10:00:00"},
                        {"UpdateDate", "2024/04/02 11:30:15"},
                        {"other1", "a"},
                        {"other2", "b"},
                        {"other3", "c"}},
                       changed, leftOut);
}

class MemoListTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = EmptyCustomerDb(temp_.Path() / "db", clock_).string();
    }

    std::string Reply(const std::vector<std::string>& items,
                      const std::string& stamp = "2024/05/01 10:00:00") {
        return Document(CustListPayload("Memo", 7, stamp, items));
    }

    std::string db_;
    std::shared_ptr<FixedClock> clock_;
};

TEST_F(MemoListTest, OtherTextsAreOptionalButEveryFlaggedTagIsNot) {
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLMemo(Reply({MemoItem(1, {}, {"other1", "other3"}), MemoItem(2)})));
    ASSERT_EQ(k.MemoCount(), 2);
    const auto& first = k.Memo().Items()[0];
    EXPECT_EQ(first.Key, "K1");
    EXPECT_EQ(first.other[0], "");
    EXPECT_EQ(first.other[1], "b");
    EXPECT_EQ(k.RecordUpdate(), "2024/05/01 10:00:00");

    // A memo without RegDate is dropped, and the count then fails the whole reply.
    EXPECT_FALSE(k.ReadXMLMemo(Reply({MemoItem(1, {}, {"RegDate"}), MemoItem(2)})));
    // A stamp beside the list, in the payload, counts as well.
    EXPECT_TRUE(k.ReadXMLMemo(Document(
        "<Customer><CustomerID>7</CustomerID><RecordUpdate>2024/05/02 10:00:00</RecordUpdate>"
        "<MemoList><MemoCount>1</MemoCount>" +
        MemoItem(1) + "</MemoList></Customer>")));
    EXPECT_EQ(k.RecordUpdate(), "2024/05/02 10:00:00");
}

TEST_F(MemoListTest, DownloadTakesAnyFreeRowAndWritesNonDatesAsNull) {
    Sql(db_,
        "INSERT INTO tCustomerHistory (id, CustomerID, disabled, vno, History) VALUES "
        "(1, 7, 0, 1, 'old'), (2, 8, 1, 1, 'freed by 8'), (3, 8, 0, 1, 'live of 8');");
    cCustKihon k;
    ASSERT_TRUE(
        k.ReadXMLMemo(Reply({MemoItem(10), MemoItem(11, {{"RegDate", "someday"}}), MemoItem(12)})));
    ASSERT_EQ(k.SyncDownloadMemo(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, disabled, vno, History, RegDate, UpdateDate, other1 "
                   "FROM tCustomerHistory ORDER BY id"),
              (std::vector<std::string>{
                  "1|7|0|1|note 10|2024/04/01 10:00:00|2024/04/02 11:30:15|a",
                  "2|7|0|2|note 11|<null>|2024/04/02 11:30:15|a",  // customer 8's free row
                  "3|8|0|1|live of 8|<null>|<null>|<null>",
                  "4|7|0|3|note 12|2024/04/01 10:00:00|2024/04/02 11:30:15|a"}));
}

TEST_F(MemoListTest, RowsAreWalkedInIdOrderAndAgreementStampsThem) {
    // Positions reversed against ids: the walk follows the ids.
    Sql(db_,
        "INSERT INTO tCustomerHistory (id, CustomerID, disabled, vno, History, RegDate, "
        "UpdateDate, other1, other2, other3, RecordUpdate, InetCheckDate) VALUES "
        "(1, 7, 0, 2, 'note 1', '2024-04-01 10:00:00', '2024-04-02 11:30:15', 'a', 'b', 'c', "
        "'2024-05-01 08:00:00', '2024-05-01 08:00:00'), "
        "(2, 7, 0, 1, 'note 2', '2024-04-01 10:00:00', '2024-04-02 11:30:15', 'a', 'b', 'c', "
        "'2024-05-01 08:00:00', '2024-05-01 08:00:00');");
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLMemo(Reply({MemoItem(1), MemoItem(2)})));
    EXPECT_EQ(k.CompareLocalDBMemo(db_, 7), 0);
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM tCustomerHistory WHERE id = 1"),
              "2024/06/01 9:00:00");

    ASSERT_TRUE(k.ReadXMLMemo(Reply({MemoItem(2), MemoItem(1)}, "2024/06/01 09:30:00")));
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 10, 0, 0}));
    EXPECT_NE(k.CompareLocalDBMemo(db_, 7), 0);
}

TEST_F(MemoListTest, UploadSendsOnePostAMemoAndNothingWithoutRows) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_,
        "INSERT INTO tCustomerHistory (id, CustomerID, disabled, vno, History, RegDate, "
        "UpdateDate, other1, other2, other3) VALUES "
        "(4, 7, 0, 9, 'a&b', '2024-04-01 10:00:00', 'not a date', 'x', NULL, 'z'), "
        "(5, 7, 0, 1, 'second', NULL, NULL, NULL, NULL, NULL);");
    server_->On(kSet, Envelope(1, "T2"));
    EXPECT_EQ(obj.SyncUploadCustomerMemoList(db_, 7), 1);
    const auto posts = server_->RequestsTo(kSet);
    ASSERT_EQ(posts.size(), 2u);
    EXPECT_EQ(posts[0].body,
              "ID=user1&token=T1&CustomerID=7&MemoItemID=4&DISABLEDALL=DISABLEDALL&History=a&b&"
              "RegDate=2024/04/01 10:00:00&UpdateDate=&other1=x&other2=&other3=z&vno=1&");
    EXPECT_EQ(posts[1].body,
              "ID=user1&token=T2&CustomerID=7&MemoItemID=5&History=second&RegDate=&"
              "UpdateDate=&other1=&other2=&other3=&vno=2&");
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM tCustomerHistory WHERE id = 5"),
              "2024/06/01 9:00:00");

    server_->ClearRequests();
    EXPECT_EQ(obj.SyncUploadCustomerMemoList(db_, 9), 0);
    EXPECT_TRUE(server_->Requests().empty());
}

TEST_F(MemoListTest, DownloadAlwaysFetchesAndNeedsTheLogin) {
    ctrlMorvane obj;
    EXPECT_EQ(obj.SyncDownloadCustomerMemoList(db_, 7), 0);  // not logged in: nothing sent
    EXPECT_TRUE(server_->Requests().empty());
    LogIn();
    server_->On(
        kGet, Envelope(1, "T2", CustListPayload("Memo", 7, "2024/05/01 10:00:00", {MemoItem(10)})));
    EXPECT_EQ(obj.CompareCustomerMemoList(db_, 7), 1);
    EXPECT_EQ(server_->RequestsTo(kGet)[0].body, "ID=user1&token=T1&CustomerID=7&");
    EXPECT_EQ(obj.SyncDownloadCustomerMemoList(db_, 7), 1);
    EXPECT_EQ(server_->RequestsTo(kGet).size(), 2u);  // fetched again, not taken from the slot
    EXPECT_EQ(One(db_, "SELECT History FROM tCustomerHistory WHERE CustomerID = 7"), "note 10");
    EXPECT_EQ(obj.CompareCustomerMemoList(db_, 7), 0);
    EXPECT_TRUE(kit_->Boxes().empty());
}

}  // namespace
}  // namespace morvane::test
