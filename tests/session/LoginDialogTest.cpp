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
        EXPECT_EQ(f.Get<TextBox>("txtServerName").Text(), server_->HostName());
        EXPECT_EQ(f.Get<TextBox>("txtContractNo").Text(), "C-1001");
        EXPECT_EQ(f.Get<TextBox>("txtUID").Text(), "user1");
        EXPECT_EQ(f.Get<TextBox>("txtPWD").Text(), "pass1");
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

    ASSERT_EQ(kit_->ShownForms().size(), 2u);
    EXPECT_EQ(kit_->ShownForms()[0].form, "frmLogin");
    EXPECT_EQ(kit_->ShownForms()[0].owner, "frmHostMain");
    // The progress form runs the exchange without an owner.
    EXPECT_EQ(kit_->ShownForms()[1].form, "frmLoginProgress");
    EXPECT_EQ(kit_->ShownForms()[1].owner, "");
    ASSERT_EQ(server_->RequestsTo("login.php").size(), 1u);
    EXPECT_EQ(server_->RequestsTo("login.php")[0].body, "no=C-1001&ID=user1&PW=secret&");

    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(kit_->Boxes()[0].text, "ログインに成功しました。");
    EXPECT_EQ(kit_->Boxes()[0].title, "ログイン");
    EXPECT_EQ(kit_->Boxes()[0].icon, MsgIcon::Information);
    EXPECT_TRUE(kit_->Unanswered().empty());

    EXPECT_EQ(Setting(reg::kLoginUID), "user1");
    EXPECT_EQ(DecryptText(Setting(reg::kLoginPWD)), "secret");
    EXPECT_EQ(Setting(reg::kSaveLoginPWD), "True");
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
    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(kit_->Boxes()[0].text, "すでにログイン中です。");
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
    EXPECT_EQ(kit_->Boxes().back().icon, MsgIcon::Exclamation);
    // The typed settings were saved although the login failed.
    EXPECT_EQ(Setting(reg::kLoginPWD), "");
    EXPECT_EQ(Setting(reg::kSaveLoginPWD), "False");

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
    ASSERT_EQ(kit_->Boxes().size(), 2u);
    EXPECT_EQ(kit_->Boxes()[0].text, "ユーザーIDが入力されていません。");
    EXPECT_EQ(kit_->Boxes()[1].text, "パスワードが入力されていません。");
    EXPECT_EQ(kit_->Boxes()[1].title, "ログイン");
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

TEST_F(LoginDialogTest, ForcedReloginCannotBeCancelled) {
    kit_->OnShow("frmLogin", [](forms::Form& f) {
        EXPECT_FALSE(f.Get<Button>("cmdCancel").Enabled());
        Click(f, "cmdCancel");
        EXPECT_TRUE(f.Visible());
        EXPECT_FALSE(f.RequestClose());
        EXPECT_TRUE(f.Visible());
        Click(f, "cmdNoConnect");
    });
    EXPECT_EQ(ShowLoginDlg(nullptr, 1), 99);
}

TEST_F(LoginDialogTest, ExpiredTokenOpensTheForcedLoginWithoutOwner) {
    LogIn("OLD");
    server_->On("master/getKessanTaioh.php", Envelope(0, ""));
    server_->On("login.php", LoginReply(1, "NEW"));
    kit_->OnShow("frmLogin", [](forms::Form& f) {
        EXPECT_FALSE(f.Get<Button>("cmdCancel").Enabled());
        TypeAndLogin(f, "user1", "pw", false);
    });
    // The interrupted request fails even though the user logged in again.
    EXPECT_EQ(SendRequest("master/getKessanTaioh.php", "ID=user1&token=OLD&"), "");
    ASSERT_FALSE(kit_->ShownForms().empty());
    EXPECT_EQ(kit_->ShownForms()[0].form, "frmLogin");
    EXPECT_EQ(kit_->ShownForms()[0].owner, "");
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
    EXPECT_EQ(kit_->OpenedUrls()[0], "https://" + server_->HostName() + "/");
    EXPECT_EQ(kit_->OpenedUrls()[1].rfind("mailto:", 0), 0u);
    EXPECT_TRUE(kit_->Boxes().empty());
}

}  // namespace
}  // namespace morvane::test
