#include "session/frmMorvaneSetting.h"

#include <BuildConfig.h>

#include <cstdint>
#include <optional>

#include "session/basTextEncrypt.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/basShell.h"
#include "state/mdlMsgBox.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "transport/mdlServerCommon.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"
#include "util/Text.h"

namespace morvane {
namespace {

constexpr const char* kNeedServer = "サーバー名を記入してください。";
constexpr const char* kNeedContract = "契約番号を記入してください。";
constexpr const char* kNeedUser = "ユーザーIDを記入してください。";
constexpr const char* kNeedPassword = "パスワードを記入してください。";

// The value behind a tag in one part of the confirmation mail, or none.
std::optional<std::string> TaggedValue(const std::string& part, std::string_view tag) {
    const size_t at = part.find(tag);
    if (at == std::string::npos) return std::nullopt;
    return Trim(std::string_view(part).substr(at + tag.size()));
}

}  // namespace

frmMorvaneSetting::frmMorvaneSetting(forms::Toolkit& toolkit)
    : Form(toolkit, "frmMorvaneSetting", kCaption) {
    AddAt<forms::Label>(0, "lbl(0)", "モルヴェインの設定");
    AddAt<forms::Label>(1, "lbl(1)",
                        "ソラスタのデータをインターネットのサーバ上へ保存するための設定をおこない"
                        "ます。");
    static constexpr const char* kInfo[] = {
        "モルヴェインをご利用いただくにはお申し込みが必要になります。",
        "データ共有でご利用頂いている場合、バックアップを実行するパソコンからのみお申込みを行い、",
        "別のパソコンからもバックアップする場合は管理サイトよりユーザーの追加を行なってご利用くだ"
        "さい。",
        "（２台以上のパソコンからお申込みされますと、正規データ紛失の恐れがございます。）",
        "ご利用のお申込み（又はユーザーの追加）が完了しましたら以下の設定を行ってください"};
    for (int i = 0; i < 5; ++i)
        AddAt<forms::Label>(2 + i, "lblInfo(" + std::to_string(i) + ")", kInfo[i]);
    auto& lblShowRegist = AddAt<forms::Label>(7, "lblShowRegist", "新規申し込みサイトを表示");
    auto& pnlShowRegist = AddAt<forms::Panel>(7, "pnlShowRegist", "→申し込みサイトを表示");
    auto& lblShowControlPanel = AddAt<forms::Label>(8, "lblShowControlPanel", "管理サイトを表示");
    auto& pnlShowControlPanel = AddAt<forms::Panel>(8, "pnlShowControlPanel", "→管理サイトを表示");
    chkEnabledMorvane_ =
        &AddAt<forms::CheckBox>(9, "chkEnabledMorvane", "モルヴェインを有効にする");
    lblConnectinInfo_ = &AddAt<forms::Label>(9, "lblConnectinInfo", "（未接続）");
    AddAt<forms::Label>(10, "lblServerName", "サーバ名：");
    cboServerName_ = &AddAt<forms::ComboBox>(10, "cboServerName");
    AddAt<forms::Label>(11, "lblContractNo", "契約番号：");
    txtContractNo_ = &AddAt<forms::TextBox>(11, "txtContractNo");
    AddAt<forms::Label>(12, "lblLoginUID", "ユーザーID：");
    txtLoginUID_ = &AddAt<forms::TextBox>(12, "txtLoginUID");
    AddAt<forms::Label>(13, "lblLoginPWD", "パスワード：");
    txtLoginPWD_ = &AddAt<forms::TextBox>(13, "txtLoginPWD");
    chkSaveLoginPWD_ = &AddAt<forms::CheckBox>(14, "chkSaveLoginPWD", "パスワードを保存する");
    auto& cmdConnectionTest = AddAt<forms::Button>(15, "cmdConnectionTest", "接続テスト(&T)");
    auto& cmdOK = AddAt<forms::Button>(15, "cmdOK", "OK");
    cmdCancel_ = &AddAt<forms::Button>(15, "cmdCancel", "キャンセル");
    tmrClipboard_ = &Add<forms::Timer>("tmrClipboard");

    lblConnectinInfo_->SetVisible(false);
    txtLoginPWD_->SetPassword(true);
    cmdOK.SetDefault(true);
    cmdCancel_->SetCancel(true);
    tmrClipboard_->SetInterval(kClipboardMilliseconds);
    tmrClipboard_->SetTimerEnabled(true);
    SetSize(560, 560);

    for (forms::TextBox* box : {txtContractNo_, txtLoginUID_, txtLoginPWD_})
        box->onEnter = [box] { box->SelectAll(); };
    cmdOK.onClick = [this] { cmdOK_Click(); };
    cmdCancel_->onClick = [this] { Hide(); };
    cmdConnectionTest.onClick = [this] { cmdConnectionTest_Click(); };
    lblShowControlPanel.onClick = [this] { ShowControlPanel(); };
    pnlShowControlPanel.onClick = [this] { ShowControlPanel(); };
    const auto showRegist = [this] { ShellOpenURL(GetSignupPageURL(), this, true); };
    lblShowRegist.onClick = showRegist;
    pnlShowRegist.onClick = showRegist;
    tmrClipboard_->onTimer = [this] { tmrClipboard_Timer(); };
}

void frmMorvaneSetting::OnLoad() {
    if (GetLoginState() == 99) lblConnectinInfo_->SetVisible(true);
    cboServerName_->Clear();
    cboServerName_->AddItem(build::kDefaultServer);
    cboServerName_->SetText(ReadMorvaneSetting(reg::kServerName, build::kDefaultServer));
    txtContractNo_->SetText(ReadMorvaneSetting(reg::kContractNo, ""));
    txtLoginUID_->SetText(ReadMorvaneSetting(reg::kLoginUID, ""));
    txtLoginPWD_->SetText(DecryptText(ReadMorvaneSetting(reg::kLoginPWD, "")));
    chkSaveLoginPWD_->SetChecked(ReadMorvaneSetting(reg::kSaveLoginPWD, "") == "True");
    // The check box has no logic of its own: it shows what was last stored.
    chkEnabledMorvane_->SetChecked(ReadMorvaneSetting(reg::kEnabledMorvane, "") == "True");
    loadedServerName_ = cboServerName_->Text();
    loadedContractNo_ = txtContractNo_->Text();
    PlaceOnWorkArea();
}

void frmMorvaneSetting::OnQueryUnload(forms::CloseReason reason, bool& cancel) {
    // The window's close box is the cancel button.
    if (reason == forms::CloseReason::ControlMenu) {
        cancel = true;
        cmdCancel_->Click();
    }
}

bool frmMorvaneSetting::Require(const std::string& value, const char* message) {
    if (!value.empty()) return true;
    MsgBox(message, forms::MsgIcon::Exclamation, Caption());
    return false;
}

void frmMorvaneSetting::cmdOK_Click() {
    const std::string server = Trim(cboServerName_->Text());
    const std::string contract = Trim(txtContractNo_->Text());
    const std::string user = Trim(txtLoginUID_->Text());
    // All three empty switches the backup off, and nothing is required then.
    const bool enabled = !(server.empty() && contract.empty() && user.empty());
    if (enabled) {
        if (!Require(server, kNeedServer) || !Require(contract, kNeedContract) ||
            !Require(user, kNeedUser))
            return;
    }
    WriteMorvaneSetting(reg::kEnabledMorvane, enabled ? "True" : "False");
    WriteMorvaneSetting(reg::kServerName, cboServerName_->Text());
    WriteMorvaneSetting(reg::kContractNo, txtContractNo_->Text());
    WriteMorvaneSetting(reg::kLoginUID, txtLoginUID_->Text());

    const bool save = chkSaveLoginPWD_->Checked();
    std::string password;
    if (save) {
        password = Trim(txtLoginPWD_->Text());
        // The connection values above stay written even when this stops the dialog.
        if (!Require(password, kNeedPassword)) return;
    }
    WriteMorvaneSetting(reg::kLoginPWD, save ? EncryptText(password) : std::string());
    WriteMorvaneSetting(reg::kSaveLoginPWD, save ? "True" : "False");

    if (cboServerName_->Text() != loadedServerName_ || txtContractNo_->Text() != loadedContractNo_)
        MsgBox(
            "モルヴェインの設定が変更されました。\r\n"
            "設定内容を反映させるには、一旦終了してから再度実行し直してください。",
            forms::MsgIcon::Information, Caption());
    Hide();
}

void frmMorvaneSetting::cmdConnectionTest_Click() {
    const std::string server = Trim(cboServerName_->Text());
    const std::string contract = Trim(txtContractNo_->Text());
    const std::string user = Trim(txtLoginUID_->Text());
    const std::string password = Trim(txtLoginPWD_->Text());
    if (!Require(server, kNeedServer) || !Require(contract, kNeedContract) ||
        !Require(user, kNeedUser) || !Require(password, kNeedPassword))
        return;
    const std::string url = "https://" + server + "/" + std::string(page::kLogin);
    if (TestConnection(url, contract, user, password))
        MsgBox("接続に成功しました。", forms::MsgIcon::Information, Caption());
    else
        MsgBox("接続に失敗しました。", forms::MsgIcon::Exclamation, Caption());
}

void frmMorvaneSetting::ShowControlPanel() {
    // The typed name counts here, not the stored one.
    const std::string server = cboServerName_->Text();
    if (!server.empty())
        ShellOpenURL("https://" + server + "/", this, true);
    else
        MsgBox("サーバー名を入力してください。", forms::MsgIcon::Information, Caption(),
               forms::MsgButtons::OKCancel);
}

void frmMorvaneSetting::tmrClipboard_Timer() {
    if (!Trim(txtContractNo_->Text()).empty() || !Trim(txtLoginUID_->Text()).empty()) return;
    const std::string text = Kit().ClipboardText();
    for (const char* tag : {"ServerName:", "ContractNo:", "UserID:"})
        if (text.find(tag) == std::string::npos) return;
    const auto parts = Split(text, ",");
    if (parts.size() < 3) return;
    if (auto v = TaggedValue(parts[0], "ServerName:")) cboServerName_->SetText(*v);
    if (auto v = TaggedValue(parts[1], "ContractNo:")) txtContractNo_->SetText(*v);
    if (auto v = TaggedValue(parts[2], "UserID:")) txtLoginUID_->SetText(*v);
}

std::int32_t ShowSettingDlg(forms::Form* owner) {
    try {
        frmMorvaneSetting form(State().Toolkit());
        form.Load();
        form.ShowModal(owner);
        form.Unload();
    } catch (...) {
        // Errors of the dialog are passed over; the member still gives 0.
    }
    return 0;
}

}  // namespace morvane
