// Each kind of data between two offices through the reference server: one office sends it up,
// the other finds the server newer, takes it and then agrees, and both would then send the
// same bodies.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "OfficeServerTest.h"
#include "component/ctrlMorvane.h"
#include "dated/cCustKessan.h"
#include "dated/cCustKihonOther.h"
#include "dated/cCustKyoka.h"
#include "masters/cMastBunsekikikan.h"
#include "masters/cMastKessanTaioh.h"
#include "masters/cMastMinister.h"
#include "masters/cMastNyusatsuShorui.h"
#include "masters/cMastNyusatsukikan.h"
#include "masters/cMastSakuseisha.h"
#include "masters/cMastUserStaff.h"
#include "masters/cMastYakushoku.h"
#include "platform/Dao.h"
#include "record/NyusatsuKikanList.h"
#include "record/NyusatsuSankaList.h"
#include "record/cCustKihon.h"
#include "session/mdlLogin.h"
#include "store/LocalDatabases.h"
#include "store/StoreTestUtil.h"

namespace morvane::test {
namespace {

using Kind = OfficeServerTest::CustomerKind;
using Bodies = std::vector<std::string>;

const Kind kKihon{"customer record", &ctrlMorvane::CompareCustomerKihon,
                  &ctrlMorvane::SyncDownloadCustomerKihon,
                  &ctrlMorvane::SyncUploadCustomerKihonNormal, -1};
// The record just sent carries the header, but the server has no grid yet: the office's grid
// is the newer one.
const Kind kGyoshu{"trades", &ctrlMorvane::CompareCustomerKihonGyosyu,
                   &ctrlMorvane::SyncDownloadCustomerKihonGyosyu,
                   &ctrlMorvane::SyncUploadCustomerKihonGyosyu, 2};
#define LIST(name, member)                                                       \
    Kind {                                                                       \
        name, &ctrlMorvane::Compare##member, &ctrlMorvane::SyncDownload##member, \
            &ctrlMorvane::SyncUpload##member, -1                                 \
    }

// The bodies an upload of each live item would post, from the first key on: past the login
// and the item's id, which a download renumbers.
template <class List>
Bodies Items(const std::string& db, const std::string& firstKey) {
    List list;
    EXPECT_TRUE(list.ReadLocalDB(db, 2));
    Bodies out;
    std::int32_t position = 0;
    for (const auto& item : list.Items()) {
        const std::string body = list.UploadBody(item, 2, ++position);
        out.push_back(body.substr(body.find("&" + firstKey + "=")));
    }
    return out;
}

Bodies Record(const std::string& db, bool trades) {
    cCustKihon k;
    EXPECT_TRUE(k.ReadLocalNormal(db, 2));
    const std::string body = trades ? k.GyoshuUploadBody(2) : k.UploadBody(2);
    return {body.substr(body.find("&CustomerID="))};
}

Bodies Join(std::initializer_list<Bodies> parts) {
    Bodies all;
    for (const Bodies& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

struct Trip {
    const char* name;
    std::vector<Kind> kinds;
    SampleDataOptions data;
    std::string script;  // run on the sending office's customer database
    Bodies (*bodies)(const std::string& db);
    size_t count;
    // Texts the sent bodies hold, found in this order; each body starts after a newline.
    std::vector<std::string> holds;
};

void PrintTo(const Trip& trip, std::ostream* os) { *os << trip.name; }

std::string Trades() {
    // Customer 2's own 31 trades, some checked and dated, in place of the sample rows.
    std::string grid =
        "DELETE FROM tCustomerGyoshu WHERE CustomerID = 2;"
        "UPDATE tCustomer SET ApfPlace = '大阪府知事', MinName = '建設', MinCode = '27', "
        "PmtCheck0 = 1, PmtYear = '6', PmtNo = '55#1', PApDate = '2024-04-01 10:00:00', "
        "PmtDate0 = '2024-04-02 00:00:00' WHERE id = 2;";
    for (int n = 1; n <= 31; ++n)
        grid +=
            "INSERT INTO tCustomerGyoshu (CustomerID, disabled, GyoshuCode, EPmtCheck, EPmtDate, "
            "RecordUpdate) VALUES (2, 0, " +
            std::to_string(n) + ", " + std::to_string(n % 4) + ", " +
            (n % 5 ? std::string("NULL") : "'2023-0" + std::to_string(n / 5) + "-15 00:00:00'") +
            ", '2024-06-01 08:00:00');";
    return grid;
}

const Trip kTrips[] = {
    {"Record",
     {kKihon},
     {.customers = 3},
     "UPDATE tCustomer SET Code = 'C&2', AcDate = '2019-03-31 00:00:00', Addr0 = '大阪府', "
     "addr1 = '北区', CorpName0 = '梅田建設株式会社', ApfName0 = '梅田 一郎', Fax0 = '06', "
     "FAX2 = '6666', TAddr0 = '東京都', Other7 = 'x', PmtNo = '123#45', ExOther13 = 'a' || "
     "char(9) || 'b', ExOther17 = '12', PmtCheck1 = 2, PApDate = '2024-04-01 10:00:00', "
     "PmtDate0 = '2024-04-02 00:00:00', SeturituDate = '2001-02-03 00:00:00', UserStaffID = 4, "
     "KengyoNaiyo = '不動産', NotKanyo = 1 WHERE id = 2;"
     "UPDATE tCustomerKeisin SET CheckEx = 7 WHERE CustomerID = 2;",
     [](const std::string& db) { return Record(db, false); },
     1,
     {"&Code=C&2&", "&other7=45&", "&ExOther13=a\tb&", "&PmtNo=123&", "&CheckEx=7&"}},
    {"Trades",
     {kKihon, kGyoshu},
     {.customers = 3},
     Trades(),
     [](const std::string& db) { return Record(db, true); },
     1,
     {"&PmtNo=55&", "&EPmtCheck31=3&EPmtDate1=&", "&EPmtDate30=2023/06/15&"}},
    {"DatedRecords",
     {LIST("settlement records", CustomerKessanList), LIST("permit records", CustomerKyokaList),
      LIST("other records", CustomerOtherList)},
     {},
     // Dates the upload would otherwise fill with its own time are set.
     "INSERT INTO tCustomerKessanHistory (id, CustomerID, disabled, vno, RecDate, ExDate, "
     "DataFile, "
     "CheckEx, Other, CheckOther, OtherDate1, OtherDate2, RegDate, UpdateDate, other1, AcPeriod0, "
     "AcDateS0, CheckSync, ZaimuType0, CalcWay4, DefaultUse, ProfDate2, DataFileID) VALUES "
     "(1, 2, 0, 1, '2024-04-01 10:00:00', '2024-03-31 00:00:00', '決算&1.dat', 1, '<第1期>', "
     "NULL, '2024-04-02 08:00:00', '2024-04-03 08:00:00', '2024-04-01 09:00:00', "
     "'2024-04-01 09:30:00', 'a=b', '12', '2023-04-01 00:00:00', 1, 2, 3, 1, "
     "'2024-06-30 00:00:00', 17), (2, 2, 0, 2, '2023-04-01 10:00:00', NULL, 'k2.dat', 0, '', 0, "
     "'2023-04-02 08:00:00', '2023-04-03 08:00:00', '2023-04-01 09:00:00', "
     "'2023-04-01 09:30:00', NULL, NULL, NULL, 0, 0, 0, 0, NULL, 0);"
     "INSERT INTO tCustomerKyokaHistory (id, CustomerID, disabled, vno, Other, PApDate, AcPeriod, "
     "DataFile, CheckSync, DefaultUse, Ver511HideFlag, DataFileID) VALUES (1, 2, 0, 1, "
     "'許可&更新', '2024-04-01 00:00:00', '5', 'kyoka.pdf', 1, 1, 0, 3), "
     "(2, 2, 0, 2, 'hidden', NULL, '', '', 0, 0, 1, 0);"
     "INSERT INTO tCustomerOtherFile (id, CustomerID, disabled, DataFile, RegDate, UpdateDate, "
     "Other) VALUES (1, 2, 0, '図面.pdf', '2024-04-01 10:00:00', '2024-04-02 11:30:15', 'a=b&c');",
     [](const std::string& db) {
         return Join({Items<cCustKessan>(db, "RecDate"), Items<cCustKyoka>(db, "other"),
                      Items<cCustKihonOther>(db, "DataFile")});
     },
     4,  // the hidden permit row stays home
     {"&DataFile=決算&1.dat&", "&other=<第1期>&CheckOther=1&", "&DataFileID=17&vno=1&",
      "\n&other=許可&更新&", "\n&DataFile=図面.pdf&", "&other=a=b&c&"}},
    {"CustomerLists",
     {LIST("staff", CustomerSyokuinList), LIST("offices", CustomerEigyoshoList),
      LIST("memos", CustomerMemoList), LIST("bidding agencies", CustomerNyusatsuKikanList),
      LIST("bidding entries", CustomerNyusatsuSankaList)},
     {},
     "INSERT INTO tCustomerMeibo (id, CustomerID, disabled, vno, No, Name1, Name2, BirthDate, "
     "SikakuCode1, LicenceName1, Jokin, Other10, SenninGyosyuN, SenninSikakuCode) VALUES "
     "(1, 2, 0, 2, '2', '佐藤', '花子', '1985-07-07', 17, '一級建築士', '非常勤', 'a=b&c', "
     "'101', '5A17'), (2, 2, 0, 1, '1', '山田', '太郎', NULL, 0, '', '常勤', '', NULL, NULL);"
     "INSERT INTO tCustomerEigyosyo (id, CustomerID, disabled, vno, No, MainEigyo, MainRendo, "
     "Name, S_Code, Gyosyu, Reserved3) VALUES (1, 2, 0, 1, 2, 1, 1, '本店', 13, '1\t0\t2', "
     "'r<3>'), (2, 2, 0, 2, 3, 0, 0, '大阪支店', 27, '', NULL);"
     "INSERT INTO tCustomerHistory (id, CustomerID, disabled, vno, History, RegDate, UpdateDate) "
     "VALUES (1, 2, 0, 1, '初回&面談', '2024-04-01 10:00:00', '2024-04-02 11:30:15'), "
     "(2, 2, 0, 2, '更新', NULL, '2024-05-01 09:00:00');"
     // A grid of three rows, the middle one blank.
     "INSERT INTO tCustomerNyusatsuKanri (id, CustomerID, disabled, LocalIndex, KikanName, "
     "Kubun, Nendo1, Nendo10) VALUES (1, 2, 0, 1, '大阪府', 'A&B', 'R6', ''), "
     "(2, 2, 0, 2, '', '', '', ''), (3, 2, 0, 3, '', '', '', 'R7');"
     "UPDATE tCustomer SET KanriNendoNyusatsu = '2024' WHERE id = 2;"
     "INSERT INTO tCustomerNyusatsuHistory_V5 (id, CustomerID, disabled, vno, KikanCode, "
     "Effective, Reservation, Other, DataFile, CheckSync, Other1) VALUES "
     "(1, 2, 0, 2, 'K-01', 1, 0, 'x=y&z', '入札.pdf', 1, ''), "
     "(2, 2, 0, 1, 'K-02', 0, 3, '', '', 0, '<b>'), (3, 5, 1, 1, 'old', 0, 0, '', '', 0, '');",
     [](const std::string& db) {
         return Join({Items<ShokuinList>(db, "no"), Items<EigyoshoList>(db, "MainEigyo"),
                      Items<MemoList>(db, "History"), Items<NyusatsuKikanList>(db, "KikanName"),
                      Items<NyusatsuSankaList>(db, "KikanCode")});
     },
     10,
     // Staff and entries in position order; the blank grid row stays home and the filled ones
     // travel with their positions closed up.
     {"\n&no=1&name1=山田&", "&jokin=非常勤&", "&other10=a=b&c&", "&Reserved3=r<3>&",
      "&History=初回&面談&",
      "\n&KikanName=大阪府&Kubun=A&B&Nendo1=R6&Nendo2=&Nendo3=&Nendo4=&Nendo5=&Nendo6=&Nendo7=&"
      "Nendo8=&Nendo9=&Nendo10=&LocalIndex=1&\n",
      "&Nendo10=R7&LocalIndex=2&",
      "\n&KikanCode=K-02&Effective=0&Reservation=3&Other=&DataFile=&CheckSync=0&Other1=<b>&"
      "vno=1&\n"}},
};

class RoundTripTest : public OfficeServerTest, public ::testing::WithParamInterface<Trip> {
protected:
    void SetUp() override { StartServer(); }
};

TEST_P(RoundTripTest, OneOfficeSendsAndTheOtherTakesAndAgrees) {
    const Trip& trip = GetParam();
    const auto [dbA, dbB] = RoundTrip(trip.kinds, trip.script, trip.data);
    const Bodies sent = trip.bodies(dbA);
    ASSERT_EQ(sent.size(), trip.count);
    EXPECT_EQ(trip.bodies(dbB), sent);
    std::string all;
    for (const std::string& body : sent) all += "\n" + body;
    all += "\n";
    size_t at = 0;
    for (const std::string& text : trip.holds) {
        at = all.find(text, at);
        ASSERT_NE(at, std::string::npos) << text << " after the last one, in\n" << all;
    }
    if (std::string(trip.name) == "CustomerLists") {
        EXPECT_EQ(One(dbB,
                      "SELECT COUNT(*) FROM tCustomerNyusatsuKanri WHERE CustomerID = 2 AND "
                      "disabled = 0"),
                  "100")
            << "the office that took the grid has it whole";
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, RoundTripTest, ::testing::ValuesIn(kTrips),
                         [](const auto& info) { return std::string(info.param.name); });

using MasterMember = std::int32_t (ctrlMorvane::*)(const std::string&);
struct Master {
    const char* table;
    MasterMember compare, download, upload;
    Bodies (*sent)(const std::string& db);
};

template <class Worker>
Bodies MasterBodies(const std::string& db) {
    Worker w;
    Bodies out;
    if (!w.ReadLocalDB(db)) return out;
    std::int32_t position = 0;
    for (const auto& item : w.Items()) {
        const std::string body = w.UploadBody(item, 0, ++position);
        size_t from = 0;  // past the login and the item's id, which a download renumbers
        for (int i = 0; i < 3; ++i) from = body.find('&', from) + 1;
        out.push_back(body.substr(from));
    }
    return out;
}

#define MASTER(suffix, cls, table)                                                            \
    Master {                                                                                  \
        table, &ctrlMorvane::CompareMaster##suffix, &ctrlMorvane::SyncDownloadMaster##suffix, \
            &ctrlMorvane::SyncUploadMaster##suffix, &MasterBodies<cls>                        \
    }

class MastersTest : public OfficeServerTest {
protected:
    void SetUp() override { StartServer(); }
};

TEST_F(MastersTest, OneOfficeSendsItsMastersAndTheOtherTakesThemAndAgrees) {
    const Master masters[] = {MASTER(BunsekiKikan, cMastBunsekikikan, "tBunsekiKikan"),
                              MASTER(KessanTaioh, cMastKessanTaioh, "tKessanTaioh"),
                              MASTER(Minister, cMastMinister, "tMinister"),
                              MASTER(Nyusatsukikan, cMastNyusatsukikan, "tNyusatsuKikan"),
                              MASTER(NyusatsuShorui, cMastNyusatsuShorui, "tNyusatsuShorui"),
                              MASTER(Sakuseisha, cMastSakuseisha, "tSakuseisha"),
                              MASTER(UserStaff, cMastUserStaff, "tUserStaff"),
                              MASTER(Yakushoku, cMastYakushoku, "tYakushoku")};
    const auto office = [&](const std::string& name, std::int32_t rows) {
        return (std::filesystem::path(UseOfficeDb(name, {.customers = 1, .masterRows = rows}))
                    .parent_path() /
                kMasterDatabaseName)
            .string();
    };
    const std::string dbA = office("a", 3);
    dao::RunScript(
        dbA,
        "UPDATE tKessanTaioh SET vno = ID, Flag = ID - 2;"
        "UPDATE tBunsekiKikan SET vno = ID, RegistNo = 'R&' || ID;"
        "UPDATE tMinister SET vno = ID;"
        "UPDATE tNyusatsuKikan SET vno = ID, NeedDoc57 = 1, NeedDoc99 = ID, "
        "DistributionPlice = '配布<' || ID || '>', ReceptionYear = 2024;"
        "UPDATE tYakushoku SET vno = 10 - ID, Flag = 1;"
        "UPDATE tNyusatsuShorui SET vno = ID * 3, Visible = 1;"
        "UPDATE tSakuseisha SET UserNo = 'N' || ID, Others3 = 'a=b';"
        "UPDATE tUserStaff SET [パスワード] = 'p&w=' || ID, [事務所職員コード] = 'S' || ID;");
    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    for (const auto& m : masters) {
        SCOPED_TRACE(m.table);
        ASSERT_EQ((a.*m.upload)(dbA), 1);
        EXPECT_EQ((a.*m.compare)(dbA), 0);
    }
    const std::string dbB = office("b", 0);
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    for (const auto& m : masters) {
        SCOPED_TRACE(m.table);
        EXPECT_EQ((b.*m.compare)(dbB), 1);
        EXPECT_EQ((b.*m.download)(dbB), 1);
        EXPECT_EQ((b.*m.compare)(dbB), 0);
        const auto sentA = m.sent(dbA);
        ASSERT_EQ(sentA.size(), 3u);
        EXPECT_EQ(m.sent(dbB), sentA);
    }
    NoBoxes();
    // The job titles went in their own order (vno 7, 8, 9), so the ids were renumbered.
    EXPECT_EQ(Rows(dbB, "SELECT ID, vno FROM tYakushoku ORDER BY ID"),
              (std::vector<std::string>{"1|7", "2|8", "3|9"}));
    EXPECT_EQ(Rows(dbB, "SELECT [パスワード], Flag FROM tUserStaff ORDER BY ID"),
              (std::vector<std::string>{"p&w=1|<null>", "p&w=2|<null>", "p&w=3|<null>"}));
}

}  // namespace
}  // namespace morvane::test
