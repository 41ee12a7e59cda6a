// The members of the comparison family: the stamps of the last difference and the dialog
// that lets the user choose between the two versions.
#include <exception>

#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "session/mdlErrTrap.h"
#include "state/ProcessState.h"
#include "store/frmSelectCompareMsg.h"

namespace morvane {

std::string ctrlMorvane::InetDateServer() const { return State().inetDateServer; }
std::string ctrlMorvane::InetDateLocal() const { return State().inetDateLocal; }
std::string ctrlMorvane::InetDateCheck() const { return State().inetDateCheck; }

std::int32_t ctrlMorvane::ShowCompareMsg(forms::Form* OwnerForm, const std::string& DataTitle,
                                         const Value&, const Value&, const Value&, const Value&) {
    try {
        return ShowCompareMsgDlg(OwnerForm, DataTitle);
    } catch (...) {
        CaptureError(std::current_exception());
        ErrTrap();
        return 0;
    }
}

void RegisterStoreMembers(DispatchTable& t) {
    t.Property("InetDateServer", &ctrlMorvane::InetDateServer);
    t.Property("InetDateLocal", &ctrlMorvane::InetDateLocal);
    t.Property("InetDateCheck", &ctrlMorvane::InetDateCheck);
    t.Method("ShowCompareMsg", &ctrlMorvane::ShowCompareMsg,
             {"OwnerForm", "DataTitle", "Param1", "Param2", "Param3", "Param4"});
}

}  // namespace morvane
