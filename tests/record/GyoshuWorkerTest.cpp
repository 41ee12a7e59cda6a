// The trades on a real customer database: what the reader keeps, the comparison's order
// and its positional walk, the download by position, and the upload's body.
#include <gtest/gtest.h>

#include "GyoshuTestUtil.h"
#include "record/cCustKihon.h"
#include "support/Golden.h"

namespace morvane::test {
namespace {

const std::string kAgreed = "2024/05/01 9:00:00";
const std::string kServerMoved = "2024/05/01 09:05:00";
const std::string kServerWithinMargin = "2024/05/01 09:00:30";
const std::string kNow = DateValue::FromCivil({2024, 6, 1, 9, 0, 0}).Text();

class GyoshuWorkerTest : public RecordDbTest {
protected:
    cCustKihon Server(const Tags& header = HeaderTags(), const Tags& grid = GridTags(),
                      const std::string& stamp = kServerMoved) {
        cCustKihon k;
        EXPECT_TRUE(k.ReadXMLGyosyu(Document(GyoshuPayload(header, grid, stamp))));
        return k;
    }
    std::int32_t Compare(const Tags& header = HeaderTags(), const Tags& grid = GridTags(),
                         const std::string& stamp = kServerMoved) {
        return Server(header, grid, stamp).CompareLocalDBGyosyu(db_, 7);
    }

    std::vector<std::string> Grid(const std::string& columns, int custId = 7) {
        return Rows(db_, "SELECT " + columns + " FROM tCustomerGyoshu WHERE CustomerID = " +
                             std::to_string(custId) + " ORDER BY id");
    }
    std::string Header(const std::string& columns) {
        const auto rows = Rows(db_, "SELECT " + columns + " FROM tCustomer WHERE id = 7");
        return rows.empty() ? "<no row>" : rows[0];
    }
    std::vector<std::string> GridStamps(int custId = 7) {
        return Rows(db_,
                    "SELECT DISTINCT RecordUpdate, InetCheckDate FROM tCustomerGyoshu "
                    "WHERE CustomerID = " +
                        std::to_string(custId));
    }
    // Every InetCheckDate of customer 7, distinct.
    std::vector<std::string> CheckStamps() {
        return Rows(db_,
                    "SELECT DISTINCT InetCheckDate FROM tCustomerGyoshu WHERE CustomerID = 7 "
                    "UNION SELECT InetCheckDate FROM tCustomer WHERE id = 7");
    }

