// Replies of the dated record pages built tag by tag, and a customer database with a clock
// that stands still, for the dated record tests.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "record/KihonTestUtil.h"

namespace morvane::test {

// One item element: every tag with its value, in order, less the tags left out.
inline std::string ItemXml(const std::string& itemTag,
                           const std::vector<std::pair<std::string, std::string>>& tags,
                           const std::map<std::string, std::string>& changed = {},
                           const std::set<std::string>& leftOut = {}) {
    std::string out = "<" + itemTag + ">";
    for (const auto& [tag, value] : tags) {
        if (leftOut.count(tag)) continue;
        const auto at = changed.find(tag);
        const std::string& text = at == changed.end() ? value : at->second;
        out += "<" + tag + ">" + text + "</" + tag + ">";
    }
    return out + "</" + itemTag + ">";
}

// The Customer payload of a list reply with the stem's tags ("Kessan" → KessanDataList...).
inline std::string ListPayload(const std::string& stem, int custId, const std::string& stamp,
                               const std::vector<std::string>& items, int count = -1) {
    std::string out = "<Customer><CustomerID>" + std::to_string(custId) + "</CustomerID><" + stem +
                      "DataList><" + stem + "DataCount>" +
                      std::to_string(count < 0 ? static_cast<int>(items.size()) : count) + "</" +
                      stem + "DataCount><RecordUpdate>" + stamp + "</RecordUpdate>";
    for (const auto& item : items) out += item;
    return out + "</" + stem + "DataList></Customer>";
}

// The 48 tags of a settlement item, id first.
inline std::vector<std::pair<std::string, std::string>> KessanTags(int id) {
    std::vector<std::pair<std::string, std::string>> t{
        {"KessanDataItemID", std::to_string(id)},
        {"RecDate", "2024/04/01 10:00:00"},
        {"ExDate", "2024/03/31"},
        {"ScDate", "2024/05/31"},
        {"DataFile", "kessan" + std::to_string(id) + ".dat"},
        {"CheckEx", "1"},
        {"Other", "memo"},
        {"CheckOther", "0"},
        {"OtherDate1", "2024/04/02 08:00:00"},
        {"OtherDate2", "2024/04/03 08:00:00"},
        {"other1", "a"},
        {"other2", "b"},
        {"other3", "c"},
        {"RegDate", "2024/04/01 09:00:00"},
        {"UpdateDate", "2024/04/01 09:30:00"}};
    for (int i = 0; i < 5; ++i)
        t.push_back({"AcPeriod" + std::to_string(i), std::to_string(10 + i)});
    for (int i = 0; i < 5; ++i) t.push_back({"AcDateS" + std::to_string(i), "2023/04/01"});
    for (int i = 0; i < 5; ++i) t.push_back({"AcDateE" + std::to_string(i), "2024/03/31"});
    t.push_back({"CheckSync", "1"});
    for (int i = 0; i < 5; ++i) t.push_back({"ZaimuType" + std::to_string(i), "1"});
    for (int i = 0; i < 5; ++i) t.push_back({"CalcWay" + std::to_string(i), "2"});
    t.push_back({"DefaultUse", "1"});
    for (int i = 0; i < 5; ++i) t.push_back({"ProfDate" + std::to_string(i), "2024/06/30"});
    t.push_back({"DataFileID", "0"});
    return t;
}

inline std::string KessanItem(int id, const std::map<std::string, std::string>& changed = {},
                              const std::set<std::string>& leftOut = {}) {
    return ItemXml("KessanDataItem", KessanTags(id), changed, leftOut);
}

}  // namespace morvane::test
