// The last warning before the chosen backup targets are set for good, with the way to the
// account page for a larger allowance.
#pragma once

#include "platform/Forms.h"

namespace morvane {

class frmSelectEnabledCustListMsg final : public forms::Form {
public:
    explicit frmSelectEnabledCustListMsg(forms::Toolkit& toolkit);

    // True only when the user pressed OK.
    bool OKClick() const { return okClick_; }

protected:
    void OnLoad() override;

private:
    bool okClick_ = false;
};

}  // namespace morvane
