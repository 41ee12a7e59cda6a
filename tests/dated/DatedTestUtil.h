// A settlement item of the dated record pages, for the dated record tests.
#pragma once

#include <map>
#include <set>
#include <string>

#include "record/KihonTestUtil.h"

namespace morvane::test {

// The 48 tags of a settlement item, id first.
inline Tags KessanTags(int id) {
    Tags t{{"KessanDataItemID", std::to_string(id)},
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
    const std::pair<const char*, std::string> fives[] = {
        {"AcPeriod", ""},         {"AcDateS", "2023/04/01"}, {"AcDateE", "2024/03/31"},
        {"ZaimuType", "1"},       {"CalcWay", "2"},          {"ProfDate", "2024/06/30"}};
    for (const auto& [name, value] : fives) {
        if (std::string(name) == "ZaimuType") t.push_back({"CheckSync", "1"});
        if (std::string(name) == "ProfDate") t.push_back({"DefaultUse", "1"});
        for (int i = 0; i < 5; ++i)
            t.push_back({name + std::to_string(i), value.empty() ? std::to_string(10 + i) : value});
    }
    t.push_back({"DataFileID", "0"});
    return t;
}

inline std::string KessanItem(int id, const std::map<std::string, std::string>& changed = {},
                              const std::set<std::string>& leftOut = {}) {
    return ItemXml("KessanDataItem", KessanTags(id), changed, leftOut);
}

}  // namespace morvane::test
