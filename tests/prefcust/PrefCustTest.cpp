// The prefecture forms through the public object: the delegation form's upload, comparison and
// download against the scripted server, and the machinery list's upload, whose data file selects
// the rows, with its bodies in their key order.
#include <gtest/gtest.h>

#include <sstream>
#include <utility>

#include "PrefCustTestUtil.h"
#include "component/ctrlMorvane.h"
#include "support/Golden.h"

namespace morvane::test {
namespace {

constexpr const char* kGetMain = "prefcust/99/getIninMain.php";
constexpr const char* kGetSub = "prefcust/99/getIninSub.php";
constexpr const char* kSetMain = "prefcust/99/setIninMain.php";
constexpr const char* kSetSub = "prefcust/99/setIninSub.php";
constexpr const char* kNow = "2024/06/01 9:00:00";
constexpr const char* kServerStamp = "2024/05/20 10:00:00";

// The local rows, cases and bodies of tests/data/prefcust/pref-cust.txt.
class PrefCustTest : public RecordDbTest {
protected:
    void SetUp() override {
        RecordDbTest::SetUp();
        db_ = paths_.prefcustom.string();
    }
    std::string Body(std::string_view key) const { return data_.Joined(key); }
    // The rows of the key, in place of whatever the form held.
    void Load(std::string_view key) { Sql(db_, data_["form emptied"] + "\n" + data_[key]); }
    std::string Stamp(const std::string& table, int id) {
        return One(db_, "SELECT InetCheckDate FROM " + table + " WHERE id = " + std::to_string(id));
    }

