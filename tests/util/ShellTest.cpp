// The shell routines: mail links escaped and composed, and shell failures told to the user.
#include <gtest/gtest.h>

#include "state/basShell.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

TEST(EscapeMailTextTest, LineBreaksAndBlanks) {
    EXPECT_EQ(EscapeMailText("a b\r\nc"), "a%20b%0d%0ac");
    // A lone CR gains a blank, which is escaped in turn.
    EXPECT_EQ(EscapeMailText("x\ry\nz"), "x%0d%20y%0az");
    EXPECT_EQ(EscapeMailText("\r\n\r\r\n"), "%0d%0a%0d%20%0d%0a");
    EXPECT_EQ(EscapeMailText("件名"), "件名");
}

class ShellTest : public MorvaneTest {};

TEST_F(ShellTest, MailLinksAreComposedAsTheyAlwaysWere) {
    EXPECT_EQ(ShellMail("a@b.jp", "件 名", "one\r\ntwo", nullptr, true), 33);
    EXPECT_EQ(ShellMail("a@b.jp", "", "body", nullptr, false), 33);
    EXPECT_EQ(ShellMail("a@b.jp", "", "", nullptr, false), 33);
    ASSERT_EQ(kit_->OpenedUrls().size(), 3u);
    EXPECT_EQ(kit_->OpenedUrls()[0], "mailto:a@b.jp?subject=件%20名&body=one%0d%0atwo");
    // A body without a subject follows the address with "&".
    EXPECT_EQ(kit_->OpenedUrls()[1], "mailto:a@b.jp&body=body");
    EXPECT_EQ(kit_->OpenedUrls()[2], "mailto:a@b.jp");
    EXPECT_TRUE(kit_->Boxes().empty());
}

TEST_F(ShellTest, FailuresAreToldOnlyWhenAsked) {
    kit_->SetOpenUrlResult(31);
    EXPECT_EQ(ShellOpenURL("https://x/", nullptr, false), 31);
    EXPECT_TRUE(kit_->Boxes().empty());
    EXPECT_EQ(ShellMail("a@b", "", "", nullptr, true), 31);
    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(kit_->Boxes()[0].icon, forms::MsgIcon::Exclamation);
    EXPECT_EQ(kit_->Boxes()[0].text,
              "指定されたファイル拡張子に関連付けられたアプリケーションがありません。"
              "または印刷可能ではないファイルを印刷しようとしました。");

    // Access denied has no fallback browser: 0, and the address is handed to the user.
    kit_->SetOpenUrlResult(5);
    EXPECT_EQ(ShellOpenURL("https://x/", nullptr, false), 0);
    EXPECT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(ShellOpenURL("https://x/", nullptr, true), 0);
    ASSERT_EQ(kit_->Boxes().size(), 2u);
    EXPECT_EQ(kit_->Boxes()[1].text,
              "オペレーティングシステムによりアクセスが拒否されたため表示できませんでした。\r\n"
              "Web ブラウザを起動し、アドレスに https://x/ を指定して下さい。");
}

TEST_F(ShellTest, OnlyKnownCodesHaveAMessage) {
    for (int code : {2, 3, 5, 8, 11, 26, 27, 28, 29, 30, 31, 32})
        EXPECT_FALSE(ShellErrorMessage(code).empty()) << code;
    for (int code : {0, 1, 4, 33, 42, -1}) EXPECT_TRUE(ShellErrorMessage(code).empty()) << code;
    ShowShellError(33);
    EXPECT_TRUE(kit_->Boxes().empty());
    ShowShellError(11);
    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(
        kit_->Boxes()[0].text,
        "EXE ファイルが無効です。Win32 の EXE ではないか、EXE イメージ内にエラーがあります。");
}

}  // namespace
}  // namespace morvane::test
