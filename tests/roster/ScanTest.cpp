// The table scan into the snapshot: its exceptions by index, and the scan of all customers
// against the scan of one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RosterTestUtil.h"
#include "roster/cCustList.h"
#include "roster/cCustListSync.h"
#include "store/StoreTestUtil.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

constexpr const char* kT = "2024/05/01 10:00:00";
constexpr const char* kLater = "2024/05/01 11:00:00";

class ScanTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        paths_ = CreateLocalDatabases(temp_.Path() / "data");
        // A hidden permit row of 1, a visible one of 2; a wholly blank bidding row of 1 with a
        // stamp, a filled one of 2.
        Sql(paths_.customer, R"(
            INSERT INTO tCustomer (id, disabled, RecordUpdate, InetCheckDate) VALUES
              (1, 0, '2024-05-01 10:00:00', '2024-05-01 10:00:00'),
              (2, 0, '2024-05-01 10:00:00', '2024-05-01 10:00:00'),
              (3, 0, '2024-05-01 10:00:00', '2024-05-01 10:00:00');
            INSERT INTO tCustomerGyoshu (CustomerID, RecordUpdate, InetCheckDate) VALUES
              (1, '2024-05-01 10:00:00', '2024-05-01 10:00:00'),
              (2, '2024-05-01 10:00:00', '2024-05-01 10:00:00');
            INSERT INTO tCustomerHistory (CustomerID, RecordUpdate, InetCheckDate) VALUES
              (1, '2024-05-01 10:00:00', '2024-05-01 10:00:00'),
              (3, '2024-05-01 10:00:00', '2024-05-01 10:00:00');
            INSERT INTO tCustomerKyokaHistory (CustomerID, Ver511HideFlag, RecordUpdate) VALUES
              (1, 1, '2024-06-01 00:00:00'), (2, 0, '2024-04-01 00:00:00');
            INSERT INTO tCustomerNyusatsuKanri (CustomerID, RecordUpdate) VALUES
              (1, '2024-06-01 00:00:00');
            INSERT INTO tCustomerNyusatsuKanri (CustomerID, Nendo3, RecordUpdate) VALUES
              (2, '2023', '2024-03-01 00:00:00');)");
        Sql(paths_.prefcustom, R"(
            INSERT INTO t28_KYOKA_SHINSEI_HYOSHI (CustomerID, RecordUpdate, InetCheckDate) VALUES
              (1, '2024-05-01 10:00:00', '2024-05-01 10:00:00');
            INSERT INTO t99_PRINT_CUSTOMERDATA (CustomerID, RecordUpdate, InetCheckDate) VALUES
              (1, '2024-05-01 10:00:00', '2024-05-01 10:00:00');)");
        // The server moved customer 1 everywhere, customer 2 in its trades and permit form.
        RosterEntry one{1, "C1", "一", "ｲﾁ", 1, {}};
        for (int i : {0, 2, 3, 8, 25, 42}) one.stamps[i] = kLater;
        RosterEntry two{2, "C2", "二", "ﾆ", 1, {{0, kT}, {2, kLater}, {25, kLater}}};
        ASSERT_TRUE(list_.ReadXML(RosterReply({one, two})));
        for (const auto& item : list_) sync_.Add(item->Key, item->id);
    }
    void Scan(std::int32_t custId) {
        list_.CompareLocalDBTable(paths_.customer.string(), paths_.prefcustom.string(), sync_,
                                  custId);
    }
    const cCustListSyncItem& Item(int id) { return *sync_.FindById(id); }

    LocalDatabasePaths paths_;
    cCustList list_;
    cCustListSync sync_;
};

// One customer's answers for a table: flag, local, server and compared stamps, backed up.
std::string Answers(const cCustListSyncItem& c, int i) {
    return std::to_string(c.SyncFlag(i)) + "|" + c.RecordUpdate_lc(i) + "|" + c.RecordUpdate_sv(i) +
           "|" + c.RecordUpdate_comp(i) + "|" + (c.Backuped(i) ? "+" : "-");
}

