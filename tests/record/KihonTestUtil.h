// Replies of the customer record pages, a customer database with one tCustomer row, and a
// clock that stands still, for the record tests.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Clock.h"
#include "state/ProcessState.h"
#include "store/LocalDatabases.h"
#include "store/StoreTestUtil.h"

namespace morvane::test {

using Tags = std::vector<std::pair<std::string, std::string>>;

// The 15 tags a main read requires, with plain values.
inline Tags RequiredTags() {
    return {{"AcDate", "3月31日"},
            {"ZipCode0", "100"},
            {"ZipCode1", "0001"},
            {"Addr0", "東京都"},
            {"addr1", "千代田区"},
            {"Addr2", "一番町1"},
            {"CorpName0", "株式会社一"},
            {"ApfName0", "一 太郎"},
            {"Tel0", "03"},
            {"TEL1", "1111"},
            {"TEL2", "2222"},
            {"Fax0", "03"},
            {"FAX1", "3333"},
            {"FAX2", "4444"},
            {"ExOther17", "5"}};
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

class FixedClock final : public platform::Clock {
public:
    explicit FixedClock(DateValue now) : now_(now) {}
    DateValue Now() const override { return now_; }
    void Set(DateValue now) { now_ = now; }

private:
    DateValue now_;
};

// An empty customer database in the folder, with the clock fixed at 2024/06/01 09:00:00.
inline std::filesystem::path EmptyCustomerDb(const std::filesystem::path& folder,
                                             std::shared_ptr<FixedClock>& clock) {
    clock = std::make_shared<FixedClock>(DateValue::FromCivil({2024, 6, 1, 9, 0, 0}));
    State().SetClock(clock);
    return CreateLocalDatabases(folder, {}).customer;
}

}  // namespace morvane::test
