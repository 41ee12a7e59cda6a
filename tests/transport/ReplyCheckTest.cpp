// The judgement of replies: each flags value, what it does to the login state and token,
// and the boxes the user sees, all through the real HTTPS exchange.
#include <gtest/gtest.h>

#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "support/MorvaneTest.h"
#include "support/Told.h"
#include "transport/frmSendRequestProgress.h"
#include "transport/mdlServerReply.h"

namespace morvane::test {
namespace {

using forms::MsgIcon;

class ReplyCheckTest : public MorvaneTest {
protected:
    // Posts a judged request to a page answering `reply` and gives SendRequest's result.
    std::string Send(const std::string& reply) {
        server_->On("customer/getCompKihon.php", reply);
        return SendRequest("customer/getCompKihon.php", "ID=user1&token=T1&CustomerID=7&");
    }
};

// Flags 0 and its forced login are the login dialog's tests (ExpiredToken...).
TEST_F(ReplyCheckTest, EachFlagsValueLeavesItsStateTokenAndBox) {
    const std::string good = Envelope(1, "T2", "<Customer><CustomerID>7</CustomerID></Customer>");
    const std::string failed = "データの通信に失敗しました。　";
    const std::string locked =
        "データをロックできないため、サーバーのデータを更新できませんでした。　\r\n"
        "他のユーザーが同じデータを編集している可能性があります。";
    const struct {
        int flags;
        const char* token;
        int state;         // the login state after the reply
        std::string told;  // "" for no box
        const char* title;
    } rows[] = {
        {1, "T2", 1, "", ""},  // the only reply handed back, whole
        {-1, "T3", 1, failed, "サーバー通信エラー"},
        {-1, "", 0, failed, "サーバー通信エラー"},
        {-2, "T4", 1, locked, "サーバーデータの更新"},
        {-2, "", 0, locked, "サーバーデータの更新"},
        {5, "T5", 5, "", ""},  // other flags stay as sent without a word
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(std::to_string(r.flags) + " " + r.token);
        LogIn("T1");
        const std::string reply = r.flags == 1 ? good : Envelope(r.flags, r.token);
        EXPECT_EQ(Send(reply), r.flags == 1 ? reply : "");
        EXPECT_EQ(GetLoginState(), r.state);
        EXPECT_EQ(GetLoginToken(), r.token);  // the empty token is stored too
        EXPECT_EQ(Told(*kit_),
                  r.told.empty() ? std::vector<std::string>{} : std::vector<std::string>{r.told});
        if (!r.told.empty()) {
            EXPECT_EQ(kit_->Boxes()[0].title, r.title);
            EXPECT_EQ(kit_->Boxes()[0].icon, MsgIcon::Exclamation);
        }
        // Without a token the user must log in again, after the message, without an owner.
        EXPECT_EQ(Shown(*kit_),
                  *r.token ? std::vector<std::string>{} : std::vector<std::string>{"frmLogin"});
    }
}

TEST_F(ReplyCheckTest, AnEndedLoginGoesToWhicheverPromptIsSetAndToNoneWithout) {
    const auto sessionPrompt = State().loginPrompt;
    int asked = 0;
    SetLoginPrompt([&] {
        ++asked;
        EXPECT_EQ(GetLoginID(), "");  // the record is emptied before the prompt
    });
    LogIn("T1");
    EXPECT_EQ(Send(Envelope(0, "")), "");
    EXPECT_EQ(asked, 1);
    SetLoginPrompt(nullptr);
    LogIn("T1");
    EXPECT_EQ(Send(Envelope(0, "")), "");
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(GetLoginState(), 0);
    EXPECT_EQ(GetLoginID(), "");
    EXPECT_TRUE(kit_->ShownForms().empty());
    SetLoginPrompt(sessionPrompt);
}

TEST_F(ReplyCheckTest, UnreadableRepliesTellOnceAndReset) {
    const std::string kThreeLines =
        "データの通信に失敗しました。　\r\n"
        "インターネットに接続されているかご確認ください。　\r\n"
        "また、ソラスタを再起動してみてください。　";
    for (const std::string& reply :
         {std::string(), std::string("<root><system><flags>1</flags>"),
          std::string("<root><flags>1</flags><token>x</token></root>"),
          std::string(
              "<root><system><flags>1</flags><flags>1</flags><token>x</token></system></root>"),
          std::string("<root><system><flags>1</flags><token>x</token><token>y</token></system>"
                      "</root>"),
          std::string("<root><system><flags>1</flags><token>x</token></system>"
                      "<system><flags>1</flags><token>x</token></system></root>"),
          // The envelope's names are taken exactly as written.
          std::string("<root><System><flags>1</flags><token>x</token></System></root>"),
          std::string("<root><system><Flags>1</Flags><token>x</token></system></root>"),
          std::string("not xml at all")}) {
        LogIn("T1");
        EXPECT_EQ(Send(reply), "") << reply;
        EXPECT_EQ(GetLoginState(), 0) << reply;
        EXPECT_EQ(GetLoginToken(), "T1") << reply;  // the store keeps the last token
        EXPECT_EQ(Told(*kit_), std::vector<std::string>{kThreeLines}) << reply;
        EXPECT_TRUE(kit_->ShownForms().empty()) << reply;  // no login dialog here
    }
}

TEST_F(ReplyCheckTest, DeadServerOrUntrustedCertificateIsAnEmptyReplyNotAHang) {
    server_->On("customer/getCompKihon.php", Envelope(1, "T2"));
    LogIn("T1");
    platform::HttpOptions http = State().HttpOptions();
    http.caFile = (temp_.Path() / "missing.pem").string();
    State().SetHttpOptions(http);
    EXPECT_EQ(SendRequest("customer/getCompKihon.php", "ID=user1&token=T1&"), "");
    EXPECT_EQ(GetLoginState(), 0);
    SetLoginState(1);
    kit_->ClearRecords();
    server_.reset();  // nothing listens on the port any more
    EXPECT_EQ(SendRequest("customer/getCompKihon.php", "ID=user1&token=T1&"), "");
    EXPECT_EQ(GetLoginState(), 0);
    EXPECT_EQ(kit_->Boxes().size(), 1u);
}

TEST_F(ReplyCheckTest, ProgressFormRunsTheExchangeOnceUnlessTheOptionIsOne) {
    LogIn("T1");
    server_->On("customer/getCompKihon.php", Envelope(1, "T2", "<x/>"));
    EXPECT_NE(SendRequestProgress("customer/getCompKihon.php", "ID=a&", "", nullptr), "");
    ASSERT_EQ(kit_->ShownForms().size(), 1u);
    EXPECT_EQ(kit_->ShownForms()[0].form, "frmSendRequestProgress");
    EXPECT_EQ(server_->RequestsTo("customer/getCompKihon.php").size(), 1u);
    EXPECT_TRUE(kit_->Unanswered().empty());  // it hid itself

    // An empty body or path sends nothing.
    EXPECT_EQ(SendRequestProgress("customer/getCompKihon.php", "", "", nullptr), "");
    EXPECT_EQ(SendRequestProgress("", "ID=a&", "", nullptr), "");
    EXPECT_EQ(server_->RequestsTo("customer/getCompKihon.php").size(), 1u);
    EXPECT_EQ(server_->Requests().size(), 1u);

    // Becoming the active window again, as after a box over it, does not post again.
    frmSendRequestProgress form(State().Toolkit());
    form.Load();
    form.SetURL("customer/getCompKihon.php");
    form.SetPostData("ID=a&");
    form.ShowModal(nullptr);
    form.Activate();
    EXPECT_EQ(server_->RequestsTo("customer/getCompKihon.php").size(), 2u);
    EXPECT_NE(form.ReturnString(), "");

    kit_->ClearRecords();
    State().objectUsage = 1;
    EXPECT_NE(SendRequestProgress("customer/getCompKihon.php", "ID=a&", "", nullptr), "");
    EXPECT_TRUE(kit_->ShownForms().empty());
}

TEST_F(ReplyCheckTest, ProgressFormLabelKeepsItsReversedRule) {
    frmSendRequestProgress form(State().Toolkit());
    form.ShowMsgString("");
    EXPECT_EQ(form.Get<forms::Label>("lblInfo").Text(),
              "モルヴェインサーバーと通信しています・・・");
    form.ShowMsgString("anything");
    EXPECT_EQ(form.Get<forms::Label>("lblInfo").Text(), "");
    EXPECT_EQ(form.Caption(), "モルヴェインサーバーと通信中");
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
