// The backup target members: the roster snapshot's flags read per customer, the check
// against the limit, one flag sent, and the dialog that chooses the targets.
#include <exception>

#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "roster/cCustListSync.h"
#include "session/FacadePatterns.h"
#include "session/mdlErrTrap.h"
#include "util/Nz.h"
#include "util/Text.h"

namespace morvane {
namespace {

template <class Result, class Read>
Result ReadItem(const std::unique_ptr<cCustListSync>& sync, std::int32_t custId, Read read) {
    return facade::ReadSlot<Result, cCustListSync>(sync, [&](cCustListSync& s) -> Result {
        const cCustListSyncItem* item = s.FindById(custId);
        return item ? read(*item) : Result{};
    });
}

// The failure end of the members that work on the snapshot.
std::int32_t Failed() {
    CaptureError(std::current_exception());
    ErrTrap();
    return 0;
}

}  // namespace

std::int32_t ctrlMorvane::CustmerInetEnabledFlag(std::int32_t CustID) const {
    return ReadItem<std::int32_t>(custListSync_, CustID,
                                  [](const cCustListSyncItem& i) { return i.InetEnableFlag; });
}

std::string ctrlMorvane::CustmerCode_Server(std::int32_t CustID) const {
    return ReadItem<std::string>(custListSync_, CustID,
                                 [](const cCustListSyncItem& i) { return i.Code; });
}

std::string ctrlMorvane::CustmerCorpName_Server(std::int32_t CustID) const {
    return ReadItem<std::string>(custListSync_, CustID,
                                 [](const cCustListSyncItem& i) { return i.CorpName0; });
}

std::int32_t ctrlMorvane::CheckExistCustID(std::int32_t CustID) const {
    return facade::ReadSlot<std::int32_t, cCustListSync>(
        custListSync_, [&](cCustListSync& s) { return s.CheckExistCustID(CustID); });
}

std::int32_t ctrlMorvane::CheckInetEnabledFlags(const std::string& LocalDB) {
    try {
        if (!custListSync_) return 0;
        return custListSync_->CheckInetEnabledFlags(LocalDB);
    } catch (...) {
        return Failed();
    }
}

std::int32_t ctrlMorvane::SyncUploadCustomerInetEnabledFlag(const std::string& LocalDB,
                                                            std::int32_t CustID,
                                                            std::int32_t nFlag) {
    try {
        // The request needs no snapshot, but without one nothing is sent.
        if (!custListSync_) return 0;
        return custListSync_->SyncUploadInetEnabledFlag(LocalDB, CustID, nFlag);
    } catch (...) {
        return Failed();
    }
}

std::int32_t ctrlMorvane::ShowSelectCustEnabledDlg(forms::Form* OwnerForm,
                                                   const std::string& LocalDB,
                                                   std::int32_t Showtype, const Value& /*Param1*/,
                                                   const Value& /*Param2*/, const Value& /*Param3*/,
                                                   const Value& /*Param4*/) {
    try {
        if (!custListSync_) return 0;
        cCustListSync& sync = *custListSync_;
        if (sync.ShowSelectCustEnabledDlg(OwnerForm, LocalDB, Showtype) != 1) return 0;
        if (Showtype != 1 && Showtype != 2) return 1;
        const std::int32_t flag = Showtype == 1 ? 0 : 1;
        const std::string ids = Showtype == 1 ? sync.DisabledIDs() : sync.EnabledIDs();
        for (const std::string& entry : Split(ids, ",")) {
            if (!IsNumericText(entry)) continue;
            const std::int32_t id = NzLong(entry);
            // The snapshot shows the new flag even when the server keeps the old one.
            if (cCustListSyncItem* item = sync.Item("K" + std::to_string(id)))
                item->InetEnableFlag = flag;
            if (LockCoustomer(id) == 1) {
                sync.SyncUploadInetEnabledFlag(LocalDB, id, flag);
                UnlockCoustomer(id);
            }
        }
        return 1;
    } catch (...) {
        return Failed();
    }
}

void RegisterFlagMembers(DispatchTable& t) {
    t.Method("CustmerInetEnabledFlag", &ctrlMorvane::CustmerInetEnabledFlag, {"CustID"});
    t.Method("CustmerCode_Server", &ctrlMorvane::CustmerCode_Server, {"CustID"});
    t.Method("CustmerCorpName_Server", &ctrlMorvane::CustmerCorpName_Server, {"CustID"});
    t.Method("CheckExistCustID", &ctrlMorvane::CheckExistCustID, {"CustID"});
    t.Method("CheckInetEnabledFlags", &ctrlMorvane::CheckInetEnabledFlags, {"LocalDB"});
    t.Method("SyncUploadCustomerInetEnabledFlag", &ctrlMorvane::SyncUploadCustomerInetEnabledFlag,
             {"LocalDB", "CustID", "nFlag"});
    t.Method("ShowSelectCustEnabledDlg", &ctrlMorvane::ShowSelectCustEnabledDlg,
             {"OwnerForm", "LocalDB", "Showtype", "Param1", "Param2", "Param3", "Param4"});
}

}  // namespace morvane
