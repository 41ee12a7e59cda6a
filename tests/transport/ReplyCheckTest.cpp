// The judgement of replies: each flags value, what it does to the login state and token,
// and the boxes the user sees, all through the real HTTPS exchange.
#include <gtest/gtest.h>

#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"
#include "support/Told.h"
#include "transport/frmSendRequestProgress.h"
#include "transport/mdlServerReply.h"
#include "util/Text.h"

namespace morvane::test {
namespace {

constexpr const char* kPage = "customer/getCompKihon.php";

class ReplyCheckTest : public MorvaneTest {
protected:
    // Posts a judged request to a page answering `reply` and gives SendRequest's result.
    std::string Send(const std::string& reply) {
        server_->On(kPage, reply);
        return SendRequest(kPage, "ID=user1&token=T1&CustomerID=7&");
    }
    std::size_t Sent() { return server_->RequestsTo(kPage).size(); }
    const Golden data_{"transport/reply-check.txt"};
};

// Only a reply of flags 1 is handed back, whole; other flags than 1, -1 and -2 stay as sent
// without a word. Without a token the user must log in again, after the message, without an
// owner. Flags 0 and its forced login are the login dialog's tests (ExpiredToken...).
TEST_F(ReplyCheckTest, EachFlagsValueLeavesItsStateTokenAndBox) {
    const std::string good = Envelope(1, "T2", "<Customer><CustomerID>7</CustomerID></Customer>");
    for (const auto& row : data_.Table("flags")) {
        const int flags = std::stoi(row.at(0));
        const std::string& token = row.at(1);
        SCOPED_TRACE(row.at(0) + " " + token);
        LogIn("T1");
        const std::string reply = flags == 1 ? good : Envelope(flags, token);
        EXPECT_EQ(Send(reply), flags == 1 ? reply : "");
        EXPECT_EQ(GetLoginState(), std::stoi(row.at(2)));
        EXPECT_EQ(GetLoginToken(), token);  // the empty token is stored too
        EXPECT_EQ(Join(Told(*kit_), "\n"), row.at(3) == "-" ? "" : data_[row.at(3)]);
        for (const auto& box : kit_->Boxes()) {
            EXPECT_EQ(box.title, flags == -1 ? "サーバー通信エラー" : "サーバーデータの更新");
            EXPECT_EQ(box.icon, forms::MsgIcon::Exclamation);
        }
        EXPECT_EQ(Shown(*kit_), token.empty() ? std::vector<std::string>{"frmLogin"}
                                              : std::vector<std::string>{});
    }
}

// The record is emptied before the prompt.
TEST_F(ReplyCheckTest, AnEndedLoginGoesToWhicheverPromptIsSetAndToNoneWithout) {
    const auto sessionPrompt = State().loginPrompt;
    std::vector<std::string> asked;
    SetLoginPrompt([&] { asked.push_back(GetLoginID()); });
    LogIn("T1");
    EXPECT_EQ(Send(Envelope(0, "")), "");
    SetLoginPrompt(nullptr);
    LogIn("T1");
    EXPECT_EQ(Send(Envelope(0, "")), "");
    EXPECT_EQ(asked, std::vector<std::string>{""});
    EXPECT_EQ(GetLoginState(), 0);
    EXPECT_EQ(GetLoginID(), "");
    EXPECT_TRUE(kit_->ShownForms().empty());
    SetLoginPrompt(sessionPrompt);
}

// The store keeps the last token; no login dialog here.
TEST_F(ReplyCheckTest, UnreadableRepliesTellOnceAndReset) {
    auto replies = data_.Lines("unreadable");
    replies.push_back("");
    for (const std::string& reply : replies) {
        SCOPED_TRACE(reply);
        LogIn("T1");
        EXPECT_EQ(Send(reply), "");
        EXPECT_EQ(GetLoginState(), 0);
        EXPECT_EQ(GetLoginToken(), "T1");
        EXPECT_EQ(Join(Told(*kit_), "\n"), data_["unreadable told"]);
        EXPECT_TRUE(kit_->ShownForms().empty());
    }
}

// An empty body or path sends nothing; becoming the active window again, as after a box over
// it, does not post again.
TEST_F(ReplyCheckTest, ProgressFormRunsTheExchangeOnceUnlessTheOptionIsOne) {
    LogIn("T1");
    server_->On(kPage, Envelope(1, "T2", "<x/>"));
    EXPECT_NE(SendRequestProgress(kPage, "ID=a&", "", nullptr), "");
    EXPECT_EQ(Shown(*kit_), std::vector<std::string>{"frmSendRequestProgress"});
    EXPECT_TRUE(kit_->Unanswered().empty());  // it hid itself
    EXPECT_EQ(SendRequestProgress(kPage, "", "", nullptr), "");
    EXPECT_EQ(SendRequestProgress("", "ID=a&", "", nullptr), "");
    EXPECT_EQ(server_->Requests().size(), 1u);

    frmSendRequestProgress form(State().Toolkit());
    form.Load();
    form.ShowMsgString("");
    EXPECT_EQ(form.Caption() + "|" + form.Get<forms::Label>("lblInfo").Text(),
              "モルヴェインサーバーと通信中|モルヴェインサーバーと通信しています・・・");
    form.ShowMsgString("anything");  // the label's rule is the reverse of its name
    EXPECT_EQ(form.Get<forms::Label>("lblInfo").Text(), "");
    form.SetURL(kPage);
    form.SetPostData("ID=a&");
    form.ShowModal(nullptr);
    form.Activate();
    EXPECT_EQ(Sent(), 2u);
    EXPECT_NE(form.ReturnString(), "");

    kit_->ClearRecords();
    State().objectUsage = 1;
    EXPECT_NE(SendRequestProgress(kPage, "ID=a&", "", nullptr), "");
    EXPECT_TRUE(kit_->ShownForms().empty());
}

TEST_F(ReplyCheckTest, ConnectionTestFailsOnAnythingButALoginWithItsToken) {
    const std::string url = "https://" + server_->HostName() + "/login.php";
    for (const std::string& reply :
         {LoginReply(2, "OTHER"), std::string("<r><system><flags>1</flags></system></r>")}) {
        server_->On("login.php", reply);
        EXPECT_FALSE(TestConnection(url, "C-9", "u9", "p9")) << reply;
    }
    EXPECT_FALSE(TestConnection("https://127.0.0.1:1/login.php", "C", "u", "p"));
}

}  // namespace
}  // namespace morvane::test
