// The roster members end to end: the HTTPS test server's roster against real files, the
// snapshot they leave, the roster download and its rollback, the IDs to upload.
#include "RosterTestUtil.h"
#include "component/ctrlMorvane.h"
#include "session/mdlLogin.h"

namespace morvane::test {
namespace {

class RosterTest : public RosterDbTest {
protected:
    void SetUp() override {
        RosterDbTest::SetUp();
        LogIn();
    }
    void Local(const std::string& key) { Sql(paths_.customer, data_[key]); }
    std::vector<std::string> Customers() const {
        return Rows(paths_.customer,
                    "SELECT id, Code, CorpName0, CorpKanaS, disabled, RecordUpdate, InetCheckDate, "
                    "InetSyncFlag FROM tCustomer ORDER BY id");
    }
    Golden data_{"roster/roster.txt"};
    ctrlMorvane obj_;
};

RosterEntry Entry(int id, std::string code = "") {
    RosterEntry e = Customer(id);
    if (!code.empty()) e.code = code;
    return e;
}

TEST_F(RosterTest, BrokenRepliesAndDatabasesGiveZeroWithoutASnapshot) {
    Local("one customer");
    // A count without its items, one item short of a tag, and text that is no XML.
    std::string item = CompItem(Entry(2));
    item.replace(item.find("<CorpKanaS>"), std::string("<CorpKanaS>ｼｬ</CorpKanaS>").size(), "");
    for (const std::string& reply :
         {Envelope(1, "T1", "<compList><CompCount>5</CompCount></compList>"),
          Envelope(
              1, "T1",
              "<compList><CompCount>2</CompCount>" + CompItem(Entry(1)) + item + "</compList>"),
          Envelope(1, "T1", "<compList><CompCount>0</CompCount></compList><compList/>"),
          std::string("<r><system><flags>1</flags>")}) {
        server_->On("customer/getCompList.php", reply);
        EXPECT_EQ(obj_.CompareCustomerList(Db()), 0) << reply;
        EXPECT_FALSE(obj_.CustmerBackuped(1));
    }
    // A missing database file fails at the worker's end, with the error trap's box.
    Serve({Entry(1)});
    kit_->ClearRecords();
    EXPECT_EQ(obj_.CompareCustomerList((temp_.Path() / "none" / "Customer.dat").string()), 0);
    EXPECT_FALSE(kit_->Boxes().empty());
}

TEST_F(RosterTest, SnapshotMembersAfterTheComparison) {
    EXPECT_FALSE(obj_.CustmerBackuped(1));
    EXPECT_EQ(obj_.CustmerRecordUpdate_Local(1), "");
    Local("snapshot");
    Sql(paths_.prefcustom,
        "INSERT INTO t13_HENKOTODOKE_TEISEI (CustomerID, RecordUpdate) VALUES "
        "(1, '2024-07-01 08:00:00');");
    RosterEntry one = Entry(1);
    one.stamps = {{0, "2024/05/01 10:00:30"}, {52, "2024/06/01 09:00:00"}, {7, "1999/01/01"}};
    one.enableFlag = 0;
    Serve({one, Entry(2)});
    EXPECT_EQ(obj_.CompareCustomerList(Db()), 0);
    EXPECT_EQ(
        obj_.CustmerBackupedTableSyncFlag(1, 0) * 10 + obj_.CustmerBackupedTableSyncFlag(1, 52), 2);
    std::string backed;
    for (int i : {0, 52, 99, -1}) backed += obj_.CustmerBackupedTable(1, i) ? "+" : "-";
    EXPECT_EQ(backed, "+-+-");
    EXPECT_FALSE(obj_.CustmerBackuped(1));
    EXPECT_EQ(
        (std::vector<std::string>{
            obj_.CustmerRecordUpdateTable_Local(1, 52), obj_.CustmerRecordUpdateTable_Server(1, 52),
            obj_.CustmerRecordUpdateTable_Comper(1, 0), obj_.CustmerRecordUpdate_Local(1),
            obj_.CustmerRecordUpdate_Server(1)}),
        data_.Lines("snapshot stamps"));
    // Stamps on or before 2000/01/01 count as none; customer 0 has no answer.
    EXPECT_EQ(obj_.CustmerRecordUpdate_Local(2) + obj_.CustmerRecordUpdate_Server(2) +
                  obj_.CustmerRecordUpdate_Local(0) + obj_.CustmerRecordUpdateTable_Local(3, 0),
              "");
    // The refresh of one customer keeps the others and re-reads its own tables.
    Sql(paths_.prefcustom,
        "UPDATE t13_HENKOTODOKE_TEISEI SET RecordUpdate = '2024-08-01 00:00:00';");
    Sql(paths_.customer, "UPDATE tCustomer SET RecordUpdate = '2024-08-02 00:00:00' WHERE id = 2;");
    EXPECT_EQ(obj_.CompareCustomerListItem(Db(), 1), 0);
    EXPECT_EQ(obj_.CustmerRecordUpdateTable_Local(1, 52), "2024/08/01");
    EXPECT_EQ(obj_.CustmerRecordUpdateTable_Local(2, 0), "1999/05/01 10:00:00");
}

// 1 is unchanged, 2 is renamed, 3 comes back, 4 is gone, 5 is new.
TEST_F(RosterTest, DownloadTakesTheServersRosterWhole) {
    Local("download");
    RosterEntry two = Entry(2);
    two.name = "新社名";
    Serve({Entry(1), two, Entry(3), Entry(5)});
    EXPECT_EQ(obj_.SyncDownloadCustomerList(Db()), 1);
    EXPECT_EQ(Customers(), data_.Lines("after the download"));
}

TEST_F(RosterTest, AnErrorInsideTheDownloadLeavesTCustomerAsItWas) {
    Local("rollback");
    const auto before = Customers();
    Serve({Entry(1, "X"), Entry(3), Entry(9)});
    kit_->ClearRecords();
    EXPECT_EQ(obj_.SyncDownloadCustomerList(Db()), 1);  // the member's result stays 1
    EXPECT_EQ(Customers(), before);
    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_NE(kit_->Boxes()[0].text.find("refused"), std::string::npos);
    // Not logged in: nothing is sent and the result is 0.
    const size_t sent = server_->RequestsTo("customer/getCompList.php").size();
    SetLoginState(0);
    EXPECT_EQ(obj_.SyncDownloadCustomerList(Db()), 0);
    EXPECT_EQ(server_->RequestsTo("customer/getCompList.php").size(), sent);
}

TEST_F(RosterTest, UploadIDsAfterADifferingComparison) {
    Local("upload");
    RosterEntry two = Entry(2);
    two.kana = "ﾍﾞﾂ";
    Serve({Entry(1), two, Entry(4), Entry(5)});
    EXPECT_EQ(obj_.CompareCustomerList(Db()), 3);
    std::string add = "x", del, upd;
    EXPECT_EQ(obj_.GetUploadCustomerListIDs(Db(), add, del, upd), 1);
    EXPECT_EQ(add + "|" + del + "|" + upd, "3|4,5|2");
}

}  // namespace
}  // namespace morvane::test
