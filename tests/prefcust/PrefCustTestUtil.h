// Items of the delegation form pages, for the prefecture form tests.
#pragma once

#include <string>

#include "record/KihonTestUtil.h"

namespace morvane::test {

// A delegation main item with its eight tags.
inline std::string IninMainItem(int id, const std::string& subShokuin,
                                const std::string& selectDetail,
                                const std::string& makeDate = "2024/02/03") {
    return ItemXml("IninMainItem",
                   TagsOf("IninMainItemID=" + std::to_string(id) + "|vno=1|MakeDate=" + makeDate +
                          "|SubShokuin=" + subShokuin + "|SelectDetail=" + selectDetail +
                          "|SelectSubShokuin=2|PrintDate=1|PrintSubShokuin=0"));
}

// A delegation sub item with its seven tags; details d0..d3 are "<title>-0".."<title>-3".
inline std::string IninSubItem(int id, int vno, const std::string& title) {
    Tags tags{
        {"IninSubItemID", std::to_string(id)}, {"vno", std::to_string(vno)}, {"IninTitle", title}};
    for (int i = 0; i < 4; ++i)
        tags.push_back({"IninDetail" + std::to_string(i), title + "-" + std::to_string(i)});
    return ItemXml("IninSubItem", tags);
}

}  // namespace morvane::test
