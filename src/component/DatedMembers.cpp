// The dated record members: settlement, permit and other records, each compared, downloaded
// and uploaded by the list patterns.
#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "dated/cCustKessan.h"
#include "dated/cCustKihonOther.h"
#include "dated/cCustKyoka.h"
#include "lists/ListFacade.h"

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

std::int32_t ctrlMorvane::CompareCustomerKyokaList(const std::string& LocalDB,
                                                   std::int32_t CustID) {
    return record::CompareListMember(custKyoka_, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncDownloadCustomerKyokaList(const std::string& LocalDB,
                                                        std::int32_t CustID) {
    return record::DownloadListMember(custKyoka_, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncUploadCustomerKyokaList(const std::string& LocalDB,
                                                      std::int32_t CustID) {
    return record::UploadListMember<cCustKyoka>(LocalDB, CustID);
}

std::int32_t ctrlMorvane::CompareCustomerOtherList(const std::string& LocalDB,
                                                   std::int32_t CustID) {
    return record::CompareListMember(custKihonOther_, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncDownloadCustomerOtherList(const std::string& LocalDB,
                                                        std::int32_t CustID) {
    return record::DownloadListMember(custKihonOther_, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncUploadCustomerOtherList(const std::string& LocalDB,
                                                      std::int32_t CustID) {
    return record::UploadListMember<cCustKihonOther>(LocalDB, CustID);
}

void RegisterDatedMembers(DispatchTable& t) {
    t.Method("CompareCustomerKessanList", &ctrlMorvane::CompareCustomerKessanList,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerKessanList", &ctrlMorvane::SyncDownloadCustomerKessanList,
             {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerKessanList", &ctrlMorvane::SyncUploadCustomerKessanList,
             {"LocalDB", "CustID"});
    t.Method("CompareCustomerKyokaList", &ctrlMorvane::CompareCustomerKyokaList,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerKyokaList", &ctrlMorvane::SyncDownloadCustomerKyokaList,
             {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerKyokaList", &ctrlMorvane::SyncUploadCustomerKyokaList,
             {"LocalDB", "CustID"});
    t.Method("CompareCustomerOtherList", &ctrlMorvane::CompareCustomerOtherList,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerOtherList", &ctrlMorvane::SyncDownloadCustomerOtherList,
             {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerOtherList", &ctrlMorvane::SyncUploadCustomerOtherList,
             {"LocalDB", "CustID"});
}

}  // namespace morvane
