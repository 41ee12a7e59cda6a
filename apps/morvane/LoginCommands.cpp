#include "LoginCommands.h"

#include <ostream>

#include "ReachReason.h"
#include "component/ctrlMorvane.h"
#include "session/basTextEncrypt.h"
#include "session/mdlLogin.h"
#include "session/mdlLoginInfo.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "transport/mdlServerCommon.h"
#include "transport/mdlServerConst.h"
#include "util/Text.h"

namespace morvane::cli {
namespace {

const char* StateText(int state) {
    switch (state) {
        case 0:
            return "not logged in";
        case 1:
            return "logged in";
        case 2:
            return "logged in elsewhere";
        case 99:
            return "online backup not used";
        default:
            return "refused by the server";
    }
}

void PrintAccount(const ctrlMorvane& obj, std::ostream& out) {
    out << "user:        " << obj.LoginAccountUserName() << '\n'
        << "contractor:  " << obj.LoginAccountContractorName() << '\n'
        << "contract:    " << obj.LoginAccountContractBegin() << " - "
        << obj.LoginAccountContractEnd() << '\n'
        << "shared by:   " << obj.LoginAccountSharedCount() << '\n'
        << "customers:   up to " << obj.LoginAccountMaxCustomer() << '\n';
}

}  // namespace

int RunLogin(const LoginRequest& request, std::ostream& out) {
    ctrlMorvane obj;
    // The typed values serve this process directly; they are kept for the next ones only once
    // the server took them.
    State().serverName = Trim(request.server);
    State().contractNo = Trim(request.contractNo);

    const std::uint64_t unanswered = State().exchanges.unanswered;
    DoLogin(Trim(request.userId), request.password, Trim(request.contractNo));
    const int state = obj.LoginState();
    if (State().exchanges.unanswered > unanswered)
        out << "login: the server could not be reached: " << UnreachableReason() << " (state "
            << state << "); nothing was saved\n";
    else
        out << "login: " << StateText(state) << " (state " << state << "); the server answered"
            << (state == 1 ? "" : "; nothing was saved") << '\n';
    if (state == 1) {
        // As the settings dialog stores them.
        WriteMorvaneSetting(reg::kEnabledMorvane, "True");
        WriteMorvaneSetting(reg::kServerName, Trim(request.server));
        WriteMorvaneSetting(reg::kContractNo, Trim(request.contractNo));
        WriteMorvaneSetting(reg::kLoginUID, Trim(request.userId));
        WriteMorvaneSetting(reg::kLoginPWD,
                            request.savePassword ? EncryptText(request.password) : "");
        WriteMorvaneSetting(reg::kSaveLoginPWD, request.savePassword ? "True" : "False");
        PrintAccount(obj, out);
        SaveLoginInfo(GetLoginID(), GetLoginToken(), std::to_string(state));
    }
    return state;
}

int RunStatus(std::ostream& out) {
    ctrlMorvane obj;
    LoadLoginInfo();
    const int state = obj.LoginState();
    out << "server:      " << ReadMorvaneSetting(reg::kServerName) << '\n'
        << "contract no: " << ReadMorvaneSetting(reg::kContractNo) << '\n'
        << "user ID:     " << GetLoginID() << '\n'
        << "login:       " << StateText(state) << " (state " << state << ", as saved)\n";
    if (state == 1) PrintAccount(obj, out);
    if (GetServerName().empty()) return 1;
    // Whether the server can be reached now: its clock, which needs no login.
    const std::uint64_t unanswered = State().exchanges.unanswered;
    PostToServer(page::kGetTime, "");
    const bool reached = State().exchanges.unanswered == unanswered;
    out << "reachable:   " << (reached ? "yes" : "no: " + UnreachableReason()) << '\n';
    return state == 1 && reached ? 0 : 1;
}

}  // namespace morvane::cli
