// The office's master of authors named on papers (table tSakuseisha), all texts, in id order.
#pragma once

#include <string>

#include "masters/MasterList.h"

namespace morvane {

struct cMastSakuseishaItem : record::ListItem {
    std::string ZipCode1, ZipCode2, Address, Office, Belong, UserName, userNo, TEL1, TEL2, TEL3,
        FAX1, FAX2, FAX3, Mail, Others1, Others2, Others3;
};

class cMastSakuseisha : public masters::MasterList<cMastSakuseishaItem> {
public:
    cMastSakuseisha() : MasterList(Declaration()) {}
    static const record::ListDecl<cMastSakuseishaItem>& Declaration();
};

}  // namespace morvane
