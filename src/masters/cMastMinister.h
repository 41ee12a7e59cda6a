// The office's master of ministers and their places (table tMinister), kept in step with the
// server.
#pragma once

#include <string>

#include "masters/MasterList.h"

namespace morvane {

struct cMastMinisterItem : record::ListItem {
    std::string ApfPlace, MinName, Flag, vno;
};

class cMastMinister : public masters::MasterList<cMastMinisterItem> {
public:
    cMastMinister() : MasterList(Declaration()) {}
    static const record::ListDecl<cMastMinisterItem>& Declaration();
};

}  // namespace morvane
