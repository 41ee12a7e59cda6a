// The login exchange end to end: the body sent, what each kind of reply leaves behind, and the
// login handed over between processes through the settings.
#include <gtest/gtest.h>

#include "component/ctrlMorvane.h"
#include "session/mdlLogin.h"
#include "session/mdlLoginInfo.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

class LoginTest : public MorvaneTest {
protected:
    static std::string Account(ctrlMorvane& obj) {
        return obj.LoginAccountUserName() + "|" + obj.LoginAccountContractorName() + "|" +
               obj.LoginAccountContractBegin() + "|" + obj.LoginAccountContractEnd() + "|" +
               obj.LoginAccountSharedCount() + "|" + obj.LoginAccountMaxCustomer();
    }
    ctrlMorvane obj_;
};

TEST_F(LoginTest, SuccessfulLoginTakesStateTokenAndAccount) {
    server_->On("login.php", LoginReply(1, "TOKEN-A"));
    EXPECT_TRUE(DoLogin("user1", "p&ss=1", "C-1001"));
    const auto request = server_->RequestsTo("login.php").at(0);
    // Values travel unescaped; the "&" in the password splits it at the server.
    EXPECT_EQ(request.body, "no=C-1001&ID=user1&PW=p&ss=1&");
    EXPECT_EQ(request.Header("content-type"), "application/x-www-form-urlencoded");
    EXPECT_EQ(request.Header("if-modified-since"), "Thu, 01 Jun 1970 00:00:00 GMT");
    EXPECT_EQ(obj_.LoginState(), 1);
    EXPECT_EQ(GetLoginID() + "|" + GetLoginToken() + "|" + Setting(reg::kParam2),
              "user1|TOKEN-A|TOKEN-A");
    EXPECT_EQ(Account(obj_), "山田 太郎|山田建設事務所|2024/04/01|2027/03/31|3|250");
    EXPECT_TRUE(kit_->Boxes().empty());
}

TEST_F(LoginTest, WithoutAWholeAccountFlagsOneOrTwoLogInButReportFalse) {
    for (const int flags : {1, 2}) {
        server_->On("login.php", LoginReply(flags, "TOKEN-" + std::to_string(flags), false));
        EXPECT_FALSE(DoLogin("user1", "pw", "C-1001"));
        EXPECT_EQ(obj_.LoginState(), flags);
        EXPECT_EQ(GetLoginToken(), "TOKEN-" + std::to_string(flags));
        EXPECT_EQ(Account(obj_), "||||0|0");
    }
    // An account missing a field changes no field.
    server_->On("login.php", Golden("session/login.txt").Joined("account without MaxCustomer"));
    EXPECT_FALSE(DoLogin("user1", "pw", "C-1001"));
    EXPECT_EQ(GetLoginState(), 1);
    EXPECT_EQ(GetLoginUserName(), "");
}

// The login exchange shows nothing itself: the dialog tells the user.
TEST_F(LoginTest, MalformedEmptyAndUnreachableRepliesLeaveStateZero) {
    SetSetting(reg::kParam2, "OLD");
    for (const std::string reply : {"<r><system><flags>1</flags>", "", "<r><account/></r>",
                                    "<r><system><flags>1</flags></system></r>"}) {
        server_->On("login.php", reply);
        EXPECT_FALSE(DoLogin("user1", "pw", "C-1001")) << reply;
        EXPECT_EQ(GetLoginState(), 0) << reply;
        EXPECT_EQ(GetLoginToken(), "OLD") << reply;
    }
    EXPECT_TRUE(kit_->Boxes().empty());
}

// SetDisableMorvane's state 99 is the settings dialog's test (LoadShowsTheStoredValues).
TEST_F(LoginTest, ResetKeepsTheTokenInTheStoreAndANewObjectResetsTheOption) {
    LogIn("KEEP");
    ResetLogin();
    EXPECT_EQ(GetLoginState(), 0);
    EXPECT_EQ(GetLoginID() + GetLoginToken(), "KEEP");
    State().objectUsage = 1;
    ctrlMorvane second;
    EXPECT_EQ(State().objectUsage, 0);
}

TEST_F(LoginTest, SecondProcessTakesOverTheLoginAndClearLeavesNothing) {
    ctrlMorvane first;
    LogIn("TOK-1");
    first.RegLoginInfoToPrefCustom();
    EXPECT_EQ(Setting(reg::kParam1) + Setting(reg::kParam3) + Setting(reg::kMaxCustomer),
              "user11250");
    // A second process starts with an empty record and a token rotated meanwhile.
    ctrlMorvane second;
    SetSetting(reg::kParam2, "TOK-2");
    EXPECT_EQ(second.LoginState(), 0);
    second.GetLoginInfoFromPrefCustom();
    EXPECT_EQ(second.LoginState(), 1);
    EXPECT_EQ(GetLoginID() + GetLoginToken(), "user1TOK-2");
    EXPECT_EQ(second.LoginAccountUserName() + second.LoginAccountSharedCount() +
                  second.LoginAccountMaxCustomer(),
              "山田 太郎3250");
    // Taking over starts no keep-alive: the host asks for one.
    EXPECT_EQ(State().loginTimer, nullptr);

    second.ClearLoginInfoToPrefCustom();
    for (const char* name : {reg::kParam1, reg::kParam2, reg::kParam3, reg::kUserName,
                             reg::kContractEnd, reg::kSharedCount, reg::kMaxCustomer})
        EXPECT_EQ(Setting(name), "") << name;
    second.GetLoginInfoFromPrefCustom();
    EXPECT_EQ(second.LoginState(), 0);
    EXPECT_EQ(second.LoginAccountSharedCount() + second.LoginAccountMaxCustomer(), "00");
}

TEST_F(LoginTest, OneNonEmptyParamStillWritesTheAccount) {
    LogIn();
    SaveLoginInfo("", "", "7");
    EXPECT_EQ(Setting(reg::kParam1) + Setting(reg::kContractorName) + Setting(reg::kSharedCount),
              "山田建設事務所3");
    // A state text is read for its leading number.
    SetSetting(reg::kParam3, "12abc");
    LoadLoginInfo();
    EXPECT_EQ(GetLoginState(), 12);
}

}  // namespace
}  // namespace morvane::test
