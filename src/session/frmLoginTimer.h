// The form that is never shown and owns the timer keeping an idle login alive at the
// server: one tick a minute, a small request on every 20th.
#pragma once

#include <cstdint>

#include "platform/Forms.h"

namespace morvane {

class frmLoginTimer final : public forms::Form {
public:
    explicit frmLoginTimer(forms::Toolkit& toolkit);

    // Refreshes at once.
    void DoTimer();
    std::int32_t Counter() const { return counter_; }
    void SetCounter(std::int32_t value) { counter_ = value; }

    static constexpr int kTickMilliseconds = 60000;
    static constexpr std::int32_t kRefreshEvery = 20;
    static constexpr std::int32_t kCounterLimit = 2000000000;

protected:
    void OnLoad() override;
    void OnUnload() override;

private:
    void Tick();
    // Posts the keep-alive while logged in, else stops the timer for good. The reply check
    // may reset the login and so destroy this form: nothing may touch it after the post.
    void RefreshLogin();

    forms::Timer& tmr_;
    std::int32_t counter_ = 0;
};

}  // namespace morvane
