// The settings dialog through the scripted toolkit: what OK stores and when it stops, the
// connection test, the links, and the filling from a copied confirmation mail.
#include <gtest/gtest.h>

#include <BuildConfig.h>

#include <string>

#include "component/ctrlMorvane.h"
#include "session/basTextEncrypt.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "support/MorvaneTest.h"
#include "support/Told.h"

namespace morvane::test {
namespace {

using forms::Button;
using forms::CheckBox;
using forms::ComboBox;
using forms::MsgIcon;
using forms::TextBox;

constexpr const char* kCaption = "モルヴェインの設定";

class SettingDialogTest : public MorvaneTest {
protected:
    static void Fill(forms::Form& f, const std::string& server, const std::string& contract,
                     const std::string& uid, const std::string& pwd, bool save) {
        f.Get<ComboBox>("cboServerName").SetText(server);
        f.Get<TextBox>("txtContractNo").SetText(contract);
        f.Get<TextBox>("txtLoginUID").SetText(uid);
        f.Get<TextBox>("txtLoginPWD").SetText(pwd);
        f.Get<CheckBox>("chkSaveLoginPWD").SetChecked(save);
    }
    static void Click(forms::Form& f, const char* name) { f.Get<Button>(name).Click(); }
    // Runs the dialog with a script; true when the script saw it.
    bool Show(std::function<void(forms::Form&)> script) {
        bool ran = false;
        kit_->OnShow("frmMorvaneSetting", [&](forms::Form& f) {
            ran = true;
            script(f);
        });
        EXPECT_EQ(obj_.ShowSetting(nullptr), 0);
        return ran;
    }

    // Enabled, server, contract, user, password deciphered, password saved: as stored.
    std::string Stored() {
        return Setting(reg::kEnabledMorvane) + "|" + Setting(reg::kServerName) + "|" +
               Setting(reg::kContractNo) + "|" + Setting(reg::kLoginUID) + "|" +
               DecryptText(Setting(reg::kLoginPWD)) + "|" + Setting(reg::kSaveLoginPWD);
    }

