// Master replies built tag by tag, and an empty Master.dat with a clock that stands still,
// for the master tests.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "dated/DatedTestUtil.h"

namespace morvane::test {

// The Master payload of a master reply with the stem's tags ("KessanTaioh" → KessanTaiohList...).
inline std::string MasterPayload(const std::string& stem, const std::string& stamp,
                                 const std::vector<std::string>& items, int count = -1) {
    std::string out = "<Master><" + stem + "List><" + stem + "Count>" +
                      std::to_string(count < 0 ? static_cast<int>(items.size()) : count) + "</" +
                      stem + "Count><RecordUpdate>" + stamp + "</RecordUpdate>";
    for (const auto& item : items) out += item;
    return out + "</" + stem + "List></Master>";
}

inline std::string TaiohItem(int id, const std::string& taioh, const std::string& flag,
                             const std::string& vno) {
    return ItemXml("KessanTaiohItem", {{"KessanTaiohItemID", std::to_string(id)},
                                       {"Taioh", taioh},
                                       {"Flag", flag},
                                       {"vno", vno}});
}

// Empty masters in <folder>/Master.dat, with the clock fixed at 2024/06/01 09:00:00.
inline std::string EmptyMasterDb(const std::filesystem::path& folder,
                                 std::shared_ptr<FixedClock>& clock) {
    return EmptyCustomerDb(folder, clock).parent_path().append("Master.dat").string();
}

}  // namespace morvane::test
