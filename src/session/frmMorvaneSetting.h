// The modal settings dialog: the user enters the connection data of the online backup,
// tests them against the server and stores them; a running login is not touched.
#pragma once

#include <string>

#include "platform/Forms.h"

namespace morvane {

class frmMorvaneSetting final : public forms::Form {
public:
    explicit frmMorvaneSetting(forms::Toolkit& toolkit);

    static constexpr const char* kCaption = "モルヴェインの設定";
    static constexpr int kClipboardMilliseconds = 1000;

protected:
    void OnLoad() override;
    void OnQueryUnload(forms::CloseReason reason, bool& cancel) override;

private:
    void cmdOK_Click();
    void cmdConnectionTest_Click();
    void ShowControlPanel();
    void tmrClipboard_Timer();
    // The first empty of the required fields is told in a box; false then.
    bool Require(const std::string& value, const char* message);

    // Owned by the form; set once in the constructor.
    forms::Label* lblConnectinInfo_ = nullptr;
    forms::CheckBox* chkEnabledMorvane_ = nullptr;
    forms::ComboBox* cboServerName_ = nullptr;
    forms::TextBox* txtContractNo_ = nullptr;
    forms::TextBox* txtLoginUID_ = nullptr;
    forms::TextBox* txtLoginPWD_ = nullptr;
    forms::CheckBox* chkSaveLoginPWD_ = nullptr;
    forms::Button* cmdCancel_ = nullptr;
    forms::Timer* tmrClipboard_ = nullptr;

    // As loaded, to tell at OK whether a restart is needed.
    std::string loadedServerName_;
    std::string loadedContractNo_;
};

}  // namespace morvane