    const Golden data_{"record/gyoshu-worker.txt"};
};

// ---- Reading ---------------------------------------------------------------------------

TEST_F(GyoshuWorkerTest, ReaderKeepsTheGridAndWantsAllOfIt) {
    cCustKihon k;
    Tags grid =
        With(GridTags(),
             TagsOf("EPmtDate5=abc|EPmtDate3=2020/1/3 10:00:00|EPmtCheck2=12abc|EPmtCheck4=x"));
    grid.push_back({"EPmtCheck32", "9"});  // no such trade
    for (auto& t : grid)
        if (t.first == "EPmtCheck31") t.first = "epmtcheck31";
    ASSERT_TRUE(k.ReadXMLGyosyu(
        Document(GyoshuPayload(With(HeaderTags(), {{"PmtNo", "123#45"}}), grid, "", 9))));
    const KihonRecord& r = k.Kihon();
    EXPECT_EQ((std::vector<int>{k.CustomerID(), r.EPmtCheck[0], r.EPmtCheck[1], r.EPmtCheck[3],
                                r.EPmtCheck[30]}),
              (std::vector<int>{9, 1, 12, 0, 31 % 3}));
    // No stamp is required here; "abc" is no date and still counts as seen; the header rides
    // in CompKihon under the main record's rules.
    EXPECT_EQ(
        (std::vector<std::string>{k.RecordUpdate(), r.EPmtDate[0], r.EPmtDate[2], r.EPmtDate[4],
                                  r.EPmtDate[30], r.PmtNo, r.other[6]}),
        (std::vector<std::string>{"", "2020/01/01", "2020/01/03", "", "2020/01/31", "123", "45"}));

    for (const char* missing : {"EPmtDate7", "EPmtCheck1", "EPmtDate31"}) {
        SCOPED_TRACE(missing);
        EXPECT_FALSE(k.ReadXMLGyosyu(Document(GyoshuPayload({}, With(GridTags(), {}, missing)))));
    }
    const std::string noId = "<Customer><Gyoshu>" + Elements(GridTags()) + "</Gyoshu></Customer>";
    EXPECT_FALSE(k.ReadXMLGyosyu(Document(noId)));
    EXPECT_FALSE(k.ReadXMLGyosyu("<reply><Customer>"));
    // The main record's sections do not take a trades reply, nor this one theirs.
    EXPECT_FALSE(k.ReadXMLNormal(Document(GyoshuPayload(HeaderTags(), GridTags()))));
    EXPECT_FALSE(k.ReadXMLGyosyu(Document(KihonPayload(RequiredTags()))));
}

// ---- Comparing -------------------------------------------------------------------------

// Grid cells against a Null or as dates; the header's numbers by value, PmtNo without its tail,
// and its dates as dates, unlike the main record's. Only the trades' stamps are read.
TEST_F(GyoshuWorkerTest, GridCellsAndHeaderFieldsDifferUnderTheirOwnRulesOnceTheGridsStampsDo) {
    InsertCustomer(db_);
    InsertTrades(db_, 31);
    for (const auto& row : data_.Table("rules")) {
        SCOPED_TRACE(row[0] + row[1]);
        Sql(db_, "UPDATE tCustomerGyoshu SET InetCheckDate = '2024-05-01 09:00:00';");
        EXPECT_EQ(Compare(With(HeaderTags(), TagsOf(row[0])), With(GridTags(), TagsOf(row[1]))),
                  std::stoi(row[2]));
    }
    Sql(db_, data_["agreed again"]);
    // A header that moved locally does not count: only the trades' stamps are read.
    Sql(db_, "UPDATE tCustomer SET RecordUpdate = '2024-05-20 09:00:00', MinCode = '99';");
    EXPECT_EQ(Compare({}, GridTags(), kServerWithinMargin), 0);
    EXPECT_EQ(Header("InetCheckDate"), kAgreed);
    // Stamps apart: the header difference alone is reported.
    EXPECT_EQ(Compare(HeaderTags(), GridTags(), kServerMoved), 1);
    // The grid moved locally.
    Sql(db_, "UPDATE tCustomerGyoshu SET RecordUpdate = '2024-05-20 09:00:00' WHERE id = 3;");
    EXPECT_EQ(Compare(HeaderTags(), GridTags(), kServerWithinMargin), 2);
}

TEST_F(GyoshuWorkerTest, AGridThatIsNotTheThirtyOneTradesInOrderEndsWithNothing) {
    InsertCustomer(db_);
    Sql(db_, "UPDATE tCustomer SET MinCode = '99';");  // a real header difference

    // No trades at all: the difference stands.
    EXPECT_EQ(Compare(), 1);
    // Thirty trades: 0, although the header differs, and nothing is stamped.
    InsertTrades(db_, 30);
    EXPECT_EQ(Compare(), 0);
    EXPECT_EQ(Compare(HeaderTags(), With(GridTags(), {{"EPmtCheck1", "7"}})), 0);
    EXPECT_EQ(CheckStamps(), std::vector<std::string>{kAgreed});

    // Thirty-one, the fourth with code 5: the same.
    Sql(db_, "DELETE FROM tCustomerGyoshu;");
    InsertTrades(db_, 31, 7, [](int n) { return n == 4 ? 5 : n; });
    EXPECT_EQ(Compare(), 0);
    EXPECT_EQ(CheckStamps(), std::vector<std::string>{kAgreed});

    // Deleted rows and other customers' rows are not walked.
    Sql(db_, "DELETE FROM tCustomerGyoshu;");
    InsertTrades(db_, 31, 8);
    InsertTrades(db_, 31);
    Sql(db_, "UPDATE tCustomerGyoshu SET disabled = 1 WHERE CustomerID = 7 AND GyoshuCode = 2;");
    EXPECT_EQ(Compare(), 0);
    Sql(db_, "UPDATE tCustomerGyoshu SET disabled = 0;");
    EXPECT_EQ(Compare(), 1);
}

// ---- Writing rows ----------------------------------------------------------------------

TEST_F(GyoshuWorkerTest, DownloadEditsThirtyAddsOneAndNeverWritesTheCode) {
    InsertCustomer(db_);
    InsertTrades(db_, 31, 8);  // another customer's grid, untouched
    InsertTrades(db_, 30);
    const auto idsBefore = Grid("id");
    Tags header =
        With(HeaderTags(),
             {{"MinCode", "14"}, {"PApDate", "abc"}, {"PmtDate1", "x"}, {"PmtCheck1", "3"}});
    Tags grid = With(GridTags(),
                     TagsOf("EPmtCheck1=7|EPmtDate3=abc|EPmtDate4=2021/2/3|EPmtDate31=2021/12/31"));
    ASSERT_EQ(Server(header, grid).SyncDownloadGyosyu(db_, 7), 1);

    auto ids = Grid("id");
    ids.pop_back();
    EXPECT_EQ(ids, idsBefore);
    EXPECT_EQ(Grid("GyoshuCode, disabled, EPmtCheck, EPmtDate"), data_.Lines("downloaded grid"));
    EXPECT_EQ(GridStamps(), std::vector<std::string>{kNow + "|" + kNow});
    EXPECT_EQ(Header("MinCode, PApDate, PmtDate1, PmtCheck1, RecordUpdate"),
              "14|<null>|<null>|3|" + kNow);
    EXPECT_EQ(GridStamps(8), std::vector<std::string>{kAgreed + "|" + kAgreed});

    // The grid is now the server's: the walk finds the added trade in its place, and what
    // differs is only what could not be stored.
    At(10);
    EXPECT_EQ(Compare(header, grid, "2024/06/01 09:30:00"), 1);  // PApDate "abc"
    EXPECT_EQ(
        Compare(With(header, {{"PApDate", ""}, {"PmtDate1", ""}}), grid, "2024/06/01 09:30:00"), 0);
    EXPECT_EQ(CheckStamps(), std::vector<std::string>{"2024/06/01 10:00:00"});
    EXPECT_EQ(Header("RecordUpdate"), kNow) << "an agreement is no change";
}

// The table numbers an added trade after the customer's highest code; the download keeps
// what rows it finds past the thirty-first.
TEST_F(GyoshuWorkerTest, AnAddedTradeTakesTheNextCodeOfItsCustomer) {
    InsertTrades(db_, 29);
    InsertTrades(db_, 1, 7, [](int) { return 40; });
    ASSERT_EQ(Server().SyncDownloadGyosyu(db_, 7), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT GyoshuCode, EPmtCheck FROM tCustomerGyoshu WHERE GyoshuCode > 29 "
                   "ORDER BY GyoshuCode"),
              (std::vector<std::string>{"40|" + CheckOf(30), "41|" + CheckOf(31)}));

