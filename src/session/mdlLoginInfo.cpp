#include "session/mdlLoginInfo.h"

#include <string>

#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "util/Nz.h"

namespace morvane {

void SaveLoginInfo(std::string_view param1, std::string_view param2, std::string_view param3) {
    try {
        WriteMorvaneSetting(reg::kParam1, param1);
        WriteMorvaneSetting(reg::kParam2, param2);
        WriteMorvaneSetting(reg::kParam3, param3);
        const bool any = !param1.empty() || !param2.empty() || !param3.empty();
        const LoginRecord& login = State().login;
        WriteMorvaneSetting(reg::kUserName, any ? login.userName : "");
        WriteMorvaneSetting(reg::kContractorName, any ? login.contractorName : "");
        WriteMorvaneSetting(reg::kContractBegin, any ? login.contractBegin : "");
        WriteMorvaneSetting(reg::kContractEnd, any ? login.contractEnd : "");
        WriteMorvaneSetting(reg::kSharedCount, any ? std::to_string(login.sharedCount) : "");
        WriteMorvaneSetting(reg::kMaxCustomer, any ? std::to_string(login.maxCustomer) : "");
    } catch (...) {
        // A failed write is lost, as a failed registry write was.
    }
}

void LoadLoginInfo() {
    try {
        LoginRecord& login = State().login;
        login.loginId = ReadMorvaneSetting(reg::kParam1, "");
        SetLoginToken(ReadMorvaneSetting(reg::kParam2, ""));
        login.loginState = NzLong(ReadMorvaneSetting(reg::kParam3, ""));
        login.userName = ReadMorvaneSetting(reg::kUserName, "");
        login.contractorName = ReadMorvaneSetting(reg::kContractorName, "");
        login.contractBegin = ReadMorvaneSetting(reg::kContractBegin, "");
        login.contractEnd = ReadMorvaneSetting(reg::kContractEnd, "");
        login.sharedCount = NzLong(ReadMorvaneSetting(reg::kSharedCount, ""));
        login.maxCustomer = NzLong(ReadMorvaneSetting(reg::kMaxCustomer, ""));
    } catch (...) {
        // Carries on as the settings allow; a missing value has read as its default.
    }
}

}  // namespace morvane
