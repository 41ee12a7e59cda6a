// The prefecture forms through the public object: the delegation form's upload, comparison and
// download against the scripted server, and the machinery list's upload, whose data file selects
// the rows, with its bodies in their key order.
#include <gtest/gtest.h>

#include "PrefCustTestUtil.h"
#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"

namespace morvane::test {
namespace {

constexpr const char* kGetMain = "prefcust/99/getIninMain.php";
constexpr const char* kGetSub = "prefcust/99/getIninSub.php";
constexpr const char* kSetMain = "prefcust/99/setIninMain.php";
constexpr const char* kSetSub = "prefcust/99/setIninSub.php";
constexpr const char* kNow = "2024/06/01 9:00:00";
constexpr const char* kServerStamp = "2024/05/20 10:00:00";

// One live main row of customer 9 (any customer's live rows make the form) and two live sub
// rows, beside a freed main row and a freed sub row; all last agreed on 2024/04/01.
constexpr const char* kForm =
    "INSERT INTO t99_ININ_MAIN (id, CustomerID, disabled, vno, MakeDate, SubShokuin, "
    "SelectDetail, SelectSubShokuin, PrintDate, PrintSubShokuin, RecordUpdate, InetCheckDate) "
    "VALUES (2, 7, 1, 1, NULL, 'freed', 0, 0, 0, 0, NULL, NULL), "
    "(3, 9, 0, 1, '2024-02-03 00:00:00', '補助&職員', 1, 2, 1, 0, '2024-04-01 00:00:00', "
    "'2024-04-01 00:00:00');"
    "INSERT INTO t99_ININ_SUB (id, CustomerID, disabled, vno, IninTitle, IninDetail0, "
    "IninDetail1, IninDetail2, IninDetail3, RecordUpdate, InetCheckDate) VALUES "
    "(10, 7, 0, 1, 'A', 'A-0', 'A-1', 'A-2', 'A-3', '2024-04-01 00:00:00', "
    "'2024-04-01 00:00:00'), "
    "(11, 8, 0, 2, 'B', 'B-0', 'B-1', 'B-2', 'B-3', '2024-04-01 00:00:00', "
    "'2024-04-01 00:00:00'), "
    "(12, 7, 1, 3, 'gone', '', '', '', '', NULL, NULL);";

class IninTest : public RecordDbTest {
protected:
    void SetUp() override {
        RecordDbTest::SetUp();
        db_ = paths_.prefcustom.string();
    }

    // The server's form: the main item and the two sub items kForm holds.
    void ServeForm(const std::string& mainItem = IninMainItem(4, "補助&amp;職員", "1"),
                   std::vector<std::string> subs = {IninSubItem(1, 1, "A"),
                                                    IninSubItem(2, 2, "B")}) {
        server_->On(kGetMain,
                    Envelope(1, "T2", ListPayload("IninMain", 7, kServerStamp, {mainItem})));
        server_->On(kGetSub, Envelope(1, "T3", ListPayload("IninSub", 7, kServerStamp, subs)));
    }

    std::string Stamp(const std::string& table, int id) {
        return One(db_, "SELECT InetCheckDate FROM " + table + " WHERE id = " + std::to_string(id));
    }
};

TEST_F(IninTest, UploadSendsTheOldestMainRowThenEveryLiveSubRow) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_, kForm);
    server_->On(kSetMain, Envelope(1, "T2"));
    server_->On(kSetSub, Envelope(1, "T3"));
    ASSERT_EQ(obj.SyncUploadP99Inin(db_, 7, 12.5, true), 1);

    EXPECT_EQ(server_->BodiesTo(kSetMain),
              std::vector<std::string>{
                  "ID=user1&token=T1&CustomerID=7&IninMainItemID=3&vno=1&MakeDate=2024/02/03&"
                  "SubShokuin=補助&職員&SelectDetail=1&SelectSubShokuin=2&PrintDate=1&"
                  "PrintSubShokuin=0&"});
    EXPECT_EQ(server_->BodiesTo(kSetSub),
              (std::vector<std::string>{
                  "ID=user1&token=T2&CustomerID=7&IninSubItemID=10&DISABLEDALL=DISABLEDALL&vno=1&"
                  "IninTitle=A&IninDetail0=A-0&IninDetail1=A-1&IninDetail2=A-2&IninDetail3=A-3&",
                  "ID=user1&token=T3&CustomerID=7&IninSubItemID=11&vno=2&IninTitle=B&"
                  "IninDetail0=B-0&IninDetail1=B-1&IninDetail2=B-2&IninDetail3=B-3&"}));
    // The freed rows are no part of the form.
    EXPECT_EQ(Rows(db_, "SELECT InetCheckDate FROM t99_ININ_MAIN ORDER BY id"),
              (std::vector<std::string>{"<null>", kNow}));
    EXPECT_EQ(Rows(db_, "SELECT InetCheckDate FROM t99_ININ_SUB ORDER BY id"),
              (std::vector<std::string>{kNow, kNow, "<null>"}));
}

