// Replies of the prefecture form pages built tag by tag, and an empty prefcustom.dat with a
// clock that stands still, for the prefecture form tests.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "dated/DatedTestUtil.h"

namespace morvane::test {

// The Customer payload of a form list reply: <stem>List with <stem>Count, the stamp and items.
inline std::string FormListPayload(const std::string& stem, int custId, const std::string& stamp,
                                   const std::vector<std::string>& items, int count = -1) {
    std::string out = "<Customer><CustomerID>" + std::to_string(custId) + "</CustomerID><" + stem +
                      "List><" + stem + "Count>" +
                      std::to_string(count < 0 ? static_cast<int>(items.size()) : count) + "</" +
                      stem + "Count><RecordUpdate>" + stamp + "</RecordUpdate>";
    for (const auto& item : items) out += item;
    return out + "</" + stem + "List></Customer>";
}

// A delegation main item with its eight tags.
inline std::string IninMainItem(int id, const std::string& subShokuin,
                                const std::string& selectDetail,
                                const std::string& makeDate = "2024/02/03") {
    return ItemXml("IninMainItem", {{"IninMainItemID", std::to_string(id)},
                                    {"vno", "1"},
                                    {"MakeDate", makeDate},
                                    {"SubShokuin", subShokuin},
                                    {"SelectDetail", selectDetail},
                                    {"SelectSubShokuin", "2"},
                                    {"PrintDate", "1"},
                                    {"PrintSubShokuin", "0"}});
}

// A delegation sub item with its seven tags; details d0..d3 are "<title>-0".."<title>-3".
inline std::string IninSubItem(int id, int vno, const std::string& title) {
    return ItemXml("IninSubItem", {{"IninSubItemID", std::to_string(id)},
                                   {"vno", std::to_string(vno)},
                                   {"IninTitle", title},
                                   {"IninDetail0", title + "-0"},
                                   {"IninDetail1", title + "-1"},
                                   {"IninDetail2", title + "-2"},
                                   {"IninDetail3", title + "-3"}});
}

// An empty prefcustom.dat beside an empty customer database, with the clock fixed at
// 2024/06/01 09:00:00.
inline std::string EmptyPrefCustomDb(const std::filesystem::path& folder,
                                     std::shared_ptr<FixedClock>& clock) {
    return EmptyCustomerDb(folder, clock).parent_path().append("prefcustom.dat").string();
}

}  // namespace morvane::test
