// The login dialog driven through the scripted toolkit: every way of closing it and the
// login state it leaves, the saved password, and the forced re-login.
#include <gtest/gtest.h>

#include <string>

#include "component/ctrlMorvane.h"
#include "session/basTextEncrypt.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "support/MorvaneTest.h"
#include "support/Told.h"
#include "transport/mdlServerReply.h"

namespace morvane::test {
namespace {

using forms::Button;
using forms::CheckBox;
using forms::MsgIcon;
using forms::TextBox;

class LoginDialogTest : public MorvaneTest {
protected:
    // Types the credentials and presses the login button.
    static void TypeAndLogin(forms::Form& f, const std::string& uid, const std::string& pwd,
                             bool save) {
        f.Get<TextBox>("txtUID").SetText(uid);
        f.Get<TextBox>("txtPWD").SetText(pwd);
        f.Get<CheckBox>("chkAutoLogin").SetChecked(save);
        f.Get<Button>("cmdLogin").Click();
    }
    static void Click(forms::Form& f, const char* name) { f.Get<Button>(name).Click(); }

    ctrlMorvane obj_;
};

TEST_F(LoginDialogTest, SavedPasswordFillsBothFieldsAndFocusesLogin) {
    SetSetting(reg::kLoginUID, "user1");
    SetSetting(reg::kLoginPWD, EncryptText("pass1"));
    SetSetting(reg::kSaveLoginPWD, "True");
    bool ran = false;
    kit_->OnShow("frmLogin", [&](forms::Form& f) {
        ran = true;
        EXPECT_EQ(f.Caption(), "ログイン");
        EXPECT_EQ(f.Get<TextBox>("txtServerName").Text() + f.Get<TextBox>("txtContractNo").Text() +
                      f.Get<TextBox>("txtUID").Text() + f.Get<TextBox>("txtPWD").Text(),
                  server_->HostName() + "C-1001user1pass1");
        EXPECT_TRUE(f.Get<TextBox>("txtPWD").Password());
        EXPECT_TRUE(f.Get<CheckBox>("chkAutoLogin").Checked());
        EXPECT_TRUE(f.Get<Button>("cmdCancel").Enabled());
        ASSERT_NE(f.Focused(), nullptr);
        EXPECT_EQ(f.Focused()->Name(), "cmdLogin");
        Click(f, "cmdCancel");
    });
    EXPECT_EQ(obj_.ShowLogin(nullptr), 0);
    EXPECT_TRUE(ran);
    // It never logs in by itself.
    EXPECT_TRUE(server_->RequestsTo("login.php").empty());
}

TEST_F(LoginDialogTest, FocusGoesToTheFirstEmptyFieldSelected) {
    SetSetting(reg::kLoginUID, "user1");
    kit_->OnShow("frmLogin", [](forms::Form& f) {
        ASSERT_NE(f.Focused(), nullptr);
        EXPECT_EQ(f.Focused()->Name(), "txtPWD");
        EXPECT_FALSE(f.Get<CheckBox>("chkAutoLogin").Checked());
        // Entering the user ID selects all of it.
        f.SetFocus(f.Get<TextBox>("txtUID"));
        EXPECT_EQ(f.Get<TextBox>("txtUID").SelLength(), 5);
    });
    ShowLoginDlg(nullptr, 0);
    SetSetting(reg::kLoginUID, "");
    kit_->OnShow("frmLogin", [](forms::Form& f) { EXPECT_EQ(f.Focused()->Name(), "txtUID"); });
    ShowLoginDlg(nullptr, 0);
}

TEST_F(LoginDialogTest, SuccessfulLoginSavesSettingsClosesAndStartsTheTimer) {
    server_->On("login.php", LoginReply(1, "TOK"));
    forms::Form owner(*kit_, "frmHostMain", "host");
    kit_->OnShow("frmLogin", [](forms::Form& f) { TypeAndLogin(f, "user1", "secret", true); });
    EXPECT_EQ(obj_.ShowLogin(&owner), 1);

    // The progress form runs the exchange without an owner. The body sent and the box are the
    // Qt dialogs' test (LoginThroughTheRealWidgets).
    EXPECT_EQ(Shown(*kit_), (std::vector<std::string>{"frmLogin<frmHostMain", "frmLoginProgress"}));
    EXPECT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_TRUE(kit_->Unanswered().empty());
    EXPECT_EQ(Setting(reg::kLoginUID) + DecryptText(Setting(reg::kLoginPWD)) +
                  Setting(reg::kSaveLoginPWD),
              "user1secretTrue");
    EXPECT_TRUE(kit_->TimerLive("frmLoginTimer", "tmr"));
}

TEST_F(LoginDialogTest, AlreadyLoggedInThenCancelLeavesTwo) {
    server_->On("login.php", LoginReply(2, "TOK", false));
    kit_->OnShow("frmLogin", [](forms::Form& f) {
        TypeAndLogin(f, "user1", "pw", false);
        EXPECT_TRUE(f.Visible());
        EXPECT_EQ(f.Focused()->Name(), "cmdCancel");
        Click(f, "cmdCancel");
    });
    EXPECT_EQ(obj_.ShowLogin(nullptr), 2);
    EXPECT_EQ(Told(*kit_), std::vector<std::string>{"すでにログイン中です。"});
    EXPECT_EQ(kit_->Boxes()[0].icon, MsgIcon::Exclamation);
}

TEST_F(LoginDialogTest, FailedLoginKeepsTheDialogAndErasesAnUncheckedPassword) {
    SetSetting(reg::kLoginPWD, EncryptText("old"));
    SetSetting(reg::kSaveLoginPWD, "True");
    // A server state other than 1 and 2, then a reply that cannot be read.
    server_->OnSequence("login.php", {LoginReply(7, "TOK", false), "<broken"});
    kit_->OnShow("frmLogin", [](forms::Form& f) {
        TypeAndLogin(f, "user1", "wrong", false);
        EXPECT_TRUE(f.Visible());
        auto& uid = f.Get<TextBox>("txtUID");
        EXPECT_EQ(f.Focused(), &uid);
        EXPECT_EQ(uid.SelStart(), 0);
        EXPECT_EQ(uid.SelLength(), 5);
        EXPECT_EQ(GetLoginState(), 7);
        Click(f, "cmdCancel");
    });
    // After a failed login cancel leaves what the last attempt left.
    EXPECT_EQ(obj_.ShowLogin(nullptr), 7);
    EXPECT_EQ(kit_->Boxes().back().text, "ログインに失敗しました。");
    // The typed settings were saved although the login failed.
    EXPECT_EQ(Setting(reg::kLoginPWD) + Setting(reg::kSaveLoginPWD), "False");

    kit_->OnShow("frmLogin", [](forms::Form& f) {
        TypeAndLogin(f, "user1", "wrong", false);
        Click(f, "cmdCancel");
    });
    EXPECT_EQ(obj_.ShowLogin(nullptr), 0);
    EXPECT_EQ(kit_->Boxes().back().text, "ログインに失敗しました。");
}

TEST_F(LoginDialogTest, EmptyFieldsAreToldAndNothingIsSent) {
    kit_->OnShow("frmLogin", [](forms::Form& f) {
        TypeAndLogin(f, "", "pw", true);
        EXPECT_EQ(f.Focused()->Name(), "txtUID");
        TypeAndLogin(f, "user1", "", true);
        EXPECT_EQ(f.Focused()->Name(), "txtPWD");
        Click(f, "cmdCancel");
    });
    EXPECT_EQ(obj_.ShowLogin(nullptr), 0);
    EXPECT_EQ(Told(*kit_), (std::vector<std::string>{"ユーザーIDが入力されていません。",
                                                     "パスワードが入力されていません。"}));
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_EQ(Setting(reg::kLoginUID), "");
}

TEST_F(LoginDialogTest, CancelAndCloseBoxKeepTheStateNoConnectGives99) {
    SetLoginState(5);
    kit_->OnShow("frmLogin", [](forms::Form& f) { Click(f, "cmdCancel"); });
    EXPECT_EQ(obj_.ShowLogin(nullptr), 5);
    // No script: the toolkit closes the window as its close box would.
    EXPECT_EQ(obj_.ShowLogin(nullptr), 5);
    EXPECT_EQ(kit_->Unanswered().size(), 1u);
    kit_->OnShow("frmLogin", [](forms::Form& f) { Click(f, "cmdNoConnect"); });
    EXPECT_EQ(obj_.ShowLogin(nullptr), 99);
    EXPECT_TRUE(server_->Requests().empty());
}

TEST_F(LoginDialogTest, ExpiredTokenOpensAForcedLoginWithoutOwnerAndTheRequestStillFails) {
    LogIn("OLD");
    server_->On("master/getKessanTaioh.php", Envelope(0, ""));
    server_->On("login.php", LoginReply(1, "NEW"));
    // Cancel, the close box and "no connect" refused or taken: the Qt dialogs' ForcedRelogin...
    kit_->OnShow("frmLogin", [](forms::Form& f) {
        Click(f, "cmdCancel");
        EXPECT_TRUE(f.Visible());
        TypeAndLogin(f, "user1", "pw", false);
    });
    // The interrupted request fails even though the user logged in again.
    EXPECT_EQ(SendRequest("master/getKessanTaioh.php", "ID=user1&token=OLD&"), "");
    EXPECT_EQ(Shown(*kit_).at(0), "frmLogin");
    EXPECT_EQ(GetLoginState(), 1);
    EXPECT_EQ(GetLoginToken(), "NEW");
}

TEST_F(LoginDialogTest, LinksOpenTheManagementSiteAndAMail) {
    kit_->OnShow("frmLogin", [](forms::Form& f) {
        f.Get<forms::Panel>("pnlShowControlPanel").Click();
        f.Get<forms::Panel>("pnlEmail").Click();
        Click(f, "cmdCancel");
    });
    obj_.ShowLogin(nullptr);
    ASSERT_EQ(kit_->OpenedUrls().size(), 2u);
    EXPECT_EQ(kit_->OpenedUrls()[0] + kit_->OpenedUrls()[1].substr(0, 7),
              "https://" + server_->HostName() + "/mailto:");
    EXPECT_TRUE(kit_->Boxes().empty());
}

}  // namespace
}  // namespace morvane::test
