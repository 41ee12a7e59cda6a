// A customer's permit records, kept in step between the server and the table
// tCustomerKyokaHistory; rows with a Ver511HideFlag take no part in a read or a rewrite.
#pragma once

#include <cstdint>
#include <string>

#include "lists/ListDecl.h"
#include "lists/ListWorker.h"

namespace morvane {

struct cCustKyokaItem : record::ListItem {
    std::string other, PApDate, AcPeriod, AcDateS, AcDateE, DataFile;
    std::int32_t CheckSync = 0;
    std::int32_t DefaultUse = 0;
    std::int32_t Ver511HideFlag = 0;
    std::int32_t DataFileID = 0;
};

class cCustKyoka : public record::ListWorker<cCustKyokaItem> {
public:
    cCustKyoka() : ListWorker(Declaration()) {}
    static const record::ListDecl<cCustKyokaItem>& Declaration();
};

}  // namespace morvane
