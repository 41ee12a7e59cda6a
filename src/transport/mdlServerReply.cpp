#include "transport/mdlServerReply.h"

#include <optional>

#include "platform/Xml.h"
#include "state/LoginState.h"
#include "state/ProcessState.h"
#include "transport/frmSendRequestProgress.h"
#include "transport/mdlServerCommon.h"
#include "util/Nz.h"
#include "util/Text.h"

namespace morvane {
namespace {

void ShowWarning(const char* text, const char* title) {
    forms::MessageBoxRequest box;
    box.text = text;
    box.title = title;
    box.icon = forms::MsgIcon::Exclamation;
    State().Toolkit().MessageBox(box);
}

void ReLogin() {
    ResetLogin();
    if (const auto& prompt = State().loginPrompt) prompt();
}

}  // namespace

void SetLoginPrompt(std::function<void()> prompt) { State().loginPrompt = std::move(prompt); }

namespace {

bool ReadSystemNode(const platform::XmlDocument* doc, std::int32_t& flags, std::string& token) {
    if (!doc) return false;
    const auto systems = doc->DocumentElement().SelectNodes("system");
    if (systems.size() != 1) return false;
    const auto flagNodes = systems.front().SelectNodes("flags");
    const auto tokenNodes = systems.front().SelectNodes("token");
    if (flagNodes.size() != 1 || tokenNodes.size() != 1) return false;
    flags = NzLong(flagNodes.front().Text());
    token = tokenNodes.front().Text();
    return true;
}

// The reply check on a parsed reply (null: empty or malformed).
std::int32_t Judge(const platform::XmlDocument* doc) {
    std::int32_t flags = 0;
    std::string token;
    if (!ReadSystemNode(doc, flags, token)) {
        ShowWarning(msg::kCommFailNoNetwork, msg::kCommFailTitle);
        ResetLogin();
        return 0;
    }
    // The token rotates with every reply that has a system element, whatever its status.
    SetLoginState(flags);
    SetLoginToken(token);
    switch (flags) {
        case 1:
            return 1;
        case 0:
            ReLogin();
            return 0;
        case -1:
        case -2:
            if (flags == -1)
                ShowWarning(msg::kCommFail, msg::kCommFailTitle);
            else
                ShowWarning(msg::kLockFail, msg::kLockFailTitle);
            // A failure told with a valid token costs the operation, not the login.
            if (token.empty())
                ReLogin();
            else
                SetLoginState(1);
            return 0;
        default:
            return 0;
    }
}

std::int32_t CountJudged(std::int32_t judged) {
    if (judged < 1) ++State().exchanges.failed;
    return judged;
}

}  // namespace

bool ParseSystemNode(std::string_view reply, std::int32_t& flags, std::string& token) {
    return ReadSystemNode(platform::XmlDocument::Load(reply).get(), flags, token);
}

std::int32_t CheckServerReply(std::string_view reply) {
    return CountJudged(Judge(platform::XmlDocument::Load(reply).get()));
}

std::string SendRequest(std::string_view path, std::string_view postData) {
    return SendRequestJudged(path, postData).text;
}

JudgedReply SendRequestJudged(std::string_view path, std::string_view postData) {
    std::string reply = PostToServer(path, postData);
    auto doc = platform::XmlDocument::Load(reply);
    if (CountJudged(Judge(doc.get())) < 1) return {};
    return {std::move(reply), std::move(doc)};
}

std::string SendRequestProgress(std::string_view path, std::string_view postData,
                                std::string_view msg, forms::Form* owner) {
    if (State().objectUsage == 1) return SendRequest(path, postData);
    frmSendRequestProgress form(State().Toolkit());
    form.Load();
    form.SetURL(std::string(path));
    form.SetPostData(std::string(postData));
    form.ShowMsgString(msg);
    form.ShowModal(owner);
    std::string reply = form.ReturnString();
    form.Unload();
    return reply;
}

bool TestConnection(std::string_view url, std::string_view contractNo, std::string_view userId,
                    std::string_view password) {
    const std::string reply = PostConnectionTest(url, contractNo, userId, password);
    if (reply.empty()) return false;
    const auto doc = platform::XmlDocument::Load(reply);
    if (!doc) return false;
    const auto systems = doc->DocumentElement().SelectNodes("system");
    if (systems.size() != 1) return false;
    std::optional<std::string> flags, token;
    for (const auto& child : systems.front().Children()) {
        if (EqualsNoCase(child.Name(), "flags")) flags = child.Text();
        if (EqualsNoCase(child.Name(), "token")) token = child.Text();
    }
    return flags && token && NzLong(*flags) == 1;
}

}  // namespace morvane
