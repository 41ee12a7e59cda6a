// The session members of the dispatch table.
#include "component/DispatchTable.h"

namespace morvane {

void RegisterSessionMembers(DispatchTable& t) {
    t.Method("setObjectUsage", &ctrlMorvane::setObjectUsage, {"n"});
    t.Property("LoginState", &ctrlMorvane::LoginState);
    t.Method("SetDisableMorvane", &ctrlMorvane::SetDisableMorvane);
    t.Property("LoginAccountUserName", &ctrlMorvane::LoginAccountUserName);
    t.Property("LoginAccountContractorName", &ctrlMorvane::LoginAccountContractorName);
    t.Property("LoginAccountContractBegin", &ctrlMorvane::LoginAccountContractBegin);
    t.Property("LoginAccountContractEnd", &ctrlMorvane::LoginAccountContractEnd);
    t.Property("LoginAccountSharedCount", &ctrlMorvane::LoginAccountSharedCount);
    t.Property("LoginAccountMaxCustomer", &ctrlMorvane::LoginAccountMaxCustomer);
}

}  // namespace morvane
