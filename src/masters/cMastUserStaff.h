// The office's master of staff users (table tUserStaff), whose tags, keys and columns are Japanese.
#pragma once

#include <string>

#include "masters/MasterList.h"

namespace morvane {

struct cMastUserStaffItem : record::ListItem {
    // The password as the host stores it: held, compared and sent as any other text.
    std::string SyokuinCode, SyokuinName, ZipCode, Address, TEL, FAX, strPW, Flag;
};

class cMastUserStaff : public masters::MasterList<cMastUserStaffItem> {
public:
    cMastUserStaff() : MasterList(Declaration()) {}
    static const record::ListDecl<cMastUserStaffItem>& Declaration();
};

}  // namespace morvane
