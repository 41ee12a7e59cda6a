// Replies of the customer record's list pages (offices, memos, staff) built tag by tag, for
// the list tests.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "KihonTestUtil.h"

namespace morvane::test {

// One item element: every tag with its value, in order, less the tags left out.
inline std::string ListItemXml(const std::string& itemTag, const Tags& tags,
                               const std::map<std::string, std::string>& changed = {},
                               const std::set<std::string>& leftOut = {}) {
    std::string out = "<" + itemTag + ">";
    for (const auto& [tag, value] : tags) {
        if (leftOut.count(tag)) continue;
        const auto at = changed.find(tag);
        out += "<" + tag + ">" + (at == changed.end() ? value : at->second) + "</" + tag + ">";
    }
    return out + "</" + itemTag + ">";
}

// The Customer payload of a list reply: "Memo" gives MemoList, MemoCount and the items.
inline std::string CustListPayload(const std::string& stem, int custId, const std::string& stamp,
                                   const std::vector<std::string>& items, int count = -1) {
    std::string out = "<Customer><CustomerID>" + std::to_string(custId) + "</CustomerID><" + stem +
                      "List><" + stem + "Count>" +
                      std::to_string(count < 0 ? static_cast<int>(items.size()) : count) + "</" +
                      stem + "Count><RecordUpdate>" + stamp + "</RecordUpdate>";
    for (const auto& item : items) out += item;
    return out + "</" + stem + "List></Customer>";
}

}  // namespace morvane::test
