// Login, the clock page, and the token that every judged reply renews.
#include <thread>

#include "ServerFixture.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;

TEST_F(ServerTest, LoginReplyCarriesSystemAndTheSixAccountFields) {
    Reply r = post("login.php", "no=K100&ID=u1&PW=secret&");
    ASSERT_TRUE(r.parsed) << r.text;
    EXPECT_EQ(r.flags(), 1);
    EXPECT_FALSE(r.token().empty());
    auto account = r.payload("account");
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
        Reply r = post("login.php", body);
        EXPECT_NE(r.flags(), 1) << body;
        EXPECT_EQ(r.token(), "") << body;
        EXPECT_FALSE(r.payload("account")) << body;
    }
}

TEST_F(ServerTest, PasswordHoldingAmpersandAndEqualsLogsIn) {
    server_->addUser("K100", "u3", "a&b=c&", "");
    Reply r = post("login.php", "no=K100&ID=u3&PW=a&b=c&&");
    EXPECT_EQ(r.flags(), 1) << r.text;
}

TEST_F(ServerTest, ClockPageHasDatetimeAndNoEnvelope) {
    Reply r = post("gettime.php", "");
    ASSERT_TRUE(r.parsed);
    EXPECT_FALSE(r.payload("system"));
    const std::string text = r.payload("datetime").text().get();
    ASSERT_EQ(text.size(), 19u) << text;
    EXPECT_EQ(text[4], '/');
    EXPECT_EQ(text[7], '/');
    EXPECT_EQ(text[13], ':');
    // The stamps of stored data come from the same clock.
    Login u = login();
    createCustomer(u, 1);
    call(u, "customer/setMemo.php", "CustomerID=1&MemoItemID=1&DISABLEDALL=DISABLEDALL&History=h&");
    Reply memo = call(u, "customer/getMemo.php", "CustomerID=1&");
    const std::string stamp =
        memo.payload("Customer").child("MemoList").child("RecordUpdate").text().get();
    EXPECT_EQ(stamp, Reply(rawPost("gettime.php", "")).payload("datetime").text().get());
}

TEST_F(ServerTest, EveryJudgedReplyRenewsTheToken) {
    Login u = login();
    std::string seen = u.token;
    for (int i = 0; i < 3; ++i) {
        Reply r = call(u, "customer/getCompList.php", "");
        ASSERT_EQ(r.flags(), 1);
        EXPECT_NE(r.token(), seen);
        seen = r.token();
    }
    // A failed request renews it too.
    Reply failed = call(u, "customer/getCompKihon.php", "CustomerID=404&");
    EXPECT_EQ(failed.flags(), -1);
    EXPECT_NE(failed.token(), seen);
    EXPECT_FALSE(failed.token().empty());
}

TEST_F(ServerTest, LostReplyKeepsTheLoginButOlderTokensAreRefused) {
    Login u = login();
    const std::string t0 = u.token;
    Reply first = call(u, "customer/getCompList.php", "");  // reply "lost": u.token is t1
    Login stale{"u1", t0};
    Reply again = call(stale, "customer/getCompList.php", "");
    EXPECT_EQ(again.flags(), 1) << "the token before the newest still works";
    Login oldest{"u1", t0};
    Reply refused = call(oldest, "customer/getCompList.php", "");
    EXPECT_EQ(refused.flags(), 0);
    EXPECT_EQ(refused.token(), "");
    EXPECT_FALSE(refused.payload("compList"));
}

TEST_F(ServerTest, IdleLoginLapsesWithFlagsZero) {
    Login u = login();
    clock_->advance(29min);
    EXPECT_EQ(call(u, "master/getKessanTaioh.php", "").flags(), 1) << "keep-alive";
    clock_->advance(29min);
    EXPECT_EQ(call(u, "master/getKessanTaioh.php", "").flags(), 1);
    clock_->advance(31min);
    Reply r = call(u, "master/getKessanTaioh.php", "");
    EXPECT_EQ(r.flags(), 0);
    EXPECT_EQ(r.token(), "");
}

TEST_F(ServerTest, TokenOfAnotherUserOrAnUnknownTokenIsRefused) {
    Login u1 = login("u1");
    Login forged{"u2", u1.token};
    EXPECT_EQ(call(forged, "customer/getCompList.php", "").flags(), 0);
    Login made_up{"u1", "0123456789abcdef"};
    EXPECT_EQ(call(made_up, "customer/getCompList.php", "").flags(), 0);
}

TEST_F(ServerTest, SecondLoginGetsFlagsTwoOnlyWhereTheAccountSaysSo) {
    login("u1");
    EXPECT_EQ(post("login.php", "no=K100&ID=u1&PW=secret&").flags(), 1)
        << "the default account allows several logins";

    AccountFields single;
    single.contractNo = "S1";
    single.singleLogin = true;
    server_->createAccount(single);
    server_->addUser("S1", "solo", "pw", "");
    Reply first = post("login.php", "no=S1&ID=solo&PW=pw&");
    EXPECT_EQ(first.flags(), 1);
    Reply second = post("login.php", "no=S1&ID=solo&PW=pw&");
    EXPECT_EQ(second.flags(), 2);
    EXPECT_EQ(second.token(), "");
    EXPECT_EQ(post("login.php", "no=S1&ID=solo&PW=bad&").flags(), -1)
        << "a wrong password is a failure, not 'logged in elsewhere'";
    clock_->advance(31min);
    EXPECT_EQ(post("login.php", "no=S1&ID=solo&PW=pw&").flags(), 1) << "after the first lapsed";
}

TEST_F(ServerTest, RestartKeepsAccountsAndDataButNotLogins) {
    Login u = login();
    createCustomer(u, 9, "KEEP");
    server_->stop();
    server_ = std::make_unique<MorvaneServer>(options_);
    server_->start();
    EXPECT_EQ(call(u, "customer/getCompList.php", "").flags(), 0);
    Login again = login();
    Reply list = call(again, "customer/getCompList.php", "");
    EXPECT_STREQ(list.payload("compList").child("compItem").child("Code").text().get(), "KEEP");
}

}  // namespace
}  // namespace morvane::server::testing