TEST_F(IninTest, UploadStopsAtAFailedPostWithTheMainRowStampedOnceItWentThrough) {
    struct Case {
        const char* name;
        std::vector<std::string> mainReplies, subReplies;
        std::int32_t result;
        size_t subPosts;
        bool mainStamped, subStamped;
    };
    const std::vector<Case> cases = {
        {"all answered", {Envelope(1, "T2")}, {Envelope(1, "T3")}, 1, 2, true, true},
        {"main refused", {Envelope(-1, "T2")}, {Envelope(1, "T3")}, 0, 0, false, false},
        {"second sub refused",
         {Envelope(1, "T2")},
         {Envelope(1, "T3"), Envelope(-1, "T4")},
         0,
         2,
         true,
         false},
        {"first sub unreadable", {Envelope(1, "T2")}, {"<broken"}, 0, 1, true, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ctrlMorvane obj;
        LogIn();
        Sql(db_, "DELETE FROM t99_ININ_MAIN; DELETE FROM t99_ININ_SUB;");
        Sql(db_, kForm);
        server_->ClearRequests();
        server_->OnSequence(kSetMain, c.mainReplies);
        server_->OnSequence(kSetSub, c.subReplies);
        EXPECT_EQ(obj.SyncUploadP99Inin(db_, 7, 0, true), c.result);
        EXPECT_EQ(server_->RequestsTo(kSetSub).size(), c.subPosts);
        EXPECT_EQ(Stamp("t99_ININ_MAIN", 3), c.mainStamped ? kNow : "2024/04/01");
        EXPECT_EQ(Stamp("t99_ININ_SUB", 10), c.subStamped ? kNow : "2024/04/01");
    }
}

TEST_F(IninTest, UploadSendsNothingWithoutALiveSubRowOrForANumberBeyond16Bits) {
    struct Case {
        const char* name;
        std::int32_t custId;
        const char* rows;
    };
    const std::vector<Case> cases = {
        {"only freed sub rows", 7,
         "INSERT INTO t99_ININ_MAIN (id, disabled) VALUES (1, 0);"
         "INSERT INTO t99_ININ_SUB (id, disabled, IninTitle) VALUES (1, 1, 'x');"},
        {"customer 32768", 32768, kForm},
        {"customer -32769", -32769, kForm},
    };
    server_->On(kSetMain, Envelope(1, "T2"));
    server_->On(kSetSub, Envelope(1, "T3"));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ctrlMorvane obj;
        LogIn();
        Sql(db_, "DELETE FROM t99_ININ_MAIN; DELETE FROM t99_ININ_SUB;");
        Sql(db_, c.rows);
        server_->ClearRequests();
        EXPECT_EQ(obj.SyncUploadP99Inin(db_, c.custId, 0, true), 0);
        EXPECT_TRUE(server_->Requests().empty());
    }
    ctrlMorvane obj;
    LogIn();
    EXPECT_EQ(obj.SyncUploadP99Inin(db_, 32767, 0, true), 1) << "the largest 16-bit number";
}

