#include "component/ctrlMorvane.h"

#include "dated/cCustDataFile.h"
#include "dated/cCustKessan.h"
#include "dated/cCustKihonOther.h"
#include "dated/cCustKyoka.h"
#include "locks/mdlLock.h"
#include "masters/cMastBunsekikikan.h"
#include "masters/cMastKessanTaioh.h"
#include "masters/cMastMinister.h"
#include "masters/cMastNyusatsuShorui.h"
#include "masters/cMastNyusatsukikan.h"
#include "masters/cMastSakuseisha.h"
#include "masters/cMastUserStaff.h"
#include "masters/cMastYakushoku.h"
#include "prefcust/cP99Inin.h"
#include "record/cCustKihon.h"
#include "roster/cCustList.h"
#include "roster/cCustListSync.h"

#include "session/mdlLogin.h"
#include "state/ProcessState.h"

namespace morvane {

ctrlMorvane::ctrlMorvane() {
    ++State().liveObjects;
    State().objectUsage = 0;
    ResetLogin();
}

ctrlMorvane::~ctrlMorvane() {
    StopLoginTimer();
    // With the last object the lock renewals end, unreleased, as at the end of the process:
    // nobody is left to release them, and the host's toolkit may go next.
    if (--State().liveObjects == 0) DropLockTimers();
    // The slots empty themselves, each by itself, as the members go.
}

void ctrlMorvane::UseToolkit(std::shared_ptr<forms::Toolkit> toolkit) {
    State().SetToolkit(std::move(toolkit));
}

void ctrlMorvane::setObjectUsage(std::int32_t n) { State().objectUsage = n; }
std::int32_t ctrlMorvane::LoginState() const { return GetLoginState(); }
void ctrlMorvane::SetDisableMorvane() { SetLoginState(99); }
std::string ctrlMorvane::LoginAccountUserName() const { return GetLoginUserName(); }
std::string ctrlMorvane::LoginAccountContractorName() const { return GetLoginContractorName(); }
std::string ctrlMorvane::LoginAccountContractBegin() const { return GetLoginContractBegin(); }
std::string ctrlMorvane::LoginAccountContractEnd() const { return GetLoginContractEnd(); }
std::string ctrlMorvane::LoginAccountSharedCount() const {
    return std::to_string(GetLoginSharedCount());
}
std::string ctrlMorvane::LoginAccountMaxCustomer() const {
    return std::to_string(GetLoginMaxCustomer());
}

}  // namespace morvane
