// The customer record's lists on a real customer database: staff (shared flags, padded Sennin
// texts, readings compared wide), offices (marks read loosely and compared strictly), memos
// (optional texts, any free row), and the bidding agencies and entries; their upload bodies.
#include <gtest/gtest.h>

#include "KihonTestUtil.h"
#include "component/ctrlMorvane.h"
#include "record/cCustKihon.h"
#include "support/Golden.h"

namespace morvane::test {
namespace {

Golden Data() { return Golden("record/customer-lists.txt"); }
std::string Body(std::string_view key) { return Data().Joined(key); }
std::string Seed(std::string_view key) { return Data()[key]; }
std::vector<std::string> Expected(std::string_view key) { return Data().Lines(key); }

std::string Person(int id, const std::map<std::string, std::string>& changed = {},
                   const std::set<std::string>& leftOut = {}) {
    const std::string n = std::to_string(id);
    return ItemXml("ShokuinItem",
                   With(TagsOf(Data().Joined("person")), {{"ShokuinItemID", n}, {"No", "S" + n}}),
                   changed, leftOut);
}

using ShokuinListTest = RecordDbTest;

// A download then agrees; readings compare wide, and the same people in another order differ.
TEST_F(ShokuinListTest, EitherTagOfASharedFlagKeepsThePersonSenninTextsArePaddedReadingsWide) {
    cCustKihon k;
    // Both tags of a pair missing, or an unshared tag missing: the person is dropped.
    EXPECT_FALSE(
        k.ReadXMLShokuin(ListReply("Shokuin", {Person(1, {}, {"shokushu", "licencedate1"})})));
    EXPECT_FALSE(k.ReadXMLShokuin(ListReply("Shokuin", {Person(1, {}, {"Name2"})})));
    ASSERT_TRUE(k.ReadXMLShokuin(
        ListReply("Shokuin", {Person(1, {{"SenninSikakuCode", "175A"}}, {"shokushu", "Bunrui8"}),
                              Person(2, {{"Jokin", "パート"}}, {"licencedate1"})})));
    EXPECT_EQ(k.ShokuinCount(), 2);
    const auto& p = k.Shokuin().Items()[0];
    const auto& q = k.Shokuin().Items()[1];
    EXPECT_EQ((std::vector<std::string>{p.SenninGyosyuN_String, p.SenninGyosyu_String,
                                        p.SenninSikakuCode_String, q.SenninSikakuCode_String,
                                        p.BirthDate}),
              Expected("sennin texts"));
    EXPECT_EQ(p.SenninSikakuCode(), (std::array<std::int16_t, 8>{17, 1050, 0, 0, 0, 0, 0, 0}));
    // The second trade of SenninGyosyuN, Jokin of both, the first trade code.
    EXPECT_EQ((std::vector<int>{p.SenninGyosyuN()[1], p.Jokin, q.Jokin, p.GyoshuCode[0]}),
              (std::vector<int>{2, 1, 0, 12}));

    Sql(db_, Seed("shokuin rows"));
    ASSERT_TRUE(
        k.ReadXMLShokuin(ListReply("Shokuin", {Person(10), Person(11, {{"Jokin", "非常勤"}})})));
    ASSERT_EQ(k.SyncDownloadShokuin(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, vno, No, Jokin, SenninGyosyuN FROM "
                   "tCustomerMeibo ORDER BY id"),
              Expected("shokuin downloaded"));
    // A later reply whose readings are full width is the same list.
    At(10);
    ASSERT_TRUE(
        k.ReadXMLShokuin(ListReply("Shokuin",
                                   {Person(10, {{"FName1", "ヤマダ"}}),
                                    Person(11, {{"Jokin", "非常勤"}, {"FName2", "タロウ"}})},
                                   "2024/06/01 09:30:00")));
    EXPECT_EQ(k.CompareLocalDBShokuin(db_, 7), 0);
    // The same people in another order differ.
    At(11);
    ASSERT_TRUE(k.ReadXMLShokuin(ListReply(
        "Shokuin", {Person(11, {{"Jokin", "非常勤"}}), Person(10)}, "2024/06/01 10:30:00")));
    EXPECT_NE(k.CompareLocalDBShokuin(db_, 7), 0);
}

std::string Office(int id, const std::map<std::string, std::string>& changed = {},
                   const std::set<std::string>& leftOut = {}) {
    const std::string n = std::to_string(id);
    const Tags tags =
        With(TagsOf(Data().Joined("office")), {{"EigyoshoItemID", n}, {"Name", "office " + n}});
    return ItemXml("EigyoshoItem", tags, changed, leftOut);
}

using EigyoshoListTest = RecordDbTest;

// The download rewrites its own rows, numbers ahead of position, and frees the surplus.
TEST_F(EigyoshoListTest, AnyNumberButZeroReadsAsAMarkYetCountsInTheComparisonOnlyAsOne) {
    std::string forty;
    for (int i = 1; i <= 40; ++i) forty += (i > 1 ? "\t" : "") + std::to_string(i);
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLEigyosho(ListReply(
        "Eigyosho", {Office(1, {{"MainEigyo", "2"}, {"MainRendo", "x"}, {"Gyosyu", forty}}),
                     Office(2, {{"MainEigyo", "0"}, {"Gyosyu", ""}})})));
    const auto& items = k.Eigyosho().Items();
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].Gyosyu_String, forty);
    // The marks (no number leaves one clear), and the first and 31st trades.
    EXPECT_EQ((std::vector<int>{items[0].MainEigyo, items[0].MainRendo, items[1].MainEigyo,
                                items[0].Gyosyu()[0], items[0].Gyosyu()[30]}),
              (std::vector<int>{1, 0, 0, 1, 31}));
    EXPECT_EQ(items[1].Gyosyu(), (std::array<std::int16_t, 31>{}));

    EXPECT_FALSE(k.ReadXMLEigyosho(ListReply("Eigyosho", {Office(1, {}, {"Reserved10"})})));
    // Without any stamp the reply is no good either.
    EXPECT_FALSE(k.ReadXMLEigyosho(
        Document("<Customer><CustomerID>7</CustomerID><EigyoshoList><EigyoshoCount>1"
                 "</EigyoshoCount>" +
                 Office(1) + "</EigyoshoList></Customer>")));

    Sql(db_, Seed("eigyosho rows"));
    ASSERT_TRUE(k.ReadXMLEigyosho(ListReply("Eigyosho", {Office(10), Office(11), Office(12)})));
    ASSERT_EQ(k.SyncDownloadEigyosho(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, disabled, vno, No, MainEigyo, MainRendo, Name, S_Code, "
                   "TEL1, Gyosyu FROM tCustomerEigyosyo ORDER BY id"),
              Expected("eigyosho downloaded"));

    // A shorter list leaves the surplus rows freed, with their data.
    ASSERT_TRUE(k.ReadXMLEigyosho(ListReply("Eigyosho", {Office(10)})));
    ASSERT_EQ(k.SyncDownloadEigyosho(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, disabled, Name FROM tCustomerEigyosyo WHERE CustomerID = 7 "
                   "ORDER BY id"),
              Expected("eigyosho shortened"));

    // A column mark counts only when it is 1.
    At(10);
    ASSERT_TRUE(k.ReadXMLEigyosho(
        ListReply("Eigyosho", {Office(10, {{"MainEigyo", "2"}})}, "2024/06/01 09:30:00")));
    Sql(db_, "UPDATE tCustomerEigyosyo SET MainEigyo = 2 WHERE id = 2;");
    EXPECT_NE(k.CompareLocalDBEigyosho(db_, 7), 0);
    Sql(db_, "UPDATE tCustomerEigyosyo SET MainEigyo = 1 WHERE id = 2;");
    EXPECT_EQ(k.CompareLocalDBEigyosho(db_, 7), 0);
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM tCustomerEigyosyo WHERE id = 2"),
              "2024/06/01 10:00:00");
}

