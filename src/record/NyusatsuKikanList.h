// A customer's bidding agencies (table tCustomerNyusatsuKanri) as a list of the customer
// record: a grid of fixed rows a customer, in which only the filled rows count.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "lists/ListDecl.h"
#include "lists/ListWorker.h"

namespace morvane {

struct cCustKihonNyusatsuKikanItem : record::ListItem {
    std::int32_t LocalIndex = 0;
    std::string KikanName, Kubun;
    std::array<std::string, 10> Nendo;  // one slot a fiscal year
    std::array<std::string, 10> Reserved;

    // No agency, division nor year: a row of the grid not in use.
    bool Blank() const;
};

class NyusatsuKikanList : public record::ListWorker<cCustKihonNyusatsuKikanItem> {
public:
    NyusatsuKikanList() : ListWorker(Declaration()) {}
    static const record::ListDecl<cCustKihonNyusatsuKikanItem>& Declaration();
};

}  // namespace morvane
