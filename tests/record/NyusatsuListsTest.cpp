// Bidding lists: the agency grid of fixed rows in which only filled rows count, and the entry
// list on recycled rows; and the fold of the linkage comparison's four results.
#include <gtest/gtest.h>

#include "CustListTestUtil.h"
#include "component/ctrlMorvane.h"
#include "record/cCustKihon.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

const std::string kSetKikan = "customer/setNyusatsuKikan.php";
const std::string kSetSanka = "customer/setNyusatsuSanka.php";
const std::string kSetKihon = "customer/setCompKihon.php";

std::string KikanItem(int id, int localIndex, const std::string& name,
                      const std::map<std::string, std::string>& changed = {},
                      const std::set<std::string>& leftOut = {}) {
    Tags tags{{"NyusatsuKikanItemID", std::to_string(id)},
              {"LocalIndex", std::to_string(localIndex)},
              {"KikanName", name},
              {"Kubun", "1"}};
    for (int n = 1; n <= 10; ++n)
        tags.emplace_back("Nendo" + std::to_string(n), n == 1 ? "R6" : "");
    return ListItemXml("NyusatsuKikanItem", tags, changed, leftOut);
}

std::string SankaItem(int id, const std::string& code,
                      const std::map<std::string, std::string>& changed = {}) {
    return ListItemXml("NyusatsuSankaItem",
                       {{"NyusatsuSankaItemID", std::to_string(id)},
                        {"KikanCode", code},
                        {"Effective", "1"},
                        {"Reservation", "0"},
                        {"Other", "o"},
                        {"DataFile", "f.pdf"},
                        {"CheckSync", "1"},
                        {"Other1", "p"}},
                       changed);
}

// Agencies named A1, A2, ... at positions 1, 2, ...
std::vector<std::string> Agencies(int n) {
    std::vector<std::string> items;
    for (int i = 1; i <= n; ++i) items.push_back(KikanItem(100 + i, i, "A" + std::to_string(i)));
    return items;
}

class NyusatsuListsTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = EmptyCustomerDb(temp_.Path() / "db", clock_).string();
    }

    std::string Reply(const std::string& stem, const std::vector<std::string>& items,
                      const std::string& stamp = "2024/05/01 10:00:00") {
        return Document(CustListPayload(stem, 7, stamp, items));
    }
    // Reads the agencies and writes them for customer 7.
    void DownloadAgencies(const std::vector<std::string>& items) {
        cCustKihon k;
        ASSERT_TRUE(k.ReadXMLNyusatuKikan(Reply("NyusatsuKikan", items)));
        ASSERT_EQ(k.SyncDownloadNyusatsuKikan(db_, 7), 1);
    }
    std::string Count(const std::string& where) {
        return One(db_, "SELECT COUNT(*) FROM tCustomerNyusatsuKanri WHERE " + where);
    }

    std::string db_;
    std::shared_ptr<FixedClock> clock_;
};

TEST_F(NyusatsuListsTest, AnAgencyItemNeedsAllFourteenTags) {
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLNyusatuKikan(Reply("NyusatsuKikan", Agencies(2))));
    EXPECT_EQ(k.NyusatsuKikanCount(), 2);
    EXPECT_EQ(k.NyusatsuKikan().Items()[1].Key, "K102");
    EXPECT_EQ(k.NyusatsuKikan().Items()[0].Nendo[0], "R6");
    EXPECT_FALSE(k.ReadXMLNyusatuKikan(
        Reply("NyusatsuKikan", {KikanItem(1, 1, "x", {}, {"Nendo7"}), KikanItem(2, 2, "y")})));
}

TEST_F(NyusatsuListsTest, FirstDownloadMakesTheWholeGridAndLaterOnesKeepItWholeAndBlank) {
    Sql(db_,
        "INSERT INTO tCustomerNyusatsuKanri (CustomerID, disabled, LocalIndex, KikanName) "
        "VALUES (8, 1, 1, 'of 8');");
    // Server positions with gaps: the rows take the items' own positions.
    DownloadAgencies({KikanItem(1, 5, "A"), KikanItem(2, 9, "B"), KikanItem(3, 12, "C")});
    EXPECT_EQ(Count("CustomerID = 7"), "100");
    EXPECT_EQ(Count("CustomerID = 7 AND disabled <> 0"), "0");
    EXPECT_EQ(Rows(db_,
                   "SELECT LocalIndex, KikanName, Nendo1 FROM tCustomerNyusatsuKanri "
                   "WHERE CustomerID = 7 AND KikanName <> '' ORDER BY LocalIndex"),
              (std::vector<std::string>{"1|A|R6", "2|B|R6", "3|C|R6"}));
    EXPECT_EQ(Count("CustomerID = 8 AND disabled = 1"), "1") << "another customer's rows stay";

    // Fewer agencies: the rows they leave come back live and blank, the grid stays 100.
    DownloadAgencies({KikanItem(4, 1, "D")});
    EXPECT_EQ(Count("CustomerID = 7"), "100");
    EXPECT_EQ(Count("CustomerID = 7 AND disabled <> 0"), "0");
    EXPECT_EQ(Count("CustomerID = 7 AND (KikanName <> '' OR Kubun <> '' OR Nendo1 <> '')"), "1");
    EXPECT_EQ(One(db_,
                  "SELECT KikanName FROM tCustomerNyusatsuKanri WHERE CustomerID = 7 AND "
                  "LocalIndex = 1"),
              "D");

    // A list with gaps was closed up locally, so it differs until the server is told.
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLNyusatuKikan(
        Reply("NyusatsuKikan", {KikanItem(4, 3, "D")}, "2024/06/01 09:30:00")));
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 10, 0, 0}));
    EXPECT_NE(k.CompareLocalDBNyusatsuKikan(db_, 7), 0);
}

