#include "session/mdlLogin.h"

#include <array>
#include <optional>

#include "platform/Xml.h"
#include "session/frmLogin.h"
#include "session/frmLoginTimer.h"
#include "session/mdlErrTrap.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerCommon.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"
#include "util/Nz.h"
#include "util/Text.h"

namespace morvane {
namespace {

// The one element of this name below the root, or nothing.
std::optional<platform::XmlNode> OnlySection(const platform::XmlDocument& doc,
                                             std::string_view name) {
    const auto nodes = doc.DocumentElement().SelectNodes(name);
    if (nodes.size() != 1) return std::nullopt;
    return nodes.front();
}

// The reply check opens the login dialog, without owner and without cancel, from the load of
// the component on.
[[maybe_unused]] const bool kLoginPromptSet = [] {
    SetLoginPrompt([] { ShowLoginDlg(nullptr, 1); });
    return true;
}();

}  // namespace

bool ParseLoginSystem(std::string_view reply) {
    const auto doc = platform::XmlDocument::Load(reply);
    if (!doc) return false;
    const auto system = OnlySection(*doc, "system");
    if (!system) return false;
    std::optional<std::string> flags, token;
    for (const auto& child : system->Children()) {
        if (EqualsNoCase(child.Name(), "flags")) flags = child.Text();
        if (EqualsNoCase(child.Name(), "token")) token = child.Text();
    }
    if (!flags || !token) return false;
    SetLoginState(NzLong(*flags));
    SetLoginToken(*token);
    return true;
}

bool ParseLoginAccount(std::string_view reply) {
    const auto doc = platform::XmlDocument::Load(reply);
    if (!doc) return false;
    const auto account = OnlySection(*doc, "account");
    if (!account) return false;
    static constexpr std::array<std::string_view, 6> kNames = {
        "UserName", "ContractorName", "ContractBegin", "ContractEnd", "SharedCount", "MaxCustomer"};
    std::array<std::optional<std::string>, 6> found;
    for (const auto& child : account->Children()) {
        for (size_t i = 0; i < kNames.size(); ++i)
            if (EqualsNoCase(child.Name(), kNames[i])) found[i] = child.Text();
    }
    for (const auto& f : found)
        if (!f) return false;
    LoginRecord& login = State().login;
    login.userName = *found[0];
    login.contractorName = *found[1];
    login.contractBegin = *found[2];
    login.contractEnd = *found[3];
    login.sharedCount = NzLong(*found[4]);
    login.maxCustomer = NzLong(*found[5]);
    return true;
}

bool DoLogin(std::string_view id, std::string_view password, std::string_view contractNo) {
    bool result = false;
    try {
        ResetLogin();
        // The password goes as typed: only the transport is encrypted.
        std::string body;
        AppendField(body, "no", contractNo);
        AppendField(body, "ID", id);
        AppendField(body, "PW", password);
        // Not judged: a failed login must not open the login dialog over itself.
        const std::string reply = SendRequestRaw(page::kLogin, body);
        if (!reply.empty() && ParseLoginSystem(reply)) {
            State().login.loginId = std::string(id);
            State().login.password = std::string(password);
            result = ParseLoginAccount(reply);
        }
    } catch (...) {
        CaptureError(std::current_exception());
    }
    try {
        // Created even after a failed login: its first refresh stops it then.
        RunLoginTimer(false);
    } catch (...) {
        CaptureError(std::current_exception());
    }
    ErrTrap();
    return result;
}

std::int32_t ShowLoginDlg(forms::Form* owner, std::int32_t showtype) {
    try {
        frmLogin form(State().Toolkit());
        form.SetShowtype(showtype);
        form.Load();
        form.ShowModal(owner);
    } catch (...) {
        CaptureError(std::current_exception());
        ErrTrap();
    }
    return GetLoginState();
}

}  // namespace morvane
