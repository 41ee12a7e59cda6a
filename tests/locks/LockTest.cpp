// Server locks: the bodies sent, how a lock reply is read, the renewal's tick counting with
// hand-fired ticks, the refusal boxes, and what ends a timer form.
#include <gtest/gtest.h>

#include <memory>

#include "component/ctrlMorvane.h"
#include "locks/frmLockTimer.h"
#include "locks/mdlLock.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

constexpr const char* kLock = "customer/lockComp.php";
constexpr const char* kUnlock = "customer/unlockComp.php";
constexpr const char* kLockMaster = "master/lockMaster.php";

std::string LockReply(const std::string& result, const std::string& target = "Customer") {
    return Envelope(
        1, "T2",
        "<LockInfo><" + target + "><result>" + result + "</result></" + target + "></LockInfo>");
}

frmLockTimer* CustomerTimer() {
    return dynamic_cast<frmLockTimer*>(State().customerLockTimer.get());
}

class LockTest : public MorvaneTest {
protected:
    ctrlMorvane obj_;
    const Golden data_{"locks/lock.txt"};
};

// Numbers below 1 send nothing; an unlock sends its own argument, lock held or not.
TEST_F(LockTest, LockAndUnlockBodiesOfBothKindsAndNothingForNumbersBelowOne) {
    LogIn("T1");
    EXPECT_EQ(obj_.LockCoustomer(0), 0);
    EXPECT_EQ(obj_.LockMasterData(-1), 0);
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_FALSE(kit_->TimerLive("frmLockTimer", "tmr"));
    server_->On(kLock, LockReply("1"));
    server_->On(kUnlock, Envelope(1, "T3"));
    server_->On(kLockMaster, LockReply("1", "Master"));
    server_->On("master/unlockMaster.php", Envelope(1, "T4"));
    EXPECT_EQ(obj_.LockCoustomer(5), 1);
    ASSERT_NE(CustomerTimer(), nullptr);
    EXPECT_EQ(CustomerTimer()->CustID, 5);
    EXPECT_EQ(CustomerTimer()->Get<forms::Timer>("tmr").Interval(), 60000);
    EXPECT_EQ(obj_.UnlockCoustomer(5), 1);
    EXPECT_EQ(State().customerLockTimer, nullptr);
    EXPECT_EQ(obj_.LockMasterData(3), 1);
    EXPECT_EQ(obj_.UnlockMasterData(3), 1);
    EXPECT_EQ(obj_.UnlockCoustomer(4), 1);
    std::vector<std::string> sent;
    for (const auto& request : server_->Requests())
        sent.push_back(request.path + " " + request.body);
    EXPECT_EQ(sent, data_.Lines("lock and unlock"));
    EXPECT_TRUE(kit_->Boxes().empty());
    server_->On(kUnlock, "");
    EXPECT_EQ(obj_.UnlockCoustomer(4), 0);
}

TEST_F(LockTest, OnlyAResultOfExactlyOneUnderEitherTargetIsAGrant) {
    for (const auto& row : data_.Table("grants")) {
        SCOPED_TRACE(row[0]);
        State().customerLockState = 1;  // a stale grant must not survive
        const bool granted = row[1] == "1";
        EXPECT_EQ(ParseLockInfo("<r>" + row[0] + "</r>", LockKind::Customer), granted);
        EXPECT_EQ(State().customerLockState, granted ? 1 : 0);
    }
}

TEST_F(LockTest, ARefusalIsToldByABoxAndTheResultWhileTheTimerGoesOn) {
    LogIn();
    server_->On(kLock, LockReply(" 1"));
    EXPECT_EQ(obj_.LockCoustomer(8), 0);
    server_->On(kLockMaster, LockReply("0", "Master"));
    EXPECT_EQ(obj_.LockMasterData(2), 0);
    ASSERT_EQ(kit_->Boxes().size(), 2u);
    EXPECT_EQ(kit_->Boxes()[0].icon, forms::MsgIcon::Exclamation);
    // The master's refusal goes under the customer's caption.
    EXPECT_EQ((std::vector<std::string>{kit_->Boxes()[0].title, kit_->Boxes()[0].text,
                                        kit_->Boxes()[1].title, kit_->Boxes()[1].text}),
              (std::vector<std::string>{data_["caption"], data_["customer refused"],
                                        data_["caption"], data_["master refused"]}));
    EXPECT_EQ(GetLoginState(), 1);
    EXPECT_TRUE(kit_->TimerLive("frmLockTimer", "tmr"));
}

// A second lock drops the first without unlocking it: only the second is renewed.
TEST_F(LockTest, RenewalsOfTheLastLockGoOnEveryTenthTickAndEachFailedOneIsTold) {
    LogIn();
    server_->On(kLock, LockReply("1"));
    ASSERT_EQ(obj_.LockCoustomer(1), 1);
    ASSERT_EQ(obj_.LockCoustomer(6), 1);
    server_->ClearRequests();
    std::vector<int> askedAt;
    for (int tick = 1; tick <= 21; ++tick) {
        const size_t before = server_->RequestsTo(kLock).size();
        ASSERT_TRUE(kit_->FireTimer("frmLockTimer", "tmr")) << tick;
        if (server_->RequestsTo(kLock).size() != before) askedAt.push_back(tick);
        if (tick == 5) server_->On(kLock, LockReply("0"));
        if (tick == 15) server_->On(kLock, "");
    }
    EXPECT_EQ(askedAt, (std::vector<int>{10, 20}));
    EXPECT_EQ(server_->BodiesTo(kLock),
              std::vector<std::string>(2, "id=user1&token=T2&CustomerID=6&"));
    EXPECT_TRUE(server_->RequestsTo(kUnlock).empty());
    // One lock box per failed renewal (the empty reply brings the reply check's own too).
    int lockBoxes = 0;
    for (const auto& box : kit_->Boxes()) lockBoxes += box.text == data_["customer refused"];
    EXPECT_EQ(lockBoxes, 2);
    EXPECT_TRUE(kit_->TimerLive("frmLockTimer", "tmr"));
}

class ObjectEndTest : public MorvaneTest {};

TEST_F(ObjectEndTest, OnlyTheLastObjectOrAResetEndsTheTimersAndNeitherUnlocks) {
    server_->On(kLock, LockReply("1"));
    auto first = std::make_unique<ctrlMorvane>();
    {
        ctrlMorvane second;
        LogIn();
        ASSERT_EQ(second.LockCoustomer(1), 1);
    }
    ASSERT_NE(CustomerTimer(), nullptr);  // the locks are the process's, and first lives
    first.reset();
    EXPECT_EQ(CustomerTimer(), nullptr);
    EXPECT_FALSE(kit_->TimerLive("frmLockTimer", "tmr"));

    ctrlMorvane third;
    LogIn();
    ASSERT_EQ(third.LockCoustomer(1), 1);
    State().Reset();
    EXPECT_EQ(CustomerTimer(), nullptr);
    EXPECT_EQ(State().customerLockState, 0);
    EXPECT_TRUE(server_->RequestsTo(kUnlock).empty());
}

}  // namespace
}  // namespace morvane::test
