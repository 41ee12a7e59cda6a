// The login exchange end to end: the body sent, and what each kind of reply leaves behind.
#include <gtest/gtest.h>

#include "component/ctrlMorvane.h"
#include "session/mdlLogin.h"
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

}  // namespace
}  // namespace morvane::test
