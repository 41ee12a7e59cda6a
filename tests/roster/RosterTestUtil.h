// Rosters as the server sends them, the fixture of the roster tests, a clock that moves by a
// set step on every reading, and the dialogs' rows as the user sees them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "platform/Forms.h"
#include "store/BackupTableIndex.h"
#include "store/LocalDatabases.h"
#include "store/StoreTestUtil.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"

namespace morvane::test {

struct RosterEntry {
    int id = 0;
    std::string code;
    std::string name;
    std::string kana;
    int enableFlag = 1;
    std::map<int, std::string> stamps;  // index -> server stamp; the others are ""
};

// Customer `id` as the tests name it: code "C<id>", name "社<id>", kana "ｼｬ", backed up.
RosterEntry Customer(int id);
std::vector<RosterEntry> Customers(const std::vector<int>& ids);
// The compItem of one customer.
std::string CompItem(const RosterEntry& e);
// The whole judged reply: envelope, compList, CompCount, items.
std::string RosterReply(const std::vector<RosterEntry>& entries, const std::string& token = "T1");
// A gettime.php reply.
std::string TimeReply(const std::string& text);

// Fresh local databases, and a test server whose clock agrees with ours.
class RosterDbTest : public MorvaneTest {
protected:
    void SetUp() override;
    std::string Db() const { return paths_.customer.string(); }
    // The roster page's reply from now on.
    void Serve(const std::vector<RosterEntry>& entries);

    LocalDatabasePaths paths_;
};

// A grid's rows as the user sees them: the first cell's kept value, then the shown texts,
// parted by " | ".
std::vector<std::string> GridRows(const forms::Grid& grid);
// A list view's items: the key, then the texts, parted by " | ".
std::vector<std::string> ListRows(const forms::ListView& list);

class StepClock final : public platform::Clock {
public:
    StepClock(DateValue start, double stepSeconds) : now_(start), step_(stepSeconds) {}
    DateValue Now() const override {
        const DateValue t = now_;
        now_ = DateValue(now_.Days() + step_ * DateValue::kOneSecond);
        return t;
    }

private:
    mutable DateValue now_;
    double step_;
};

}  // namespace morvane::test
