// A customer's bidding entries (table tCustomerNyusatsuHistory_V5) as a list of the customer
// record: each entry's agency, effect and reservation, on rows recycled from any customer.
#pragma once

#include <cstdint>
#include <string>

#include "lists/ListDecl.h"
#include "lists/ListWorker.h"

namespace morvane {

struct cCustKihonNyusatsuSankaItem : record::ListItem {
    std::string KikanCode;
    std::int32_t Effective = 0, Reservation = 0, CheckSync = 0;
    std::string other, DataFile, other1;
    std::string other2, other3;  // held only
};

class NyusatsuSankaList : public record::ListWorker<cCustKihonNyusatsuSankaItem> {
public:
    NyusatsuSankaList() : ListWorker(Declaration()) {}
    static const record::ListDecl<cCustKihonNyusatsuSankaItem>& Declaration();
};

}  // namespace morvane