TEST_F(NyusatsuListsTest, MoreAgenciesThanTheGridAddRowsThatStay) {
    DownloadAgencies(Agencies(120));
    EXPECT_EQ(Count("CustomerID = 7"), "120");
    EXPECT_EQ(Count("CustomerID = 7 AND disabled = 0 AND KikanName <> ''"), "120");
    EXPECT_EQ(One(db_, "SELECT KikanName FROM tCustomerNyusatsuKanri WHERE LocalIndex = 120"),
              "A120");
    DownloadAgencies(Agencies(2));
    EXPECT_EQ(Count("CustomerID = 7 AND disabled = 0"), "120");
}

TEST_F(NyusatsuListsTest, BlankRowsAreInvisibleToTheComparison) {
    std::string grid;
    for (int i = 1; i <= 100; ++i) {
        const bool filled = i == 2 || i == 50 || i == 99;
        grid +=
            "INSERT INTO tCustomerNyusatsuKanri (CustomerID, disabled, LocalIndex, "
            "KikanName, Kubun, Nendo1, RecordUpdate, InetCheckDate) VALUES (7, 0, " +
            std::to_string(i) + ", '" + (filled ? "A" + std::to_string(i) : "") + "', '" +
            (filled ? "1" : "") + "', '" + (filled ? "R6" : "") +
            "', '2024-05-01 08:00:00', '2024-05-01 08:00:00');";
    }
    Sql(db_, grid);
    const std::vector<std::string> three{KikanItem(1, 2, "A2"), KikanItem(2, 50, "A50"),
                                         KikanItem(3, 99, "A99")};
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLNyusatuKikan(Reply("NyusatsuKikan", three, "2024/05/20 10:00:00")));
    EXPECT_EQ(k.CompareLocalDBNyusatsuKikan(db_, 7), 0);
    // Only the filled rows are stamped as agreed.
    EXPECT_EQ(Count("CustomerID = 7 AND InetCheckDate > '2024-05-02'"), "3");

    auto four = three;
    four.push_back(KikanItem(4, 100, "A100"));
    ASSERT_TRUE(k.ReadXMLNyusatuKikan(Reply("NyusatsuKikan", four, "2024/06/01 09:30:00")));
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 10, 0, 0}));
    EXPECT_EQ(k.CompareLocalDBNyusatsuKikan(db_, 7), 1);
}

TEST_F(NyusatsuListsTest, UploadNumbersTheFilledRowsAndEndsWithTheYear) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_,
        "INSERT INTO tCustomer (id, disabled, Code, KanriNendoNyusatsu) VALUES (7, 0, 'C7', "
        "'2025');"
        "INSERT INTO tCustomerNyusatsuKanri (id, CustomerID, disabled, LocalIndex, KikanName, "
        "Kubun, Nendo1, Nendo10) VALUES (11, 7, 0, 1, 'A&1', '2', 'R6', ''), "
        "(12, 7, 0, 2, '', '', '', ''), (13, 7, 0, 3, '', '', '', 'R9');");
    server_->On(kSetKikan, Envelope(1, "T2"));
    server_->On(kSetKihon, Envelope(1, "T3"));
    EXPECT_EQ(obj.SyncUploadCustomerNyusatsuKikanList(db_, 7), 1);
    const auto& all = server_->Requests();
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].body,
              "ID=user1&token=T1&CustomerID=7&NyusatsuKikanItemID=11&DISABLEDALL=DISABLEDALL&"
              "KikanName=A&1&Kubun=2&Nendo1=R6&Nendo2=&Nendo3=&Nendo4=&Nendo5=&Nendo6=&Nendo7=&"
              "Nendo8=&Nendo9=&Nendo10=&LocalIndex=1&");
    EXPECT_NE(all[1].body.find("NyusatsuKikanItemID=13&KikanName="), std::string::npos);
    EXPECT_NE(all[1].body.find("&Nendo10=R9&LocalIndex=2&"), std::string::npos);
    EXPECT_EQ(all[2].path, kSetKihon);
    EXPECT_EQ(all[2].body, "ID=user1&token=T2&CustomerID=7&KanriNendoNyusatsu=2025&");
    EXPECT_EQ(Count("InetCheckDate IS NOT NULL"), "2");

    // The year refused: the agencies went up, but nothing is stamped.
    Sql(db_, "UPDATE tCustomerNyusatsuKanri SET InetCheckDate = NULL;");
    server_->On(kSetKihon, Envelope(-1, "T4"));
    EXPECT_EQ(obj.SyncUploadCustomerNyusatsuKikanList(db_, 7), 0);
    EXPECT_EQ(Count("InetCheckDate IS NOT NULL"), "0");

    // No filled row: nothing at all is sent.
    server_->ClearRequests();
    Sql(db_,
        "UPDATE tCustomerNyusatsuKanri SET KikanName = '', Kubun = '', Nendo1 = '', "
        "Nendo10 = '';");
    EXPECT_EQ(obj.SyncUploadCustomerNyusatsuKikanList(db_, 7), 0);
    EXPECT_TRUE(server_->Requests().empty());
}

