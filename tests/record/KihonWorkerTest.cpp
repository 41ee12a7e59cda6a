// The record worker on a real customer database: the comparison rules, the download's
// writes, and the upload's body and stamp.
#include <gtest/gtest.h>

#include "GyoshuTestUtil.h"
#include "dated/DatedTestUtil.h"
#include "dated/cCustKessan.h"
#include "record/cCustKihon.h"
#include "state/ProcessState.h"
#include "support/Golden.h"

namespace morvane::test {
namespace {

const std::string kChecked = "2024/05/01 9:00:00";  // the row's agreement
const std::string kServerMoved = "2024/05/01 09:05:00";
const std::string kServerWithinMargin = "2024/05/01 09:00:30";
const std::string kNow = DateValue::FromCivil({2024, 6, 1, 9, 0, 0}).Text();

class KihonWorkerTest : public RecordDbTest {
protected:
    // Customer 7 with the values of RequiredTags, agreed and last changed at kChecked.
    void InsertRow() { Sql(db_, data_["customer 7"]); }

    std::string Column(const std::string& column, const std::string& table = "tCustomer",
                       const std::string& idColumn = "id") {
        const auto rows =
            Rows(db_, "SELECT " + column + " FROM " + table + " WHERE " + idColumn + " = 7");
        return rows.empty() ? "<no row>" : rows[0];
    }

    cCustKihon Server(const Tags& extra, const std::string& stamp = kServerMoved) {
        Tags tags = RequiredTags();
        tags.insert(tags.end(), extra.begin(), extra.end());
        cCustKihon k;
        EXPECT_TRUE(k.ReadXMLNormal(Document(KihonPayload(tags, stamp))));
        return k;
    }

    void Exec(const std::string& sql) { Sql(db_, sql + ";"); }

