#include "session/frmLoginTimer.h"

#include <memory>

#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane {

frmLoginTimer::frmLoginTimer(forms::Toolkit& toolkit)
    : Form(toolkit, "frmLoginTimer", "frmLoginTimer"), tmr_(Add<forms::Timer>("tmr")) {
    tmr_.onTimer = [this] { Tick(); };
}

void frmLoginTimer::OnLoad() {
    tmr_.SetInterval(kTickMilliseconds);
    tmr_.SetTimerEnabled(true);
}

void frmLoginTimer::OnUnload() { tmr_.SetTimerEnabled(false); }

void frmLoginTimer::DoTimer() { RefreshLogin(); }

void frmLoginTimer::Tick() {
    ++counter_;
    if (counter_ > kCounterLimit) counter_ = -1;
    // The refresh may destroy this form, so it is the last thing the tick does.
    if (counter_ % kRefreshEvery == 0) RefreshLogin();
}

void frmLoginTimer::RefreshLogin() {
    if (GetLoginState() == 1) {
        // A small harmless request: the reply check renews the token or notices expiry.
        SendRequest(page::kGetKessanTaioh, UpperBody());
        return;
    }
    tmr_.SetTimerEnabled(false);
}

void RunLoginTimer(bool must) {
    auto& slot = State().loginTimer;
    if (!slot) {
        auto form = std::make_unique<frmLoginTimer>(State().Toolkit());
        frmLoginTimer& timer = *form;
        slot = std::move(form);
        timer.Load();
        if (must) timer.DoTimer();
        return;
    }
    if (auto* timer = dynamic_cast<frmLoginTimer*>(slot.get())) timer->DoTimer();
}

}  // namespace morvane
