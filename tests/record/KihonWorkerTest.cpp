// The record worker on a real customer database: the comparison rules, the download's
// writes, and the upload's body and stamp.
#include <gtest/gtest.h>

#include "GyoshuTestUtil.h"
#include "record/cCustKihon.h"
#include "state/ProcessState.h"

namespace morvane::test {
namespace {

const std::string kChecked = "2024/05/01 9:00:00";  // the row's agreement
const std::string kServerMoved = "2024/05/01 09:05:00";
const std::string kServerWithinMargin = "2024/05/01 09:00:30";
const std::string kNow = DateValue::FromCivil({2024, 6, 1, 9, 0, 0}).Text();

class KihonWorkerTest : public RecordDbTest {
protected:
    // Customer 7 with the values of RequiredTags, agreed and last changed at kChecked.
    void InsertRow(const std::string& columns = {}, const std::string& values = {}) {
        Exec(
            "INSERT INTO tCustomer (id, disabled, Code, AcDate, ZipCode0, ZipCode1, Addr0, addr1, "
            "Addr2, CorpName0, ApfName0, Tel0, TEL1, TEL2, Fax0, FAX1, FAX2, ExOther17, "
            "RecordUpdate, InetCheckDate" +
            columns +
            ") VALUES (7, 0, 'C7', '2019-03-31 00:00:00', '100', '0001', '東京都', "
            "'千代田区', '一番町1', '株式会社一', '一 太郎', '03', '1111', '2222', '03', "
            "'3333', '4444', '5', '2024-05-01 09:00:00', '2024-05-01 09:00:00'" +
            values + ");");
    }

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