TEST_F(IninTest, CompareLooksAtLiveRowsByPositionOnlyWhenTheStampsDiffer) {
    struct Case {
        const char* name;
        const char* change;  // applied to kForm's rows
        std::int32_t result;
    };
    const std::vector<Case> cases = {
        {"same content", "", 0},
        {"a main field differs", "UPDATE t99_ININ_MAIN SET SelectDetail = 9 WHERE id = 3;", 1},
        {"the make date is not compared",
         "UPDATE t99_ININ_MAIN SET MakeDate = '2020-01-01 00:00:00' WHERE id = 3;", 0},
        {"no live main row: only the sub rows count",
         "UPDATE t99_ININ_MAIN SET disabled = 1 WHERE id = 3;", 0},
        {"a sub title differs", "UPDATE t99_ININ_SUB SET IninTitle = 'Z' WHERE id = 11;", 1},
        {"a sub detail differs", "UPDATE t99_ININ_SUB SET IninDetail3 = '' WHERE id = 10;", 1},
        {"one more live sub row",
         "INSERT INTO t99_ININ_SUB (id, disabled, IninTitle) VALUES (20, 0, 'C');", 1},
        {"one more freed sub row",
         "INSERT INTO t99_ININ_SUB (id, disabled, IninTitle) VALUES (20, 1, 'C');", 0},
        {"the sub rows swapped",
         "UPDATE t99_ININ_SUB SET id = 30 WHERE id = 10; UPDATE t99_ININ_SUB SET id = 10 "
         "WHERE id = 11;",
         1},
    };
    ServeForm();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ctrlMorvane obj;
        LogIn();
        Sql(db_, "DELETE FROM t99_ININ_MAIN; DELETE FROM t99_ININ_SUB;");
        Sql(db_, std::string(kForm) + c.change);
        EXPECT_EQ(obj.CompareP99Inin(db_, 7, 0, true), c.result);
        // Agreement stamps the live rows of both tables.
        EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM t99_ININ_SUB WHERE IninTitle = 'A'"),
                  c.result == 0 ? kNow : "2024/04/01");
    }
}

TEST_F(IninTest, CompareAsksBothPagesAndAnIncompleteSubListLeavesNothingToDownload) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_, kForm);
    server_->On(
        kGetMain,
        Envelope(1, "T2", ListPayload("IninMain", 7, kServerStamp, {IninMainItem(4, "new", "1")})));
    // Three announced, two sent.
    server_->On(kGetSub,
                Envelope(1, "T3",
                         ListPayload("IninSub", 7, kServerStamp,
                                     {IninSubItem(1, 1, "A"), IninSubItem(2, 2, "B")}, 3)));
    EXPECT_EQ(obj.CompareP99Inin(db_, 7, 0, true), 0);
    ASSERT_EQ(server_->RequestsTo(kGetMain).size(), 1u);
    EXPECT_EQ(server_->RequestsTo(kGetMain)[0].body, "ID=user1&token=T1&CustomerID=7&");
    ASSERT_EQ(server_->RequestsTo(kGetSub).size(), 1u);
    // One body for both: the server still takes the token its first reply replaced.
    EXPECT_EQ(server_->RequestsTo(kGetSub)[0].body, "ID=user1&token=T1&CustomerID=7&");
    EXPECT_EQ(obj.SyncDownloadP99Inin(db_, 7, 0, true), 1);
    EXPECT_EQ(One(db_, "SELECT SubShokuin FROM t99_ININ_MAIN WHERE id = 3"), "補助&職員");
}

TEST_F(IninTest, DownloadRewritesTheNewestMainRowAndReplacesEverySubRowUnowned) {
    ctrlMorvane obj;
    LogIn();
    Sql(db_, std::string(kForm) +
                 "INSERT INTO t99_ININ_MAIN (id, CustomerID, disabled, SubShokuin, DataFileID, "
                 "DataFileIDStr, MakeDate) VALUES (5, 7, 0, 'newest', 31, 'k31', "
                 "'2023-01-01 00:00:00');");
    ServeForm(IninMainItem(4, "新しい", "3", "2024/02/03"));
    ASSERT_EQ(obj.CompareP99Inin(db_, 7, 0, true), 1);
    ASSERT_EQ(obj.SyncDownloadP99Inin(db_, 7, 0, true), 1);
    const std::string columns =
        "SELECT id, CustomerID, disabled, MakeDate, SubShokuin, SelectDetail, SelectSubShokuin, "
        "PrintDate, PrintSubShokuin, DataFileID, DataFileIDStr, RecordUpdate, InetCheckDate ";
    EXPECT_EQ(Rows(db_, columns + "FROM t99_ININ_MAIN WHERE id = 5"),
              std::vector<std::string>{"5|0|0|<null>|新しい|3|2|1|0|0||" + std::string(kNow) + "|" +
                                       kNow})
        << "MakeDate stays Null whatever the server sent, and the row belongs to no one";
    EXPECT_EQ(One(db_, "SELECT SubShokuin FROM t99_ININ_MAIN WHERE id = 3"), "補助&職員")
        << "only the newest live row is rewritten";
    EXPECT_EQ(Rows(db_,
                   "SELECT CustomerID, disabled, vno, IninTitle, IninDetail0, IninDetail3, "
                   "DataFileID, DataFileIDStr_KY FROM t99_ININ_SUB ORDER BY id"),
              (std::vector<std::string>{"0|0|1|A|A-0|A-3|0|", "0|0|2|B|B-0|B-3|0|"}));
    // What was written now agrees with what the server holds.
    EXPECT_EQ(obj.CompareP99Inin(db_, 7, 0, true), 0);
}

