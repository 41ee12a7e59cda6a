// The forwarding patterns of the facade, driven with a small worker of the tests' own over
// the real exchange: when requests go out, what stays in the slot, what is returned.
#include <gtest/gtest.h>

#include "session/FacadePatterns.h"
#include "state/ProcessState.h"
#include "support/MorvaneTest.h"
#include "util/RuntimeError.h"

namespace morvane::test {
namespace {

// Reads "<Customer><Result>n</Result></Customer>" and gives n as its comparison.
struct ProbeWorker {
    std::int32_t result = 0;
    bool Read(const std::string& reply) {
        const auto a = reply.find("<Result>"), b = reply.find("</Result>");
        if (a == std::string::npos || b == std::string::npos) return false;
        result = std::stoi(reply.substr(a + 8, b - a - 8));
        return true;
    }
};

constexpr const char* kPage = "customer/getCompKihon.php";

class FacadePatternsTest : public MorvaneTest {
protected:
    facade::Request Req() {
        return {kPage, "ID=user1&token=T&CustomerID=1&", facade::Routine::Plain};
    }
    static bool Read(ProbeWorker& w, const std::string& r) { return w.Read(r); }
    void Answer(int result) {
        server_->On(kPage, Envelope(1, "T",
                                    "<Customer><Result>" + std::to_string(result) +
                                        "</Result></Customer>"));
    }
    std::size_t Sent() { return server_->RequestsTo(kPage).size(); }
    std::string SentAndDownloaded() {
        return std::to_string(Sent()) + " sent, " + std::to_string(downloads_) + " downloaded";
    }
    std::unique_ptr<ProbeWorker> slot_;
    int downloads_ = 0;
    std::function<void(ProbeWorker&)> download_ = [this](ProbeWorker&) { ++downloads_; };
};

// Posts even when logged out: the reply restores the state. The other keep rules and the
// failed reply's empty slot are held by the roster, dated and faults tests.
TEST_F(FacadePatternsTest, CompareUnderNeverKeepsNoWorkerAndTrapsARunTimeError) {
    Answer(1);
    EXPECT_EQ(facade::Compare<ProbeWorker>(
                  slot_, Req(), Read, [](ProbeWorker& w) { return w.result; }, facade::Keep::Never),
              1);
    EXPECT_FALSE(slot_);
    EXPECT_EQ(GetLoginState(), 1);
    // A run-time error goes through the trap, which shows it (the box is the trap's test).
    EXPECT_EQ(
        facade::Compare<ProbeWorker>(
            slot_, Req(), Read,
            [](ProbeWorker&) -> std::int32_t { throw RuntimeError(errnum::kFileNotFound, "x"); },
            facade::Keep::NonZero),
        0);
    EXPECT_FALSE(slot_);
    EXPECT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_GE(kit_->PointerResets(), 1);
    EXPECT_FALSE(State().err.IsSet());
}

TEST_F(FacadePatternsTest, KeptWorkerUsesTheSlotAndFetchesOnlyUnderOptionOne) {
    LogIn();
    Answer(1);
    const auto kept = [&](facade::FetchWhenEmpty fetch = facade::FetchWhenEmpty::UnderOption) {
        return facade::KeptWorker<ProbeWorker>(slot_, Req(), Read, download_, fetch);
    };
    // Empty slot, option 0: nothing fetched, nothing downloaded, 1.
    EXPECT_EQ(kept(), 1);
    EXPECT_EQ(SentAndDownloaded(), "0 sent, 0 downloaded");
    // The comparison's worker is used as it is.
    slot_ = std::make_unique<ProbeWorker>();
    EXPECT_EQ(kept(), 1);
    EXPECT_EQ(SentAndDownloaded(), "0 sent, 1 downloaded");
    EXPECT_FALSE(slot_);
    // Option 1 fetches for itself, without a progress form; the variant that never fetches.
    State().objectUsage = 1;
    EXPECT_EQ(kept(), 1);
    EXPECT_EQ(kept(facade::FetchWhenEmpty::Never), 1);
    EXPECT_EQ(SentAndDownloaded(), "1 sent, 2 downloaded");
    EXPECT_TRUE(kit_->ShownForms().empty());
    SetLoginState(0);
    slot_ = std::make_unique<ProbeWorker>();
    EXPECT_EQ(kept(), 0);
    EXPECT_FALSE(slot_);
}

// Reading a slot and the trap of what an upload throws are the roster tests'
// (CompareCustListDlgTest.FacadeHands..., CustAddDelTest.CreateWithoutARow...).
TEST_F(FacadePatternsTest, UploadGivesOneOnlyForOne) {
    EXPECT_EQ(facade::Upload<ProbeWorker>([](ProbeWorker&) { return 1; }), 1);
    EXPECT_EQ(facade::Upload<ProbeWorker>([](ProbeWorker&) { return 2; }), 0);
}

}  // namespace
}  // namespace morvane::test