    ctrlMorvane obj_;
};

TEST_F(SettingDialogTest, LoadShowsTheStoredValues) {
    SetSetting(reg::kLoginUID, "user1");
    SetSetting(reg::kLoginPWD, EncryptText("pw"));
    SetSetting(reg::kSaveLoginPWD, "True");
    EXPECT_TRUE(Show([&](forms::Form& f) {
        EXPECT_EQ(f.Caption(), kCaption);
        const auto& cbo = f.Get<ComboBox>("cboServerName");
        ASSERT_EQ(cbo.Items().size(), 1u);
        EXPECT_EQ(cbo.Items()[0], build::kDefaultServer);
        EXPECT_EQ(cbo.Text(), server_->HostName());
        EXPECT_EQ(f.Get<TextBox>("txtContractNo").Text(), "C-1001");
        EXPECT_EQ(f.Get<TextBox>("txtLoginPWD").Text(), "pw");
        EXPECT_TRUE(f.Get<CheckBox>("chkSaveLoginPWD").Checked());
        EXPECT_FALSE(f.Get<forms::Label>("lblConnectinInfo").Visible());
        EXPECT_TRUE(kit_->TimerLive("frmMorvaneSetting", "tmrClipboard"));
    }));
    // A server stored empty stays empty (only a missing one gets the service's default);
    // state 99 shows the note.
    SetSetting(reg::kServerName, "");
    obj_.SetDisableMorvane();
    EXPECT_TRUE(Show([](forms::Form& f) {
        EXPECT_EQ(f.Get<forms::ComboBox>("cboServerName").Text(), "");
        EXPECT_TRUE(f.Get<forms::Label>("lblConnectinInfo").Visible());
        EXPECT_EQ(f.Get<forms::Label>("lblConnectinInfo").Text(), "（未接続）");
    }));
    // The clipboard timer lives only while the dialog does.
    EXPECT_FALSE(kit_->TimerLive("frmMorvaneSetting", "tmrClipboard"));
    EXPECT_EQ(obj_.ShowInfo(nullptr), 0);  // the same dialog, closed by the toolkit
    EXPECT_EQ(kit_->ShownForms().back().form, "frmMorvaneSetting");
}

TEST_F(SettingDialogTest, OkStoresEverythingAndAsksForARestartOnANewServer) {
    EXPECT_TRUE(Show([](forms::Form& f) {
        Fill(f, " new.example.jp ", "C-2", "user2", " pw2 ", true);
        Click(f, "cmdOK");
        EXPECT_FALSE(f.Visible());
    }));
    // Stored as they stand in the controls; the password trimmed.
    EXPECT_EQ(Stored(), "True| new.example.jp |C-2|user2|pw2|True");
    EXPECT_EQ(Told(*kit_),
              std::vector<std::string>{
                  "モルヴェインの設定が変更されました。\r\n"
                  "設定内容を反映させるには、一旦終了してから再度実行し直してください。"});
    EXPECT_EQ(kit_->Boxes()[0].icon, MsgIcon::Information);
    EXPECT_EQ(kit_->Boxes()[0].title, kCaption);
}

TEST_F(SettingDialogTest, ChangedUserAloneNeedsNoRestartAndNoSavedPassword) {
    SetSetting(reg::kLoginPWD, EncryptText("old"));
    EXPECT_TRUE(Show([&](forms::Form& f) {
        Fill(f, server_->HostName(), "C-1001", "other", "", false);
        Click(f, "cmdOK");
    }));
    EXPECT_TRUE(kit_->Boxes().empty());
    EXPECT_EQ(Stored(), "True|" + server_->HostName() + "|C-1001|other||False");
    EXPECT_EQ(Setting(reg::kLoginPWD), "");
}

TEST_F(SettingDialogTest, AllEmptySwitchesTheBackupOffWithoutAWord) {
    EXPECT_TRUE(Show([](forms::Form& f) {
        Fill(f, " ", "", "", "", false);
        Click(f, "cmdOK");
        EXPECT_FALSE(f.Visible());
    }));
    EXPECT_EQ(Stored(), "False| ||||False");
    // Only the changed-settings note, because the server changed.
    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(kit_->Boxes()[0].icon, MsgIcon::Information);
}

TEST_F(SettingDialogTest, FirstMissingFieldStopsOkAndWritesNothing) {
    EXPECT_TRUE(Show([](forms::Form& f) {
        Fill(f, "srv", "", "u", "", false);
        Click(f, "cmdOK");
        EXPECT_TRUE(f.Visible());
        Fill(f, "", "C", "u", "", false);
        Click(f, "cmdOK");
        Fill(f, "srv", "C", "", "", false);
        Click(f, "cmdOK");
        EXPECT_TRUE(f.Visible());
        Click(f, "cmdCancel");
    }));
    EXPECT_EQ(Told(*kit_), (std::vector<std::string>{"契約番号を記入してください。",
                                                     "サーバー名を記入してください。",
                                                     "ユーザーIDを記入してください。"}));
    EXPECT_EQ(kit_->Boxes()[2].icon, MsgIcon::Exclamation);
    EXPECT_EQ(kit_->Boxes()[2].title, kCaption);
    EXPECT_EQ(Stored(), "|" + server_->HostName() + "|C-1001|||");
}

TEST_F(SettingDialogTest, MissingSavedPasswordStopsAfterTheConnectionValuesAreStored) {
    EXPECT_TRUE(Show([](forms::Form& f) {
        Fill(f, "srv.example.jp", "C-9", "u9", "  ", true);
        Click(f, "cmdOK");
        EXPECT_TRUE(f.Visible());
        // The window's close box cancels like the cancel button.
        EXPECT_FALSE(f.RequestClose());
        EXPECT_FALSE(f.Visible());
    }));
    EXPECT_EQ(Told(*kit_), std::vector<std::string>{"パスワードを記入してください。"});
    EXPECT_EQ(Stored(), "True|srv.example.jp|C-9|u9||");
}

TEST_F(SettingDialogTest, ConnectionTestNeedsAllFourAndLeavesTheLoginAlone) {
    LogIn("RUNNING");
    server_->OnSequence("login.php", {LoginReply(1, "TEST"), LoginReply(9, "X", false)});
    EXPECT_TRUE(Show([&](forms::Form& f) {
        Fill(f, server_->HostName(), "C-7", "u7", "", false);
        Click(f, "cmdConnectionTest");
        Fill(f, " " + server_->HostName() + " ", " C-7 ", "u7", " p&7 ", false);
        Click(f, "cmdConnectionTest");
        Click(f, "cmdConnectionTest");
        Click(f, "cmdCancel");
    }));
    EXPECT_EQ(Told(*kit_),
              (std::vector<std::string>{"パスワードを記入してください。", "接続に成功しました。",
                                        "接続に失敗しました。"}));
    EXPECT_EQ(kit_->Boxes()[1].icon, MsgIcon::Information);
    EXPECT_EQ(kit_->Boxes()[2].icon, MsgIcon::Exclamation);
    const auto requests = server_->RequestsTo("login.php");
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].body, "no=C-7&ID=u7&PW=p&7&");
    EXPECT_EQ(GetLoginState(), 1);
    EXPECT_EQ(GetLoginToken(), "RUNNING");
}

