// Server locks: the bodies sent, how a lock reply is read, the renewal's tick counting with
// hand-fired ticks, the refusal boxes, and what ends a timer form.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "locks/frmLockTimer.h"
#include "locks/mdlLock.h"
#include "session/ProcessState.h"
#include "session/ctrlMorvane.h"
#include "session/mdlLogin.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

constexpr const char* kLock = "customer/lockComp.php";
constexpr const char* kUnlock = "customer/unlockComp.php";
constexpr const char* kLockMaster = "master/lockMaster.php";
constexpr const char* kUnlockMaster = "master/unlockMaster.php";
constexpr const char* kCustomerRefused =
    "顧客情報をロックできませんでした。 \r\n他のユーザーが利用中の可能性があります。";
constexpr const char* kMasterRefused =
    "マスタ情報をロックできませんでした。 \r\n他のユーザーが利用中の可能性があります。";

std::string LockReply(const std::string& result, const std::string& target = "Customer") {
    return Envelope(
        1, "T2",
        "<LockInfo><" + target + "><result>" + result + "</result></" + target + "></LockInfo>");
}

frmLockTimer* CustomerTimer() {
    return dynamic_cast<frmLockTimer*>(State().customerLockTimer.get());
}
frmLockTimer* MasterTimer() { return dynamic_cast<frmLockTimer*>(State().masterLockTimer.get()); }

// Fires one form's timer as the message loop would; false when it is not running.
bool Fire(frmLockTimer* form) {
    if (!form) return false;
    auto& tmr = form->Get<forms::Timer>("tmr");
    if (!tmr.Live()) return false;
    tmr.Fire();
    return true;
}

class LockTest : public MorvaneTest {
protected:
    std::vector<std::string> Bodies(const char* page) const {
        std::vector<std::string> bodies;
        for (const auto& r : server_->RequestsTo(page)) bodies.push_back(r.body);
        return bodies;
    }
    ctrlMorvane obj_;
};

TEST_F(LockTest, LockAndUnlockSendTheirBodiesAndTheTimerFormLivesInBetween) {
    LogIn("T1");
    server_->On(kLock, LockReply("1"));
    server_->On(kUnlock, Envelope(1, "T3"));
    EXPECT_EQ(obj_.LockCoustomer(5), 1);
    EXPECT_EQ(Bodies(kLock), std::vector<std::string>{"id=user1&token=T1&CustomerID=5&"});
    EXPECT_EQ(State().customerLockState, 1);
    ASSERT_NE(CustomerTimer(), nullptr);
    EXPECT_EQ(CustomerTimer()->CustID, 5);
    EXPECT_EQ(CustomerTimer()->MastID, 0);
    EXPECT_EQ(CustomerTimer()->Get<forms::Timer>("tmr").Interval(), 60000);
    EXPECT_TRUE(kit_->TimerLive("frmLockTimer", "tmr"));

    EXPECT_EQ(obj_.UnlockCoustomer(5), 1);
    EXPECT_EQ(Bodies(kUnlock), std::vector<std::string>{"id=user1&token=T2&CustomerID=5&"});
    EXPECT_EQ(State().customerLockState, 0);
    EXPECT_EQ(State().customerLockTimer, nullptr);
    EXPECT_FALSE(kit_->TimerLive("frmLockTimer", "tmr"));

    // The master lock the same way, on its own pages and its own key.
    server_->On(kLockMaster, LockReply("1", "Master"));
    server_->On(kUnlockMaster, Envelope(1, "T4"));
    EXPECT_EQ(obj_.LockMasterData(3), 1);
    EXPECT_EQ(Bodies(kLockMaster), std::vector<std::string>{"id=user1&token=T3&MasterID=3&"});
    ASSERT_NE(MasterTimer(), nullptr);
    EXPECT_EQ(MasterTimer()->MastID, 3);
    EXPECT_EQ(MasterTimer()->CustID, 0);
    EXPECT_EQ(State().customerLockTimer, nullptr);
    EXPECT_EQ(obj_.UnlockMasterData(3), 1);
    EXPECT_EQ(Bodies(kUnlockMaster), std::vector<std::string>{"id=user1&token=T2&MasterID=3&"});
    EXPECT_EQ(State().masterLockTimer, nullptr);
    EXPECT_TRUE(kit_->Boxes().empty());
}

