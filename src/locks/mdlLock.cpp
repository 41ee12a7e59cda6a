#include "locks/mdlLock.h"

#include <memory>
#include <optional>
#include <string>

#include "locks/frmLockTimer.h"
#include "platform/Xml.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "transport/RequestBody.h"
#include "transport/TransportRun.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"
#include "util/Text.h"

namespace morvane {
namespace {

std::int32_t& StateOf(LockKind kind) {
    return kind == LockKind::Customer ? State().customerLockState : State().masterLockState;
}

std::unique_ptr<forms::Form>& TimerOf(LockKind kind) {
    return kind == LockKind::Customer ? State().customerLockTimer : State().masterLockTimer;
}

void DropTimer(LockKind kind) {
    std::unique_ptr<forms::Form>& slot = TimerOf(kind);
    if (!slot) return;
    slot->Unload();
    slot.reset();
}

std::int32_t Lock(LockKind kind, std::int32_t id) {
    try {
        StateOf(kind) = 0;
        // The lock the old timer held is left to lapse at the server.
        DropTimer(kind);
        const bool customer = kind == LockKind::Customer;
        auto form =
            std::make_unique<frmLockTimer>(State().Toolkit(), customer ? id : 0, customer ? 0 : id);
        frmLockTimer& timer = *form;
        TimerOf(kind) = std::move(form);
        timer.Load();
        // The first request goes at once, after the load, so that the load itself never runs
        // on a form that its own request has ended.
        timer.Tick();
        return GetLoginState() == 1 && StateOf(kind) == 1 ? 1 : 0;
    } catch (...) {
        return 0;
    }
}

std::int32_t Unlock(LockKind kind, std::int32_t id) {
    try {
        const TransportCleanup release;  // past the run's time limit too
        StateOf(kind) = 0;
        DropTimer(kind);
        const std::string reply = kind == LockKind::Customer
                                      ? SendRequest(page::kUnlockComp, LowerCustomerBody(id))
                                      : SendRequest(page::kUnlockMaster, LowerMasterBody(id));
        return GetLoginState() == 1 && !reply.empty() ? 1 : 0;
    } catch (...) {
        return 0;
    }
}

}  // namespace

std::int32_t LockCustomerWorker(std::int32_t custId) { return Lock(LockKind::Customer, custId); }
std::int32_t UnlockCustomerWorker(std::int32_t custId) {
    return Unlock(LockKind::Customer, custId);
}
std::int32_t LockMasterWorker(std::int32_t mastId) { return Lock(LockKind::Master, mastId); }
std::int32_t UnlockMasterWorker(std::int32_t mastId) { return Unlock(LockKind::Master, mastId); }

std::int32_t LockState(LockKind kind) { return StateOf(kind); }

bool ParseLockInfo(std::string_view xml, LockKind kind) {
    std::int32_t& state = StateOf(kind);
    state = 0;
    const auto doc = platform::XmlDocument::Load(xml);
    if (!doc) return false;
    const auto infos = doc->DocumentElement().SelectNodes("LockInfo");
    if (infos.empty()) return false;
    // Either target counts for either kind, and the last result found stands.
    std::optional<std::string> result;
    for (const auto& target : infos.front().Children()) {
        const std::string name = ToUpperAscii(target.Name());
        if (name != "CUSTOMER" && name != "MASTER") continue;
        for (const auto& child : target.Children())
            if (ToUpperAscii(child.Name()) == "RESULT") result = child.Text();
    }
    if (!result || *result != "1") return false;
    state = 1;
    return true;
}

void DropLockTimers() {
    DropTimer(LockKind::Customer);
    DropTimer(LockKind::Master);
    StateOf(LockKind::Customer) = 0;
    StateOf(LockKind::Master) = 0;
}

}  // namespace morvane
