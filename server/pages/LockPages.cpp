// Locks on a customer or a master. A refusal is an ordinary reply whose result is 0.
#include "server/pages/Service.h"
#include "server/util/Text.h"

namespace morvane::server {

void Service::AddLockRoutes() {
    struct LockPage {
        const char* path;
        LockKind kind;
        bool lock;
    };
    for (const auto& page : {LockPage{"customer/lockComp.php", LockKind::Customer, true},
                             LockPage{"customer/unlockComp.php", LockKind::Customer, false},
                             LockPage{"master/lockMaster.php", LockKind::Master, true},
                             LockPage{"master/unlockMaster.php", LockKind::Master, false}}) {
        const bool customer = page.kind == LockKind::Customer;
        const char* idKey = customer ? "CustomerID" : "MasterID";
        routes_[page.path] = {
            {"ID", "token", idKey}, [this, page, customer, idKey](Call& call) {
                const auto id = ParseInt32(call.body.GetOr(idKey));
                if (!id) throw PageFailure(-1, "no lock number");
                bool granted = true;
                if (page.lock)
                    granted = locks_.Lock(call.user.accountId, page.kind, *id, call.user.userId);
                else
                    locks_.Unlock(call.user.accountId, page.kind, *id, call.user.userId);
                call.xml.Open("LockInfo")
                    .Open(customer ? "Customer" : "Master")
                    .Leaf("result", granted ? "1" : "0")
                    .Close()
                    .Close();
            }};
    }
}

}  // namespace morvane::server
