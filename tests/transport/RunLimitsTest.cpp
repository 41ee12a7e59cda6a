// A run of requests ends in bounded time and memory: a stalled, dropped or oversized reply is
// no reply, a run stops once the server has failed several requests in a row, and nothing is
// sent past the run's time limit.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "locks/mdlLock.h"
#include "state/ProcessState.h"
#include "support/MorvaneTest.h"
#include "transport/TransportRun.h"
#include "transport/mdlServerCommon.h"
#include "transport/mdlServerConst.h"

namespace morvane::test {
namespace {

using namespace std::chrono_literals;

constexpr const char* kPage = "master/getKessanTaioh.php";

class RunLimitsTest : public MorvaneTest {
protected:
    std::string Post() { return PostToServer(kPage, "ID=user1&token=T1&"); }
    std::size_t Sent() { return server_->RequestsTo(kPage).size(); }
    // Every request to the page gets this reply: padded, in chunks, cut off or late.
    void Answer(std::size_t padding = 0, bool chunked = false,
                std::optional<std::size_t> dropAfter = {}, std::chrono::milliseconds delay = {}) {
        const PageReply reply{Envelope(1, "T2"), 200,     "text/xml", delay,
                              padding,           chunked, dropAfter};
        server_->On(kPage, [reply](const RecordedRequest&) { return reply; });
    }
    void AnswerDropped() { Answer(0, false, 10); }
};

// Past the cap, announced or streamed, or cut off half way; within the cap it comes whole.
TEST_F(RunLimitsTest, BrokenRepliesAreNoReply) {
    for (const bool chunked : {false, true}) {
        for (const bool cut : {false, true}) {
            SCOPED_TRACE(std::string(cut ? "dropped" : "over the cap") +
                         (chunked ? ", chunked" : ""));
            BeginTransportRun();
            Answer(cut ? 0 : kMaxXmlReplyBytes, chunked,
                   cut ? std::optional<std::size_t>(10) : std::nullopt);
            EXPECT_EQ(Post(), "");
            EXPECT_EQ(State().transportRun.failuresInARow, 1);
            EXPECT_FALSE(State().transportRun.lastError.empty());
        }
    }
    Answer(1 << 20, true);
    EXPECT_EQ(Post().size(), Envelope(1, "T2").size() + (1u << 20));
    EXPECT_EQ(State().transportRun.failuresInARow, 0);
}

// A reply between failures starts the count again; once stopped, requests are refused at
// once, whatever the server could do now, until a new run.
TEST_F(RunLimitsTest, RunStopsAfterFailuresInARowAndAReplyResetsTheCount) {
    AnswerDropped();
    EXPECT_EQ(Post() + Post(), "");
    Answer();
    EXPECT_NE(Post(), "");
    AnswerDropped();
    EXPECT_EQ(Post() + Post(), "");
    EXPECT_FALSE(ServerUnreachable());
    EXPECT_EQ(TransportStopReason(), "");
    EXPECT_EQ(Post(), "");
    EXPECT_TRUE(ServerUnreachable());
    EXPECT_EQ(TransportStopReason().rfind("server unreachable", 0), 0u) << TransportStopReason();
    Answer();
    EXPECT_EQ(Post(), "");
    EXPECT_FALSE(
        PostWithHeaders("https://" + server_->HostName() + "/" + kPage, {}, "a=1&").transported);
    EXPECT_EQ(Sent(), 6u);
    BeginTransportRun();
    EXPECT_FALSE(ServerUnreachable());
    EXPECT_NE(Post(), "");
    EXPECT_EQ(Sent(), 7u);
}

TEST_F(RunLimitsTest, ABodyThatCannotBeReadFailsItsRequestButNotTheServer) {
    Answer();
    const platform::HttpBodySource unreadable{
        100, [](char*, std::size_t) -> std::ptrdiff_t { return -1; }};
    for (int i = 0; i < kMaxTransportFailures; ++i) {
        const auto reply = RunExchange({"https://" + server_->HostName() + "/" + kPage,
                                        {{"Content-Length", "100"}},
                                        {},
                                        &unreadable,
                                        true},
                                       kMaxXmlReplyBytes);
        EXPECT_FALSE(reply.transported);
        EXPECT_TRUE(reply.bodyFailed);
    }
    EXPECT_FALSE(ServerUnreachable());
    EXPECT_EQ(Sent(), 0u);
    EXPECT_EQ(State().exchanges.unanswered, std::uint64_t(kMaxTransportFailures));
    EXPECT_NE(Post(), "");
}

// Three stall time-outs, not ten; room left for a loaded machine.
TEST_F(RunLimitsTest, StalledServerCostsAStallTimeOutPerRequestThenTheRunStops) {
    platform::HttpOptions http = State().HttpOptions();
    http.stallTimeoutSeconds = 1;
    State().SetHttpOptions(http);
    Answer(0, false, {}, 3s);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 10; ++i) EXPECT_EQ(Post(), "");
    EXPECT_TRUE(ServerUnreachable());
    EXPECT_EQ(Sent(), static_cast<std::size_t>(kMaxTransportFailures));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 8s);
}

// A reply within the fixture's stall time-out is cut off at the run's limit, half way.
TEST_F(RunLimitsTest, NothingGoesOnPastTheTimeLimit) {
    Answer(0, false, {}, 4s);
    BeginTransportRun(1s);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Post(), "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, 3500ms);
    EXPECT_TRUE(TransportTimeUp());
    EXPECT_EQ(TransportStopReason(), "the time limit of the run was reached");
    Answer();
    EXPECT_EQ(Post(), "");
    EXPECT_EQ(Sent(), 1u);
    BeginTransportRun();  // a new run without a limit
    EXPECT_NE(Post(), "");
}

// An unreachable server's lock is left to expire there.
TEST_F(RunLimitsTest, LockIsReleasedPastTheTimeLimitButNotPastAnUnreachableServer) {
    LogIn("T1");
    const std::string unlock(page::kUnlockComp);
    server_->On(unlock, Envelope(1, "T2"));
    BeginTransportRun(0s);
    EXPECT_EQ(Post(), "");
    EXPECT_EQ(UnlockCustomerWorker(7), 1);
    ASSERT_EQ(server_->RequestsTo(unlock).size(), 1u);
    EXPECT_NE(server_->RequestsTo(unlock)[0].body.find("CustomerID=7"), std::string::npos);
    EXPECT_EQ(Post(), "");  // the limit holds again after the release
    BeginTransportRun();
    AnswerDropped();
    for (int i = 0; i < kMaxTransportFailures; ++i) EXPECT_EQ(Post(), "");
    ASSERT_TRUE(ServerUnreachable());
    EXPECT_EQ(UnlockCustomerWorker(7), 0);
    EXPECT_EQ(server_->RequestsTo(unlock).size(), 1u);
}

TEST_F(RunLimitsTest, StallTimeOutComesFromTheSettingWhenTheHostSetsNone) {
    State().SetHttpOptions(std::nullopt);
    std::string seen = std::to_string(State().HttpOptions().stallTimeoutSeconds);
    for (const char* text : {"7", "0", "-3", "soon"}) {
        SetSetting("StallTimeout", text);
        seen += " " + std::to_string(State().HttpOptions().stallTimeoutSeconds);
    }
    EXPECT_EQ(seen, "60 7 60 60 60");
}

}  // namespace
}  // namespace morvane::test
