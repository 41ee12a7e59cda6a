// The form that is never shown and holds one server lock: it asks for the lock at once and
// then on every tenth tick of a one-minute timer, telling the user when it was refused.
#pragma once

#include <cstdint>

#include "platform/Forms.h"

namespace morvane {

class frmLockTimer final : public forms::Form {
public:
    // Of the two numbers one is set and the other is 0.
    frmLockTimer(forms::Toolkit& toolkit, std::int32_t custId, std::int32_t mastId);

    const std::int32_t CustID;
    const std::int32_t MastID;

    // One tick of the timer, also called by hand for the first request. The request may end
    // this form (the host runs while a dialog of the reply check is up), so nothing of the
    // form is touched after it.
    void Tick();
    std::int32_t Counter() const { return counter_; }

    static constexpr int kTickMilliseconds = 60000;
    static constexpr std::int32_t kRenewEvery = 10;

protected:
    void OnLoad() override;
    void OnUnload() override;

private:
    forms::Timer& tmr_;
    std::int32_t counter_ = 0;
};

}  // namespace morvane