using MemoListTest = RecordDbTest;

TEST_F(MemoListTest, OtherTextsAreOptionalButEveryFlaggedTagIsNotAndAnyFreeRowIsTaken) {
    cCustKihon k;
    ASSERT_TRUE(
        k.ReadXMLMemo(ListReply("Memo", {MemoItem(1, {}, {"other1", "other3"}), MemoItem(2)})));
    ASSERT_EQ(k.MemoCount(), 2);
    const auto& first = k.Memo().Items()[0];
    EXPECT_EQ(first.Key + "|" + first.other[0] + "|" + first.other[1] + "|" + k.RecordUpdate(),
              "K1||b|2024/05/01 10:00:00");

    // A memo without RegDate is dropped, and the count then fails the whole reply.
    EXPECT_FALSE(k.ReadXMLMemo(ListReply("Memo", {MemoItem(1, {}, {"RegDate"}), MemoItem(2)})));
    // A stamp beside the list, in the payload, counts as well.
    EXPECT_TRUE(k.ReadXMLMemo(Document(
        "<Customer><CustomerID>7</CustomerID><RecordUpdate>2024/05/02 10:00:00</RecordUpdate>"
        "<MemoList><MemoCount>1</MemoCount>" +
        MemoItem(1) + "</MemoList></Customer>")));
    EXPECT_EQ(k.RecordUpdate(), "2024/05/02 10:00:00");

    // A download takes any free row and writes a non-date as Null.
    Sql(db_, Seed("memo rows"));
    ASSERT_TRUE(k.ReadXMLMemo(
        ListReply("Memo", {MemoItem(10), MemoItem(11, {{"RegDate", "someday"}}), MemoItem(12)})));
    ASSERT_EQ(k.SyncDownloadMemo(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, disabled, vno, History, RegDate, UpdateDate, other1 "
                   "FROM tCustomerHistory ORDER BY id"),
              Expected("memo downloaded"));  // the second takes customer 8's free row
}

