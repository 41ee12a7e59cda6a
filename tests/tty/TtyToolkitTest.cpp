// The terminal binding with scripted input: the dialogs answered by a person, the same
// dialogs with nobody at the terminal, boxes, timers, and the programs it starts.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <sstream>
#include <streambuf>
#include <string>

#include "component/ctrlMorvane.h"
#include "session/basTextEncrypt.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlMsgBox.h"
#include "state/mdlRegConstMorvane.h"
#include "support/FileBytes.h"
#include "support/MorvaneTest.h"
#include "tty/TtyToolkit.h"

namespace morvane::test {
namespace {

class TtyTest : public MorvaneTest {
protected:
    // Installs a terminal toolkit that reads the given lines.
    void UseTty(const std::string& input, bool interactive) {
        in_.str(input);
        in_.clear();
        out_.str("");
        tty::TtyOptions options;
        options.interactive = interactive;
        options.openCommand = {"true"};
        options.trashCommand = {"false"};
        tty_ = std::make_shared<tty::TtyToolkit>(in_, out_, options);
        State().SetToolkit(tty_);
    }
    // The pieces the output lacks.
    std::string Missing(const std::vector<std::string>& pieces) const {
        std::string missing;
        for (const auto& piece : pieces)
            if (out_.str().find(piece) == std::string::npos) missing += "[" + piece + "]";
        return missing;
    }
    int ticks_ = 0;  // of the test's timer

