// The eight shared masters between two offices through the reference server: one office
// sends them up, the other finds the server newer, takes them, and then agrees.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "OfficeServerTest.h"
#include "component/ctrlMorvane.h"
#include "masters/cMastBunsekikikan.h"
#include "masters/cMastKessanTaioh.h"
#include "masters/cMastMinister.h"
#include "masters/cMastNyusatsuShorui.h"
#include "masters/cMastNyusatsukikan.h"
#include "masters/cMastSakuseisha.h"
#include "masters/cMastUserStaff.h"
#include "masters/cMastYakushoku.h"
#include "platform/Dao.h"
#include "session/mdlLogin.h"
#include "store/LocalDatabases.h"
#include "store/StoreTestUtil.h"

namespace morvane::test {
namespace {

using Member = std::int32_t (ctrlMorvane::*)(const std::string&);

struct MasterMembers {
    std::string table;
    Member compare, download, upload;
    // Every row as an upload would send it, without the login and the id.
    std::vector<std::string> (*sent)(const std::string& db);
};

template <class Worker>
std::vector<std::string> Sent(const std::string& db) {
    Worker w;
    std::vector<std::string> out;
    if (!w.ReadLocalDB(db)) return out;
    std::int32_t position = 0;
    for (const auto& item : w.Items()) {
        const std::string body = w.UploadBody(item, 0, ++position);
        // Past the login and the item's id, which a download renumbers.
        size_t from = 0;
        for (int i = 0; i < 3; ++i) from = body.find('&', from) + 1;
        out.push_back(body.substr(from));
    }
    return out;
}

#define MASTER(suffix, cls, table)                                                            \
    MasterMembers {                                                                           \
        table, &ctrlMorvane::CompareMaster##suffix, &ctrlMorvane::SyncDownloadMaster##suffix, \
            &ctrlMorvane::SyncUploadMaster##suffix, &Sent<cls>                                \
    }

const std::vector<MasterMembers>& AllMasters() {
    static const std::vector<MasterMembers> all{
        MASTER(BunsekiKikan, cMastBunsekikikan, "tBunsekiKikan"),
        MASTER(KessanTaioh, cMastKessanTaioh, "tKessanTaioh"),
        MASTER(Minister, cMastMinister, "tMinister"),
        MASTER(Nyusatsukikan, cMastNyusatsukikan, "tNyusatsuKikan"),
        MASTER(NyusatsuShorui, cMastNyusatsuShorui, "tNyusatsuShorui"),
        MASTER(Sakuseisha, cMastSakuseisha, "tSakuseisha"),
        MASTER(UserStaff, cMastUserStaff, "tUserStaff"),
        MASTER(Yakushoku, cMastYakushoku, "tYakushoku")};
    return all;
}

class MastersTest : public OfficeServerTest {
protected:
    void SetUp() override { StartServer(); }

    std::string UseOffice(const std::string& name, std::int32_t masterRows) {
        OfficeServerTest::UseOffice(name);
        SampleDataOptions data;
        data.customers = 1;
        data.masterRows = masterRows;
        return CreateLocalDatabases(temp_.Path() / name / "db", data).master.string();
    }
};

TEST_F(MastersTest, OneOfficeSendsItsMastersAndTheOtherTakesThemAndAgrees) {
    const std::string dbA = UseOffice("a", 3);
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
        "UPDATE tUserStaff SET [パスワード] = 'p&w=' || ID, [事務所職員コード] = 'S' || ID, "
        "[住所] = '大阪市';");
    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    for (const auto& m : AllMasters()) {
        SCOPED_TRACE(m.table);
        ASSERT_EQ((a.*m.upload)(dbA), 1);
        EXPECT_EQ((a.*m.compare)(dbA), 0);
    }
    NoBoxes();

    const std::string dbB = UseOffice("b", 0);
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    for (const auto& m : AllMasters()) {
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
    EXPECT_EQ(Rows(dbA, "SELECT ID, vno FROM tYakushoku ORDER BY ID"),
              (std::vector<std::string>{"1|9", "2|8", "3|7"}));
    EXPECT_EQ(Rows(dbB, "SELECT ID, vno FROM tYakushoku ORDER BY ID"),
              (std::vector<std::string>{"1|7", "2|8", "3|9"}));
    EXPECT_EQ(Rows(dbB, "SELECT [パスワード], Flag FROM tUserStaff ORDER BY ID"),
              (std::vector<std::string>{"p&w=1|<null>", "p&w=2|<null>", "p&w=3|<null>"}));
}

}  // namespace
}  // namespace morvane::test
