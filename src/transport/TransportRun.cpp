#include "transport/TransportRun.h"

#include "session/ProcessState.h"

namespace morvane {

void BeginTransportRun(std::optional<std::chrono::seconds> timeLimit) {
    TransportRunState& run = State().transportRun;
    run = TransportRunState{};
    if (timeLimit) run.deadline = std::chrono::steady_clock::now() + *timeLimit;
}

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
    if (TransportTimeUp()) return "the time limit of the run was reached";
    return {};
}

platform::HttpReply RunExchange(const std::string& url, const platform::HttpHeaders& headers,
                                std::string_view body, bool exactHeaders,
                                std::size_t maxReplyBytes) {
    if (std::string reason = TransportStopReason(); !reason.empty()) {
        platform::HttpReply refused;
        refused.error = std::move(reason);
        return refused;
    }
    ProcessState& state = State();
    platform::HttpOptions options = state.HttpOptions();
    options.maxReplyBytes = maxReplyBytes;
    if (state.transportRun.deadline &&
        (!options.deadline || *state.transportRun.deadline < *options.deadline))
        options.deadline = state.transportRun.deadline;
    platform::HttpClient client(options, &state.HttpPool());
    platform::HttpReply reply =
        exactHeaders ? client.PostRaw(url, headers, body) : client.Post(url, headers, body);
    TransportRunState& run = state.transportRun;
    if (reply.transported) {
        run.failuresInARow = 0;
    } else {
        ++run.failuresInARow;
        run.lastError = reply.error;
    }
    return reply;
}

}  // namespace morvane
