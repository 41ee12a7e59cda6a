// Login, the clock page, and the token that every judged reply renews.
#include <thread>

#include "ServerFixture.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;

TEST_F(ServerTest, LoginReplyCarriesSystemAndTheSixAccountFields) {
    Reply r = Post("login.php", "no=K100&ID=u1&PW=secret&");
    ASSERT_TRUE(r.parsed) << r.text;
    EXPECT_EQ(r.Flags(), 1);
    EXPECT_FALSE(r.Token().empty());
    auto account = r.Payload("account");
    EXPECT_STREQ(account.child("UserName").text().get(), "山田");
    EXPECT_STREQ(account.child("ContractorName").text().get(), "テスト建設");
    EXPECT_STREQ(account.child("ContractBegin").text().get(), "2024/04/01");
    EXPECT_STREQ(account.child("ContractEnd").text().get(), "2025/03/31");
    EXPECT_STREQ(account.child("SharedCount").text().get(), "2");
    EXPECT_STREQ(account.child("MaxCustomer").text().get(), "3");
}

TEST_F(ServerTest, WrongCredentialsAreRefusedWithoutAToken) {
    for (const char* body : {"no=K100&ID=u1&PW=wrong&", "no=K999&ID=u1&PW=secret&",
                             "no=K100&ID=nobody&PW=secret&", "no=K100&ID=u1&", ""}) {
        Reply r = Post("login.php", body);
        EXPECT_NE(r.Flags(), 1) << body;
        EXPECT_EQ(r.Token(), "") << body;
        EXPECT_FALSE(r.Payload("account")) << body;
    }
}

TEST_F(ServerTest, PasswordHoldingAmpersandAndEqualsLogsIn) {
    server_->AddUser("K100", "u3", "a&b=c&", "");
    Reply r = Post("login.php", "no=K100&ID=u3&PW=a&b=c&&");
    EXPECT_EQ(r.Flags(), 1) << r.text;
}

TEST_F(ServerTest, ClockPageHasDatetimeAndNoEnvelope) {
    Reply r = Post("gettime.php", "");
    ASSERT_TRUE(r.parsed);
    EXPECT_FALSE(r.Payload("system"));
    const std::string text = r.Payload("datetime").text().get();
    ASSERT_EQ(text.size(), 19u) << text;
    EXPECT_EQ(text[4], '/');
    EXPECT_EQ(text[7], '/');
    EXPECT_EQ(text[13], ':');
    // The stamps of stored data come from the same clock.
    Login u = LogIn();
    CreateCustomer(u, 1);
    Call(u, "customer/setMemo.php", "CustomerID=1&MemoItemID=1&DISABLEDALL=DISABLEDALL&History=h&");
    Reply memo = Call(u, "customer/getMemo.php", "CustomerID=1&");
    const std::string stamp =
        memo.Payload("Customer").child("MemoList").child("RecordUpdate").text().get();
    EXPECT_EQ(stamp, Reply(RawPost("gettime.php", "")).Payload("datetime").text().get());
}

TEST_F(ServerTest, EveryJudgedReplyRenewsTheToken) {
    Login u = LogIn();
    std::string seen = u.token;
    for (int i = 0; i < 3; ++i) {
        Reply r = Call(u, "customer/getCompList.php", "");
        ASSERT_EQ(r.Flags(), 1);
        EXPECT_NE(r.Token(), seen);
        seen = r.Token();
    }
    // A failed request renews it too.
    Reply failed = Call(u, "customer/getCompKihon.php", "CustomerID=404&");
    EXPECT_EQ(failed.Flags(), -1);
    EXPECT_NE(failed.Token(), seen);
    EXPECT_FALSE(failed.Token().empty());
}

TEST_F(ServerTest, LostReplyKeepsTheLoginButOlderTokensAreRefused) {
    Login u = LogIn();
    const std::string t0 = u.token;
    Reply first = Call(u, "customer/getCompList.php", "");  // reply "lost": u.token is t1
    Login stale{"u1", t0};
    Reply again = Call(stale, "customer/getCompList.php", "");
    EXPECT_EQ(again.Flags(), 1) << "the token before the newest still works";
    Login oldest{"u1", t0};
    Reply refused = Call(oldest, "customer/getCompList.php", "");
    EXPECT_EQ(refused.Flags(), 0);
    EXPECT_EQ(refused.Token(), "");
    EXPECT_FALSE(refused.Payload("compList"));
}

TEST_F(ServerTest, IdleLoginLapsesWithFlagsZero) {
    Login u = LogIn();
    clock_->Advance(29min);
    EXPECT_EQ(Call(u, "master/getKessanTaioh.php", "").Flags(), 1) << "keep-alive";
    clock_->Advance(29min);
    EXPECT_EQ(Call(u, "master/getKessanTaioh.php", "").Flags(), 1);
    clock_->Advance(31min);
    Reply r = Call(u, "master/getKessanTaioh.php", "");
    EXPECT_EQ(r.Flags(), 0);
    EXPECT_EQ(r.Token(), "");
}

TEST_F(ServerTest, TokenOfAnotherUserOrAnUnknownTokenIsRefused) {
    Login u1 = LogIn("u1");
    Login forged{"u2", u1.token};
    EXPECT_EQ(Call(forged, "customer/getCompList.php", "").Flags(), 0);
    Login made_up{"u1", "0123456789abcdef"};
    EXPECT_EQ(Call(made_up, "customer/getCompList.php", "").Flags(), 0);
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
    Reply first = Post("login.php", "no=S1&ID=solo&PW=pw&");
    EXPECT_EQ(first.Flags(), 1);
    Reply second = Post("login.php", "no=S1&ID=solo&PW=pw&");
    EXPECT_EQ(second.Flags(), 2);
    EXPECT_EQ(second.Token(), "");
    EXPECT_EQ(Post("login.php", "no=S1&ID=solo&PW=bad&").Flags(), -1)
        << "a wrong password is a failure, not 'logged in elsewhere'";
    clock_->Advance(31min);
    EXPECT_EQ(Post("login.php", "no=S1&ID=solo&PW=pw&").Flags(), 1) << "after the first lapsed";
}

TEST_F(ServerTest, RestartKeepsAccountsAndDataButNotLogins) {
    Login u = LogIn();
    CreateCustomer(u, 9, "KEEP");
    server_->Stop();
    server_ = std::make_unique<MorvaneServer>(options_);
    server_->Start();
    EXPECT_EQ(Call(u, "customer/getCompList.php", "").Flags(), 0);
    Login again = LogIn();
    Reply list = Call(again, "customer/getCompList.php", "");
    EXPECT_STREQ(list.Payload("compList").child("compItem").child("Code").text().get(), "KEEP");
}

TEST_F(ServerTest, StopRightAfterStartIsNeverLost) {
    server_->Stop();
    // httplib ignores a stop that comes before its loop runs; the join would then hang.
    for (int i = 0; i < 20; ++i) {
        MorvaneServer quick(options_);
        quick.Start();
        quick.Stop();
    }
    MorvaneServer last(options_);
    last.Start();
    last.Stop();
    EXPECT_GT(last.Port(), 0);
}

}  // namespace
}  // namespace morvane::server::testing
