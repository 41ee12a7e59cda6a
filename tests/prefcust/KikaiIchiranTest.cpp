// The machinery list's upload through the public object: which rows a data file selects, the
// bodies in their key order, the DISABLEDALL post of a list without machines, and the stops.
#include <gtest/gtest.h>

#include "PrefCustTestUtil.h"
#include "component/ctrlMorvane.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

constexpr const char* kSetMain = "prefcust/99/setKikaiIchiranMain.php";
constexpr const char* kSetSub = "prefcust/99/setKikaiIchiranSub.php";
constexpr const char* kNow = "2024/06/01 9:00:00";

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

// "key=&" for each key.
std::string Blank(std::initializer_list<const char*> keys) {
    std::string out;
    for (const char* k : keys) out += std::string(k) + "=&";
    return out;
}

// The value a body gives a key ("" when absent).
std::string ValueOf(const std::string& body, const std::string& key) {
    const std::string at = "&" + key + "=";
    const size_t start = body.find(at);
    if (start == std::string::npos) return {};
    const size_t from = start + at.size();
    return body.substr(from, body.find('&', from) - from);
}

class KikaiIchiranTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        db_ = EmptyPrefCustomDb(temp_.Path() / "db", clock_);
        Sql(db_, kLists);
    }

    std::string db_;
    std::shared_ptr<FixedClock> clock_;
};

