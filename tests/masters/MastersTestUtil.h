// Master replies built tag by tag, for the master tests.
#pragma once

#include <string>
#include <vector>

#include "record/KihonTestUtil.h"

namespace morvane::test {

// The Master payload of a master reply ("KessanTaioh" gives KessanTaiohList...).
inline std::string MasterPayload(const std::string& stem, const std::string& stamp,
                                 const std::vector<std::string>& items, int count = -1) {
    return "<Master>" + ListXml(stem, stamp, items, count) + "</Master>";
}

inline std::string TaiohItem(int id, const std::string& taioh, const std::string& flag,
                             const std::string& vno) {
    return ItemXml("KessanTaiohItem", {{"KessanTaiohItemID", std::to_string(id)},
                                       {"Taioh", taioh},
                                       {"Flag", flag},
                                       {"vno", vno}});
}

}  // namespace morvane::test