    std::istringstream in_;
    std::ostringstream out_;
    std::shared_ptr<tty::TtyToolkit> tty_;
};

// Garbage and an out-of-range number are asked again; a password is not shown.
TEST_F(TtyTest, PersonLogsInByControlNamesAndNumbers) {
    server_->On("login.php", LoginReply(1, "TOK"));
    UseTty("txtUID\nuser1\nbogus\n99\ntxtPWD\nsecret\nchkAutoLogin\ncmdLogin\n", true);
    ctrlMorvane obj;
    EXPECT_EQ(obj.ShowLogin(nullptr), 1);
    EXPECT_EQ(Missing({"=== ログイン ===", "<ログイン>", "[********]", "?\n",
                       "[ログイン] (i) ログインに成功しました。"}),
              "");
    EXPECT_EQ(out_.str().find("secret"), std::string::npos);
    EXPECT_EQ(server_->RequestsTo("login.php").at(0).body, "no=C-1001&ID=user1&PW=secret&");
    EXPECT_EQ(DecryptText(Setting(reg::kLoginPWD)), "secret");
}

// A forced re-login that cannot be closed still ends; nothing is read, so the input stays.
TEST_F(TtyTest, WithoutATerminalDialogsAreCancelledAndBoxesTakeTheirDefault) {
    UseTty("cmdNoConnect\n", false);
    ctrlMorvane obj;
    SetLoginState(0);
    EXPECT_EQ(obj.ShowLogin(nullptr), 0);
    EXPECT_EQ(ShowLoginDlg(nullptr, 1), 0);
    EXPECT_EQ(obj.ShowSetting(nullptr), 0);
    EXPECT_EQ(Setting(reg::kEnabledMorvane), "");
    forms::MessageBoxRequest box;
    box.text = "a\r\nb";
    box.title = "T";
    box.buttons = forms::MsgButtons::YesNo;
    box.defaultButton = 1;
    EXPECT_EQ(tty_->MessageBox(box), forms::MsgResult::No);
    EXPECT_EQ(
        Missing({"(no terminal: dialog cancelled)", "ユーザーID :", "[T] a\nb\n(no terminal: No)"}),
        "");
    std::string rest;
    std::getline(in_, rest);
    EXPECT_EQ(rest, "cmdNoConnect");
}

TEST_F(TtyTest, ForcedReloginRefusesToCloseAndEndsWithTheInput) {
    UseTty("0\ncmdCancel\n", true);
    EXPECT_EQ(ShowLoginDlg(nullptr, 1), 0);
    EXPECT_EQ(Missing({"(this dialog cannot be closed)", "<キャンセル> (-)"}), "");
    UseTty("0\ncmdNoConnect\n", true);
    EXPECT_EQ(ShowLoginDlg(nullptr, 1), 99);
}

// Access-key marks are not shown.
TEST_F(TtyTest, SettingsEditedAndStored) {
    UseTty("cboServerName\n#1\ntxtContractNo\n-\ntxtContractNo\nC-77\ntxtLoginUID\nu7\ncmdOK\n",
           true);
    ctrlMorvane obj;
    EXPECT_EQ(obj.ShowSetting(nullptr), 0);
    EXPECT_EQ(Setting(reg::kServerName) + "|" + Setting(reg::kContractNo) + "|" +
                  Setting(reg::kLoginUID) + "|" + Setting(reg::kEnabledMorvane),
              "morvane.example.jp|C-77|u7|True");
    EXPECT_EQ(Missing({"[モルヴェインの設定] (i) モルヴェインの設定が変更されました。\n",
                       "<接続テスト(T)>", ") 接続テスト(T)\n"}),
              "");
}

// An empty answer, and the end of the input, is the default button.
TEST_F(TtyTest, BoxWithChoicesIsAnswered) {
    UseTty("x\n2\n\n", true);
    EXPECT_EQ(MsgBox("q", forms::MsgIcon::Question, "t", forms::MsgButtons::YesNoCancel),
              forms::MsgResult::No);
    EXPECT_EQ(MsgBox("q", forms::MsgIcon::Question, "t", forms::MsgButtons::OKCancel),
              forms::MsgResult::OK);
    EXPECT_EQ(MsgBox("q", forms::MsgIcon::Question, "t", forms::MsgButtons::RetryCancel),
              forms::MsgResult::Retry);
}

// Hands out its text one character at a time, so nothing ever looks buffered ahead, as
// with a terminal.
class UnbufferedInput final : public std::streambuf {
public:
    explicit UnbufferedInput(std::string text) : text_(std::move(text)) {}

protected:
    int_type underflow() override {
        if (pos_ >= text_.size()) return traits_type::eof();
        current_ = text_[pos_++];
        setg(&current_, &current_, &current_ + 1);
        return traits_type::to_int_type(current_);
    }

private:
    std::string text_;
    size_t pos_ = 0;
    char current_ = 0;
};

// The descriptor that is waited on stays empty until the third tick writes to it.
TEST_F(TtyTest, TimersTickWhileAnAnswerIsAwaited) {
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    UnbufferedInput buffer("cmdClose\n");
    std::istream input(&buffer);
    tty::TtyOptions options;
    options.interactive = true;
    options.inputFd = fds[0];
    tty::TtyToolkit kit(input, out_, options);
    forms::Form form(kit, "frmWait", "wait");
    auto& timer = form.Add<forms::Timer>("tmr");
    form.Add<forms::Button>("cmdClose", "close").onClick = [&form] { form.Hide(); };
    timer.onTimer = [&] {
        if (++ticks_ == 3) {
            EXPECT_EQ(write(fds[1], "x", 1), 1);
        }
    };
    timer.SetInterval(2);
    timer.SetTimerEnabled(true);
    form.ShowModal(nullptr);
    EXPECT_EQ(ticks_, 3);
    EXPECT_FALSE(form.Visible());
    ::close(fds[0]);
    ::close(fds[1]);
}

// A missing program and a failing one are both "no application"; the trash command gets the
// path as one argument, blanks and all.
TEST_F(TtyTest, ProgramsAreStartedWithoutAShell) {
    UseTty("", false);
    EXPECT_EQ(tty_->OpenUrl("https://example.jp/?a=1&b=$(touch x)"), 33);
    EXPECT_EQ(Missing({"-> https://example.jp/?a=1&b=$(touch x)"}), "");
    EXPECT_FALSE(std::filesystem::exists("x"));
    EXPECT_EQ(tty_->MoveToTrash("/nonexistent"), 1);
    tty::TtyOptions options;
    for (const char* program : {"/nonexistent/xdg-open", "false"}) {
        options.openCommand = {program};
        EXPECT_EQ(tty::TtyToolkit(in_, out_, options).OpenUrl("https://x/"), 31) << program;
    }
    const auto file = WriteBytes(temp_.Path() / "a file;rm -rf x", "data");
    options.trashCommand = {"rm", "--"};
    EXPECT_EQ(tty::TtyToolkit(in_, out_, options).MoveToTrash(file.string()), 0);
    EXPECT_FALSE(std::filesystem::exists(file));
}

}  // namespace
}  // namespace morvane::test