TEST_F(NyusatsuListsTest, EntriesTakeAnyFreeRowAndAnEmptyListFreesThemAll) {
    Sql(db_,
        "INSERT INTO tCustomerNyusatsuHistory_V5 (id, CustomerID, disabled, vno, KikanCode) "
        "VALUES (1, 7, 0, 1, 'old'), (2, 8, 1, 1, 'freed by 8'), (3, 8, 0, 1, 'live of 8');");
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLNyusatuSanka(
        Reply("NyusatsuSanka", {SankaItem(1, "K1"), SankaItem(2, "K2", {{"Effective", "x"}}),
                                SankaItem(3, "K3", {{"Reservation", "4"}})})));
    ASSERT_EQ(k.SyncDownloadNyusatsuSanka(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, disabled, vno, KikanCode, Effective, "
                   "Reservation, Other, DataFile, CheckSync, Other1 "
                   "FROM tCustomerNyusatsuHistory_V5 ORDER BY id"),
              (std::vector<std::string>{
                  "1|7|0|1|K1|1|0|o|f.pdf|1|p",
                  "2|7|0|2|K2|0|0|o|f.pdf|1|p",  // customer 8's free row; no number is 0
                  "3|8|0|1|live of 8|<null>|<null>|<null>|<null>|<null>|<null>",
                  "4|7|0|3|K3|1|4|o|f.pdf|1|p"}));

    ASSERT_TRUE(k.ReadXMLNyusatuSanka(Reply("NyusatsuSanka", {})));
    ASSERT_EQ(k.SyncDownloadNyusatsuSanka(db_, 7), 1);
    EXPECT_EQ(One(db_,
                  "SELECT COUNT(*) FROM tCustomerNyusatsuHistory_V5 WHERE CustomerID = 7 "
                  "AND disabled = 1"),
              "3");
}

TEST_F(NyusatsuListsTest, EntriesCompareAgencyEffectAndReservationOnly) {
    Sql(db_,
        "INSERT INTO tCustomerNyusatsuHistory_V5 (id, CustomerID, disabled, vno, KikanCode, "
        "Effective, Reservation, Other, DataFile, CheckSync, Other1, RecordUpdate, "
        "InetCheckDate) VALUES (1, 7, 0, 2, 'K2', 0, 0, 'mine', '', 0, '', "
        "'2024-05-01 08:00:00', '2024-05-01 08:00:00'), (2, 7, 0, 1, 'K1', 1, 0, '', 'g', 0, "
        "'x', '2024-05-01 08:00:00', '2024-05-01 08:00:00');");
    cCustKihon k;
    // Walked by position, not by id; the carried texts and the sync mark are not compared.
    ASSERT_TRUE(k.ReadXMLNyusatuSanka(
        Reply("NyusatsuSanka", {SankaItem(9, "K1"), SankaItem(8, "K2", {{"Effective", "0"}})},
              "2024/05/20 10:00:00")));
    EXPECT_EQ(k.CompareLocalDBNyusatsuSanka(db_, 7), 0);

    ASSERT_TRUE(k.ReadXMLNyusatuSanka(
        Reply("NyusatsuSanka",
              {SankaItem(9, "K1"), SankaItem(8, "K2", {{"Effective", "0"}, {"Reservation", "1"}})},
              "2024/06/01 09:30:00")));
    clock_->Set(DateValue::FromCivil({2024, 6, 1, 10, 0, 0}));
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
        {{3, 0, 0, 0}, 1, {true, false, false, false}},
        {{0, 0, 0, 2}, 2, {false, false, false, true}},
    };
    for (const Case& c : cases) {
        RendoFlags flags{true, true, true, true};
        EXPECT_EQ(FoldRendoResults(c.results, flags), c.folded);
        EXPECT_EQ(flags, c.flags);
    }
}

}  // namespace
}  // namespace morvane::test
