#include "record/GyoshuFields.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <unordered_map>

#include "store/mdlMorvaneCommon.h"
#include "util/Text.h"

namespace morvane {
namespace {

using R = KihonRecord;
using record::Cmp;
using record::Conv;
using record::Guard;

constexpr std::string_view kStampFormat = "yyyy/MM/dd hh:mm:ss";

const KihonField& MainRow(std::string_view key) {
    const auto& rows = KihonFields();
    const auto at =
        std::find_if(rows.begin(), rows.end(), [&](const KihonField& r) { return r.key == key; });
    if (at == rows.end()) throw std::logic_error("no main record field " + std::string(key));
    return *at;
}

std::vector<KihonField> BuildHeader() {
    std::vector<KihonField> rows;
    for (std::string_view key :
         {"ApfPlace", "MinName", "MinCode", "PmtCheck0", "PmtCheck1", "PmtYear", "PmtNo", "PApDate",
          "PmtDate0", "PmtDate1", "PmtDate2"}) {
        KihonField row = MainRow(key);
        if (row.conv == Conv::Date) {
            row.conv = Conv::Text;  // sent raw, unlike the main record's upload
            row.cmp = Cmp::DateFormat;
            row.format = kStampFormat;
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

// Keys and tags are held as views: the texts live as long as the table.
const std::vector<std::string>& GridNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> n;
        for (const char* stem : {"EPmtCheck", "EPmtDate"})
            for (int i = 1; i <= kGyoshuCount; ++i) n.push_back(stem + std::to_string(i));
        return n;
    }();
    return names;
}

std::vector<KihonField> BuildGrid() {
    const auto& names = GridNames();
    std::vector<KihonField> rows(kGyoshuFlags);
    for (int i = 0; i < kGyoshuCount; ++i) {
        KihonField& check = rows[i];
        check.tag = check.key = names[i];
        check.column = "EPmtCheck";
        check.table = kGyoshuTable;
        check.slot = {&R::EPmtCheck, static_cast<size_t>(i)};
        check.conv = Conv::NzLong;
        check.cmp = Cmp::Long;

        KihonField& date = rows[kGyoshuCount + i];
        date.tag = date.key = names[kGyoshuCount + i];
        date.column = "EPmtDate";
        date.table = kGyoshuTable;
        date.slot = {&R::EPmtDate, static_cast<size_t>(i)};
        date.conv = Conv::Text;  // the reader keeps a date as "yyyy/MM/dd"; sent raw
        date.cmp = Cmp::DateFormat;
        date.format = "yyyy/MM/dd";
        date.guard = Guard::NullUnlessDate;
    }
    return rows;
}

}  // namespace

const std::vector<KihonField>& GyoshuHeaderFields() {
    static const std::vector<KihonField> rows = BuildHeader();
    return rows;
}

const std::vector<KihonField>& GyoshuGridFields() {
    static const std::vector<KihonField> rows = BuildGrid();
    return rows;
}

std::string GyoshuDateText(std::string_view text) {
    const auto date = DateValue::Parse(text);
    return date ? FormatDate(*date, "yyyy/MM/dd") : std::string();
}

int GyoshuGridRow(std::string_view upperTag) {
    static const std::unordered_map<std::string, int> rowOfTag = [] {
        std::unordered_map<std::string, int> m;
        const auto& rows = GyoshuGridFields();
        for (size_t i = 0; i < rows.size(); ++i)
            m.emplace(ToUpperAscii(rows[i].tag), static_cast<int>(i));
        return m;
    }();
    const auto at = rowOfTag.find(std::string(upperTag));
    return at == rowOfTag.end() ? -1 : at->second;
}

}  // namespace morvane
