// Login, the clock page, and the token that every judged reply renews.
#include "ServerFixture.h"
#include "support/Golden.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;

TEST_F(ServerTest, WrongCredentialsGetNoTokenAndNoAccount) {
    EXPECT_EQ(Post("login.php", "no=K100&ID=u1&PW=secret&").At("account/UserName"), "山田");
    auto bodies = morvane::test::Golden("server/session-pages.txt").Lines("refused");
    bodies.push_back("");
    for (const std::string& body : bodies) {
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
              text);
}

// A failed request renews the token too; only the newest two are taken, and only from their
// own user: the one before the newest serves a client whose last reply was lost, once.
TEST_F(ServerTest, EveryJudgedReplyRenewsTheTokenAndOnlyTheLastTwoAreTaken) {
    Login u = LogIn();
    std::vector<std::string> tokens{u.token};
    for (const char* rest : {"", "", "CustomerID=404&"}) {
        Reply r = Call(u, *rest ? "customer/getCompKihon.php" : "customer/getCompList.php", rest);
        EXPECT_EQ(r.Flags(), *rest ? -1 : 1);
        EXPECT_NE(r.Token(), tokens.back());
        EXPECT_FALSE(r.Token().empty());
        tokens.push_back(r.Token());
    }
    Login lost{"u1", tokens[2]};
    EXPECT_EQ(Flags(lost, "customer/getCompList.php", ""), 1);
    for (Login other : {Login{"u1", tokens[2]}, Login{"u1", tokens[1]}, Login{"u2", u.token},
                        Login{"u1", "0123456789abcdef"}}) {
        Reply refused = Call(other, "customer/getCompList.php", "");
        EXPECT_EQ(refused.Flags(), 0) << other.userId << " " << other.token;
        EXPECT_EQ(refused.Token(), "");
        EXPECT_FALSE(refused.Payload("compList"));
    }
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
    for (const auto& row :
         morvane::test::Golden("server/session-pages.txt").Table("single login")) {
        Reply r = Post("login.php", row[0]);
        EXPECT_EQ(r.Flags(), std::stoi(row[1])) << row[0];
        EXPECT_EQ(r.Token().empty(), row[1] != "1") << row[0];
    }
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
