// A settlement item of the dated record pages, for the dated record tests.
#pragma once

#include <map>
#include <set>
#include <string>

#include "record/KihonTestUtil.h"
#include "support/Golden.h"

namespace morvane::test {

// The 48 tags of a settlement item, id first.
inline Tags KessanTags(int id) {
    return With(TagsOf(Golden("dated/kessan.txt").Joined("item")),
                {{"KessanDataItemID", std::to_string(id)},
                 {"DataFile", "kessan" + std::to_string(id) + ".dat"}});
}

inline std::string KessanItem(int id, const std::map<std::string, std::string>& changed = {},
                              const std::set<std::string>& leftOut = {}) {
    return ItemXml("KessanDataItem", KessanTags(id), changed, leftOut);
}

}  // namespace morvane::test