TEST_F(LockTest, OnlyAResultOfExactlyOneUnderEitherTargetIsAGrant) {
    struct Case {
        std::string xml;
        bool granted;
    };
    const std::vector<Case> cases = {
        {"<r><LockInfo><Customer><result>1</result></Customer></LockInfo></r>", true},
        {"<r><LockInfo><Master><result>1</result></Master></LockInfo></r>", true},
        {"<r><LockInfo><cUsToMeR><RESULT>1</RESULT></cUsToMeR></LockInfo></r>", true},
        {"<r><LockInfo><Customer><result> 1</result></Customer></LockInfo></r>", false},
        {"<r><LockInfo><Customer><result>1 </result></Customer></LockInfo></r>", false},
        {"<r><LockInfo><Customer><result>0</result></Customer></LockInfo></r>", false},
        // The selection of LockInfo itself is exact.
        {"<r><lockinfo><Customer><result>1</result></Customer></lockinfo></r>", false},
        // Only the first LockInfo is read; the last result under it stands.
        {"<r><LockInfo><Customer><result>0</result></Customer></LockInfo>"
         "<LockInfo><Customer><result>1</result></Customer></LockInfo></r>",
         false},
        {"<r><LockInfo><Customer><result>1</result></Customer>"
         "<Master><result>0</result></Master></LockInfo></r>",
         false},
        {"<r><LockInfo><Customer><result>0</result><result>1</result></Customer></LockInfo></r>",
         true},
        // A result anywhere else does not count.
        {"<r><LockInfo><result>1</result><Other><result>1</result></Other></LockInfo></r>", false},
        {"<r><LockInfo><Customer><x><result>1</result></x></Customer></LockInfo></r>", false},
        {"<r><LockInfo/></r>", false},
        {"<r><LockInfo><Customer><result>1</result></Customer>", false},
        {"", false},
    };
    for (const LockKind kind : {LockKind::Customer, LockKind::Master}) {
        for (const auto& c : cases) {
            // A stale grant must not survive a reply that is not one.
            State().customerLockState = State().masterLockState = 1;
            EXPECT_EQ(ParseLockInfo(c.xml, kind), c.granted) << c.xml;
            EXPECT_EQ(LockState(kind), c.granted ? 1 : 0) << c.xml;
        }
    }
    EXPECT_EQ(State().customerLockState, 1);  // the other kind is left alone
}

TEST_F(LockTest, ARefusalIsToldByABoxAndTheResultAndTheTimerGoesOn) {
    LogIn();
    server_->On(kLock, LockReply(" 1"));
    EXPECT_EQ(obj_.LockCoustomer(8), 0);
    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(kit_->Boxes()[0].text, kCustomerRefused);
    EXPECT_EQ(kit_->Boxes()[0].title, "顧客情報のロック");
    EXPECT_EQ(kit_->Boxes()[0].icon, forms::MsgIcon::Exclamation);
    EXPECT_EQ(GetLoginState(), 1);
    // Wanted but refused: the form stays and keeps asking.
    ASSERT_NE(CustomerTimer(), nullptr);
    EXPECT_TRUE(kit_->TimerLive("frmLockTimer", "tmr"));

    // The master's box has its own text under the customer's caption.
    server_->On(kLockMaster, LockReply("0", "Master"));
    EXPECT_EQ(obj_.LockMasterData(2), 0);
    ASSERT_EQ(kit_->Boxes().size(), 2u);
    EXPECT_EQ(kit_->Boxes()[1].text, kMasterRefused);
    EXPECT_EQ(kit_->Boxes()[1].title, "顧客情報のロック");

    // A refusal told as a failure of the reply costs a second box, and still no lost login.
    kit_->ClearRecords();
    server_->On(kLock, Envelope(-2, "T5",
                                "<LockInfo><Customer><result>0</result></Customer>"
                                "</LockInfo>"));
    EXPECT_EQ(obj_.LockCoustomer(8), 0);
    ASSERT_EQ(kit_->Boxes().size(), 2u);
    EXPECT_EQ(kit_->Boxes()[1].text, kCustomerRefused);
    EXPECT_EQ(GetLoginState(), 1);
}

TEST_F(LockTest, AMasterGrantAnswersACustomerRequest) {
    LogIn();
    server_->On(kLock, LockReply("1", "MASTER"));
    EXPECT_EQ(obj_.LockCoustomer(4), 1);
    EXPECT_TRUE(kit_->Boxes().empty());
}

TEST_F(LockTest, RenewalsGoOnEveryTenthTickAndEachFailedOneIsTold) {
    LogIn();
    server_->On(kLock, LockReply("1"));
    ASSERT_EQ(obj_.LockCoustomer(6), 1);
    ASSERT_EQ(server_->RequestsTo(kLock).size(), 1u);
    EXPECT_EQ(CustomerTimer()->Counter(), 0);

    std::vector<int> askedAt;
    for (int tick = 1; tick <= 21; ++tick) {
        const size_t before = server_->RequestsTo(kLock).size();
        ASSERT_TRUE(Fire(CustomerTimer())) << tick;
        if (server_->RequestsTo(kLock).size() != before) askedAt.push_back(tick);
        // From the first renewal on the server no longer grants it.
        if (tick == 5) server_->On(kLock, LockReply("0"));
        if (tick == 15) server_->On(kLock, "");
    }
    EXPECT_EQ(askedAt, (std::vector<int>{10, 20}));
    EXPECT_EQ(CustomerTimer()->Counter(), 21);
    EXPECT_EQ(State().customerLockState, 0);
    // One lock box per failed renewal (the empty reply also brings the reply check's own).
    int lockBoxes = 0;
    for (const auto& box : kit_->Boxes()) lockBoxes += box.text == kCustomerRefused;
    EXPECT_EQ(lockBoxes, 2);
    EXPECT_TRUE(kit_->TimerLive("frmLockTimer", "tmr"));
    for (const auto& r : server_->RequestsTo(kLock))
        EXPECT_NE(r.body.find("&CustomerID=6&"), std::string::npos) << r.body;
}

