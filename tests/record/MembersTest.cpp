// The compare and download members of each kind on the public object, against the scripted
// test server: what the comparison asks, and whether the download fetches again or writes what
// the comparison kept. A reply short of a tag is each reader's test and the facade's.
#include <gtest/gtest.h>

#include <functional>

#include "GyoshuTestUtil.h"
#include "component/ctrlMorvane.h"
#include "dated/DatedTestUtil.h"
#include "masters/MastersTestUtil.h"

namespace morvane::test {
namespace {

using Member = std::function<std::int32_t(ctrlMorvane&, const std::string& db)>;

struct Kind {
    const char* name;
    const char* page;   // what the comparison asks
    std::string rows;   // the local rows, older than the server's
    std::string reply;  // the server's payload
    Member compare, download;
    size_t fetches;      // pages asked by a comparison and a download: 1 when the list was kept
    std::string column;  // a query of what the download writes, and what it writes
    std::string written;
};

#define CUSTOMER(member) [](ctrlMorvane& o, const std::string& db) { return o.member(db, 7); }

Tags TAddr(const std::string& text) {
    Tags tags = RequiredTags();
    tags.push_back({"TAddr0", text});
    return tags;
}

std::vector<Kind> Kinds() {
    return {
        {"main record", "customer/getCompKihon.php",
         "UPDATE tCustomer SET TAddr0 = 'old' WHERE id = 7;",
         KihonPayload(TAddr("new"), "2024/05/01 09:05:00"), CUSTOMER(CompareCustomerKihon),
         CUSTOMER(SyncDownloadCustomerKihon), 2, "SELECT TAddr0 FROM tCustomer WHERE id = 7",
         "new"},
        {"trades", "customer/getCompGyoshu.php", "",
         GyoshuPayload(HeaderTags(), With(GridTags(), {{"EPmtCheck5", "7"}})),
         CUSTOMER(CompareCustomerKihonGyosyu), CUSTOMER(SyncDownloadCustomerKihonGyosyu), 2,
         "SELECT EPmtCheck FROM tCustomerGyoshu WHERE CustomerID = 7 AND GyoshuCode = 5", "7"},
        {"memos", "customer/getMemo.php", "",
         ListPayload("Memo", 7, "2024/05/01 10:00:00", {MemoItem(10)}),
         CUSTOMER(CompareCustomerMemoList), CUSTOMER(SyncDownloadCustomerMemoList), 2,
         "SELECT History FROM tCustomerHistory WHERE CustomerID = 7 AND disabled = 0", "note 10"},
        {"settlement records", "customer/getKessanData.php",
         "INSERT INTO tCustomerKessanHistory (id, CustomerID, disabled) VALUES (1, 7, 0);",
         ListPayload("KessanData", 7, "2024/05/01 10:00:00", {KessanItem(100)}),
         CUSTOMER(CompareCustomerKessanList), CUSTOMER(SyncDownloadCustomerKessanList), 1,
         "SELECT DataFile FROM tCustomerKessanHistory WHERE id = 1", "kessan100.dat"},
        {"a master", "master/getKessanTaioh.php", "",
         MasterPayload("KessanTaioh", "2024/05/01 10:00:00", {TaiohItem(5, "済", "1", "1")}),
         [](ctrlMorvane& o, const std::string& db) { return o.CompareMasterKessanTaioh(db); },
         [](ctrlMorvane& o, const std::string& db) { return o.SyncDownloadMasterKessanTaioh(db); },
         1, "SELECT Taioh FROM tKessanTaioh WHERE ID = 1", "済"},
    };
}

class MembersTest : public RecordDbTest {
protected:
    void SetUp() override {
        RecordDbTest::SetUp();
        InsertCustomer(db_);
        InsertTrades(db_, 31);
    }
};

TEST_F(MembersTest, TheDownloadWritesWhatTheComparisonFoundNewerFetchingOnlyWhatWasNotKept) {
    for (const Kind& kind : Kinds()) {
        SCOPED_TRACE(kind.name);
        const bool master = std::string(kind.page).rfind("master/", 0) == 0;
        const std::string db = master ? paths_.master.string() : db_;
        if (!kind.rows.empty()) Sql(db, kind.rows);
        server_->ClearRequests();
        ctrlMorvane& obj = LoggedIn();
        server_->On(kind.page, Envelope(1, "T2", kind.reply));
        EXPECT_EQ(kind.compare(obj, db), 1);
        EXPECT_EQ(server_->BodiesTo(kind.page),
                  std::vector<std::string>{master ? "ID=user1&token=T1&"
                                                  : "ID=user1&token=T1&CustomerID=7&"});
        EXPECT_EQ(kind.download(obj, db), 1);
        EXPECT_EQ(server_->RequestsTo(kind.page).size(), kind.fetches);
        EXPECT_EQ(One(db, kind.column), kind.written);
        EXPECT_EQ(kind.compare(obj, db), 0);
        EXPECT_TRUE(kit_->Boxes().empty());
    }
}

TEST_F(MembersTest, MainComparesOnItsOwnPageNeedsTheStaffCountAndDownloadsTheWholeRecord) {
    ctrlMorvane& obj = LoggedIn();
    Sql(db_, "UPDATE tCustomer SET ZipCode0 = '999' WHERE id = 7;");
    const auto reply = [](const std::string& after) {
        return Envelope(1, "T2", KihonPayload(TAddr("new"), "2024/05/01 09:05:00", after));
    };
    server_->On("customer/getCompKihonMain.php", reply(""));
    EXPECT_EQ(obj.CompareCustomerKihonMain(db_, 7), 0) << "no staff count: a failed read";
    EXPECT_EQ(One(db_, "SELECT ZipCode0 FROM tCustomer WHERE id = 7"), "999");

    server_->On("customer/getCompKihonMain.php",
                reply("<ShokuinList><ShokuinCount>0</ShokuinCount></ShokuinList>"));
    server_->On("customer/getCompKihon.php", reply(""));
    EXPECT_EQ(obj.CompareCustomerKihonMain(db_, 7), 1);
    EXPECT_EQ(obj.SyncDownloadCustomerKihonMain(db_, 7), 1);
    EXPECT_EQ(server_->BodiesTo("customer/getCompKihon.php"),
              std::vector<std::string>{"ID=user1&token=T2&CustomerID=7&"});
    EXPECT_EQ(Rows(db_, "SELECT ZipCode0, TAddr0 FROM tCustomer WHERE id = 7"),
              std::vector<std::string>{"100|new"});
    EXPECT_TRUE(kit_->Boxes().empty());
}

}  // namespace
}  // namespace morvane::test