TEST_F(IninTest, AFetchingDownloadOfAnEmptyServerSubListEmptiesTheSubTableAndAddsTheMainRow) {
    ctrlMorvane obj;
    obj.setObjectUsage(1);
    LogIn();
    Sql(db_,
        "INSERT INTO t99_ININ_SUB (id, CustomerID, disabled, IninTitle) VALUES (1, 7, 0, 'a'), "
        "(2, 8, 1, 'b');");
    ServeForm(IninMainItem(4, "s", "1"), {});
    ASSERT_EQ(obj.SyncDownloadP99Inin(db_, 7, 0, true), 1);
    EXPECT_EQ(server_->RequestsTo(kGetMain).size(), 1u);
    EXPECT_EQ(server_->RequestsTo(kGetSub).size(), 1u);
    EXPECT_EQ(One(db_, "SELECT COUNT(*) FROM t99_ININ_SUB"), "0");
    EXPECT_EQ(Rows(db_, "SELECT CustomerID, disabled, SubShokuin, MakeDate FROM t99_ININ_MAIN"),
              std::vector<std::string>{"0|0|s|<null>"});
}

TEST_F(IninTest, TheMembersTakeTheDataFileArgumentsByName) {
    for (const char* name : {"CompareP99Inin", "SyncDownloadP99Inin", "SyncUploadP99Inin",
                             "SyncUploadP99KikaiIchiran"}) {
        SCOPED_TRACE(name);
        const DispatchMember* m = DispatchTable::Instance().Find(name);
        ASSERT_NE(m, nullptr);
        ASSERT_EQ(m->params.size(), 4u);
        EXPECT_EQ(m->params[0].type, ArgType::Text);
        EXPECT_EQ(m->params[1].type, ArgType::Long);
        EXPECT_EQ(m->params[2].type, ArgType::Double);
        EXPECT_EQ(m->params[3].type, ArgType::Bool);
    }
}

constexpr const char* kSetKikaiMain = "prefcust/99/setKikaiIchiranMain.php";
constexpr const char* kSetKikaiSub = "prefcust/99/setKikaiIchiranSub.php";

// Lists of customer 7: settlement file 5 (two machines, one freed), permit file 5, settlement
// file 2.5, settlement file 9 without machines, a freed list of file 8, machines of file 6
// without a main row, and customer 8's list of settlement file 5.
constexpr const char* kLists =
    "INSERT INTO t99_KIKAIICHIRAN_MAIN (id, CustomerID, disabled, DataFileID, DataFileID_KY, "
    "vno, CorpName0, ApfName0, SubmitDate, ISO14001_ValidEnd) VALUES "
    "(1, 7, 0, 5, NULL, '1', 'K5&co', '代表', '2024/06/30', 'end'), "
    "(2, 7, 0, NULL, 5, '1', 'Y5', '', '', ''), "
    "(3, 7, 0, 2.5, NULL, '1', 'K2.5', '', '', ''), "
    "(6, 7, 0, 9, NULL, '1', 'K9', '', '', ''), "
    "(4, 7, 1, 8, NULL, '1', 'freed', '', '', ''), "
    "(5, 8, 0, 5, NULL, '1', 'other customer', '', '', '');"
    "INSERT INTO t99_KIKAIICHIRAN_SUB (id, CustomerID, disabled, DataFileID, DataFileID_KY, vno, "
    "No, Maker, ExpiryDateNoDayFlag) VALUES "
    "(10, 7, 0, 5, NULL, '2', '2', 'M2', '0'), "
    "(11, 7, 0, 5, NULL, '1', '1', 'M1', '1'), "
    "(12, 7, 1, 5, NULL, '3', '3', 'freed', ''), "
    "(13, 7, 0, NULL, 5, '1', '1', 'Y-M', ''), "
    "(14, 7, 0, 6, NULL, '1', '1', 'orphan', ''), "
    "(16, 7, 0, 2.5, NULL, '1', '1', 'half', ''), "
    "(17, 8, 0, 5, NULL, '1', '1', 'other', '');";

