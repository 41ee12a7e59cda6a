// The customer's main record as one plain structure, and the one table that declares its
// fields for the reader, the comparisons, the downloads, the loader and the upload.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "lists/FieldRow.h"
#include "util/Value.h"

namespace morvane {

struct KihonRecord {
    std::string Code;
    std::array<std::string, 2> CorpName, CorpKana;
    std::string CorpKanaS;
    std::array<std::string, 2> post, ApfName, ApfKana, ZipCode;
    std::array<std::string, 3> Addr, TEL, FAX;
    std::array<std::string, 2> TZipCode;
    std::array<std::string, 3> TAddr;
    std::string AcDate, KessanTaioh, ChPost, ChName, ChKana;
    std::array<std::string, 3> ChTel, ChFax;
    std::string ChEMail;
    std::array<std::string, 11> other;
    std::array<std::string, 21> ExOther;
    std::array<std::int32_t, 31> EPmtCheck{};
    std::array<std::string, 31> EPmtDate;
    std::string ApfPlace, MinName, MinCode;
    std::array<std::int32_t, 2> PmtCheck{};
    std::string PmtYear, PmtNo, PApDate;
    std::array<std::string, 3> PmtDate;
    std::int32_t CheckEx = 0;
    std::int32_t NyusatsuManage = 0;
    // Held only: nothing in the component fills them.
    std::int32_t FiscalNyusatsuKikanNum = 0;
    std::int32_t FiscalNyusatsuReservationKikanNum = 0;
    std::string SearchPmdDate, SearchGyoshuString;
    // Slot arrays: named data in the slots the field table gives, the rest stays empty.
    std::array<std::string, 11> Reserved1;
    std::array<std::int32_t, 11> Reserved2{};
    std::array<Value, 11> Reserved3;
};

using KihonField = record::FieldRow<KihonRecord>;

inline constexpr const char* kKihonTable = "tCustomer";
inline constexpr const char* kKeisinTable = "tCustomerKeisin";
inline constexpr const char* kNyusatsuTable = "tCustomerNyusatsu";
inline constexpr int kKihonFieldFlags = 85;
inline constexpr int kKihonMainFlags = 15;

// The fields in the reader's order, which is also the order of comparing and sending.
const std::vector<KihonField>& KihonFields();

}  // namespace morvane
