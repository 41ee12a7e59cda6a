// The dated record members: settlement, permit and other records, each compared, downloaded
// and uploaded by the list patterns.
#include "dated/cCustKessan.h"
#include "record/ListFacade.h"
#include "session/DispatchTable.h"
#include "session/ctrlMorvane.h"

namespace morvane {

std::int32_t ctrlMorvane::CompareCustomerKessanList(const std::string& LocalDB,
                                                    std::int32_t CustID) {
    return record::CompareListMember(custKessan_, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncDownloadCustomerKessanList(const std::string& LocalDB,
                                                         std::int32_t CustID) {
    return record::DownloadListMember(custKessan_, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncUploadCustomerKessanList(const std::string& LocalDB,
                                                       std::int32_t CustID) {
    return record::UploadListMember<cCustKessan>(LocalDB, CustID);
}

void RegisterDatedMembers(DispatchTable& t) {
    t.Method("CompareCustomerKessanList", &ctrlMorvane::CompareCustomerKessanList,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerKessanList", &ctrlMorvane::SyncDownloadCustomerKessanList,
             {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerKessanList", &ctrlMorvane::SyncUploadCustomerKessanList,
             {"LocalDB", "CustID"});
}

}  // namespace morvane
