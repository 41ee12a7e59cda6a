// The table scan into the snapshot: its exceptions by index, and the scan of all customers
// against the scan of one.
#include "RosterTestUtil.h"
#include "roster/cCustList.h"
#include "roster/cCustListSync.h"

namespace morvane::test {
namespace {

constexpr const char* kT = "2024/05/01 10:00:00";
constexpr const char* kLater = "2024/05/01 11:00:00";

class ScanTest : public RosterDbTest {
protected:
    void SetUp() override {
        RosterDbTest::SetUp();
        Sql(paths_.customer, data_["customer seed"]);
        Sql(paths_.prefcustom, data_["prefecture seed"]);
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
    // One customer's answers for a table: flag, local, server and compared stamps, backed up.
    std::string Answers(int id, int i) {
        const cCustListSyncItem& c = Item(id);
        return std::to_string(c.SyncFlag(i)) + "|" + c.RecordUpdate_lc(i) + "|" +
               c.RecordUpdate_sv(i) + "|" + c.RecordUpdate_comp(i) + "|" +
               (c.Backuped(i) ? "+" : "-");
    }
    void ExpectAnswers(const std::string& key) {
        for (const auto& row : data_.Table(key))
            EXPECT_EQ(Answers(std::stoi(row[0]), std::stoi(row[1])), row[2])
                << key << ": " << row[0] << "/" << row[1];
    }

    Golden data_{"roster/scan.txt"};
    cCustList list_;
    cCustListSync sync_;
};

// Trades follow the customer's own row; an ordinary table with a difference is not backed
// up, the print table always is, the permit form when it has rows; hidden permit rows and
// blank bidding rows are not looked at; unknown indexes count as backed up, negative ones not.
// The scan of all leaves a table without local rows at its start values; the scan of one
// judges it against empty local stamps, for that customer alone.
TEST_F(ScanTest, ExceptionsOfTheBackedUpRuleAndTheScanOfOne) {
    Scan(0);
    ExpectAnswers("scan of all");
    EXPECT_FALSE(Item(1).AllBackuped());
    // Customer 3 is not on the server: none of its rows reached the snapshot.
    EXPECT_EQ(sync_.FindById(3), nullptr);
    Scan(2);
    ExpectAnswers("scan of 2");
    Scan(1);
    ExpectAnswers("scan of 1");
}

TEST_F(ScanTest, RemovingACustomerLeavesTheOthersAnswersInPlace) {
    Scan(0);
    std::vector<std::string> before, after;
    for (int i = 0; i < kBackupTableCount; ++i) before.push_back(Answers(2, i));
    sync_.Remove("K1");
    ASSERT_EQ(sync_.FindById(1), nullptr);
    for (int i = 0; i < kBackupTableCount; ++i) after.push_back(Answers(2, i));
    EXPECT_EQ(after, before);
    // A later scan still writes to the right customer.
    Scan(2);
    EXPECT_EQ(Answers(2, 25), data_.Table("scan of 2")[0][2]);
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