TEST_F(LockTest, ASecondLockDropsTheFirstWithoutUnlockingIt) {
    LogIn();
    server_->On(kLock, LockReply("1"));
    server_->On(kUnlock, Envelope(1, "T3"));
    ASSERT_EQ(obj_.LockCoustomer(1), 1);
    ASSERT_EQ(obj_.LockCoustomer(2), 1);
    EXPECT_EQ(CustomerTimer()->CustID, 2);
    EXPECT_TRUE(server_->RequestsTo(kUnlock).empty());

    // Only the second customer is renewed from now on.
    server_->ClearRequests();
    for (int tick = 0; tick < 10; ++tick) ASSERT_TRUE(kit_->FireTimer("frmLockTimer", "tmr"));
    ASSERT_EQ(server_->RequestsTo(kLock).size(), 1u);
    EXPECT_EQ(server_->RequestsTo(kLock)[0].body, "id=user1&token=T2&CustomerID=2&");

    // The customer and the master timers are apart: a master lock leaves the customer's.
    server_->On(kLockMaster, LockReply("1", "Master"));
    ASSERT_EQ(obj_.LockMasterData(9), 1);
    EXPECT_EQ(CustomerTimer()->CustID, 2);
    EXPECT_EQ(State().customerLockState, 1);
}

TEST_F(LockTest, NumbersBelowOneSendNothingAndUnlockAlwaysSendsItsArgument) {
    LogIn();
    server_->On(kLock, LockReply("1"));
    server_->On(kUnlock, Envelope(1, "T3"));
    EXPECT_EQ(obj_.LockCoustomer(0), 0);
    EXPECT_EQ(obj_.LockMasterData(-1), 0);
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_TRUE(kit_->Boxes().empty());
    // The forms stay, their timers stopped for good.
    ASSERT_NE(CustomerTimer(), nullptr);
    EXPECT_FALSE(Fire(CustomerTimer()));
    EXPECT_FALSE(Fire(MasterTimer()));

    // Without a lock, and with another customer than the one held, the argument goes.
    EXPECT_EQ(obj_.UnlockCoustomer(0), 1);
    ASSERT_EQ(obj_.LockCoustomer(3), 1);
    EXPECT_EQ(obj_.UnlockCoustomer(4), 1);
    EXPECT_EQ(Bodies(kUnlock), (std::vector<std::string>{"id=user1&token=T1&CustomerID=0&",
                                                         "id=user1&token=T2&CustomerID=4&"}));
    EXPECT_EQ(State().customerLockTimer, nullptr);

    // An empty reply to an unlock gives 0.
    server_->On(kUnlock, "");
    EXPECT_EQ(obj_.UnlockCoustomer(3), 0);
}

TEST_F(LockTest, TheLastObjectAndAResetEndTheTimersWithoutTellingTheServer) {
    server_->On(kLock, LockReply("1"));
    server_->On(kLockMaster, LockReply("1", "Master"));
    {
        ctrlMorvane second;
        LogIn();
        ASSERT_EQ(second.LockCoustomer(1), 1);
        ASSERT_EQ(second.LockMasterData(1), 1);
    }
    // obj_ still lives: the locks are the process's, not the ended object's.
    ASSERT_NE(CustomerTimer(), nullptr);
    ASSERT_NE(MasterTimer(), nullptr);

    State().Reset();
    EXPECT_EQ(CustomerTimer(), nullptr);
    EXPECT_EQ(MasterTimer(), nullptr);
    EXPECT_EQ(State().customerLockState, 0);
    EXPECT_EQ(State().masterLockState, 0);
    EXPECT_FALSE(kit_->TimerLive("frmLockTimer", "tmr"));
}

class LastObjectTest : public MorvaneTest {};

TEST_F(LastObjectTest, EndOfTheLastObjectDropsBothTimers) {
    server_->On(kLock, LockReply("1"));
    server_->On(kLockMaster, LockReply("1", "Master"));
    {
        ctrlMorvane only;
        LogIn();
        ASSERT_EQ(only.LockCoustomer(1), 1);
        ASSERT_EQ(only.LockMasterData(1), 1);
    }
    EXPECT_EQ(CustomerTimer(), nullptr);
    EXPECT_EQ(MasterTimer(), nullptr);
    EXPECT_FALSE(kit_->TimerLive("frmLockTimer", "tmr"));
    EXPECT_TRUE(server_->RequestsTo(kUnlock).empty());
    EXPECT_TRUE(server_->RequestsTo(kUnlockMaster).empty());
}

}  // namespace
}  // namespace morvane::test