    const Golden data_{"prefcust/pref-cust.txt"};
};

class IninTest : public PrefCustTest {
protected:
    // The server's form: the main item and the two sub items of the local form.
    void ServeForm(const std::string& mainItem = IninMainItem(4, "補助&amp;職員", "1"),
                   std::vector<std::string> subs = {IninSubItem(1, 1, "A"),
                                                    IninSubItem(2, 2, "B")}) {
        server_->On(kGetMain,
                    Envelope(1, "T2", ListPayload("IninMain", 7, kServerStamp, {mainItem})));
        server_->On(kGetSub, Envelope(1, "T3", ListPayload("IninSub", 7, kServerStamp, subs)));
    }
};

TEST_F(IninTest, UploadSendsTheOldestMainRowThenEveryLiveSubRow) {
    ctrlMorvane& obj = LoggedIn();
    Load("form");
    server_->On(kSetMain, Envelope(1, "T2"));
    server_->On(kSetSub, Envelope(1, "T3"));
    ASSERT_EQ(obj.SyncUploadP99Inin(db_, 7, 12.5, true), 1);

    EXPECT_EQ(server_->BodiesTo(kSetMain), std::vector<std::string>{Body("inin main upload")});
    EXPECT_EQ(server_->BodiesTo(kSetSub),
              (std::vector<std::string>{Body("inin sub upload 1"), Body("inin sub upload 2")}));
    // The freed rows are no part of the form.
    EXPECT_EQ(Rows(db_, "SELECT InetCheckDate FROM t99_ININ_MAIN ORDER BY id"),
              (std::vector<std::string>{"<null>", kNow}));
    EXPECT_EQ(Rows(db_, "SELECT InetCheckDate FROM t99_ININ_SUB ORDER BY id"),
              (std::vector<std::string>{kNow, kNow, "<null>"}));
}

// The answers of a cell: an envelope of each flag, tokens counting on from T2; "x" no XML.
std::vector<std::string> Answers(const std::string& cell) {
    std::vector<std::string> replies;
    std::istringstream flags(cell);
    for (std::string flag; flags >> flag;)
        replies.push_back(
            flag == "x" ? "<broken"
                        : Envelope(std::stoi(flag), "T" + std::to_string(replies.size() + 2)));
    return replies;
}

TEST_F(IninTest, UploadStopsAtAFailedPostWithTheMainRowStampedOnceItWentThrough) {
    for (const auto& row : data_.Table("upload stops")) {
        SCOPED_TRACE(row[0]);
        ctrlMorvane& obj = LoggedIn();
        Load("form");
        server_->ClearRequests();
        server_->OnSequence(kSetMain, Answers(row[1]));
        server_->OnSequence(kSetSub, Answers(row[2]));
        EXPECT_EQ(obj.SyncUploadP99Inin(db_, 7, 0, true), std::stoi(row[3]));
        EXPECT_EQ(server_->RequestsTo(kSetSub).size(), std::stoul(row[4]));
        EXPECT_EQ(Stamp("t99_ININ_MAIN", 3), row[5] == "1" ? kNow : "2024/04/01");
        EXPECT_EQ(Stamp("t99_ININ_SUB", 10), row[6] == "1" ? kNow : "2024/04/01");
    }
}

TEST_F(IninTest, UploadSendsNothingWithoutALiveSubRowOrForANumberBeyond16Bits) {
    server_->On(kSetMain, Envelope(1, "T2"));
    server_->On(kSetSub, Envelope(1, "T3"));
    for (const auto& [rows, custId] : std::vector<std::pair<std::string, std::int32_t>>{
             {"only freed sub rows", 7}, {"form", 32768}, {"form", -32769}}) {
        SCOPED_TRACE(rows + " of customer " + std::to_string(custId));
        ctrlMorvane& obj = LoggedIn();
        Load(rows);
        server_->ClearRequests();
        EXPECT_EQ(obj.SyncUploadP99Inin(db_, custId, 0, true), 0);
        EXPECT_TRUE(server_->Requests().empty());
    }
    ctrlMorvane& obj = LoggedIn();
    EXPECT_EQ(obj.SyncUploadP99Inin(db_, 32767, 0, true), 1) << "the largest 16-bit number";
}

TEST_F(IninTest, CompareLooksAtLiveRowsByPositionOnlyWhenTheStampsDiffer) {
    ServeForm();
    for (const auto& row : data_.Table("compare cases")) {
        SCOPED_TRACE(row[0]);
        ctrlMorvane& obj = LoggedIn();
        Load("form");
        Sql(db_, row[1]);
        EXPECT_EQ(obj.CompareP99Inin(db_, 7, 0, true), std::stoi(row[2]));
        // Agreement stamps the live rows of both tables.
        EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM t99_ININ_SUB WHERE IninTitle = 'A'"),
                  row[2] == "0" ? kNow : "2024/04/01");
    }
}

TEST_F(IninTest, CompareAsksBothPagesAndAnIncompleteSubListLeavesNothingToDownload) {
    ctrlMorvane& obj = LoggedIn();
    Load("form");
    server_->On(
        kGetMain,
        Envelope(1, "T2", ListPayload("IninMain", 7, kServerStamp, {IninMainItem(4, "new", "1")})));
    // Three announced, two sent.
    server_->On(kGetSub,
                Envelope(1, "T3",
                         ListPayload("IninSub", 7, kServerStamp,
                                     {IninSubItem(1, 1, "A"), IninSubItem(2, 2, "B")}, 3)));
    EXPECT_EQ(obj.CompareP99Inin(db_, 7, 0, true), 0);
    // One body for both: the server still takes the token its first reply replaced.
    EXPECT_EQ(server_->BodiesTo(kGetMain),
              std::vector<std::string>{"ID=user1&token=T1&CustomerID=7&"});
    EXPECT_EQ(server_->BodiesTo(kGetSub), server_->BodiesTo(kGetMain));
    EXPECT_EQ(obj.SyncDownloadP99Inin(db_, 7, 0, true), 1);
    EXPECT_EQ(One(db_, "SELECT SubShokuin FROM t99_ININ_MAIN WHERE id = 3"), "補助&職員");
}

TEST_F(IninTest, DownloadRewritesTheNewestMainRowAndReplacesEverySubRowUnowned) {
    ctrlMorvane& obj = LoggedIn();
    Load("form");
    Sql(db_, data_["newest main row"]);
    ServeForm(IninMainItem(4, "新しい", "3", "2024/02/03"));
    ASSERT_EQ(obj.CompareP99Inin(db_, 7, 0, true), 1);
    ASSERT_EQ(obj.SyncDownloadP99Inin(db_, 7, 0, true), 1);
    EXPECT_EQ(Rows(db_,
                   "SELECT id, CustomerID, disabled, MakeDate, SubShokuin, SelectDetail, "
                   "SelectSubShokuin, PrintDate, PrintSubShokuin, DataFileID, DataFileIDStr, "
                   "RecordUpdate, InetCheckDate FROM t99_ININ_MAIN WHERE id = 5"),
              std::vector<std::string>{"5|0|0|<null>|新しい|3|2|1|0|0||" + std::string(kNow) + "|" +
                                       kNow})
        << "MakeDate stays Null whatever the server sent, and the row belongs to no one";
    EXPECT_EQ(One(db_, "SELECT SubShokuin FROM t99_ININ_MAIN WHERE id = 3"), "補助&職員")
        << "only the newest live row is rewritten";
    EXPECT_EQ(Rows(db_,
                   "SELECT CustomerID, disabled, vno, IninTitle, IninDetail0, "
                   "IninDetail3, DataFileID, DataFileIDStr_KY FROM t99_ININ_SUB "
                   "ORDER BY id"),
              data_.Lines("inin downloaded sub rows"));
    // What was written now agrees with what the server holds.
    EXPECT_EQ(obj.CompareP99Inin(db_, 7, 0, true), 0);
}

TEST_F(IninTest, AFetchingDownloadOfAnEmptyServerSubListEmptiesTheSubTableAndAddsTheMainRow) {
    ctrlMorvane& obj = LoggedIn();
    obj.setObjectUsage(1);
    Sql(db_, data_["two sub rows"]);
    ServeForm(IninMainItem(4, "s", "1"), {});
    ASSERT_EQ(obj.SyncDownloadP99Inin(db_, 7, 0, true), 1);
    EXPECT_EQ(server_->RequestsTo(kGetMain).size(), 1u);
    EXPECT_EQ(server_->RequestsTo(kGetSub).size(), 1u);
    EXPECT_EQ(One(db_, "SELECT COUNT(*) FROM t99_ININ_SUB"), "0");
    EXPECT_EQ(Rows(db_, "SELECT CustomerID, disabled, SubShokuin, MakeDate FROM t99_ININ_MAIN"),
              std::vector<std::string>{"0|0|s|<null>"});
}

constexpr const char* kSetKikaiMain = "prefcust/99/setKikaiIchiranMain.php";
constexpr const char* kSetKikaiSub = "prefcust/99/setKikaiIchiranSub.php";

class KikaiIchiranTest : public PrefCustTest {
protected:
    void SetUp() override {
        PrefCustTest::SetUp();
        Sql(db_, data_["machinery lists"]);
    }
};

TEST_F(KikaiIchiranTest, UploadSendsTheMainRowThenTheMachinesByPositionInTheirKeyOrder) {
    ctrlMorvane& obj = LoggedIn();
    server_->On(kSetKikaiMain, Envelope(1, "T2"));
    server_->On(kSetKikaiSub, Envelope(1, "T3"));
    ASSERT_EQ(obj.SyncUploadP99KikaiIchiran(db_, 7, 5, true), 1);
    EXPECT_EQ(server_->BodiesTo(kSetKikaiMain),
              std::vector<std::string>{Body("machinery main upload")});
    EXPECT_EQ(server_->BodiesTo(kSetKikaiSub),
              (std::vector<std::string>{Body("machine upload 1"), Body("machine upload 2")}));
    // Only the list's main row is stamped; machine rows never are.
    EXPECT_EQ(Rows(db_,
                   "SELECT id, InetCheckDate FROM t99_KIKAIICHIRAN_MAIN "
                   "WHERE InetCheckDate IS NOT NULL"),
              std::vector<std::string>{"1|" + std::string(kNow)});
    EXPECT_EQ(One(db_, "SELECT COUNT(*) FROM t99_KIKAIICHIRAN_SUB WHERE InetCheckDate IS NOT NULL"),
              "0");
}

// Which list each data file selects, the machines' order and DISABLEDALL are e2e
// PrefectureFormsTest's; nothing goes for machines without a main row, a freed main row or a
// number beyond 16 bits.
TEST_F(KikaiIchiranTest, UploadStopsAtARefusedMachineOrMainRowAndNeedsALiveMainRow) {
    ctrlMorvane& obj = LoggedIn();
    for (const auto& [custId, dataId] : {std::pair{7, 6.0}, {7, 8.0}, {32768, 5.0}})
        EXPECT_EQ(obj.SyncUploadP99KikaiIchiran(db_, custId, dataId, true), 0) << dataId;
    EXPECT_TRUE(server_->Requests().empty());
    server_->On(kSetKikaiMain, Envelope(1, "T2"));
    server_->OnSequence(kSetKikaiSub, {Envelope(-1, "T3"), Envelope(1, "T4")});
    EXPECT_EQ(obj.SyncUploadP99KikaiIchiran(db_, 7, 5, true), 0);
    EXPECT_EQ(server_->RequestsTo(kSetKikaiSub).size(), 1u);
    EXPECT_EQ(Stamp("t99_KIKAIICHIRAN_MAIN", 1), kNow);

    LogIn();
    server_->On(kSetKikaiMain, Envelope(-1, "T5"));
    EXPECT_EQ(obj.SyncUploadP99KikaiIchiran(db_, 7, 9, true), 0);
    EXPECT_TRUE(server_->RequestsTo(kSetKikaiSub).empty()) << "a refused main row ends the upload";
    EXPECT_EQ(Stamp("t99_KIKAIICHIRAN_MAIN", 6), "");
}

}  // namespace
}  // namespace morvane::test
