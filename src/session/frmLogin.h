// The modal login dialog: the user types ID and password, may save the password, logs in
// behind the progress form, or chooses to work without the online backup.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Forms.h"

namespace morvane {

class frmLogin final : public forms::Form {
public:
    explicit frmLogin(forms::Toolkit& toolkit);

    // Why the dialog opened, set before loading: 0 for the host, 1 for an expired token.
    void SetShowtype(std::int32_t showtype) { showtype_ = showtype; }

    // Logs in behind the progress form; nothing happens when either text is empty.
    static void StartLogin(const std::string& id, const std::string& password);

    static constexpr const char* kCaption = "ログイン";

protected:
    void OnLoad() override;
    void OnActivate() override;
    void OnQueryUnload(forms::CloseReason reason, bool& cancel) override;

private:
    void cmdLogin_Click();
    void FocusAndSelect(forms::TextBox& box);

    std::int32_t showtype_ = 0;
    // Owned by the form; set once in the constructor.
    forms::TextBox* txtServerName_ = nullptr;
    forms::TextBox* txtContractNo_ = nullptr;
    forms::TextBox* txtUID_ = nullptr;
    forms::TextBox* txtPWD_ = nullptr;
    forms::CheckBox* chkAutoLogin_ = nullptr;
    forms::Button* cmdLogin_ = nullptr;
    forms::Button* cmdCancel_ = nullptr;
};

}  // namespace morvane
