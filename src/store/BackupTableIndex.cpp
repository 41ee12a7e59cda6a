#include "store/BackupTableIndex.h"

namespace morvane {

const std::array<BackupTable, kBackupTableCount>& BackupTables() {
    static constexpr std::array<BackupTable, kBackupTableCount> kTables{{
        {"tCustomer", false},
        {"tCustomerEigyosyo", false},
        {"tCustomerGyoshu", false},
        {"tCustomerHistory", false},
        {"tCustomerKessanHistory", false},
        {"tCustomerKyokaHistory", false},
        {"tCustomerMeibo", false},
        {"tCustomerNyusatsuHistory_V5", false},
        {"tCustomerNyusatsuKanri", false},
        {"tCustomerOtherFile", false},
        {"t12_BUPPINNONYU", true},
        {"t12_GIJUTSUSHAKEIREKI", true},
        {"t12_GYOMUITAKU", true},
        {"t12_SENNINRYAKUREKI_MAIN", true},
        {"t12_SENNINRYAKUREKI_SHOBATSU", true},
        {"t12_SENNINRYAKUREKI_SHOKUREKI", true},
        {"t27_HENKOTODOKE", true},
        {"t27_JITSUMU_MOSHITATE_MAIN", true},
        {"t27_JITSUMU_MOSHITATE_SUB", true},
        {"t27_KEISHIN_HYOSHI", true},
        {"t27_KESSAN_HENKOTODOKE", true},
        {"t27_KYOKA_SHINSEI_HYOSHI", true},
        {"t27_TEISEI_TODOKEDESHO_MAIN", true},
        {"t27_TEISEI_TODOKEDESHO_SUB", true},
        {"t28_HENKOTODOKE", true},
        {"t28_KYOKA_SHINSEI_HYOSHI", true},
        {"t28_SHOMEINEGAI", true},
        {"t29_HENKOTODOKE", true},
        {"t29_KEISHIN_CHOSHO", true},
        {"t42_SHIYONIN_RYAKUREKI_MAIN", true},
        {"t42_SHIYONIN_RYAKUREKI_SUB", true},
        {"t99_ININ_MAIN", true},
        {"t99_ININ_SUB", true},
        {"t99_ISO9001ICHIRAN_MAIN", true},
        {"t99_ISO9001ICHIRAN_SUB", true},
        {"t99_ISO14001ICHIRAN_MAIN", true},
        {"t99_ISO14001ICHIRAN_SUB", true},
        {"t99_KEISHIN_TEISHUTSUHYO", true},
        {"t99_KIKAIICHIRAN_MAIN", true},
        {"t99_KIKAIICHIRAN_SUB", true},
        {"t99_KYOKA_KAKUNINSHOMEI_MAIN", true},
        {"t99_KYOKA_KAKUNINSHOMEI_SUB", true},
        {"t99_PRINT_CUSTOMERDATA", true},
        {"t99_SHINKOTEKIYO_MAIN", true},
        {"t99_SHINKOTEKIYO_SUB", true},
        {"t99_SYSTEM_OPTION", true},
        {"tKAN_001_002_GIJUTSUSHOKUIN_MAIN", true},
        {"tKAN_001_002_GIJUTSUSHOKUIN_SUB", true},
        {"tKAN_KAKUNINSOFU_MAIN", true},
        {"tKAN_KAKUNINSOFU_SUB", true},
        {"t13_BETSUTOJI_HYOSHI_CHIJI", true},
        {"t13_BETSUTOJI_HYOSHI_DAIJIN", true},
        {"t13_HENKOTODOKE_TEISEI", true},
    }};
    return kTables;
}

std::string BackupTableStatement(int index, std::int32_t custId) {
    if (index < 0 || index >= kBackupTableCount) return {};
    const std::string table = BackupTables()[index].name;
    const std::string key = index == kIndexCustomer ? "id" : "CustomerID";
    const std::string filter = custId >= 1 ? key + " = " + std::to_string(custId) + " AND " : "";
    if (index == kIndexCustomer)
        return "SELECT id, RecordUpdate, InetCheckDate FROM " + table + " WHERE " + filter +
               "disabled = 0 ORDER BY id;";
    const std::string head =
        "SELECT CustomerID, MAX(RecordUpdate) AS rumax, MAX(InetCheckDate) AS cdmax FROM " + table;
    const std::string tail = " GROUP BY CustomerID ORDER BY CustomerID;";
    if (index == kIndexKyokaHistory)
        return head + " WHERE " + filter + "disabled = 0 AND Ver511HideFlag = 0" + tail;
    if (index == kIndexNyusatsuKanri)
        return head + " WHERE " + filter + "disabled = 0 " +
               R"sql( AND ((KikanName<>"") OR (Kubun<>"") OR (Nendo1<>"") OR (Nendo2<>"") OR (Nendo3<>"") OR (Nendo4<>"") OR (Nendo5<>"") OR (Nendo6<>"") OR (Nendo7<>"") OR (Nendo8<>"") OR (Nendo9<>"") OR (Nendo10<>"")))sql" +
               tail;
    return head + " WHERE " + filter + "disabled = 0" + tail;
}

}  // namespace morvane
