// A customer's settlement records (up to five accounting terms and a data file each), kept
// in step between the server and the table tCustomerKessanHistory.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "lists/ListDecl.h"
#include "lists/ListWorker.h"

namespace morvane {

struct cCustKessanItem : record::ListItem {
    std::string RecDate, ExDate, ScDate, DataFile;
    std::int32_t CheckEx = 0;
    std::string other;
    std::int32_t CheckOther = 0;
    std::string OtherDate1, OtherDate2, other1, other2, other3, RegDate, UpdateDate;
    std::array<std::string, 5> AcPeriod, AcDateS, AcDateE;
    std::int32_t CheckSync = 0;
    std::array<std::int32_t, 5> ZaimuType{}, CalcWay{};
    std::int32_t DefaultUse = 0;
    std::array<std::string, 5> ProfDate;
    std::int32_t DataFileID = 0;
};

class cCustKessan : public record::ListWorker<cCustKessanItem> {
public:
    cCustKessan() : ListWorker(Declaration()) {}
    static const record::ListDecl<cCustKessanItem>& Declaration();
};

}  // namespace morvane
