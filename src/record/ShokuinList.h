// A customer's staff roster (table tCustomerMeibo) as a list of the customer record: the
// person item and the declaration the list machinery reads, compares, writes and sends.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "lists/ListDecl.h"
#include "lists/ListWorker.h"

namespace morvane {

struct cCustKihonShokuinItem : record::ListItem {
    std::string No;
    std::array<std::string, 4> Namae;  // family and given name, then their readings
    std::string BirthDate, SaiyoDate;  // era dates "gee/MM/dd"
    std::array<std::int32_t, 10> SikakuCode{};
    std::array<std::int32_t, 2> GyoshuCode{};
    std::string KofuCode, Seibetu, Yakushoku, School, Senko;
    std::array<std::string, 5> LicenceName, LicenceDate;
    std::string Keireki;
    std::array<std::string, 4> JitumuNen;
    std::string Shokusyu, Biko;
    std::array<std::string, 16> Bunrui;  // Bunrui(10) holds a date
    std::string EigyoSho;
    std::int32_t Jokin = 0;  // 1 "常勤", 2 "非常勤", else 0
    std::string Addr;
    std::array<std::string, 10> other;
    // The fixed-width digit texts as they travel and are stored; zeros by default.
    std::string SenninGyosyuN_String = std::string(31, '0');
    std::string SenninGyosyu_String = std::string(31, '0');
    std::string SenninSikakuCode_String = std::string(16, '0');

    // One digit a trade, from the texts.
    std::array<std::uint8_t, 31> SenninGyosyuN() const;
    std::array<std::uint8_t, 31> SenninGyosyu() const;
    // Eight qualification codes, two characters each, converted.
    std::array<std::int16_t, 8> SenninSikakuCode() const;
};

class ShokuinList : public record::ListWorker<cCustKihonShokuinItem> {
public:
    ShokuinList() : ListWorker(Declaration()) {}
    static const record::ListDecl<cCustKihonShokuinItem>& Declaration();
};

// A Sennin text at its width: empty gives the default, else the value padded with zeros on
// its right and cut to the width.
std::string PadSennin(const std::string& value, size_t width);

}  // namespace morvane
