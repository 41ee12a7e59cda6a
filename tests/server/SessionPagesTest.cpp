// Login, the clock page, and the token that every judged reply renews.
#include "ServerFixture.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;

TEST_F(ServerTest, WrongCredentialsGetNoTokenAndNoAccount) {
    EXPECT_EQ(Post("login.php", "no=K100&ID=u1&PW=secret&").At("account/UserName"), "山田");
    for (const char* body : {"no=K100&ID=u1&PW=wrong&", "no=K999&ID=u1&PW=secret&",
                             "no=K100&ID=nobody&PW=secret&", "no=K100&ID=u1&", ""}) {
        Reply refused = Post("login.php", body);
        EXPECT_NE(refused.Flags(), 1) << body;
        EXPECT_EQ(refused.Token() + refused.At("account/UserName"), "") << body;
    }
    server_->AddUser("K100", "u3", "a&b=c&", "");
    EXPECT_EQ(Post("login.php", "no=K100&ID=u3&PW=a&b=c&&").Flags(), 1) << "& and = in a password";
}

TEST_F(ServerTest, ClockPageHasNoEnvelopeAndStampsComeFromTheSameClock) {
    Reply r = Post("gettime.php", "");
    EXPECT_FALSE(r.Payload("system"));
    const std::string text = r.At("datetime");
    ASSERT_EQ(text.size(), 19u) << text;
    EXPECT_EQ(text.substr(4, 1) + text.substr(7, 1) + text.substr(13, 1), "//:");
    Login u = LogIn();
    CreateCustomer(u, 1);
    Call(u, "customer/setMemo.php", "CustomerID=1&MemoItemID=1&DISABLEDALL=DISABLEDALL&History=h&");
    EXPECT_EQ(Call(u, "customer/getMemo.php", "CustomerID=1&").At("Customer/MemoList/RecordUpdate"),
              Post("gettime.php", "").At("datetime"));
}

TEST_F(ServerTest, EveryJudgedReplyRenewsTheTokenAndOnlyTheLastTwoAreTaken) {
    Login u = LogIn();
    const std::string t0 = u.token;
    std::string seen = u.token;
    for (const char* rest : {"", "", "CustomerID=404&"}) {
        // A failed request renews it too.
        Reply r = Call(u, *rest ? "customer/getCompKihon.php" : "customer/getCompList.php", rest);
        EXPECT_EQ(r.Flags(), *rest ? -1 : 1);
        EXPECT_NE(r.Token(), seen);
        EXPECT_FALSE(r.Token().empty());
        seen = r.Token();
    }
    Login oldest{"u1", t0};
    Reply refused = Call(oldest, "customer/getCompList.php", "");
    EXPECT_EQ(refused.Flags(), 0);
    EXPECT_EQ(refused.Token(), "");
    EXPECT_FALSE(refused.Payload("compList"));
    Login forged{"u2", u.token};
    EXPECT_EQ(Flags(forged, "customer/getCompList.php", ""), 0) << "a token belongs to its user";
    Login madeUp{"u1", "0123456789abcdef"};
    EXPECT_EQ(Flags(madeUp, "customer/getCompList.php", ""), 0);
}

TEST_F(ServerTest, SecondLoginGetsFlagsTwoOnlyWhereTheAccountSaysSo) {
    LogIn("u1");
    EXPECT_EQ(Post("login.php", "no=K100&ID=u1&PW=secret&").Flags(), 1)
        << "the default account allows several logins";
    AccountFields single;
    single.contractNo = "S1";
    single.singleLogin = true;
    server_->CreateAccount(single);
    server_->AddUser("S1", "solo", "pw", "");
    EXPECT_EQ(Post("login.php", "no=S1&ID=solo&PW=pw&").Flags(), 1);
    Reply second = Post("login.php", "no=S1&ID=solo&PW=pw&");
    EXPECT_EQ(second.Flags(), 2);
    EXPECT_EQ(second.Token(), "");
    EXPECT_EQ(Post("login.php", "no=S1&ID=solo&PW=bad&").Flags(), -1)
        << "a wrong password is a failure, not 'logged in elsewhere'";
    clock_->Advance(31min);
    EXPECT_EQ(Post("login.php", "no=S1&ID=solo&PW=pw&").Flags(), 1) << "after the first lapsed";
}

TEST_F(ServerTest, RestartKeepsAccountsAndDataButNotLoginsAndAQuickStopIsNeverLost) {
    Login u = LogIn();
    CreateCustomer(u, 9, "KEEP");
    server_->Stop();
    // httplib ignores a stop that comes before its loop runs; the join would then hang.
    for (int i = 0; i < 20; ++i) {
        MorvaneServer quick(options_);
        quick.Start();
        quick.Stop();
    }
    server_ = std::make_unique<MorvaneServer>(options_);
    server_->Start();
    EXPECT_EQ(Flags(u, "customer/getCompList.php", ""), 0);
    Login again = LogIn();
    EXPECT_EQ(Call(again, "customer/getCompList.php", "").At("compList/compItem/Code"), "KEEP");
}

}  // namespace
}  // namespace morvane::server::testing
