#include "session/FacadePatterns.h"

#include "transport/mdlServerReply.h"

namespace morvane::facade {

std::string Fetch(const Request& request) {
    if (request.routine == Routine::Plain) return SendRequest(request.path, request.body);
    return SendRequestProgress(request.path, request.body, "", nullptr);
}

JudgedReply FetchJudged(const Request& request) {
    if (request.routine == Routine::Plain) return SendRequestJudged(request.path, request.body);
    return {SendRequestProgress(request.path, request.body, "", nullptr), nullptr};
}

}  // namespace morvane::facade