    // One script on the database; the last statement needs no ";".
    void Exec(const std::string& sql) { Sql(db_, sql + ";"); }
};

// ---- Comparing -------------------------------------------------------------------------

TEST_F(KihonWorkerTest, StampsWithinTheMarginDecideWithoutLookingAtFields) {
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
}

TEST_F(KihonWorkerTest, EqualContentIsStampedAsAgreedByNormalOnly) {
    InsertRow();
    cCustKihon k = Server({});
    EXPECT_EQ(k.CompareLocalDBMain(db_, 7), 0);
    EXPECT_EQ(Column("InetCheckDate"), kChecked);
    EXPECT_EQ(k.CompareLocalDBNormal(db_, 7), 0);
    EXPECT_EQ(Column("InetCheckDate"), kNow);
    EXPECT_EQ(Column("RecordUpdate"), kChecked);
    EXPECT_EQ(Server({}).CompareLocalDBNormal(db_, 8), 0);  // no row
}

TEST_F(KihonWorkerTest, FieldRulesThatAreEasyToGetWrong) {
    InsertRow();
    struct Case {
        const char* set;  // columns of the row
        Tags server;      // tags beyond the 15 (a repeated tag overrides)
        int normal;
        int main;
    };
    const Case cases[] = {
        // The year of AcDate does not count; the day does.
        {"AcDate = '2019-03-31 00:00:00'", {}, 0, 0},
        {"AcDate = '2019-03-31 00:00:00'", {{"AcDate", "4月1日"}}, 1, 1},
        // Tabs in ExOther13..16 are removed on both sides.
        {"ExOther13 = 'ab'", {{"ExOther13", "a\tb"}}, 0, 0},
        {"ExOther16 = 'a' || char(9) || 'b'", {{"ExOther16", "ab"}}, 0, 0},
        {"ExOther13 = 'ab'", {{"ExOther13", "ac"}}, 1, 0},
        {"ExOther12 = 'ab'", {{"ExOther12", "a\tb"}}, 1, 0},
        // ExOther17 only when the server's value is a number other than 0.
        {"ExOther17 = '7'", {{"ExOther17", "0"}}, 0, 0},
        {"ExOther17 = '7'", {{"ExOther17", ""}}, 0, 0},
        {"ExOther17 = '7'", {}, 1, 1},
        // Plain text dates, formatted dates.
        {"PmtDate0 = '2024-04-01 00:00:00'", {{"PmtDate0", "2024/04/01"}}, 0, 0},
        {"PmtDate0 = '2024-04-01 00:00:00'", {{"PmtDate0", "2024/4/1"}}, 1, 0},
        {"PApDate = '2024-04-01 10:00:00'", {{"PApDate", "2024/4/1 10:00:00"}}, 0, 0},
        {"PApDate = '2024-04-01 10:00:00'", {{"PApDate", "2024/04/01 10:00:01"}}, 1, 0},
        {"SogyoDate = '2001-02-03 00:00:00'", {{"SogyoDate", "2001/2/3"}}, 0, 0},
        // Numbers.
        {"PmtCheck1 = 1.0", {{"PmtCheck1", "1"}}, 0, 0},
        {"PmtCheck1 = 1.5", {{"PmtCheck1", "1.5"}}, 1, 0},
        {"Itaku = NULL", {{"Itaku", "0"}}, 0, 0},
        {"Itaku = 1", {{"Itaku", "0"}}, 1, 0},
        // A Null column equals an empty value; a field beyond the 15 is Normal's alone.
        {"TAddr0 = NULL", {{"TAddr0", ""}}, 0, 0},
        {"TAddr0 = 'x'", {}, 1, 0},
        // Never compared.
        {"Code = 'other'", {{"Code", "C7"}}, 0, 0},
        {"HoKoType = 2", {{"HoKoType", "1"}}, 0, 0},
        {"CorpNum = 'N'", {}, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.set);
        Exec(
            "UPDATE tCustomer SET AcDate = '2019-03-31 00:00:00', ExOther12 = NULL, "
            "ExOther13 = NULL, ExOther16 = NULL, ExOther17 = '5', PmtDate0 = NULL, "
            "PApDate = NULL, SogyoDate = NULL, PmtCheck1 = NULL, Itaku = NULL, TAddr0 = NULL, "
            "Code = 'C7', HoKoType = NULL, CorpNum = NULL");
        Exec(std::string("UPDATE tCustomer SET ") + c.set);
        Exec("UPDATE tCustomer SET InetCheckDate = '2024-05-01 09:00:00'");
        cCustKihon k = Server(c.server);
        EXPECT_EQ(k.CompareLocalDBMain(db_, 7), c.main);
        EXPECT_EQ(k.CompareLocalDBNormal(db_, 7), c.normal);
    }
}

// ---- Writing rows ----------------------------------------------------------------------

TEST_F(KihonWorkerTest, DownloadWritesTheRecordStampsItAndWritesBothSideRows) {
    InsertRow(", ExOther18, TAddr0, DataUpdateFlag, CorpNum, PApDate",
              ", 'old', 'old', 3, 'N1', '2020-01-01 00:00:00'");
    Exec("UPDATE tCustomer SET ExOther17 = '7'");
    cCustKihon k =
        Server(TagsOf("Code=|ExOther17=0|PApDate=abc|PmtDate0=2024/04/01|SeturituDate=2020/1/5 "
                      "10:00:00|PmtCheck1=2|UserStaffID=3|DataUpdateFlag=8|CheckEx=4|Manage=6"));
    ASSERT_EQ(k.SyncDownloadNormal(db_, 7), 1);
    EXPECT_EQ(Column("Code, ExOther17, ZipCode0, ExOther18, TAddr0"), "C7|7|100||");
    EXPECT_EQ(Column("PApDate, PmtDate0, SeturituDate, SogyoDate"),
              "<null>|2024/04/01|2020/01/05|<null>");
    EXPECT_EQ(Column("PmtCheck1, UserStaffID, DataUpdateFlag, CorpNum"), "2|8|3|N1");
    EXPECT_EQ(Column("RecordUpdate, InetCheckDate"), kNow + "|" + kNow);
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
    InsertRow(", TAddr0", ", 'old'");
    cCustKihon k = Server({{"ZipCode0", "200"}, {"TAddr0", "new"}, {"AcDate", "x"}});
    ASSERT_EQ(k.SyncDownloadMain(db_, 7), 1);
    EXPECT_EQ(Column("ZipCode0, TAddr0, AcDate"), "200|old|<null>");
    EXPECT_EQ(Column("RecordUpdate, InetCheckDate"), kChecked + "|" + kChecked);
    EXPECT_EQ(Column("id", "tCustomerKeisin", "CustomerID"), "<no row>");
}

TEST_F(KihonWorkerTest, ABrokenDatabaseFailsThroughTheTrapForTheRecordAndTheTrades) {
    cCustKihon k = Server({});
    const std::string missing = (temp_.Path() / "none" / "Customer.dat").string();
    EXPECT_EQ(k.SyncDownloadNormal(missing, 7), 0);
    EXPECT_EQ(k.CompareLocalDBNormal(missing, 7), 0);
    EXPECT_EQ(k.SyncUploadNormal(missing, 7), 0);
    cCustKihon trades;
    ASSERT_TRUE(trades.ReadXMLGyosyu(Document(GyoshuPayload(HeaderTags(), GridTags()))));
    EXPECT_EQ(trades.SyncDownloadGyosyu(missing, 7), 0);
    EXPECT_EQ(trades.CompareLocalDBGyosyu(missing, 7), 0);
    EXPECT_EQ(trades.SyncUploadGyoshu(missing, 7), 0);
    EXPECT_EQ(kit_->Boxes().size(), 6u);
    EXPECT_TRUE(server_->Requests().empty());
}

// ---- Loading and sending ---------------------------------------------------------------

TEST_F(KihonWorkerTest, UploadSendsTheRowAsItStandsAndStampsItOnSuccess) {
    LogIn();
    InsertRow(
        ", Other4, Other7, PmtNo, ExOther13, PmtCheck1, PApDate, PmtDate0, PmtDate1, "
        "SeturituDate, UserStaffID, DataUpdateFlag, CorpNum",
        ", 'o4', 'x', '123#45', 'a=b', 1.6, '2024-04-01 10:00:00', '2024-04-01 00:00:00', "
        "'garbage', '2001-02-03 00:00:00', 3, 8, 'N1'");
    Exec(
        "UPDATE tCustomer SET Code = 'A&1', AcDate = '3月31日';"
        "INSERT INTO tCustomerKeisin (CustomerID, disabled, CheckEx) VALUES (7, 0, 4);");
    server_->On("customer/setCompKihon.php", Envelope(1, "T2"));
    cCustKihon k;
    ASSERT_EQ(k.SyncUploadNormal(db_, 7), 1);
    EXPECT_EQ(
        server_->BodiesTo("customer/setCompKihon.php"),
        std::vector<std::string>{
            "ID=user1&token=T1&CustomerID=7&Code=A&1&AcDate=3月31日&ZipCode0=100&ZipCode1=0001&"
            "addr0=東京都&addr1=千代田区&addr2=一番町1&TZipCode0=&TZipCode1=&Taddr0=&Taddr1=&"
            "Taddr2=&"
            "CorpKana0=&CorpName0=株式会社一&CorpKanaS=&CorpKana1=&CorpName1=&Post0=&Post1=&"
            "ApfKana0=&ApfName0=一 太郎&ApfKana1=&ApfName1=&tel0=03&tel1=1111&tel2=2222&fax0=03&"
            "fax1=3333&fax2=4444&ChPost=&ChKana=&ChName=&ChTel0=&ChTel1=&ChTel2=&ChFax0=&ChFax1=&"
            "ChFax2=&ChEMail=&other1=&other2=&other3=&other4=o4&other7=45&other5=&ExOther4=&"
            "ExOther5=&ExOther6=&ExOther7=&ExOther8=&ExOther9=&ExOther10=&ExOther12=&"
            "ExOther13=a=b&ExOther14=&ExOther15=&ExOther16=&ExOther17=5&ExOther18=&ApfPlace=&"
            "MinName=&MinCode=&PmtCheck0=0&PmtCheck1=2&PmtYear=&PmtNo=123&"
            "PApDate=2024/04/01 10:00:00&PmtDate0=2024/04/01&PmtDate1=&PmtDate2=&KessanTaioh=&"
            "AddrKana1=&AddrKana2=&HoKoType=0&UserStaffID=3&DataUpdateFlag=3&"
            "SeturituDate=2001/02/03&SogyoDate=&KengyoExist=0&KengyoNaiyo=&Itaku=0&DMSendType=0&"
            "SeireiShitei=0&NotKanyo=0&CheckEx=4&Manage=0&"});
    EXPECT_EQ(Column("InetCheckDate"), kNow);
    EXPECT_EQ(Column("RecordUpdate"), kChecked);
}

TEST_F(KihonWorkerTest, UploadSendsNothingWithoutARowOrACodeAndARefusalLeavesTheStamp) {
    LogIn();
    server_->On("customer/setCompKihon.php", Envelope(-1, "T2"));
    cCustKihon k;
    EXPECT_EQ(k.SyncUploadNormal(db_, 7), 0);
    InsertRow();
    Exec("UPDATE tCustomer SET Code = NULL");
    EXPECT_EQ(k.SyncUploadNormal(db_, 7), 0);
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_TRUE(kit_->Boxes().empty());
    Exec("UPDATE tCustomer SET Code = 'C7'");
    EXPECT_EQ(k.SyncUploadNormal(db_, 7), 0);
    EXPECT_EQ(server_->RequestsTo("customer/setCompKihon.php").size(), 1u);
    EXPECT_EQ(Column("InetCheckDate"), kChecked);
}

}  // namespace
}  // namespace morvane::test
