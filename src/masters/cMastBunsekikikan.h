// The office's master of analysis agencies (table tBunsekiKikan), kept in step with the server.
#pragma once

#include <string>

#include "masters/MasterList.h"

namespace morvane {

struct cMastBunsekikikanItem : record::ListItem {
    std::string KikanName, DaihyoPost, DaihyoName, RegistNo, RegistDateYear, RegistDateMonth,
        RegistDateDay, Flag, vno;
};

class cMastBunsekikikan : public masters::MasterList<cMastBunsekikikanItem> {
public:
    cMastBunsekikikan() : MasterList(Declaration()) {}
    static const record::ListDecl<cMastBunsekikikanItem>& Declaration();
};

}  // namespace morvane
