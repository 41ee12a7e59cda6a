// Each kind of data between two offices through the reference server: one office sends it up,
// the other finds the server newer, takes it and then agrees, and both would then send the
// same bodies.
#include <gtest/gtest.h>

#include "OfficeServerTest.h"
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
#include "support/Golden.h"
#include "util/Text.h"

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

Golden Data() { return Golden("e2e/round-trip.txt"); }

// A trip's SQL for the sending office and the texts its bodies hold are in the data file
// under its name.
struct Trip {
    const char* name;
    std::vector<Kind> kinds;
    SampleDataOptions data;
    Bodies (*bodies)(const std::string& db);
    size_t count;
};

void PrintTo(const Trip& trip, std::ostream* os) { *os << trip.name; }

const Trip kTrips[] = {
    {"Record",
     {kKihon},
     {.customers = 3},
     [](const std::string& db) { return Record(db, false); },
     1},
    {"Trades",
     {kKihon, kGyoshu},
     {.customers = 3},
     [](const std::string& db) { return Record(db, true); },
     1},
    {"DatedRecords",
     {LIST("settlement records", CustomerKessanList), LIST("permit records", CustomerKyokaList),
      LIST("other records", CustomerOtherList)},
     {},
     [](const std::string& db) {
         return Join({Items<cCustKessan>(db, "RecDate"), Items<cCustKyoka>(db, "other"),
                      Items<cCustKihonOther>(db, "DataFile")});
     },
     4},  // the hidden permit row stays home
    // Staff and entries in position order; the blank grid row stays home and the filled ones
    // travel with their positions closed up.
    {"CustomerLists",
     {LIST("staff", CustomerSyokuinList), LIST("offices", CustomerEigyoshoList),
      LIST("memos", CustomerMemoList), LIST("bidding agencies", CustomerNyusatsuKikanList),
      LIST("bidding entries", CustomerNyusatsuSankaList)},
     {},
     [](const std::string& db) {
         return Join({Items<ShokuinList>(db, "no"), Items<EigyoshoList>(db, "MainEigyo"),
                      Items<MemoList>(db, "History"), Items<NyusatsuKikanList>(db, "KikanName"),
                      Items<NyusatsuSankaList>(db, "KikanCode")});
     },
     10},
};

class RoundTripTest : public OfficeServerTest, public ::testing::WithParamInterface<Trip> {};

TEST_P(RoundTripTest, OneOfficeSendsAndTheOtherTakesAndAgrees) {
    const Trip& trip = GetParam();
    const std::string name = trip.name;
    const auto [dbA, dbB] = RoundTrip(trip.kinds, Data()[name + " script"], trip.data);
    const Bodies sent = trip.bodies(dbA);
    ASSERT_EQ(sent.size(), trip.count);
    EXPECT_EQ(trip.bodies(dbB), sent);
    std::string all;
    for (const std::string& body : sent) all += "\n" + body;
    all += "\n";
    size_t at = 0;
    for (const std::string& line : Data().Lines(name + " holds")) {
        const std::string text = ReplaceAll(line, "\\n", "\n");
        at = all.find(text, at);
        ASSERT_NE(at, std::string::npos) << text << " after the last one, in\n" << all;
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

using MastersTest = OfficeServerTest;

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
    dao::RunScript(dbA, Data()["masters script"]);
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
              Data().Lines("masters job titles"));
    EXPECT_EQ(Rows(dbB, "SELECT [パスワード], Flag FROM tUserStaff ORDER BY ID"),
              Data().Lines("masters staff passwords"));
}

}  // namespace
}  // namespace morvane::test
