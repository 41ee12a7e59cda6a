// A settlement item of the dated record pages, for the dated record tests.
#pragma once

#include <map>
#include <set>
#include <string>

#include "record/KihonTestUtil.h"

namespace morvane::test {

// The 48 tags of a settlement item, id first.
inline Tags KessanTags(int id) {
    return TagsOf(
        "KessanDataItemID=" + std::to_string(id) +
        "|RecDate=2024/04/01 10:00:00|ExDate=2024/03/31|ScDate=2024/05/31|DataFile=kessan" +
        std::to_string(id) +
        ".dat|CheckEx=1|Other=memo|CheckOther=0|OtherDate1=2024/04/02 08:00:00|"
        "OtherDate2=2024/04/03 08:00:00|other1=a|other2=b|other3=c|"
        "RegDate=2024/04/01 09:00:00|UpdateDate=2024/04/01 09:30:00|AcPeriod0=10|"
        "AcPeriod1=11|AcPeriod2=12|AcPeriod3=13|AcPeriod4=14|" +
        Numbered("AcDateS", 0, 4, "2023/04/01") + Numbered("AcDateE", 0, 4, "2024/03/31") +
        "CheckSync=1|" + Numbered("ZaimuType", 0, 4, "1") + Numbered("CalcWay", 0, 4, "2") +
        "DefaultUse=1|" + Numbered("ProfDate", 0, 4, "2024/06/30") + "DataFileID=0");
}

inline std::string KessanItem(int id, const std::map<std::string, std::string>& changed = {},
                              const std::set<std::string>& leftOut = {}) {
    return ItemXml("KessanDataItem", KessanTags(id), changed, leftOut);
}

}  // namespace morvane::test
