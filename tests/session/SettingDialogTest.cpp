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
#include "support/Golden.h"
#include "support/MorvaneTest.h"
#include "support/Told.h"
#include "util/Text.h"

namespace morvane::test {
namespace {

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
        f.Get<forms::CheckBox>("chkSaveLoginPWD").SetChecked(save);
    }
    static void Click(forms::Form& f, const char* name) { f.Get<forms::Button>(name).Click(); }
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

    const Golden data_{"session/setting-dialog.txt"};
    ctrlMorvane obj_;
};

// A server stored empty stays empty (only a missing one gets the service's default); state 99
// shows the note. The clipboard timer lives only while the dialog does. ShowInfo shows the same
// dialog.
TEST_F(SettingDialogTest, LoadShowsTheStoredValues) {
    SetSetting(reg::kLoginPWD, EncryptText("pw"));
    SetSetting(reg::kSaveLoginPWD, "True");
    const auto shown = [&](forms::Form& f) {
        EXPECT_EQ(f.Caption(), kCaption);
        EXPECT_TRUE(kit_->TimerLive("frmMorvaneSetting", "tmrClipboard"));
        const auto& cbo = f.Get<ComboBox>("cboServerName");
        const auto& note = f.Get<forms::Label>("lblConnectinInfo");
        return cbo.Items().at(0) + "|" + cbo.Text() + "|" + f.Get<TextBox>("txtContractNo").Text() +
               "|" + f.Get<TextBox>("txtLoginPWD").Text() + "|" +
               (f.Get<forms::CheckBox>("chkSaveLoginPWD").Checked() ? "saved" : "") + "|" +
               (note.Visible() ? note.Text() : "");
    };
    EXPECT_TRUE(Show([&](forms::Form& f) {
        EXPECT_EQ(shown(f), std::string(build::kDefaultServer) + "|" + server_->HostName() +
                                "|C-1001|pw|saved|");
    }));
    SetSetting(reg::kServerName, "");
    obj_.SetDisableMorvane();
    EXPECT_TRUE(Show([&](forms::Form& f) {
        EXPECT_EQ(shown(f), std::string(build::kDefaultServer) + "||C-1001|pw|saved|（未接続）");
    }));
    EXPECT_FALSE(kit_->TimerLive("frmMorvaneSetting", "tmrClipboard"));
    EXPECT_EQ(obj_.ShowInfo(nullptr), 0);
    EXPECT_EQ(kit_->ShownForms().back().form, "frmMorvaneSetting");
}

// Each row fills the dialog over the same stored values and presses OK, then the close box,
// which cancels, if the dialog stayed. The server, contract and user are stored as they stand
// in the controls before the password is looked at; the restart note follows a new server.
TEST_F(SettingDialogTest, OkStoresWhatItMayAndTellsWhatIsMissingOrChanged) {
    const auto cell = [&](const std::string& text) {
        return text == "-" ? "" : ReplaceAll(text, "HOST", server_->HostName());
    };
    for (const auto& row : data_.Table("ok")) {
        SCOPED_TRACE(row.at(0));
        SetSetting(reg::kEnabledMorvane, "");
        SetSetting(reg::kServerName, server_->HostName());
        SetSetting(reg::kContractNo, "C-1001");
        SetSetting(reg::kLoginUID, "");
        SetSetting(reg::kLoginPWD, EncryptText("old"));
        SetSetting(reg::kSaveLoginPWD, "");
        kit_->ClearRecords();
        EXPECT_TRUE(Show([&](forms::Form& f) {
            Fill(f, cell(row.at(1)), cell(row.at(2)), cell(row.at(3)), cell(row.at(4)),
                 row.at(5) == "save");
            Click(f, "cmdOK");
            if (!f.Visible()) return;
            EXPECT_FALSE(f.RequestClose());
            EXPECT_FALSE(f.Visible());
        }));
        EXPECT_EQ(Stored(), cell(row.at(6)));
        const std::string told = row.at(7);
        EXPECT_EQ(Join(Told(*kit_), "\n"), told == "-" ? "" : data_[told]);
        for (const auto& box : kit_->Boxes()) {
            EXPECT_EQ(box.title, kCaption);
            EXPECT_EQ(box.icon, told == "restart" ? MsgIcon::Information : MsgIcon::Exclamation);
        }
    }
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
    EXPECT_EQ(Join(Told(*kit_), "\n"), data_["connection test"]);
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
    }));
    EXPECT_EQ(kit_->OpenedUrls(),
              (std::vector<std::string>{"https://typed.example.jp/", build::kSignupUrl}));
    EXPECT_EQ(Told(*kit_), std::vector<std::string>{"サーバー名を入力してください。"});
}

// With a field typed in, the mail is left alone.
TEST_F(SettingDialogTest, ClipboardMailFillsTheEmptyFieldsOnce) {
    const std::string mail = "ServerName: mail.example.jp ,ContractNo: C-55, UserID:  u55 ";
    EXPECT_TRUE(Show([&](forms::Form& f) {
        auto& contract = f.Get<TextBox>("txtContractNo");
        auto& uid = f.Get<TextBox>("txtLoginUID");
        const auto paste = [&](const std::string& text) {
            kit_->SetClipboardText(text);
            EXPECT_TRUE(kit_->FireTimer("frmMorvaneSetting", "tmrClipboard"));
            return f.Get<ComboBox>("cboServerName").Text() + "|" + contract.Text() + "|" +
                   uid.Text();
        };
        contract.SetText("");
        EXPECT_EQ(paste(mail), "mail.example.jp|C-55|u55");
        uid.SetText("mine");
        contract.SetText("");
        EXPECT_EQ(paste(mail), "mail.example.jp||mine");
        Click(f, "cmdCancel");
    }));
    EXPECT_EQ(kit_->ClipboardText(), mail);
}

}  // namespace
}  // namespace morvane::test