TEST_F(MemoListTest, RowsAreWalkedInIdOrderAndAgreementStampsThem) {
    // Positions reversed against ids: the walk follows the ids.
    Sql(db_, Seed("memo positions reversed"));
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLMemo(ListReply("Memo", {MemoItem(1), MemoItem(2)})));
    EXPECT_EQ(k.CompareLocalDBMemo(db_, 7), 0);
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM tCustomerHistory WHERE id = 1"),
              "2024/06/01 9:00:00");

    ASSERT_TRUE(
        k.ReadXMLMemo(ListReply("Memo", {MemoItem(2), MemoItem(1)}, "2024/06/01 09:30:00")));
    At(10);
    EXPECT_NE(k.CompareLocalDBMemo(db_, 7), 0);
}

// The staff list puts the position before the Sennin keys; an office's column mark of 2 goes
// as 0, as in the comparison; a memo sends an empty text for a date that is none. The first
// post of each list clears the server's list.
using ListUploadTest = RecordDbTest;

TEST_F(ListUploadTest, EachListGoesUpOnePostARowWithItsKeysToTheLetter) {
    const struct {
        const char* list;  // "<list> to send" and "<list> upload 1".. in the data file
        const char* page;
        int posts;
        std::int32_t (ctrlMorvane::*upload)(const std::string&, std::int32_t);
    } lists[] = {
        {"shokuin", "customer/setCompShokuin.php", 1, &ctrlMorvane::SyncUploadCustomerSyokuinList},
        {"eigyosho", "customer/setEigyosho.php", 2, &ctrlMorvane::SyncUploadCustomerEigyoshoList},
        {"memo", "customer/setMemo.php", 2, &ctrlMorvane::SyncUploadCustomerMemoList},
    };
    for (const auto& list : lists) {
        SCOPED_TRACE(list.list);
        const std::string name = list.list;
        ctrlMorvane& obj = LoggedIn();
        Sql(db_, Seed(name + " to send"));
        server_->On(list.page, Envelope(1, "T2"));
        EXPECT_EQ((obj.*list.upload)(db_, 7), 1);
        std::vector<std::string> bodies;
        for (int n = 1; n <= list.posts; ++n)
            bodies.push_back(Body(name + " upload " + std::to_string(n)));
        EXPECT_EQ(server_->BodiesTo(list.page), bodies);

        server_->ClearRequests();
        EXPECT_EQ((obj.*list.upload)(db_, 9), 0) << "no rows";
        EXPECT_TRUE(server_->Requests().empty());
    }
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM tCustomerHistory WHERE id = 5"),
              "2024/06/01 9:00:00");
}

const std::string kSetKikan = "customer/setNyusatsuKikan.php";
const std::string kSetKihon = "customer/setCompKihon.php";

std::string KikanItem(int id, int localIndex, const std::string& name,
                      const std::set<std::string>& leftOut = {}) {
    const Tags tags =
        With(TagsOf(Data().Joined("agency")), {{"NyusatsuKikanItemID", std::to_string(id)},
                                               {"LocalIndex", std::to_string(localIndex)},
                                               {"KikanName", name}});
    return ItemXml("NyusatsuKikanItem", tags, {}, leftOut);
}

std::string SankaItem(int id, const std::string& code,
                      std::map<std::string, std::string> changed = {}) {
    changed.insert({{"NyusatsuSankaItemID", std::to_string(id)}, {"KikanCode", code}});
    return ItemXml("NyusatsuSankaItem", TagsOf(Data().Joined("entry")), changed);
}

