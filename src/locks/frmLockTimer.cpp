#include "locks/frmLockTimer.h"

#include <string>

#include "locks/mdlLock.h"
#include "session/mdlLogin.h"
#include "state/mdlMsgBox.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane {
namespace {

// The master's refusal carries the customer's caption too; the host's users know it so.
constexpr const char* kRefusedTitle = "顧客情報のロック";
constexpr const char* kCustomerRefused =
    "顧客情報をロックできませんでした。 \r\n他のユーザーが利用中の可能性があります。";
constexpr const char* kMasterRefused =
    "マスタ情報をロックできませんでした。 \r\n他のユーザーが利用中の可能性があります。";

// Works on copies of the numbers only: the request may end the form that asked.
void RequestLock(std::int32_t custId, std::int32_t mastId) {
    const LockKind kind = custId >= 1 ? LockKind::Customer : LockKind::Master;
    std::string reply;
    try {
        reply = kind == LockKind::Customer
                    ? SendRequest(page::kLockComp, LowerCustomerBody(custId))
                    : SendRequest(page::kLockMaster, LowerMasterBody(mastId));
    } catch (...) {
        // A failed exchange is told as a refusal, like an empty reply.
    }
    ParseLockInfo(reply, kind);
    if (GetLoginState() == 1 && LockState(kind) == 1 && !reply.empty()) return;
    // The timer goes on, and the next renewal tries to take the lock again.
    MsgBox(kind == LockKind::Customer ? kCustomerRefused : kMasterRefused,
           forms::MsgIcon::Exclamation, kRefusedTitle);
}

}  // namespace

frmLockTimer::frmLockTimer(forms::Toolkit& toolkit, std::int32_t custId, std::int32_t mastId)
    : Form(toolkit, "frmLockTimer", "frmLockTimer"),
      CustID(custId),
      MastID(mastId),
      tmr_(Add<forms::Timer>("tmr")) {
    tmr_.onTimer = [this] { Tick(); };
}

void frmLockTimer::OnLoad() {
    tmr_.SetInterval(kTickMilliseconds);
    tmr_.SetTimerEnabled(true);
    // The first tick, called by hand, brings the counter to 0 and so asks at once.
    counter_ = -1;
}

void frmLockTimer::OnUnload() { tmr_.SetTimerEnabled(false); }

void frmLockTimer::Tick() {
    try {
        ++counter_;
        if (counter_ % kRenewEvery != 0) return;
        if (CustID < 1 && MastID < 1) {
            tmr_.SetTimerEnabled(false);
            return;
        }
        RequestLock(CustID, MastID);
    } catch (...) {
        // A tick runs on the host's message loop: nothing may escape into it.
    }
}

}  // namespace morvane
