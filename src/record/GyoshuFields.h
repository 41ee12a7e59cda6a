// The trades exchange declared as field rows: the permit header it shares with the main
// record, and the grid of 31 trades, each a check value and a date.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "record/KihonFields.h"

namespace morvane {

inline constexpr const char* kGyoshuTable = "tCustomerGyoshu";
inline constexpr int kGyoshuCount = 31;
inline constexpr int kGyoshuFlags = 2 * kGyoshuCount;

// The eleven columns of tCustomer that travel with the trades, in the body's order. The
// dates compare as full stamps and go up as they stand.
const std::vector<KihonField>& GyoshuHeaderFields();

// EPmtCheck1..31, then EPmtDate1..31: the body's order, and row n is flag n. Slot i of the
// arrays is the trade with GyoshuCode i + 1; the columns are those of that trade's row.
const std::vector<KihonField>& GyoshuGridFields();
inline const KihonField& GyoshuCheckField(int i) { return GyoshuGridFields().at(i); }
inline const KihonField& GyoshuDateField(int i) { return GyoshuGridFields().at(kGyoshuCount + i); }

// A trade's date as the reader keeps it: "yyyy/MM/dd" when the text is a date, else "".
std::string GyoshuDateText(std::string_view text);

// The grid row of an upper-cased tag, or -1.
int GyoshuGridRow(std::string_view upperTag);

}  // namespace morvane