    InsertTrades(db_, 32, 8);
    Sql(db_, "UPDATE tCustomerGyoshu SET EPmtCheck = 9 WHERE CustomerID = 8 AND GyoshuCode = 32;");
    ASSERT_EQ(Server().SyncDownloadGyosyu(db_, 8), 1);
    EXPECT_EQ(Grid("EPmtCheck, RecordUpdate", 8).back(), "9|" + kAgreed);
    EXPECT_EQ(Grid("EPmtCheck, RecordUpdate", 8)[30], CheckOf(31) + "|" + kNow);

    // A grid the host deleted does not push the new codes past 31.
    Sql(db_, data_["grids the host deleted"]);
    EXPECT_EQ(Rows(db_, "SELECT GyoshuCode FROM tCustomerGyoshu WHERE CustomerID >= 9 ORDER BY id"),
              (std::vector<std::string>{"12", "13", "1", "31", "1"}));
}

// ---- Loading and sending ---------------------------------------------------------------

// Nothing goes without the customer's row; a success stamps both tables, a refusal neither.
TEST_F(GyoshuWorkerTest, UploadSendsHeaderAndGridRawAndStampsBothTablesOnlyOnSuccess) {
    LogIn();
    InsertTrades(db_, 30);
    server_->On("customer/setCompGyoshu.php", Envelope(1, "T2"));
    cCustKihon k;
    EXPECT_EQ(k.SyncUploadGyoshu(db_, 7), 0);
    EXPECT_TRUE(server_->Requests().empty());
    InsertCustomer(db_);
    Sql(db_, data_["to send"]);
    ASSERT_EQ(k.SyncUploadGyoshu(db_, 7), 1);
    EXPECT_EQ(server_->BodiesTo("customer/setCompGyoshu.php"),
              std::vector<std::string>{data_.Joined("upload")});
    EXPECT_EQ(CheckStamps(), std::vector<std::string>{kNow});
    EXPECT_EQ(Rows(db_, "SELECT DISTINCT RecordUpdate FROM tCustomerGyoshu"),
              std::vector<std::string>{kAgreed});

    Sql(db_, data_["agreed again"]);
    server_->On("customer/setCompGyoshu.php", Envelope(-1, "T3"));
    EXPECT_EQ(k.SyncUploadGyoshu(db_, 7), 0);
    EXPECT_EQ(CheckStamps(), std::vector<std::string>{kAgreed});
}

}  // namespace
}  // namespace morvane::test
