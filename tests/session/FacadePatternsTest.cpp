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
    int reads = 0;
    int downloads = 0;
    std::int32_t result = 0;
    bool Read(const std::string& reply) {
        ++reads;
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
    std::int32_t Compare(facade::Keep keep) {
        return facade::Compare<ProbeWorker>(
            slot_, Req(), Read, [](ProbeWorker& w) { return w.result; }, keep);
    }
    std::unique_ptr<ProbeWorker> slot_;
};

TEST_F(FacadePatternsTest, CompareKeepsTheWorkerByItsRule) {
    LogIn();
    const struct {
        int result;
        facade::Keep keep;
        bool kept;
    } rows[] = {{3, facade::Keep::NonZero, true},
                {0, facade::Keep::NonZero, false},
                {2, facade::Keep::OnlyOne, false},
                {1, facade::Keep::OnlyOne, true},
                {1, facade::Keep::Never, false}};
    for (const auto& r : rows) {
        Answer(r.result);
        EXPECT_EQ(Compare(r.keep), r.result);
        EXPECT_EQ(slot_ != nullptr, r.kept) << r.result;
    }
}

TEST_F(FacadePatternsTest, ComparePostsEvenWhenLoggedOutAndTheReplyDecides) {
    // Not logged in, yet the request goes out and its reply restores the state.
    Answer(1);
    EXPECT_EQ(Compare(facade::Keep::NonZero), 1);
    EXPECT_EQ(server_->RequestsTo(kPage).size(), 1u);
    EXPECT_EQ(GetLoginState(), 1);

    // A failed reply: 0, empty slot, and the pointer set back by the trap.
    server_->On(kPage, Envelope(-1, "T"));
    slot_ = std::make_unique<ProbeWorker>();
    EXPECT_EQ(Compare(facade::Keep::NonZero), 0);
    EXPECT_FALSE(slot_);
    EXPECT_GE(kit_->PointerResets(), 1);

    // A reply the worker cannot read.
    server_->On(kPage, Envelope(1, "T", "<Customer/>"));
    EXPECT_EQ(Compare(facade::Keep::NonZero), 0);
    EXPECT_FALSE(slot_);
}

TEST_F(FacadePatternsTest, RunTimeErrorGoesThroughTheTrap) {
    LogIn();
    Answer(1);
    const std::int32_t r = facade::Compare<ProbeWorker>(
        slot_, Req(), Read,
        [](ProbeWorker&) -> std::int32_t { throw RuntimeError(errnum::kFileNotFound, "x"); },
        facade::Keep::NonZero);
    EXPECT_EQ(r, 0);
    EXPECT_FALSE(slot_);
    // The box itself is the error trap's test.
    EXPECT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_FALSE(State().err.IsSet());
}

TEST_F(FacadePatternsTest, AlwaysFetchSendsNothingWhenLoggedOutAndOtherwiseGivesOne) {
    int downloads = 0;
    auto download = [&](ProbeWorker&) { ++downloads; };
    Answer(1);
    EXPECT_EQ(facade::AlwaysFetch<ProbeWorker>(slot_, Req(), Read, download), 0);
    EXPECT_TRUE(server_->RequestsTo(kPage).empty());

    LogIn();
    slot_ = std::make_unique<ProbeWorker>();  // a comparison's worker is replaced
    EXPECT_EQ(facade::AlwaysFetch<ProbeWorker>(slot_, Req(), Read, download), 1);
    EXPECT_EQ(server_->RequestsTo(kPage).size(), 1u);
    EXPECT_EQ(downloads, 1);
    EXPECT_FALSE(slot_);

    // Nothing could be fetched: still 1, nothing downloaded.
    server_->On(kPage, Envelope(-1, "T"));
    EXPECT_EQ(facade::AlwaysFetch<ProbeWorker>(slot_, Req(), Read, download), 1);
    EXPECT_EQ(downloads, 1);
}

TEST_F(FacadePatternsTest, KeptWorkerUsesTheSlotAndFetchesOnlyUnderOptionOne) {
    LogIn();
    Answer(1);
    int downloads = 0;
    auto download = [&](ProbeWorker&) { ++downloads; };

    // Empty slot, option 0: nothing fetched, nothing downloaded, 1.
    EXPECT_EQ(facade::KeptWorker<ProbeWorker>(slot_, Req(), Read, download), 1);
    EXPECT_TRUE(server_->RequestsTo(kPage).empty());
    EXPECT_EQ(downloads, 0);

    // The comparison's worker is used as it is.
    slot_ = std::make_unique<ProbeWorker>();
    EXPECT_EQ(facade::KeptWorker<ProbeWorker>(slot_, Req(), Read, download), 1);
    EXPECT_EQ(downloads, 1);
    EXPECT_TRUE(server_->RequestsTo(kPage).empty());
    EXPECT_FALSE(slot_);

    // Option 1 fetches for itself, without a progress form.
    State().objectUsage = 1;
    EXPECT_EQ(facade::KeptWorker<ProbeWorker>(slot_, Req(), Read, download), 1);
    EXPECT_EQ(server_->RequestsTo(kPage).size(), 1u);
    EXPECT_EQ(downloads, 2);

    // The variant that never fetches.
    EXPECT_EQ(facade::KeptWorker<ProbeWorker>(slot_, Req(), Read, download,
                                              facade::FetchWhenEmpty::Never),
              1);
    EXPECT_EQ(server_->RequestsTo(kPage).size(), 1u);

    SetLoginState(0);
    slot_ = std::make_unique<ProbeWorker>();
    EXPECT_EQ(facade::KeptWorker<ProbeWorker>(slot_, Req(), Read, download), 0);
    EXPECT_FALSE(slot_);
}

TEST_F(FacadePatternsTest, UploadAndSlotRead) {
    EXPECT_EQ(facade::Upload<ProbeWorker>([](ProbeWorker&) { return 1; }), 1);
    EXPECT_EQ(facade::Upload<ProbeWorker>([](ProbeWorker&) { return 2; }), 0);
    EXPECT_EQ(facade::Upload<ProbeWorker>(
                  [](ProbeWorker&) -> std::int32_t { throw std::runtime_error("broken"); }),
              0);
    EXPECT_EQ(kit_->Boxes().size(), 1u);

    std::function<std::string(ProbeWorker&)> text = [](ProbeWorker& w) {
        return std::to_string(w.result);
    };
    EXPECT_EQ(facade::ReadSlot(slot_, text), "");
    slot_ = std::make_unique<ProbeWorker>();
    slot_->result = 4;
    EXPECT_EQ(facade::ReadSlot(slot_, text), "4");
    std::function<std::string(ProbeWorker&)> failing = [](ProbeWorker&) -> std::string {
        throw std::runtime_error("x");
    };
    EXPECT_EQ(facade::ReadSlot(slot_, failing, std::string("none")), "none");
    EXPECT_EQ(kit_->Boxes().size(), 1u);  // silently
}

}  // namespace
}  // namespace morvane::test
