// The kinds of data a synchronisation walks, each with the members that compare and move it
// and the backed-up tables whose stamps it covers. A kind is live once its members are in
// the dispatch table: a new worker makes its row live without a change here.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace morvane::cli {

enum class KindScope {
    Customer,      // members take (LocalDB, CustID), under the customer's lock
    Master,        // members take (Master.dat path), under the master lock
    CustomerFile,  // members take (CustID, LocalFile, Owner): needs the host's walk of files
    CustomerForm,  // members take (prefcustom.dat path, CustID, DataID, bKessan), under the
                   // lock; its first table's rows name the data files its forms belong to
    StampsOnly,    // tables compared by stamp alone: the component has no worker for them
};

struct SyncKind {
    std::string name;
    KindScope scope = KindScope::Customer;
    std::vector<int> tables;  // backup table indexes whose snapshot flags it covers
    std::string compare;      // member names; empty where the kind has no such member
    std::string download;
    std::string upload;
    std::string fileTable;  // CustomerFile: the records whose DataFile names the files
    std::string records;    // CustomerFile: the kind of those records
    // A move commits its first table before it touches the second: one cut in between is
    // noted in the journal and taken up again.
    bool splitMove = false;
};

// Every kind, in the order the host works them off.
const std::vector<SyncKind>& SyncKinds();

// Folds the snapshot flags of a kind's tables into one decision code: 0 all agree, 1 or 2
// when every differing table points the same way, 3 when they point both ways or any is 3.
int CombineFlags(const std::vector<int>& flags);

// What the snapshot flags of a kind's tables say of it. A list that is only ever sent up
// (no download member) is never stamped as agreed in its second table, so its first table
// rules, and the second only while it says local newer.
int SnapshotDecision(const SyncKind& kind, const std::vector<int>& flags);

}  // namespace morvane::cli
