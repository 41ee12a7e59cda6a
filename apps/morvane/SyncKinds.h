// The kinds of data a synchronisation walks, each with the members of the public object that
// compare and move it and the backed-up tables whose stamps it covers.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace morvane {
class ctrlMorvane;
namespace forms {
class Form;
}
}  // namespace morvane

namespace morvane::cli {

enum class KindScope {
    Customer,      // members take (LocalDB, CustID), under the customer's lock
    Master,        // members take (Master.dat path), under the master lock
    CustomerFile,  // members take (CustID, LocalFile[, Owner]): needs the host's walk of files
    CustomerForm,  // members take (prefcustom.dat path, CustID, DataID, bKessan), under the
                   // lock; its first table's rows name the data files its forms belong to
    StampsOnly,    // tables compared by stamp alone: the component has no worker for them
};

// The member signatures a kind's compare, download and upload come in.
using CustomerCall = std::int32_t (ctrlMorvane::*)(const std::string&, std::int32_t);
using MasterCall = std::int32_t (ctrlMorvane::*)(const std::string&);
using FileCompareCall = std::int32_t (ctrlMorvane::*)(std::int32_t, const std::string&);
using FileMoveCall = std::int32_t (ctrlMorvane::*)(std::int32_t, const std::string&, forms::Form*);
using FormCall = std::int32_t (ctrlMorvane::*)(const std::string&, std::int32_t, double, bool);

// One member of the public object, with the name messages and the run log give it.
struct KindMember {
    std::string name;
    std::variant<std::monostate, CustomerCall, MasterCall, FileCompareCall, FileMoveCall, FormCall>
        call;
    explicit operator bool() const { return call.index() != 0; }
};

// What a kind's member is called with; each scope takes its own of these.
struct KindArgs {
    std::string db{};  // Customer.dat, Master.dat or prefcustom.dat
    std::int32_t custId = 0;
    std::string file{};  // CustomerFile: the data file's local path
    double dataId = 0;   // CustomerForm: the data file the form belongs to
    bool kessan = true;  // CustomerForm: a settlement record's data file, else a permit record's
};

struct SyncKind {
    std::string name;  // as the run prints it and the journal keeps it
    KindScope scope = KindScope::Customer;
    std::vector<int> tables;  // backup table indexes whose snapshot flags it covers
    KindMember compare;       // none where the kind has no such member
    KindMember download;
    KindMember upload;
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