    Golden data_{"record/kihon-worker.txt"};
};

// ---- Comparing -------------------------------------------------------------------------

TEST_F(KihonWorkerTest, StampsWithinTheMarginDecideAndEqualContentIsStampedByNormalOnly) {
    InsertRow();
    Exec("UPDATE tCustomer SET ZipCode0 = '999'");
    cCustKihon k = Server({}, kServerWithinMargin);
    EXPECT_EQ(k.CompareLocalDBMain(db_, 7), 0);
    EXPECT_EQ(k.CompareLocalDBNormal(db_, 7), 0);
    EXPECT_EQ(Column("InetCheckDate"), kChecked);

    // Apart: the same difference counts.
    k = Server({}, kServerMoved);
    EXPECT_EQ(k.CompareLocalDBMain(db_, 7), 1);
    EXPECT_EQ(k.CompareLocalDBNormal(db_, 7), 1);
    EXPECT_EQ(State().inetDateServer, kServerMoved);
    // The local side moved instead.
    Exec("UPDATE tCustomer SET RecordUpdate = '2024-05-02 09:00:00'");
    EXPECT_EQ(Server({}, kServerWithinMargin).CompareLocalDBNormal(db_, 7), 2);
    EXPECT_EQ(Column("InetCheckDate"), kChecked);

    // Equal content is stamped as agreed by Normal only.
    Exec("UPDATE tCustomer SET ZipCode0 = '100', RecordUpdate = '2024-05-01 09:00:00'");
    k = Server({});
    EXPECT_EQ(k.CompareLocalDBMain(db_, 7), 0);
    EXPECT_EQ(Column("InetCheckDate"), kChecked);
    EXPECT_EQ(k.CompareLocalDBNormal(db_, 7), 0);
    EXPECT_EQ(Column("InetCheckDate, RecordUpdate"), kNow + "|" + kChecked);
    EXPECT_EQ(Server({}).CompareLocalDBNormal(db_, 8), 0);  // no row
}

// Each row: the local columns set, the server's tags beyond the 15, Normal's and Main's result.
// The year of AcDate does not count, tabs in ExOther13..16 are removed on both sides, ExOther17
// counts only as a number other than 0, dates compare as dates, a Null equals an empty value,
// a field beyond the 15 is Normal's alone, and Code, HoKoType and CorpNum are never compared.
TEST_F(KihonWorkerTest, FieldRulesThatAreEasyToGetWrong) {
    InsertRow();
    for (const auto& row : data_.Table("field rules")) {
        SCOPED_TRACE(row[0] + " against " + row[1]);
        Exec(data_["rule reset"]);
        Exec("UPDATE tCustomer SET " + row[0]);
        cCustKihon k = Server(TagsOf(row[1]));
        EXPECT_EQ(k.CompareLocalDBMain(db_, 7), std::stoi(row[3]));
        EXPECT_EQ(k.CompareLocalDBNormal(db_, 7), std::stoi(row[2]));
    }
}

// ---- Writing rows ----------------------------------------------------------------------

TEST_F(KihonWorkerTest, DownloadWritesTheRecordStampsItAndWritesBothSideRows) {
    InsertRow();
    Sql(db_, data_["before a download"]);
    cCustKihon k =
        Server(TagsOf("Code=|ExOther17=0|PApDate=abc|PmtDate0=2024/04/01|SeturituDate=2020/1/5 "
                      "10:00:00|PmtCheck1=2|UserStaffID=3|DataUpdateFlag=8|CheckEx=4|Manage=6"));
    ASSERT_EQ(k.SyncDownloadNormal(db_, 7), 1);
    EXPECT_EQ(Column("Code, ExOther17, ZipCode0, ExOther18, TAddr0, PApDate, PmtDate0, "
                     "SeturituDate, SogyoDate, PmtCheck1, UserStaffID, DataUpdateFlag, CorpNum, "
                     "RecordUpdate, InetCheckDate"),
              "C7|7|100|||<null>|2024/04/01|2020/01/05|<null>|2|8|3|N1|" + kNow + "|" + kNow);
    EXPECT_EQ(
        Column("disabled, CheckEx, RecordUpdate, InetCheckDate", "tCustomerKeisin", "CustomerID"),
        "0|4|" + kNow + "|" + kNow);
    EXPECT_EQ(Column("disabled, Manage", "tCustomerNyusatsu", "CustomerID"), "0|6");

    // The side rows are edited, not added, the next time.
    cCustKihon again = Server({{"CheckEx", "5"}, {"Code", "C7-new"}});
    ASSERT_EQ(again.SyncDownloadNormal(db_, 7), 1);
    EXPECT_EQ(Rows(db_, "SELECT CheckEx FROM tCustomerKeisin"), std::vector<std::string>{"5"});
    EXPECT_EQ(Column("Code, ExOther18"), "C7-new|");
}

TEST_F(KihonWorkerTest, WithoutACustomerRowOnlyTheSideRowsAreWritten) {
    cCustKihon k = Server({{"CheckEx", "4"}});
    EXPECT_EQ(k.SyncDownloadNormal(db_, 7), 1);
    EXPECT_EQ(Column("id"), "<no row>");
    EXPECT_EQ(Column("CustomerID, CheckEx", "tCustomerKeisin", "CustomerID"), "7|4");
    EXPECT_EQ(Column("Manage", "tCustomerNyusatsu", "CustomerID"), "0");
}

TEST_F(KihonWorkerTest, DownloadMainWritesTheFifteenAlone) {
    InsertRow();
    Exec("UPDATE tCustomer SET TAddr0 = 'old'");
    cCustKihon k = Server({{"ZipCode0", "200"}, {"TAddr0", "new"}, {"AcDate", "x"}});
    ASSERT_EQ(k.SyncDownloadMain(db_, 7), 1);
    EXPECT_EQ(Column("ZipCode0, TAddr0, AcDate, RecordUpdate, InetCheckDate"),
              "200|old|<null>|" + kChecked + "|" + kChecked);
    EXPECT_EQ(Column("id", "tCustomerKeisin", "CustomerID"), "<no row>");
}

TEST_F(KihonWorkerTest, ABrokenDatabaseFailsThroughTheTrapForRecordTradesAndSettlements) {
    cCustKihon k = Server({});
    const std::string missing = (temp_.Path() / "none" / "Customer.dat").string();
    cCustKihon trades;
    ASSERT_TRUE(trades.ReadXMLGyosyu(Document(GyoshuPayload(HeaderTags(), GridTags()))));
    cCustKessan settlements;
    ASSERT_TRUE(settlements.ReadXML(ListReply("KessanData", {KessanItem(100)})));
    EXPECT_EQ((std::vector<std::int32_t>{
                  k.SyncDownloadNormal(missing, 7), k.CompareLocalDBNormal(missing, 7),
                  k.SyncUploadNormal(missing, 7), trades.SyncDownloadGyosyu(missing, 7),
                  trades.CompareLocalDBGyosyu(missing, 7), trades.SyncUploadGyoshu(missing, 7),
                  settlements.SyncDownload(missing, 7), settlements.SyncUpload(missing, 7)}),
              std::vector<std::int32_t>(8, 0));
    EXPECT_EQ(kit_->Boxes().size(), 8u);  // one box a call
    EXPECT_TRUE(server_->Requests().empty());
}

// ---- Loading and sending ---------------------------------------------------------------

// Nothing goes without a row or a code; a success stamps the row, a refusal does not.
TEST_F(KihonWorkerTest, UploadSendsTheRowAsItStandsAndStampsItOnlyOnSuccess) {
    LogIn();
    server_->On("customer/setCompKihon.php", Envelope(1, "T2"));
    cCustKihon k;
    EXPECT_EQ(k.SyncUploadNormal(db_, 7), 0);
    InsertRow();
    Exec("UPDATE tCustomer SET Code = NULL");
    EXPECT_EQ(k.SyncUploadNormal(db_, 7), 0);
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_TRUE(kit_->Boxes().empty());

    Sql(db_, data_["to send"]);
    ASSERT_EQ(k.SyncUploadNormal(db_, 7), 1);
    EXPECT_EQ(server_->BodiesTo("customer/setCompKihon.php"),
              std::vector<std::string>{data_.Joined("upload")});
    EXPECT_EQ(Column("InetCheckDate, RecordUpdate"), kNow + "|" + kChecked);
    Exec("UPDATE tCustomer SET InetCheckDate = '2024-05-01 09:00:00'");
    server_->On("customer/setCompKihon.php", Envelope(-1, "T3"));
    EXPECT_EQ(k.SyncUploadNormal(db_, 7), 0);
    EXPECT_EQ(Column("InetCheckDate"), kChecked);
}

}  // namespace
}  // namespace morvane::test
