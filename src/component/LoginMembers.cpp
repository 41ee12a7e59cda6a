// The members of the login dialog, the keep-alive timer, the login hand-over and the
// settings dialog, and their entries in the dispatch table.
#include <exception>
#include <string>

#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "session/mdlErrTrap.h"
#include "session/mdlLogin.h"
#include "session/mdlLoginInfo.h"

namespace morvane {
namespace {

// Members never throw to the host: a failure is trapped and the fallback given.
template <class Fn>
auto Guarded(Fn fn, decltype(fn()) fallback) -> decltype(fn()) {
    try {
        return fn();
    } catch (...) {
        CaptureError(std::current_exception());
        ErrTrap();
        return fallback;
    }
}

}  // namespace

std::int32_t ctrlMorvane::ShowLogin(forms::Form* OwnerForm) {
    return Guarded([&] { return ShowLoginDlg(OwnerForm, 0); }, GetLoginState());
}

void ctrlMorvane::StartLoginTimer(bool bMust) {
    try {
        RunLoginTimer(bMust);
    } catch (...) {
        CaptureError(std::current_exception());
        ErrTrap();
    }
}

std::int32_t ctrlMorvane::RegLoginInfoToPrefCustom() {
    SaveLoginInfo(GetLoginID(), GetLoginToken(), std::to_string(GetLoginState()));
    return 0;
}

std::int32_t ctrlMorvane::ClearLoginInfoToPrefCustom() {
    SaveLoginInfo("", "", "");
    return 0;
}

std::int32_t ctrlMorvane::GetLoginInfoFromPrefCustom() {
    LoadLoginInfo();
    return 0;
}

std::int32_t ctrlMorvane::ShowSetting(forms::Form* OwnerForm) { return ShowSettingDlg(OwnerForm); }

// Deliberately the same dialog as ShowSetting.
std::int32_t ctrlMorvane::ShowInfo(forms::Form* OwnerForm) { return ShowSettingDlg(OwnerForm); }

void RegisterLoginMembers(DispatchTable& t) {
    t.Method("ShowLogin", &ctrlMorvane::ShowLogin, {"OwnerForm"});
    t.Method("StartLoginTimer", &ctrlMorvane::StartLoginTimer, {"bMust"});
    t.Method("RegLoginInfoToPrefCustom", &ctrlMorvane::RegLoginInfoToPrefCustom);
    t.Method("ClearLoginInfoToPrefCustom", &ctrlMorvane::ClearLoginInfoToPrefCustom);
    t.Method("GetLoginInfoFromPrefCustom", &ctrlMorvane::GetLoginInfoFromPrefCustom);
    t.Method("ShowSetting", &ctrlMorvane::ShowSetting, {"OwnerForm"});
    t.Method("ShowInfo", &ctrlMorvane::ShowInfo, {"OwnerForm"});
}

}  // namespace morvane
