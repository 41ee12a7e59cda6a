// A customer's other data files (a file name with two dates each), kept in step between the
// server and the table tCustomerOtherFile.
#pragma once

#include <string>

#include "lists/ListDecl.h"
#include "lists/ListWorker.h"

namespace morvane {

struct cCustKihonOtherItem : record::ListItem {
    std::string DataFile, RegDate, UpdateDate, other;
};

class cCustKihonOther : public record::ListWorker<cCustKihonOtherItem> {
public:
    cCustKihonOther() : ListWorker(Declaration()) {}
    static const record::ListDecl<cCustKihonOtherItem>& Declaration();
};

}  // namespace morvane