TEST_F(SettingDialogTest, LinksUseTheTypedServerAndTheSignupPage) {
    EXPECT_TRUE(Show([](forms::Form& f) {
        f.Get<ComboBox>("cboServerName").SetText("typed.example.jp");
        f.Get<forms::Panel>("pnlShowControlPanel").Click();
        f.Get<forms::Label>("lblShowRegist").Click();
        f.Get<ComboBox>("cboServerName").SetText("");
        f.Get<forms::Label>("lblShowControlPanel").Click();
        Click(f, "cmdCancel");
    }));
    EXPECT_EQ(kit_->OpenedUrls(),
              (std::vector<std::string>{"https://typed.example.jp/", build::kSignupUrl}));
    EXPECT_EQ(Told(*kit_), std::vector<std::string>{"サーバー名を入力してください。"});
    EXPECT_EQ(kit_->Boxes()[0].buttons, forms::MsgButtons::OKCancel);
    EXPECT_EQ(kit_->Boxes()[0].icon, MsgIcon::Information);
}

TEST_F(SettingDialogTest, ClipboardMailFillsTheEmptyFieldsOnce) {
    const std::string mail = "ServerName: mail.example.jp ,ContractNo: C-55, UserID:  u55 ";
    EXPECT_TRUE(Show([&](forms::Form& f) {
        auto& contract = f.Get<TextBox>("txtContractNo");
        auto& uid = f.Get<TextBox>("txtLoginUID");
        // Each tag is looked for in its own part only: tags in another order fill nothing.
        kit_->SetClipboardText("UserID: u55, ServerName: s, ContractNo: C-55");
        contract.SetText("");
        ASSERT_TRUE(kit_->FireTimer("frmMorvaneSetting", "tmrClipboard"));
        EXPECT_EQ(contract.Text(), "");
        EXPECT_EQ(uid.Text(), "");

        kit_->SetClipboardText(mail);
        ASSERT_TRUE(kit_->FireTimer("frmMorvaneSetting", "tmrClipboard"));
        EXPECT_EQ(f.Get<ComboBox>("cboServerName").Text(), "mail.example.jp");
        EXPECT_EQ(contract.Text(), "C-55");
        EXPECT_EQ(uid.Text(), "u55");

        // With a field typed in, the mail is left alone.
        uid.SetText("mine");
        contract.SetText("");
        ASSERT_TRUE(kit_->FireTimer("frmMorvaneSetting", "tmrClipboard"));
        EXPECT_EQ(contract.Text(), "");
        Click(f, "cmdCancel");
    }));
    EXPECT_EQ(kit_->ClipboardText(), mail);
}

}  // namespace
}  // namespace morvane::test
