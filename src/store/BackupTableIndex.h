// The numbered index of the 53 backed-up tables: the same number means the same table in
// the server's roster stamps, in the host and here.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace morvane {

inline constexpr int kBackupTableCount = 53;

// Indexes the scan treats apart.
inline constexpr int kIndexCustomer = 0;
inline constexpr int kIndexGyoshu = 2;
inline constexpr int kIndexKyokaHistory = 5;
inline constexpr int kIndexNyusatsuHistory = 7;
inline constexpr int kIndexNyusatsuKanri = 8;
inline constexpr int kIndexLastCustomerDb = 9;
inline constexpr int kIndexT28KyokaShinseiHyoshi = 25;
inline constexpr int kIndexPrintCustomerData = 42;

struct BackupTable {
    const char* name;
    bool inPrefCustom;  // else in the customer database
};

const std::array<BackupTable, kBackupTableCount>& BackupTables();

// The scan's aggregate statement for one index: every customer (custId 0) or one.
std::string BackupTableStatement(int index, std::int32_t custId);

}  // namespace morvane
