// The small modal form without buttons that stands on the screen while the blocking login
// exchange runs; it logs in itself the first time it becomes the active window.
#pragma once

#include <string>

#include "platform/Forms.h"

namespace morvane {

class frmLoginProgress final : public forms::Form {
public:
    explicit frmLoginProgress(forms::Toolkit& toolkit);

    void SetId(std::string id) { id_ = std::move(id); }
    void SetPassword(std::string password) { password_ = std::move(password); }
    void SetContractNo(std::string contractNo) { contractNo_ = std::move(contractNo); }
    // The text the form shows while the exchange runs.
    void ShowWorking();

protected:
    void OnLoad() override;
    void OnActivate() override;

private:
    forms::Label& lblInfo_;
    std::string id_, password_, contractNo_;
    bool shown_ = false;
};

}  // namespace morvane
