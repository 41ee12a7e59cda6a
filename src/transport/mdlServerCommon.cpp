#include "transport/mdlServerCommon.h"

#include "BuildConfig.h"
#include "platform/PercentEncoding.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "transport/RequestBody.h"
#include "util/Text.h"

namespace morvane {

std::string GetServerName() {
    auto& cached = State().serverName;
    if (!cached) cached = ReadMorvaneSetting(reg::kServerName, "");
    return Trim(*cached);
}

std::string GetContractNo() {
    auto& cached = State().contractNo;
    if (!cached) cached = ReadMorvaneSetting(reg::kContractNo, "");
    return Trim(*cached);
}

std::string GetServerBaseURL() { return "https://" + GetServerName() + "/"; }

std::string GetSignupPageURL() { return build::kSignupUrl; }

platform::HttpHeaders StandardHeaders() {
    return {{"Content-Type", "application/x-www-form-urlencoded"},
            // A fixed past date keeps any cache on the way from answering.
            {"If-Modified-Since", "Thu, 01 Jun 1970 00:00:00 GMT"}};
}

platform::HttpReply PostWithHeaders(const std::string& url, const platform::HttpHeaders& extra,
                                    std::string_view body, std::size_t maxReplyBytes) {
    platform::HttpHeaders headers = StandardHeaders();
    headers.insert(headers.end(), extra.begin(), extra.end());
    return RunExchange({url, std::move(headers), body}, maxReplyBytes);
}

std::string PostToServer(std::string_view path, std::string_view postData) {
    // No retry, no judgement: a failure is the empty text, and the reply check tells the user.
    platform::HttpReply reply =
        PostWithHeaders(GetServerBaseURL() + std::string(path), {}, postData);
    return reply.transported ? std::move(reply.body) : std::string();
}

std::string SendRequestRaw(std::string_view path, std::string_view postData) {
    return PostToServer(path, postData);
}

std::string PostConnectionTest(std::string_view url, std::string_view contractNo,
                               std::string_view userId, std::string_view password) {
    std::string body;
    AppendField(body, "no", contractNo);
    AppendField(body, "ID", userId);
    AppendField(body, "PW", password);
    const platform::HttpReply reply = PostWithHeaders(std::string(url), {}, body);
    return reply.transported ? reply.body : std::string();
}

std::string EncodeURIValue(std::string_view text) {
    return platform::PercentEncode(text, platform::kUriBare);
}

}  // namespace morvane
