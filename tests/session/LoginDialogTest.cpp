// The login dialog driven through the scripted toolkit: every way of closing it and the
// login state it leaves, the saved password, and the forced re-login.
#include <gtest/gtest.h>

#include <string>

#include "component/ctrlMorvane.h"
#include "session/basTextEncrypt.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"
#include "support/Told.h"
#include "transport/mdlServerReply.h"
#include "util/Text.h"

namespace morvane::test {
namespace {

using forms::Button;
using forms::CheckBox;
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
    static std::string FocusedName(forms::Form& f) {
        return f.Focused() ? f.Focused()->Name() : "(none)";
    }

    ctrlMorvane obj_;
};

// It never logs in by itself; focus goes to login, else to the first empty field.
TEST_F(LoginDialogTest, SavedPasswordFillsTheFieldsAndFocusGoesToTheFirstEmptyOne) {
    SetSetting(reg::kLoginUID, "user1");
    SetSetting(reg::kLoginPWD, EncryptText("pass1"));
    SetSetting(reg::kSaveLoginPWD, "True");
    kit_->OnShow("frmLogin", [&](forms::Form& f) {
        EXPECT_EQ(f.Caption(), "ログイン");
        EXPECT_EQ(f.Get<TextBox>("txtServerName").Text() + f.Get<TextBox>("txtContractNo").Text() +
                      f.Get<TextBox>("txtUID").Text() + f.Get<TextBox>("txtPWD").Text(),
                  server_->HostName() + "C-1001user1pass1");
        EXPECT_TRUE(f.Get<TextBox>("txtPWD").Password());
        EXPECT_TRUE(f.Get<CheckBox>("chkAutoLogin").Checked());
        EXPECT_TRUE(f.Get<Button>("cmdCancel").Enabled());
        EXPECT_EQ(FocusedName(f), "cmdLogin");
        Click(f, "cmdCancel");
    });
    EXPECT_EQ(obj_.ShowLogin(nullptr), 0);
    EXPECT_TRUE(server_->RequestsTo("login.php").empty());

    SetSetting(reg::kLoginPWD, "");
    SetSetting(reg::kSaveLoginPWD, "");
    kit_->OnShow("frmLogin", [](forms::Form& f) {
        EXPECT_EQ(FocusedName(f), "txtPWD");
        EXPECT_FALSE(f.Get<CheckBox>("chkAutoLogin").Checked());
    });
    ShowLoginDlg(nullptr, 0);
    SetSetting(reg::kLoginUID, "");
    kit_->OnShow("frmLogin", [](forms::Form& f) { EXPECT_EQ(FocusedName(f), "txtUID"); });
    ShowLoginDlg(nullptr, 0);
    EXPECT_EQ(kit_->ShownForms().size(), 3u);
}

// The progress form runs the exchange without an owner. The body sent and the box are the Qt
// dialogs' test (LoginThroughTheRealWidgets).
TEST_F(LoginDialogTest, SuccessfulLoginSavesSettingsClosesAndStartsTheTimer) {
    server_->On("login.php", LoginReply(1, "TOK"));
    forms::Form owner(*kit_, "frmHostMain", "host");
    kit_->OnShow("frmLogin", [](forms::Form& f) { TypeAndLogin(f, "user1", "secret", true); });
    EXPECT_EQ(obj_.ShowLogin(&owner), 1);
    EXPECT_EQ(Shown(*kit_), (std::vector<std::string>{"frmLogin<frmHostMain", "frmLoginProgress"}));
    EXPECT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_TRUE(kit_->Unanswered().empty());
    EXPECT_EQ(Setting(reg::kLoginUID) + DecryptText(Setting(reg::kLoginPWD)) +
                  Setting(reg::kSaveLoginPWD),
              "user1secretTrue");
    EXPECT_TRUE(kit_->TimerLive("frmLoginTimer", "tmr"));
}

// Cancel after a refused login leaves what the last attempt left: 2 for a login elsewhere, the
// server's state for a refusal, 0 for an unreadable reply. The typed settings are saved anyway.
TEST_F(LoginDialogTest, RefusedLoginKeepsTheDialogAndCancelLeavesTheLastState) {
    SetSetting(reg::kLoginPWD, EncryptText("old"));
    SetSetting(reg::kSaveLoginPWD, "True");
    server_->OnSequence("login.php",
                        {LoginReply(2, "TOK", false), LoginReply(7, "TOK", false), "<broken"});
    const std::vector<std::pair<std::string, int>> attempts{
        {"cmdCancel", 2}, {"txtUID", 7}, {"txtUID", 0}};
    for (const auto& attempt : attempts) {
        const std::string& focus = attempt.first;
        kit_->OnShow("frmLogin", [&](forms::Form& f) {
            TypeAndLogin(f, "user1", "wrong", false);
            EXPECT_TRUE(f.Visible());
            EXPECT_EQ(FocusedName(f), focus);
            if (focus == "txtUID") {
                EXPECT_EQ(f.Get<TextBox>("txtUID").SelStart(), 0);
                EXPECT_EQ(f.Get<TextBox>("txtUID").SelLength(), 5);
            }
            Click(f, "cmdCancel");
        });
        EXPECT_EQ(obj_.ShowLogin(nullptr), attempt.second);
    }
    EXPECT_EQ(Join(Told(*kit_), "\n"), Golden("session/login-dialog.txt")["refused"]);
    EXPECT_EQ(kit_->Boxes()[0].icon, forms::MsgIcon::Exclamation);
    EXPECT_EQ(Setting(reg::kLoginPWD) + Setting(reg::kSaveLoginPWD), "False");
}

// With no script the toolkit closes the window as its close box would.
TEST_F(LoginDialogTest, EmptyFieldsAreToldCancelAndCloseBoxKeepTheStateNoConnectGives99) {
    SetLoginState(5);
    kit_->OnShow("frmLogin", [](forms::Form& f) {
        TypeAndLogin(f, "", "pw", true);
        EXPECT_EQ(FocusedName(f), "txtUID");
        TypeAndLogin(f, "user1", "", true);
        EXPECT_EQ(FocusedName(f), "txtPWD");
        Click(f, "cmdCancel");
    });
    EXPECT_EQ(obj_.ShowLogin(nullptr), 5);
    EXPECT_EQ(Join(Told(*kit_), "\n"), Golden("session/login-dialog.txt")["empty fields"]);
    EXPECT_EQ(Setting(reg::kLoginUID), "");
    EXPECT_EQ(obj_.ShowLogin(nullptr), 5);
    EXPECT_EQ(kit_->Unanswered().size(), 1u);
    kit_->OnShow("frmLogin", [](forms::Form& f) { Click(f, "cmdNoConnect"); });
    EXPECT_EQ(obj_.ShowLogin(nullptr), 99);
    EXPECT_TRUE(server_->Requests().empty());
}

// Cancel, the close box and "no connect" refused or taken: the Qt dialogs' ForcedRelogin...
TEST_F(LoginDialogTest, ExpiredTokenOpensAForcedLoginWithoutOwnerAndTheRequestStillFails) {
    LogIn("OLD");
    server_->On("master/getKessanTaioh.php", Envelope(0, ""));
    server_->On("login.php", LoginReply(1, "NEW"));
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

}  // namespace
}  // namespace morvane::test