// The value a body gives a key ("" when absent).
std::string ValueOf(const std::string& body, const std::string& key) {
    const std::string at = "&" + key + "=";
    const size_t start = body.find(at);
    if (start == std::string::npos) return {};
    const size_t from = start + at.size();
    return body.substr(from, body.find('&', from) - from);
}

class KikaiIchiranTest : public RecordDbTest {
protected:
    void SetUp() override {
        RecordDbTest::SetUp();
        db_ = paths_.prefcustom.string();
        Sql(db_, kLists);
    }
};

TEST_F(KikaiIchiranTest, UploadSendsTheMainRowThenTheMachinesByPositionInTheirKeyOrder) {
    ctrlMorvane obj;
    LogIn();
    server_->On(kSetKikaiMain, Envelope(1, "T2"));
    server_->On(kSetKikaiSub, Envelope(1, "T3"));
    ASSERT_EQ(obj.SyncUploadP99KikaiIchiran(db_, 7, 5, true), 1);

    const std::string start = "ID=user1&token=T1&CustomerID=7&DataFileID=5&DataFileType=1&";
    const auto main = server_->RequestsTo(kSetKikaiMain);
    ASSERT_EQ(main.size(), 1u);
    EXPECT_EQ(main[0].body,
              start +
                  "KikaiIchiranMainItemID=1&vno=1&CorpName0=K5&co&ApfName0=代表&"
                  "Post0=&addr1=&ReviewDate=&MinCode=&PmtCheck0=&PmtCheck1=&PmtYear=&PmtNo=&"
                  "PromiseDate=&ISO9001_Ninsho=&ISO9001_Office=&ISO9001_ConstOffice=&"
                  "ISO9001_Gyoshu=&ISO9001_ValidStart=&ISO9001_ValidEnd=&ISO14001_Ninsho=&"
                  "ISO14001_Office=&ISO14001_ConstOffice=&ISO14001_Gyoshu=&ISO14001_ValidStart=&"
                  "ISO14001_ValidEnd=end&SubmitDate=2024/06/30&");
    const auto subs = server_->RequestsTo(kSetKikaiSub);
    ASSERT_EQ(subs.size(), 2u);
    EXPECT_EQ(subs[0].body,
              "ID=user1&token=T2&CustomerID=7&DataFileID=5&DataFileType=1&"
              "KikaiIchiranSubItemID=11&DISABLEDALL=DISABLEDALL&vno=1&No=1&MachineType=&"
              "MachineTypeStr=&Maker=M1&"
              "Model=&SerialNum=&ShoyuLease=&ShoyuLeaseStr=&GetDate=&LeaseStart=&LeaseEnd=&"
              "CheckDate=&JidoKoshin=&Attachment=&Weight=&Bucket=&ExpiryDate=&SelfCheck=&"
              "SelfCheckStr=&Biko=&JishuKensaKishu=&LeaseType=&Moushidesho=&ShubetsuKikaku=&"
              "Check=&TeitohoHani=&Abirity=&KikaiSonryoKubun=&SonryoCode1=&SonryoCode2=&"
              "SonryoCode3=&HaiGas=&MachineName=&SelfCheckNo=&CheckTarget=&OnRoad=&UserName=&"
              "CheckCorpName=&CheckRecord=&CheckPromise=&TakePicDate=&MachineNum=&"
              "CheckSubmitPic=&GetDateNoDayFlag=&LeaseStartNoDayFlag=&LeaseEndNoDayFlag=&"
              "CheckDateNoDayFlag=&"
              "ExpiryDateNoDayFlag=1&");
    const std::string second =
        "ID=user1&token=T3&CustomerID=7&DataFileID=5&DataFileType=1&KikaiIchiranSubItemID=10&"
        "vno=2&No=2&";
    EXPECT_EQ(subs[1].body.substr(0, second.size()), second);
    // Only the list's main row is stamped; machine rows never are.
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM t99_KIKAIICHIRAN_MAIN WHERE id = 1"), kNow);
    for (int other : {2, 3, 5, 6})
        EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM t99_KIKAIICHIRAN_MAIN WHERE id = " +
                               std::to_string(other)),
                  "");
    EXPECT_EQ(One(db_, "SELECT COUNT(*) FROM t99_KIKAIICHIRAN_SUB WHERE InetCheckDate IS NOT NULL"),
              "0");
}

