#include "transport/TransportRun.h"

#include <algorithm>

#include "state/ProcessState.h"

namespace morvane {

void BeginTransportRun(std::optional<std::chrono::seconds> timeLimit) {
    TransportRunState& run = State().transportRun;
    run = TransportRunState{};
    if (timeLimit) run.deadline = std::chrono::steady_clock::now() + *timeLimit;
}

TransportCleanup::TransportCleanup() { ++State().transportRun.cleanups; }
TransportCleanup::~TransportCleanup() { --State().transportRun.cleanups; }

bool ServerUnreachable() { return State().transportRun.failuresInARow >= kMaxTransportFailures; }

bool TransportTimeUp() {
    const auto& deadline = State().transportRun.deadline;
    return deadline && std::chrono::steady_clock::now() >= *deadline;
}

std::string TransportStopReason() {
    const TransportRunState& run = State().transportRun;
    if (ServerUnreachable())
        return "server unreachable: " + std::to_string(run.failuresInARow) +
               " requests in a row got no reply (" + run.lastError + ")";
    if (TransportTimeUp() && run.cleanups == 0) return "the time limit of the run was reached";
    return {};
}

platform::HttpReply RunExchange(const platform::HttpRequest& request, std::size_t maxReplyBytes) {
    ProcessState& state = State();
    ++state.exchanges.tried;
    if (std::string reason = TransportStopReason(); !reason.empty()) {
        ++state.exchanges.unanswered;
        platform::HttpReply refused;
        refused.error = std::move(reason);
        return refused;
    }
    platform::HttpOptions options = state.HttpOptions();
    options.maxReplyBytes = maxReplyBytes;
    auto deadline = state.transportRun.deadline;
    if (deadline && state.transportRun.cleanups > 0)
        deadline = std::max(*deadline, std::chrono::steady_clock::now() +
                                           std::chrono::seconds(options.stallTimeoutSeconds));
    if (deadline && (!options.deadline || *deadline < *options.deadline))
        options.deadline = deadline;
    platform::HttpReply reply = state.Env().Exchange(request, options);
    TransportRunState& run = state.transportRun;
    if (reply.transported) {
        run.failuresInARow = 0;
    } else {
        ++state.exchanges.unanswered;
        // A body that could not be read tells nothing of the server.
        if (!reply.bodyFailed) {
            ++run.failuresInARow;
            run.lastError = reply.error;
            run.lastFailure = reply.failure;
        }
    }
    return reply;
}

}  // namespace morvane
