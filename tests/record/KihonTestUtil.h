// Replies of the record, list and master pages built tag by tag, and the fixture of the tests
// that run a worker on real local databases under a clock that stands still.
#pragma once

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "component/ctrlMorvane.h"
#include "platform/Clock.h"
#include "state/ProcessState.h"
#include "store/LocalDatabases.h"
#include "store/StoreTestUtil.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"

namespace morvane::test {

using Tags = std::vector<std::pair<std::string, std::string>>;

// Tags written "tag=text|tag=text|...".
inline Tags TagsOf(std::string_view text) {
    Tags tags;
    while (!text.empty()) {
        const std::string_view one = text.substr(0, text.find('|'));
        const size_t eq = one.find('=');
        tags.emplace_back(std::string(one.substr(0, eq)), std::string(one.substr(eq + 1)));
        text.remove_prefix(std::min(text.size(), one.size() + 1));
    }
    return tags;
}

// The 15 tags a main read requires, with plain values.
inline Tags RequiredTags() {
    return TagsOf(Golden("record/test-util.txt").Joined("required tags"));
}

// The tags with some replaced (an empty text for a tag of `drop` leaves it out).
inline Tags With(Tags tags, const Tags& changes, const std::string& drop = {}) {
    for (const auto& [tag, text] : changes)
        for (auto& t : tags)
            if (t.first == tag) t.second = text;
    if (!drop.empty()) std::erase_if(tags, [&](const auto& t) { return t.first == drop; });
    return tags;
}

inline std::string Elements(const Tags& tags) {
    std::string out;
    for (const auto& [tag, text] : tags) out += "<" + tag + ">" + text + "</" + tag + ">";
    return out;
}

// The Customer payload: CustomerID, RecordUpdate, CompKihon with the tags, then `after`.
inline std::string KihonPayload(const Tags& tags, const std::string& stamp = "2024/05/01 10:00:00",
                                const std::string& after = {}, int custId = 7) {
    return "<Customer><CustomerID>" + std::to_string(custId) + "</CustomerID><RecordUpdate>" +
           stamp + "</RecordUpdate><CompKihon><result>1</result>" + Elements(tags) +
           "</CompKihon>" + after + "</Customer>";
}

inline std::string Document(const std::string& payload) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><reply>" + payload + "</reply>";
}

// One item element: every tag with its value, in order, less the tags left out.
inline std::string ItemXml(const std::string& itemTag, Tags tags,
                           const std::map<std::string, std::string>& changed = {},
                           const std::set<std::string>& leftOut = {}) {
    for (auto& [tag, value] : tags)
        if (changed.count(tag)) value = changed.at(tag);
    std::erase_if(tags, [&](const auto& t) { return leftOut.count(t.first) > 0; });
    return "<" + itemTag + ">" + Elements(tags) + "</" + itemTag + ">";
}

// "<Memo>List" with "<Memo>Count" (the items' number unless given), the stamp and the items.
inline std::string ListXml(const std::string& stem, const std::string& stamp,
                           const std::vector<std::string>& items, int count = -1) {
    std::string out = "<" + stem + "List><" + stem + "Count>" +
                      std::to_string(count < 0 ? static_cast<int>(items.size()) : count) + "</" +
                      stem + "Count><RecordUpdate>" + stamp + "</RecordUpdate>";
    for (const auto& item : items) out += item;
    return out + "</" + stem + "List>";
}

// The Customer payload of a list reply.
inline std::string ListPayload(const std::string& stem, int custId, const std::string& stamp,
                               const std::vector<std::string>& items, int count = -1) {
    return "<Customer><CustomerID>" + std::to_string(custId) + "</CustomerID>" +
           ListXml(stem, stamp, items, count) + "</Customer>";
}

// A list reply of customer 7.
inline std::string ListReply(const std::string& stem, const std::vector<std::string>& items,
                             const std::string& stamp = "2024/05/01 10:00:00") {
    return Document(ListPayload(stem, 7, stamp, items));
}

// A memo item, its text "note <id>", with some tags changed or left out.
inline std::string MemoItem(int id, std::map<std::string, std::string> changed = {},
                            const std::set<std::string>& leftOut = {}) {
    changed.insert({{"MemoItemID", std::to_string(id)}, {"History", "note " + std::to_string(id)}});
    return ItemXml("MemoItem", TagsOf(Golden("record/test-util.txt").Joined("memo")), changed,
                   leftOut);
}

class FixedClock final : public platform::Clock {
public:
    explicit FixedClock(DateValue now) : now_(now) {}
    DateValue Now() const override { return now_; }
    void Set(DateValue now) { now_ = now; }

private:
    DateValue now_;
};

// Empty local databases in the test's folder, with the clock fixed at 2024/06/01 09:00:00;
// `db_` is the customer database.
class RecordDbTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        clock_ = std::make_shared<FixedClock>(DateValue::FromCivil({2024, 6, 1, 9, 0, 0}));
        State().SetClock(clock_);
        paths_ = CreateLocalDatabases(temp_.Path() / "db", {});
        db_ = paths_.customer.string();
    }
    // Moves the clock to the hour of 2024/06/01.
    void At(int hour) { clock_->Set(DateValue::FromCivil({2024, 6, 1, hour, 0, 0})); }
    // A fresh public object, logged in: a new object resets the login, so it comes first.
    ctrlMorvane& LoggedIn() {
        obj_ = std::make_unique<ctrlMorvane>();
        LogIn();
        return *obj_;
    }

    LocalDatabasePaths paths_;
    std::string db_;
    std::shared_ptr<FixedClock> clock_;
    std::unique_ptr<ctrlMorvane> obj_;
};

}  // namespace morvane::test
