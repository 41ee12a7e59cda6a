// The office's master of settlement responses (table tKessanTaioh), kept in step with the server.
#pragma once

#include <string>

#include "masters/MasterList.h"

namespace morvane {

struct cMastKessanTaiohItem : record::ListItem {
    std::string Taioh, Flag, vno;
};

class cMastKessanTaioh : public masters::MasterList<cMastKessanTaiohItem> {
public:
    cMastKessanTaioh() : MasterList(Declaration()) {}
    static const record::ListDecl<cMastKessanTaiohItem>& Declaration();
};

}  // namespace morvane
