#include "state/LoginState.h"

#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"

namespace morvane {

std::int32_t GetLoginState() { return State().login.loginState; }
void SetLoginState(std::int32_t state) { State().login.loginState = state; }
std::string GetLoginID() { return State().login.loginId; }
std::string GetLoginToken() { return ReadMorvaneSetting(reg::kParam2, ""); }
void SetLoginToken(std::string_view token) { WriteMorvaneSettingUnsynced(reg::kParam2, token); }

std::string GetLoginUserName() { return State().login.userName; }
std::string GetLoginContractorName() { return State().login.contractorName; }
std::string GetLoginContractBegin() { return State().login.contractBegin; }
std::string GetLoginContractEnd() { return State().login.contractEnd; }
std::int32_t GetLoginSharedCount() { return State().login.sharedCount; }
std::int32_t GetLoginMaxCustomer() { return State().login.maxCustomer; }

void ResetLogin() {
    State().login = LoginRecord{};
    StopLoginTimer();
}

void StopLoginTimer() {
    auto& timer = State().loginTimer;
    if (!timer) return;
    timer->Unload();
    timer.reset();
}

}  // namespace morvane
