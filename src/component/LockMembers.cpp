// The lock members: server locks on a customer or a master, forwarded whole to mdlLock.
#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "locks/mdlLock.h"

namespace morvane {

std::int32_t ctrlMorvane::LockCoustomer(std::int32_t CustID) { return LockCustomerWorker(CustID); }

std::int32_t ctrlMorvane::UnlockCoustomer(std::int32_t CustID) {
    return UnlockCustomerWorker(CustID);
}

std::int32_t ctrlMorvane::LockMasterData(std::int32_t MastID) { return LockMasterWorker(MastID); }

std::int32_t ctrlMorvane::UnlockMasterData(std::int32_t MastID) {
    return UnlockMasterWorker(MastID);
}

void RegisterLockMembers(DispatchTable& t) {
    t.Method("LockCoustomer", &ctrlMorvane::LockCoustomer, {"CustID"});
    t.Method("UnlockCoustomer", &ctrlMorvane::UnlockCoustomer, {"CustID"});
    t.Method("LockMasterData", &ctrlMorvane::LockMasterData, {"MastID"});
    t.Method("UnlockMasterData", &ctrlMorvane::UnlockMasterData, {"MastID"});
}

}  // namespace morvane
