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
    // Every request to the page gets this reply.
    void Answer(PageReply reply) {
        server_->On(kPage, [reply](const RecordedRequest&) { return reply; });
    }
    static PageReply Good() { return PageReply{Envelope(1, "T2")}; }
    static PageReply Dropped() {
        PageReply r{Envelope(1, "T2")};
        r.dropAfter = 10;
        return r;
    }
};

TEST_F(RunLimitsTest, BrokenRepliesAreNoReply) {
    struct Case {
        const char* name;
        PageReply reply;
    };
    PageReply announced{Envelope(1, "T2")};
    announced.padding = kMaxXmlReplyBytes;
    PageReply streamed = announced;
    streamed.chunked = true;
    PageReply dropped = Dropped();
    PageReply droppedChunked = Dropped();
    droppedChunked.chunked = true;
    const std::vector<Case> cases = {
        {"longer than the cap, announced", announced},
        {"longer than the cap, streamed", streamed},
        {"connection dropped half way", dropped},
        {"connection dropped half way, streamed", droppedChunked},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        BeginTransportRun();
        Answer(c.reply);
        EXPECT_EQ(Post(), "");
        EXPECT_EQ(State().transportRun.failuresInARow, 1);
        EXPECT_FALSE(State().transportRun.lastError.empty());
    }
    // A reply of the same kind within bounds comes through whole.
    PageReply padded{Envelope(1, "T2")};
    padded.padding = 1 << 20;
    padded.chunked = true;
    Answer(padded);
    EXPECT_EQ(Post().size(), Envelope(1, "T2").size() + (1u << 20));
    EXPECT_EQ(State().transportRun.failuresInARow, 0);
}

TEST_F(RunLimitsTest, RunStopsAfterFailuresInARowAndAReplyResetsTheCount) {
    Answer(Dropped());
    EXPECT_EQ(Post(), "");
    EXPECT_EQ(Post(), "");
    Answer(Good());
    EXPECT_NE(Post(), "");  // a reply between failures starts the count again
    Answer(Dropped());
    EXPECT_EQ(Post(), "");
    EXPECT_EQ(Post(), "");
    EXPECT_FALSE(ServerUnreachable());
    EXPECT_EQ(TransportStopReason(), "");
    EXPECT_EQ(Post(), "");
    EXPECT_TRUE(ServerUnreachable());
    EXPECT_EQ(TransportStopReason().rfind("server unreachable", 0), 0u) << TransportStopReason();
    EXPECT_EQ(Sent(), 6u);

    // Refused at once, whatever the server could do now.
    Answer(Good());
    EXPECT_EQ(Post(), "");
    EXPECT_EQ(
        PostWithHeaders("https://" + server_->HostName() + "/" + kPage, {}, "a=1&").transported,
        false);
    EXPECT_EQ(Sent(), 6u);

    BeginTransportRun();
    EXPECT_FALSE(ServerUnreachable());
    EXPECT_NE(Post(), "");
    EXPECT_EQ(Sent(), 7u);
}

TEST_F(RunLimitsTest, ABodyThatCannotBeReadFailsItsRequestButNotTheServer) {
    Answer(Good());
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

TEST_F(RunLimitsTest, StalledServerCostsAStallTimeOutPerRequestThenTheRunStops) {
    platform::HttpOptions http = State().HttpOptions();
    http.stallTimeoutSeconds = 1;
    State().SetHttpOptions(http);
    PageReply stalled = Good();
    stalled.delay = 3s;
    Answer(stalled);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 10; ++i) EXPECT_EQ(Post(), "");
    EXPECT_TRUE(ServerUnreachable());
    EXPECT_EQ(Sent(), static_cast<std::size_t>(kMaxTransportFailures));
    // Three stall time-outs, not ten; room left for a loaded machine.
    EXPECT_LT(std::chrono::steady_clock::now() - start, 8s);
}

TEST_F(RunLimitsTest, NothingGoesOnPastTheTimeLimit) {
    PageReply slow = Good();
    slow.delay = 4s;  // within the stall time-out of the fixture
    Answer(slow);
    BeginTransportRun(1s);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Post(), "");  // cut off at the limit, half way through
    EXPECT_LT(std::chrono::steady_clock::now() - start, 3500ms);
    EXPECT_TRUE(TransportTimeUp());
    EXPECT_EQ(TransportStopReason(), "the time limit of the run was reached");
    Answer(Good());
    EXPECT_EQ(Post(), "");
    EXPECT_EQ(Sent(), 1u);

    BeginTransportRun();  // a new run without a limit
    EXPECT_NE(Post(), "");
}

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
    Answer(Dropped());
    for (int i = 0; i < kMaxTransportFailures; ++i) EXPECT_EQ(Post(), "");
    ASSERT_TRUE(ServerUnreachable());
    EXPECT_EQ(UnlockCustomerWorker(7), 0);  // left to expire at the server
    EXPECT_EQ(server_->RequestsTo(unlock).size(), 1u);
}

TEST_F(RunLimitsTest, StallTimeOutComesFromTheSettingWhenTheHostSetsNone) {
    State().SetHttpOptions(std::nullopt);
    EXPECT_EQ(State().HttpOptions().stallTimeoutSeconds, 60);
    for (const auto& [text, expected] :
         std::vector<std::pair<std::string, long>>{{"7", 7}, {"0", 60}, {"-3", 60}, {"soon", 60}}) {
        SetSetting("StallTimeout", text);
        EXPECT_EQ(State().HttpOptions().stallTimeoutSeconds, expected) << text;
    }
}

}  // namespace
}  // namespace morvane::test
