// The limits of one run of requests: an overall time limit, and an early stop once the server
// has failed to answer several requests in a row, so that a dead server ends a run in seconds
// instead of costing a time-out per customer.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Http.h"

namespace morvane {

// Replies past these sizes are cut off: generous for any real XML reply, and for a file.
inline constexpr std::size_t kMaxXmlReplyBytes = std::size_t{64} << 20;
inline constexpr std::size_t kMaxFileReplyBytes = std::size_t{512} << 20;

// Requests that may fail to reach the server in a row before the run gives up on it.
inline constexpr int kMaxTransportFailures = 3;

// While one lives, requests go on past the run's time limit (not past an unreachable
// server), each bounded by the stall time-out: a lock held is released when the server
// answers, and left to expire at the server when it does not.
class TransportCleanup {
public:
    TransportCleanup();
    ~TransportCleanup();
    TransportCleanup(const TransportCleanup&) = delete;
    TransportCleanup& operator=(const TransportCleanup&) = delete;
};

// Starts a run afresh: failures forgotten; with a limit, no request goes on past it.
// Without a call, a process is one run with no time limit.
void BeginTransportRun(std::optional<std::chrono::seconds> timeLimit = std::nullopt);
// The server failed kMaxTransportFailures requests in a row: the run sends nothing more.
bool ServerUnreachable();
// The run's time limit has passed: it sends nothing more.
bool TransportTimeUp();
// Why the run stopped sending, for the host's report; "" while it still sends.
std::string TransportStopReason();

// One POST under the run's limits, through the process's environment: refused at once once
// the run has stopped, else sent with what is left of the time limit, and counted.
platform::HttpReply RunExchange(const platform::HttpRequest& request, std::size_t maxReplyBytes);

}  // namespace morvane