// Agencies named A1, A2, ... at positions 1, 2, ...
std::vector<std::string> Agencies(int n) {
    std::vector<std::string> items;
    for (int i = 1; i <= n; ++i) items.push_back(KikanItem(100 + i, i, "A" + std::to_string(i)));
    return items;
}

class NyusatsuListsTest : public RecordDbTest {
protected:
    // Reads the agencies and writes them for customer 7.
    void DownloadAgencies(const std::vector<std::string>& items) {
        cCustKihon k;
        ASSERT_TRUE(k.ReadXMLNyusatuKikan(ListReply("NyusatsuKikan", items)));
        ASSERT_EQ(k.SyncDownloadNyusatsuKikan(db_, 7), 1);
    }
    std::string Count(const std::string& where) {
        return One(db_, "SELECT COUNT(*) FROM tCustomerNyusatsuKanri WHERE " + where);
    }
    // Customer 7's grid: its rows, the freed ones, and each row with anything in it.
    std::string Grid() {
        std::string grid = Count("CustomerID = 7") + " rows, " +
                           Count("CustomerID = 7 AND disabled <> 0") + " freed";
        for (const auto& row : Rows(db_,
                                    "SELECT LocalIndex, KikanName, Nendo1 FROM "
                                    "tCustomerNyusatsuKanri WHERE CustomerID = 7 AND (KikanName "
                                    "<> '' OR Kubun <> '' OR Nendo1 <> '') ORDER BY LocalIndex"))
            grid += ", " + row;
        return grid;
    }
};

TEST_F(NyusatsuListsTest, FirstDownloadMakesTheWholeGridAndLaterOnesKeepItWholeAndBlank) {
    Sql(db_, Seed("freed agency of 8"));
    // Server positions with gaps: the rows take the items' own positions.
    DownloadAgencies({KikanItem(1, 5, "A"), KikanItem(2, 9, "B"), KikanItem(3, 12, "C")});
    EXPECT_EQ(Grid(), "100 rows, 0 freed, 1|A|R6, 2|B|R6, 3|C|R6");
    EXPECT_EQ(Count("CustomerID = 8 AND disabled = 1"), "1") << "another customer's rows stay";

    // Fewer agencies: the rows they leave come back live and blank, the grid stays 100.
    DownloadAgencies({KikanItem(4, 1, "D")});
    EXPECT_EQ(Grid(), "100 rows, 0 freed, 1|D|R6");

    // A list with gaps was closed up locally, so it differs until the server is told.
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLNyusatuKikan(
        ListReply("NyusatsuKikan", {KikanItem(4, 3, "D")}, "2024/06/01 09:30:00")));
    At(10);
    EXPECT_NE(k.CompareLocalDBNyusatsuKikan(db_, 7), 0);

    // More agencies than the grid add rows that stay.
    DownloadAgencies(Agencies(120));
    EXPECT_EQ(Count("CustomerID = 7 AND disabled = 0 AND KikanName <> ''"), "120");
    const std::string all = Grid();
    EXPECT_EQ(all.substr(all.size() - 24), "119|A119|R6, 120|A120|R6");
    DownloadAgencies(Agencies(2));
    EXPECT_EQ(Grid(), "120 rows, 0 freed, 1|A1|R6, 2|A2|R6");
}

TEST_F(NyusatsuListsTest, AnAgencyNeedsAllFourteenTagsAndBlankRowsAreInvisibleToTheComparison) {
    Sql(db_, Seed("agency grid of three"));
    const std::vector<std::string> three{KikanItem(1, 2, "A2"), KikanItem(2, 50, "A50"),
                                         KikanItem(3, 99, "A99")};
    cCustKihon k;
    EXPECT_FALSE(k.ReadXMLNyusatuKikan(
        ListReply("NyusatsuKikan", {KikanItem(1, 2, "A2", {"Nendo7"}), KikanItem(2, 50, "A50")})));
    ASSERT_TRUE(k.ReadXMLNyusatuKikan(ListReply("NyusatsuKikan", three, "2024/05/20 10:00:00")));
    EXPECT_EQ(k.CompareLocalDBNyusatsuKikan(db_, 7), 0);
    // Only the filled rows are stamped as agreed.
    EXPECT_EQ(Count("CustomerID = 7 AND InetCheckDate > '2024-05-02'"), "3");

    auto four = three;
    four.push_back(KikanItem(4, 100, "A100"));
    ASSERT_TRUE(k.ReadXMLNyusatuKikan(ListReply("NyusatsuKikan", four, "2024/06/01 09:30:00")));
    At(10);
    EXPECT_EQ(k.CompareLocalDBNyusatsuKikan(db_, 7), 1);
}

