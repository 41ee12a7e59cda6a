// The shell routines: mail links escaped and composed, and shell failures told to the user.
#include <gtest/gtest.h>

#include "state/basShell.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"
#include "support/Told.h"
#include "util/Text.h"

namespace morvane::test {
namespace {

class ShellTest : public MorvaneTest {};

// A lone CR gains a blank, which is escaped in turn; a body without a subject follows the
// address with "&".
TEST_F(ShellTest, MailLinksAreEscapedAndComposedAsTheyAlwaysWere) {
    EXPECT_EQ(EscapeMailText("x\ry\nz") + " " + EscapeMailText("\r\n\r\r\n件名"),
              "x%0d%20y%0az %0d%0a%0d%20%0d%0a件名");
    EXPECT_EQ(ShellMail("a@b.jp", "件 名", "one\r\ntwo", nullptr, true), 33);
    EXPECT_EQ(ShellMail("a@b.jp", "", "body", nullptr, false), 33);
    EXPECT_EQ(ShellMail("a@b.jp", "", "", nullptr, false), 33);
    EXPECT_EQ(kit_->OpenedUrls(),
              (std::vector<std::string>{"mailto:a@b.jp?subject=件%20名&body=one%0d%0atwo",
                                        "mailto:a@b.jp&body=body", "mailto:a@b.jp"}));
    EXPECT_TRUE(kit_->Boxes().empty());
}

// Access denied has no fallback browser: 0, and the address is handed to the user.
TEST_F(ShellTest, FailuresAreToldOnlyWhenAskedAndOnlyKnownCodesHaveAMessage) {
    kit_->SetOpenUrlResult(31);
    EXPECT_EQ(ShellOpenURL("https://x/", nullptr, false), 31);
    EXPECT_EQ(ShellMail("a@b", "", "", nullptr, true), 31);
    kit_->SetOpenUrlResult(5);
    EXPECT_EQ(ShellOpenURL("https://x/", nullptr, false), 0);
    EXPECT_EQ(ShellOpenURL("https://x/", nullptr, true), 0);
    ShowShellError(33);
    ShowShellError(11);
    EXPECT_EQ(Join(Told(*kit_), "\n"), Golden("util/shell.txt")["unassociated and denied"]);
    EXPECT_EQ(kit_->Boxes()[0].icon, forms::MsgIcon::Exclamation);
    std::string known;
    for (int code : {2, 3, 5, 8, 11, 26, 27, 28, 29, 30, 31, 32, 0, 1, 4, 33, 42, -1})
        known += ShellErrorMessage(code).empty() ? "n" : "y";
    EXPECT_EQ(known, "yyyyyyyyyyyynnnnnn");
}

}  // namespace
}  // namespace morvane::test
