// The login keep-alive: ticks counted by hand, the refresh on every 20th, the counter's wrap,
// and the timer stopping itself once the login is gone.
#include <gtest/gtest.h>

#include "component/ctrlMorvane.h"
#include "session/frmLoginTimer.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

constexpr const char* kPage = "master/getKessanTaioh.php";

class LoginTimerTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        server_->On(kPage, Envelope(1, "T2"));
    }
    frmLoginTimer& Timer() {
        auto* t = dynamic_cast<frmLoginTimer*>(State().loginTimer.get());
        EXPECT_NE(t, nullptr);
        return *t;
    }
    bool Tick() { return kit_->FireTimer("frmLoginTimer", "tmr"); }
    bool Live() { return kit_->TimerLive("frmLoginTimer", "tmr"); }
    size_t Refreshes() { return server_->RequestsTo(kPage).size(); }

    ctrlMorvane obj_;
};

TEST_F(LoginTimerTest, LoginStartsATimerThatRefreshesOnEveryTwentiethTickAndWraps) {
    LogIn("T1");
    for (int i = 0; i < 19; ++i) ASSERT_TRUE(Tick());
    EXPECT_EQ(Refreshes(), 0u);
    // The reply renews the token; the next refresh carries it.
    for (int i = 0; i < 21; ++i) ASSERT_TRUE(Tick());
    ASSERT_EQ(Refreshes(), 2u);
    EXPECT_EQ(server_->RequestsTo(kPage)[0].body, "ID=user1&token=T1&");
    EXPECT_EQ(server_->RequestsTo(kPage)[1].body, "ID=user1&token=T2&");
    EXPECT_EQ(Timer().Counter(), 40);
    // Exactly 2000000000 is kept, and divisible by 20; 0 after the wrap counts as a twentieth.
    Timer().SetCounter(frmLoginTimer::kCounterLimit - 1);
    std::string seen;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(Tick());
        seen += std::to_string(Timer().Counter()) + "/" + std::to_string(Refreshes()) + " ";
    }
    EXPECT_EQ(seen, "2000000000/3 -1/3 0/4 ");
}

// The form stays until the login is reset; nothing restarts its timer.
TEST_F(LoginTimerTest, StopsItselfAfterSetDisableMorvane) {
    LogIn();
    obj_.SetDisableMorvane();
    Timer().SetCounter(19);
    ASSERT_TRUE(Tick());
    EXPECT_FALSE(Live());
    EXPECT_NE(State().loginTimer, nullptr);
    obj_.StartLoginTimer(false);
    EXPECT_FALSE(Live());
}

TEST_F(LoginTimerTest, FailedLoginLeavesATimerThatStopsAtItsTwentiethTick) {
    server_->On("login.php", LoginReply(3, "X", false));
    EXPECT_FALSE(DoLogin("user1", "pw", "C-1001"));
    for (int i = 0; i < 20; ++i) ASSERT_TRUE(Tick());
    EXPECT_FALSE(Tick());
    EXPECT_EQ(Refreshes(), 0u);
}

TEST_F(LoginTimerTest, StartLoginTimerCreatesOrRefreshesAndTheObjectsEndStopsIt) {
    SetLoginState(1);
    obj_.StartLoginTimer(false);  // no timer yet: only created
    EXPECT_TRUE(Live());
    EXPECT_EQ(Refreshes(), 0u);
    obj_.StartLoginTimer(false);  // a running one refreshes at once
    EXPECT_EQ(Refreshes(), 1u);
    EXPECT_EQ(Timer().Counter(), 0);
    StopLoginTimer();
    EXPECT_EQ(State().loginTimer, nullptr);
    EXPECT_FALSE(Tick());
    obj_.StartLoginTimer(true);  // a new one with must: created and refreshed
    EXPECT_EQ(Refreshes(), 2u);
    {
        ctrlMorvane host;
        LogIn();
        EXPECT_TRUE(Live());
    }
    EXPECT_EQ(State().loginTimer, nullptr);
    EXPECT_FALSE(Tick());
}

TEST_F(LoginTimerTest, ExpiryDuringTheRefreshOpensTheLoginDialog) {
    LogIn("T1");
    server_->On(kPage, Envelope(0, ""));
    server_->On("login.php", LoginReply(1, "T9"));
    kit_->OnShow("frmLogin", [](forms::Form& f) {
        f.Get<forms::TextBox>("txtUID").SetText("user1");
        f.Get<forms::TextBox>("txtPWD").SetText("pw");
        f.Get<forms::Button>("cmdLogin").Click();
    });
    Timer().SetCounter(19);
    // The reply check drops the ticking form and the new login makes a fresh one.
    ASSERT_TRUE(Tick());
    EXPECT_EQ(GetLoginToken(), "T9");
    EXPECT_EQ(Timer().Counter(), 0);
    EXPECT_TRUE(Live());
}

}  // namespace
}  // namespace morvane::test
