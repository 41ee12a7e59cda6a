#include "transport/mdlServerCommon.h"

#include "BuildConfig.h"
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
    return RunExchange(url, headers, body, false, maxReplyBytes);
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
    static constexpr std::string_view kKept = "-_.!~*'();,/?:@&=+$#";
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(text.size() * 3);
    for (const char ch : text) {
        const unsigned char c = static_cast<unsigned char>(ch);
        const bool alnum =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (alnum || kKept.find(ch) != std::string_view::npos) {
            out += ch;
        } else {
            out += '%';
            out += kHex[c >> 4];
            out += kHex[c & 15];
        }
    }
    return out;
}

}  // namespace morvane