TEST_F(NyusatsuListsTest, UploadNumbersTheFilledRowsAndEndsWithTheYear) {
    ctrlMorvane& obj = LoggedIn();
    Sql(db_, Seed("agencies to send"));
    server_->On(kSetKikan, Envelope(1, "T2"));
    server_->On(kSetKihon, Envelope(1, "T3"));
    EXPECT_EQ(obj.SyncUploadCustomerNyusatsuKikanList(db_, 7), 1);
    EXPECT_EQ(server_->BodiesTo(kSetKikan),
              (std::vector<std::string>{Body("agencies upload 1"), Body("agencies upload 2")}));
    EXPECT_EQ(server_->BodiesTo(kSetKihon), std::vector<std::string>{Body("agency year upload")});
    EXPECT_EQ(server_->Requests().back().path, kSetKihon);
    EXPECT_EQ(Count("InetCheckDate IS NOT NULL"), "2");

    // The year refused: the agencies went up, but nothing is stamped.
    Sql(db_, "UPDATE tCustomerNyusatsuKanri SET InetCheckDate = NULL;");
    server_->On(kSetKihon, Envelope(-1, "T4"));
    EXPECT_EQ(obj.SyncUploadCustomerNyusatsuKikanList(db_, 7), 0);
    EXPECT_EQ(Count("InetCheckDate IS NOT NULL"), "0");

    // No filled row: nothing at all is sent.
    server_->ClearRequests();
    Sql(db_, Seed("agencies emptied"));
    EXPECT_EQ(obj.SyncUploadCustomerNyusatsuKikanList(db_, 7), 0);
    EXPECT_TRUE(server_->Requests().empty());
}

// An empty list freeing every row is the pool's, held by KessanRowsTest.DownloadTakesFreeRows....
TEST_F(NyusatsuListsTest, EntriesTakeAnyFreeRowAndReadNoNumberAsZero) {
    Sql(db_, Seed("entry rows"));
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLNyusatuSanka(
        ListReply("NyusatsuSanka", {SankaItem(1, "K1"), SankaItem(2, "K2", {{"Effective", "x"}}),
                                    SankaItem(3, "K3", {{"Reservation", "4"}})})));
    ASSERT_EQ(k.SyncDownloadNyusatsuSanka(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, disabled, vno, KikanCode, Effective, "
                   "Reservation, Other, DataFile, CheckSync, Other1 "
                   "FROM tCustomerNyusatsuHistory_V5 ORDER BY id"),
              Expected("entries downloaded"));  // K2 on customer 8's free row; no number is 0
}

TEST_F(NyusatsuListsTest, EntriesCompareAgencyEffectAndReservationOnly) {
    Sql(db_, Seed("entries to compare"));
    cCustKihon k;
    // Walked by position, not by id; the carried texts and the sync mark are not compared.
    ASSERT_TRUE(k.ReadXMLNyusatuSanka(
        ListReply("NyusatsuSanka", {SankaItem(9, "K1"), SankaItem(8, "K2", {{"Effective", "0"}})},
                  "2024/05/20 10:00:00")));
    EXPECT_EQ(k.CompareLocalDBNyusatsuSanka(db_, 7), 0);

    ASSERT_TRUE(k.ReadXMLNyusatuSanka(ListReply(
        "NyusatsuSanka",
        {SankaItem(9, "K1"), SankaItem(8, "K2", {{"Effective", "0"}, {"Reservation", "1"}})},
        "2024/06/01 09:30:00")));
    At(10);
    EXPECT_EQ(k.CompareLocalDBNyusatsuSanka(db_, 7), 1);
}

TEST(RendoFold, LocalNewerWinsAndEverythingElseFoldsIntoServerNewer) {
    struct Case {
        RendoResults results;
        std::int32_t folded;
        RendoFlags flags;
    };
    const Case cases[] = {
        {{0, 0, 0, 0}, 0, {false, false, false, false}},
        {{0, 2, 1, 0}, 2, {false, true, true, false}},
        {{1, 3, 0, 0}, 1, {true, true, false, false}},
    };
    for (const Case& c : cases) {
        RendoFlags flags{true, true, true, true};
        EXPECT_EQ(FoldRendoResults(c.results, flags), c.folded);
        EXPECT_EQ(flags, c.flags);
    }
}

}  // namespace
}  // namespace morvane::test