TEST_F(ScanTest, ExceptionsOfTheBackedUpRule) {
    Scan(0);
    const std::string t = kT, later = kLater;
    const struct {
        int id, table;
        std::string answers;
    } rows[] = {
        {1, 0, "1|" + t + "|" + later + "|" + t + "|-"},
        // Trades follow the customer's own row: 1 is not backed up there, 2 is.
        {1, 2, "1|" + t + "|" + later + "|" + t + "|-"},
        {2, 0, "0|" + t + "|" + t + "|" + t + "|+"},
        {2, 2, "1|" + t + "|" + later + "|" + t + "|+"},
        // An ordinary table with a difference is not backed up.
        {1, 3, "1|" + t + "|" + later + "|" + t + "|-"},
        // The print table always counts as backed up; the permit form when it has rows.
        {1, 42, "1|" + t + "|" + later + "|" + t + "|+"},
        {1, 25, "1|" + t + "|" + later + "|" + t + "|+"},
        // Hidden permit rows and blank bidding rows are not looked at.
        {1, 5, "0||||+"},
        {2, 5, "2|2024/04/01|||-"},
        {1, 8, "0||||+"},
        {2, 8, "2|2024/03/01|||-"},
        // Indexes outside the table: unknown ones count as backed up, negative ones do not.
        {1, 53, "0||||+"},
        {1, -1, "0||||-"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(Answers(Item(r.id), r.table), r.answers) << r.id << "/" << r.table;
    EXPECT_FALSE(Item(1).AllBackuped());
    // Customer 3 is not on the server: none of its rows reached the snapshot.
    EXPECT_EQ(sync_.FindById(3), nullptr);
}

TEST_F(ScanTest, ScanOfOneJudgesMissingTablesTheScanOfAllLeaves) {
    Scan(0);
    // Customer 2 has no permit form rows: the scan of all leaves its start values.
    EXPECT_TRUE(Item(2).Backuped(25));
    EXPECT_EQ(Item(2).SyncFlag(25), 0);
    EXPECT_EQ(Item(2).RecordUpdate_sv(25), "");
    EXPECT_TRUE(Item(1).Backuped(8));
    EXPECT_EQ(Item(1).SyncFlag(8), 0);

    Scan(2);
    // The scan of one judges the table against empty local stamps: the server is newer,
    // and without rows the permit form is not backed up.
    EXPECT_EQ(Item(2).SyncFlag(25), 1);
    EXPECT_FALSE(Item(2).Backuped(25));
    EXPECT_EQ(Item(2).RecordUpdate_sv(25), kLater);
    EXPECT_EQ(Item(2).RecordUpdate_lc(25), "");
    // Customer 1 was not part of that scan.
    EXPECT_EQ(Item(1).SyncFlag(8), 0);
    Scan(1);
    EXPECT_EQ(Item(1).SyncFlag(8), 1);
    EXPECT_FALSE(Item(1).Backuped(8));
}

TEST_F(ScanTest, RemovingACustomerLeavesTheOthersAnswersInPlace) {
    Scan(0);
    auto answers = [&](int i) { return Answers(Item(2), i); };
    std::vector<std::string> before;
    for (int i = 0; i < kBackupTableCount; ++i) before.push_back(answers(i));
    sync_.Remove("K1");
    ASSERT_EQ(sync_.FindById(1), nullptr);
    for (int i = 0; i < kBackupTableCount; ++i)
        EXPECT_EQ(answers(i), before[static_cast<size_t>(i)]) << "table " << i;
    // A later scan still writes to the right customer.
    Scan(2);
    EXPECT_EQ(Item(2).RecordUpdate_sv(25), kLater);
    EXPECT_FALSE(Item(2).Backuped(25));
}

TEST_F(ScanTest, MissingPrefectureFileStopsAfterTheCustomerTables) {
    std::filesystem::remove(paths_.prefcustom);
    Scan(0);
    EXPECT_EQ(Item(1).SyncFlag(3), 1);    // stored before the failure
    EXPECT_EQ(Item(1).SyncFlag(42), 0);   // never reached
    ASSERT_EQ(kit_->Boxes().size(), 1u);  // the error trap told the user
    EXPECT_NE(kit_->Boxes()[0].text.find("3024"), std::string::npos);
}

}  // namespace
}  // namespace morvane::test