TEST_F(KikaiIchiranTest, UploadSendsTheMainRowThenTheMachinesByPositionInTheirKeyOrder) {
    ctrlMorvane obj;
    LogIn();
    server_->On(kSetMain, Envelope(1, "T2"));
    server_->On(kSetSub, Envelope(1, "T3"));
    ASSERT_EQ(obj.SyncUploadP99KikaiIchiran(db_, 7, 5, true), 1);

    const std::string start = "ID=user1&token=T1&CustomerID=7&DataFileID=5&DataFileType=1&";
    const auto main = server_->RequestsTo(kSetMain);
    ASSERT_EQ(main.size(), 1u);
    EXPECT_EQ(main[0].body, start +
                                "KikaiIchiranMainItemID=1&vno=1&CorpName0=K5&co&ApfName0=代表&" +
                                Blank({"Post0",
                                       "addr1",
                                       "ReviewDate",
                                       "MinCode",
                                       "PmtCheck0",
                                       "PmtCheck1",
                                       "PmtYear",
                                       "PmtNo",
                                       "PromiseDate",
                                       "ISO9001_Ninsho",
                                       "ISO9001_Office",
                                       "ISO9001_ConstOffice",
                                       "ISO9001_Gyoshu",
                                       "ISO9001_ValidStart",
                                       "ISO9001_ValidEnd",
                                       "ISO14001_Ninsho",
                                       "ISO14001_Office",
                                       "ISO14001_ConstOffice",
                                       "ISO14001_Gyoshu",
                                       "ISO14001_ValidStart"}) +
                                "ISO14001_ValidEnd=end&SubmitDate=2024/06/30&");
    const auto subs = server_->RequestsTo(kSetSub);
    ASSERT_EQ(subs.size(), 2u);
    EXPECT_EQ(subs[0].body,
              "ID=user1&token=T2&CustomerID=7&DataFileID=5&DataFileType=1&"
              "KikaiIchiranSubItemID=11&DISABLEDALL=DISABLEDALL&vno=1&No=1&MachineType=&"
              "MachineTypeStr=&Maker=M1&" +
                  Blank({"Model",
                         "SerialNum",
                         "ShoyuLease",
                         "ShoyuLeaseStr",
                         "GetDate",
                         "LeaseStart",
                         "LeaseEnd",
                         "CheckDate",
                         "JidoKoshin",
                         "Attachment",
                         "Weight",
                         "Bucket",
                         "ExpiryDate",
                         "SelfCheck",
                         "SelfCheckStr",
                         "Biko",
                         "JishuKensaKishu",
                         "LeaseType",
                         "Moushidesho",
                         "ShubetsuKikaku",
                         "Check",
                         "TeitohoHani",
                         "Abirity",
                         "KikaiSonryoKubun",
                         "SonryoCode1",
                         "SonryoCode2",
                         "SonryoCode3",
                         "HaiGas",
                         "MachineName",
                         "SelfCheckNo",
                         "CheckTarget",
                         "OnRoad",
                         "UserName",
                         "CheckCorpName",
                         "CheckRecord",
                         "CheckPromise",
                         "TakePicDate",
                         "MachineNum",
                         "CheckSubmitPic",
                         "GetDateNoDayFlag",
                         "LeaseStartNoDayFlag",
                         "LeaseEndNoDayFlag",
                         "CheckDateNoDayFlag"}) +
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
        double dataId;
        bool kessan;
        std::int32_t result;
        const char* mainId;  // nullptr: nothing is sent
        const char* bodyStart;
        std::vector<std::string> makers;
    };
    const std::vector<Case> cases = {
        {"settlement file",
         7,
         5,
         true,
         1,
         "1",
         "CustomerID=7&DataFileID=5&DataFileType=1&",
         {"M1", "M2"}},
        {"permit file", 7, 5, false, 1, "2", "CustomerID=7&DataFileID=5&DataFileType=2&", {"Y-M"}},
        {"fractional data file number",
         7,
         2.5,
         true,
         1,
         "3",
         "CustomerID=7&DataFileID=2.5&DataFileType=1&",
         {"half"}},
        {"no machines: DISABLEDALL alone",
         7,
         9,
         true,
         1,
         "6",
         "CustomerID=7&DataFileID=9&DataFileType=1&",
         {""}},
        {"machines without a main row", 7, 6, true, 0, nullptr, "", {}},
        {"a freed main row", 7, 8, true, 0, nullptr, "", {}},
        {"customer 32768", 32768, 5, true, 0, nullptr, "", {}},
    };
    server_->On(kSetMain, Envelope(1, "T2"));
    server_->On(kSetSub, Envelope(1, "T2"));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ctrlMorvane obj;
        LogIn();
        EXPECT_EQ(obj.SyncUploadP99KikaiIchiran(db_, c.custId, c.dataId, c.kessan), c.result);
        const auto main = server_->RequestsTo(kSetMain);
        const auto subs = server_->RequestsTo(kSetSub);
        if (!c.mainId) {
            EXPECT_TRUE(server_->Requests().empty());
            continue;
        }
        const std::string start = "ID=user1&token=T1&" + std::string(c.bodyStart);
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
            EXPECT_EQ(subs[0].body,
                      "ID=user1&token=T2&" + std::string(c.bodyStart) + "DISABLEDALL=DISABLEDALL&");
        }
    }
}

TEST_F(KikaiIchiranTest, UploadStopsAtARefusedMachineWithTheMainRowStamped) {
    ctrlMorvane obj;
    LogIn();
    server_->On(kSetMain, Envelope(1, "T2"));
    server_->OnSequence(kSetSub, {Envelope(-1, "T3"), Envelope(1, "T4")});
    EXPECT_EQ(obj.SyncUploadP99KikaiIchiran(db_, 7, 5, true), 0);
    EXPECT_EQ(server_->RequestsTo(kSetSub).size(), 1u);
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM t99_KIKAIICHIRAN_MAIN WHERE id = 1"), kNow);

    LogIn();
    server_->On(kSetMain, Envelope(-1, "T5"));
    EXPECT_EQ(obj.SyncUploadP99KikaiIchiran(db_, 7, 9, true), 0);
    EXPECT_TRUE(server_->RequestsTo(kSetSub).empty()) << "a refused main row ends the upload";
    EXPECT_EQ(One(db_, "SELECT InetCheckDate FROM t99_KIKAIICHIRAN_MAIN WHERE id = 6"), "");
}

}  // namespace
}  // namespace morvane::test
