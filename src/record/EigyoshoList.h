// A customer's main and branch offices (table tCustomerEigyosyo) as a list of the customer
// record: the item and the declaration the list machinery reads, compares, writes and sends.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "lists/ListDecl.h"
#include "lists/ListWorker.h"

namespace morvane {

struct cCustKihonEigyoshoItem : record::ListItem {
    std::int32_t MainEigyo = 0, MainRendo = 0;  // 1 or 0
    std::string Name, Kana;
    std::int32_t S_Code = 0;
    std::string PrefName, CityName, Address;
    std::array<std::string, 2> Yubin;
    std::array<std::string, 3> TEL;
    // The trades as they travel and are stored: values separated by tabs.
    std::string Gyosyu_String;
    std::array<std::string, 11> Reserved;

    // One value a trade, from the text: 31 slots, pieces past them ignored, missing ones 0.
    std::array<std::int16_t, 31> Gyosyu() const;
};

class EigyoshoList : public record::ListWorker<cCustKihonEigyoshoItem> {
public:
    EigyoshoList() : ListWorker(Declaration()) {}
    static const record::ListDecl<cCustKihonEigyoshoItem>& Declaration();
};

}  // namespace morvane
