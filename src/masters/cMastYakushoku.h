// The office's master of job titles (table tYakushoku), whose order numbers travel as they stand.
#pragma once

#include <string>

#include "masters/MasterList.h"

namespace morvane {

struct cMastYakushokuItem : record::ListItem {
    std::string Yakushoku, Flag, vno;
};

class cMastYakushoku : public masters::MasterList<cMastYakushokuItem> {
public:
    cMastYakushoku() : MasterList(Declaration()) {}
    static const record::ListDecl<cMastYakushokuItem>& Declaration();
};

}  // namespace morvane
