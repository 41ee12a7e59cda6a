#include "session/frmLogin.h"

#include <BuildConfig.h>

#include "session/basTextEncrypt.h"
#include "session/frmLoginProgress.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/basShell.h"
#include "state/mdlMsgBox.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "transport/mdlServerCommon.h"

namespace morvane {

frmLogin::frmLogin(forms::Toolkit& toolkit) : Form(toolkit, "frmLogin", kCaption) {
    AddAt<forms::Label>(0, "lblTitle", "ソラスタ - モルヴェインへ接続");
    AddAt<forms::Label>(1, "lblServerName", "サーバー名 :");
    txtServerName_ = &AddAt<forms::TextBox>(1, "txtServerName");
    AddAt<forms::Label>(2, "lblContractNo", "契約番号 :");
    txtContractNo_ = &AddAt<forms::TextBox>(2, "txtContractNo");
    AddAt<forms::Label>(3, "lblUID", "ユーザーID :");
    txtUID_ = &AddAt<forms::TextBox>(3, "txtUID");
    AddAt<forms::Label>(4, "lblPWD", "パスワード :");
    txtPWD_ = &AddAt<forms::TextBox>(4, "txtPWD");
    chkAutoLogin_ = &AddAt<forms::CheckBox>(5, "chkAutoLogin", "パスワードを保存する");
    cmdLogin_ = &AddAt<forms::Button>(6, "cmdLogin", "ログイン");
    auto& cmdNoConnect = AddAt<forms::Button>(6, "cmdNoConnect", "接続しないで使用する");
    cmdCancel_ = &AddAt<forms::Button>(6, "cmdCancel", "キャンセル");
    AddAt<forms::Label>(7, "lblInfo(0)",
                        "接続先のサーバ名、契約番号を変更するには、[ログイン] または "
                        "[接続しないで使用する] を選択した後、メニューの[システム管理]-[モルヴェ"
                        "インの設定] よりおこなってください。");
    AddAt<forms::Label>(8, "lblInfo(1)",
                        "パスワードを忘れた場合には、管理サイトより再設定をおこなってください。");
    auto& pnlShowControlPanel = AddAt<forms::Panel>(9, "pnlShowControlPanel", "→管理サイトを表示");
    AddAt<forms::Label>(10, "lblInfoCorpName", build::kContactCorp);
    AddAt<forms::Label>(11, "lblInfoAddr", build::kContactAddress);
    AddAt<forms::Label>(12, "lblInfoTel", build::kContactTel);
    AddAt<forms::Label>(12, "lblInfoFax", build::kContactFax);
    AddAt<forms::Label>(13, "lblInfoEmail", "E-mail :");
    auto& pnlEmail = AddAt<forms::Panel>(13, "pnlEmail", build::kContactEmail);

    // The server and contract number are shown only; they are changed in the settings.
    txtServerName_->SetReadOnly(true);
    txtContractNo_->SetReadOnly(true);
    txtPWD_->SetPassword(true);
    cmdLogin_->SetDefault(true);
    cmdCancel_->SetCancel(true);
    SetSize(480, 470);

    txtUID_->onEnter = [this] { txtUID_->SelectAll(); };
    txtPWD_->onEnter = [this] { txtPWD_->SelectAll(); };
    cmdLogin_->onClick = [this] { cmdLogin_Click(); };
    cmdCancel_->onClick = [this] { Unload(); };
    cmdNoConnect.onClick = [this] {
        SetLoginState(99);
        Unload();
    };
    pnlShowControlPanel.onClick = [this] { ShellOpenURL(GetServerBaseURL(), this, true); };
    pnlEmail.onClick = [this] { ShellMail(build::kContactEmail, "", "", this, true); };
}

void frmLogin::OnLoad() {
    cmdCancel_->SetEnabled(showtype_ == 0);
    txtServerName_->SetText(ReadMorvaneSetting(reg::kServerName, ""));
    txtContractNo_->SetText(ReadMorvaneSetting(reg::kContractNo, ""));
    txtUID_->SetText(ReadMorvaneSetting(reg::kLoginUID, ""));
    txtPWD_->SetText(DecryptText(ReadMorvaneSetting(reg::kLoginPWD, "")));
    chkAutoLogin_->SetChecked(ReadMorvaneSetting(reg::kSaveLoginPWD, "") == "True");
    PlaceOnWorkArea();
}

void frmLogin::OnActivate() {
    if (txtUID_->Text().empty())
        SetFocus(*txtUID_);
    else if (txtPWD_->Text().empty())
        SetFocus(*txtPWD_);
    else
        SetFocus(*cmdLogin_);
}

void frmLogin::OnQueryUnload(forms::CloseReason reason, bool& cancel) {
    // A forced re-login ends only by logging in or by working without the backup.
    if (reason == forms::CloseReason::ControlMenu && !cmdCancel_->Enabled()) cancel = true;
}

void frmLogin::FocusAndSelect(forms::TextBox& box) {
    SetFocus(box);
    box.SelectAll();
}

void frmLogin::cmdLogin_Click() {
    if (txtUID_->Text().empty()) {
        MsgBox("ユーザーIDが入力されていません。", forms::MsgIcon::Exclamation, kCaption);
        FocusAndSelect(*txtUID_);
        return;
    }
    if (txtPWD_->Text().empty()) {
        MsgBox("パスワードが入力されていません。", forms::MsgIcon::Exclamation, kCaption);
        FocusAndSelect(*txtPWD_);
        return;
    }
    // The typed values are kept before it is known whether the login succeeds.
    WriteMorvaneSetting(reg::kLoginUID, txtUID_->Text());
    WriteMorvaneSetting(reg::kLoginPWD,
                        chkAutoLogin_->Checked() ? EncryptText(txtPWD_->Text()) : std::string());
    WriteMorvaneSetting(reg::kSaveLoginPWD, chkAutoLogin_->Checked() ? "True" : "False");

    StartLogin(txtUID_->Text(), txtPWD_->Text());

    switch (GetLoginState()) {
        case 1:
            MsgBox("ログインに成功しました。", forms::MsgIcon::Information, kCaption);
            Unload();
            break;
        case 2:
            MsgBox("すでにログイン中です。", forms::MsgIcon::Exclamation, kCaption);
            SetFocus(*cmdCancel_);
            break;
        default:
            MsgBox("ログインに失敗しました。", forms::MsgIcon::Exclamation, kCaption);
            FocusAndSelect(*txtUID_);
            break;
    }
}

void frmLogin::StartLogin(const std::string& id, const std::string& password) {
    if (id.empty() || password.empty()) return;
    frmLoginProgress progress(State().Toolkit());
    progress.SetId(id);
    progress.SetPassword(password);
    progress.SetContractNo(GetContractNo());
    progress.ShowModal(nullptr);
    progress.Unload();
}

}  // namespace morvane