TEST_F(KikaiIchiranTest, TheDataFileSelectsTheListAndItsColumn) {
    struct Case {
        const char* name;
        std::int32_t custId;
        const char* dataId;
        bool kessan;
        const char* mainId;  // nullptr: nothing is sent
        std::vector<std::string> makers;
    };
    const Case cases[] = {
        {"settlement file", 7, "5", true, "1", {"M1", "M2"}},
        {"permit file", 7, "5", false, "2", {"Y-M"}},
        {"fractional data file number", 7, "2.5", true, "3", {"half"}},
        {"no machines: DISABLEDALL alone", 7, "9", true, "6", {""}},
        {"machines without a main row", 7, "6", true, nullptr, {}},
        {"a freed main row", 7, "8", true, nullptr, {}},
        {"customer 32768", 32768, "5", true, nullptr, {}},
    };
    server_->On(kSetKikaiMain, Envelope(1, "T2"));
    server_->On(kSetKikaiSub, Envelope(1, "T2"));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ctrlMorvane obj;
        LogIn();
        EXPECT_EQ(obj.SyncUploadP99KikaiIchiran(db_, c.custId, std::stod(c.dataId), c.kessan),
                  c.mainId ? 1 : 0);
        const auto main = server_->RequestsTo(kSetKikaiMain);
        const auto subs = server_->RequestsTo(kSetKikaiSub);
        if (!c.mainId) {
            EXPECT_TRUE(server_->Requests().empty());
            continue;
        }
        const std::string fields = "CustomerID=7&DataFileID=" + std::string(c.dataId) +
                                   "&DataFileType=" + (c.kessan ? "1" : "2") + "&";
        const std::string start = "ID=user1&token=T1&" + fields;
        ASSERT_EQ(main.size(), 1u);
        EXPECT_EQ(main[0].body.substr(0, start.size()), start);
        EXPECT_EQ(ValueOf(main[0].body, "KikaiIchiranMainItemID"), c.mainId);
        std::vector<std::string> makers;
        for (const auto& sub : subs) {
            EXPECT_EQ(sub.body.find("&DISABLEDALL=DISABLEDALL&") != std::string::npos,
                      &sub == &subs.front());
            makers.push_back(ValueOf(sub.body, "Maker"));
        }
        EXPECT_EQ(makers, c.makers);
        if (c.makers == std::vector<std::string>{""}) {
            EXPECT_EQ(subs[0].body, "ID=user1&token=T2&" + fields + "DISABLEDALL=DISABLEDALL&");
        }
    }
}

TEST_F(KikaiIchiranTest, UploadStopsAtARefusedMachineWithTheMainRowStamped) {
    ctrlMorvane obj;
    LogIn();
    server_->On(kSetKikaiMain, Envelope(1, "T2"));
    server_->OnSequence(kSetKikaiSub, {Envelope(-1, "T3"), Envelope(1, "T4")});
    EXPECT_EQ(obj.SyncUploadP99KikaiIchiran(db_, 7, 5, true), 0);
    EXPECT_EQ(server_->RequestsTo(kSetKikaiSub).size(), 1u);
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM t99_KIKAIICHIRAN_MAIN WHERE id = 1"), kNow);

    LogIn();
    server_->On(kSetKikaiMain, Envelope(-1, "T5"));
    EXPECT_EQ(obj.SyncUploadP99KikaiIchiran(db_, 7, 9, true), 0);
    EXPECT_TRUE(server_->RequestsTo(kSetKikaiSub).empty()) << "a refused main row ends the upload";
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM t99_KIKAIICHIRAN_MAIN WHERE id = 6"), "");
}

}  // namespace
}  // namespace morvane::test
