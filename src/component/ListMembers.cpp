// The members of the customer record's lists (staff, offices, memos, bidding lists): each compared
// and fetched through the customer record's own slot, since its worker holds them.
#include <functional>

#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "record/cCustKihon.h"
#include "session/FacadePatterns.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using Read = bool (cCustKihon::*)(std::string_view);
using Sync = std::int32_t (cCustKihon::*)(const std::string&, std::int32_t);

// The methods of one list on the record's worker, and the page its list comes from.
struct ListKind {
    std::string_view getPage;
    Read read;
    Sync compare, download, upload;
};

constexpr ListKind kShokuin{page::kGetCompShokuin, &cCustKihon::ReadXMLShokuin,
                            &cCustKihon::CompareLocalDBShokuin, &cCustKihon::SyncDownloadShokuin,
                            &cCustKihon::SyncUploadShokuin};
constexpr ListKind kEigyosho{page::kGetEigyosho, &cCustKihon::ReadXMLEigyosho,
                             &cCustKihon::CompareLocalDBEigyosho, &cCustKihon::SyncDownloadEigyosho,
                             &cCustKihon::SyncUploadEigyosho};
constexpr ListKind kMemo{page::kGetMemo, &cCustKihon::ReadXMLMemo, &cCustKihon::CompareLocalDBMemo,
                         &cCustKihon::SyncDownloadMemo, &cCustKihon::SyncUploadMemo};

constexpr ListKind kNyusatsuKikan{page::kGetNyusatsuKikan, &cCustKihon::ReadXMLNyusatuKikan,
                                  &cCustKihon::CompareLocalDBNyusatsuKikan,
                                  &cCustKihon::SyncDownloadNyusatsuKikan,
                                  &cCustKihon::SyncUploadNyusatsuKikan};
constexpr ListKind kNyusatsuSanka{page::kGetNyusatsuSanka, &cCustKihon::ReadXMLNyusatuSanka,
                                  &cCustKihon::CompareLocalDBNyusatsuSanka,
                                  &cCustKihon::SyncDownloadNyusatsuSanka,
                                  &cCustKihon::SyncUploadNyusatsuSanka};

facade::Request ListRequest(const ListKind& kind, std::int32_t custId) {
    return {kind.getPage, UpperCustomerBody(custId), facade::Routine::Progress};
}

facade::Reader<cCustKihon> Reader(const ListKind& kind) {
    return [read = kind.read](cCustKihon& k, const std::string& xml) { return (k.*read)(xml); };
}

std::int32_t CompareList(std::unique_ptr<cCustKihon>& slot, const ListKind& kind,
                         const std::string& LocalDB, std::int32_t CustID) {
    return facade::Compare<cCustKihon>(
        slot, ListRequest(kind, CustID), Reader(kind),
        [&](cCustKihon& k) { return (k.*kind.compare)(LocalDB, CustID); }, facade::Keep::NonZero);
}

std::int32_t DownloadList(std::unique_ptr<cCustKihon>& slot, const ListKind& kind,
                          const std::string& LocalDB, std::int32_t CustID) {
    return facade::AlwaysFetch<cCustKihon>(
        slot, ListRequest(kind, CustID), Reader(kind),
        [&](cCustKihon& k) { (k.*kind.download)(LocalDB, CustID); });
}

std::int32_t UploadList(const ListKind& kind, const std::string& LocalDB, std::int32_t CustID) {
    return facade::Upload<cCustKihon>(
        [&](cCustKihon& k) { return (k.*kind.upload)(LocalDB, CustID); });
}

}  // namespace

std::int32_t ctrlMorvane::CompareCustomerSyokuinList(const std::string& LocalDB,
                                                     std::int32_t CustID) {
    return CompareList(custKihon_, kShokuin, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncDownloadCustomerSyokuinList(const std::string& LocalDB,
                                                          std::int32_t CustID) {
    return DownloadList(custKihon_, kShokuin, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncUploadCustomerSyokuinList(const std::string& LocalDB,
                                                        std::int32_t CustID) {
    return UploadList(kShokuin, LocalDB, CustID);
}

std::int32_t ctrlMorvane::CompareCustomerEigyoshoList(const std::string& LocalDB,
                                                      std::int32_t CustID) {
    return CompareList(custKihon_, kEigyosho, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncDownloadCustomerEigyoshoList(const std::string& LocalDB,
                                                           std::int32_t CustID) {
    return DownloadList(custKihon_, kEigyosho, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncUploadCustomerEigyoshoList(const std::string& LocalDB,
                                                         std::int32_t CustID) {
    return UploadList(kEigyosho, LocalDB, CustID);
}

std::int32_t ctrlMorvane::CompareCustomerMemoList(const std::string& LocalDB, std::int32_t CustID) {
    return CompareList(custKihon_, kMemo, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncDownloadCustomerMemoList(const std::string& LocalDB,
                                                       std::int32_t CustID) {
    return DownloadList(custKihon_, kMemo, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncUploadCustomerMemoList(const std::string& LocalDB,
                                                     std::int32_t CustID) {
    return UploadList(kMemo, LocalDB, CustID);
}

std::int32_t ctrlMorvane::CompareCustomerNyusatsuKikanList(const std::string& LocalDB,
                                                           std::int32_t CustID) {
    return CompareList(custKihon_, kNyusatsuKikan, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncDownloadCustomerNyusatsuKikanList(const std::string& LocalDB,
                                                                std::int32_t CustID) {
    return DownloadList(custKihon_, kNyusatsuKikan, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncUploadCustomerNyusatsuKikanList(const std::string& LocalDB,
                                                              std::int32_t CustID) {
    return UploadList(kNyusatsuKikan, LocalDB, CustID);
}

std::int32_t ctrlMorvane::CompareCustomerNyusatsuSankaList(const std::string& LocalDB,
                                                           std::int32_t CustID) {
    return CompareList(custKihon_, kNyusatsuSanka, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncDownloadCustomerNyusatsuSankaList(const std::string& LocalDB,
                                                                std::int32_t CustID) {
    return DownloadList(custKihon_, kNyusatsuSanka, LocalDB, CustID);
}
std::int32_t ctrlMorvane::SyncUploadCustomerNyusatsuSankaList(const std::string& LocalDB,
                                                              std::int32_t CustID) {
    return UploadList(kNyusatsuSanka, LocalDB, CustID);
}

void RegisterListMembers(DispatchTable& t) {
    t.Method("CompareCustomerSyokuinList", &ctrlMorvane::CompareCustomerSyokuinList,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerSyokuinList", &ctrlMorvane::SyncDownloadCustomerSyokuinList,
             {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerSyokuinList", &ctrlMorvane::SyncUploadCustomerSyokuinList,
             {"LocalDB", "CustID"});
    t.Method("CompareCustomerEigyoshoList", &ctrlMorvane::CompareCustomerEigyoshoList,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerEigyoshoList", &ctrlMorvane::SyncDownloadCustomerEigyoshoList,
             {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerEigyoshoList", &ctrlMorvane::SyncUploadCustomerEigyoshoList,
             {"LocalDB", "CustID"});
    t.Method("CompareCustomerMemoList", &ctrlMorvane::CompareCustomerMemoList,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerMemoList", &ctrlMorvane::SyncDownloadCustomerMemoList,
             {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerMemoList", &ctrlMorvane::SyncUploadCustomerMemoList,
             {"LocalDB", "CustID"});
    t.Method("CompareCustomerNyusatsuKikanList", &ctrlMorvane::CompareCustomerNyusatsuKikanList,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerNyusatsuKikanList",
             &ctrlMorvane::SyncDownloadCustomerNyusatsuKikanList, {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerNyusatsuKikanList",
             &ctrlMorvane::SyncUploadCustomerNyusatsuKikanList, {"LocalDB", "CustID"});
    t.Method("CompareCustomerNyusatsuSankaList", &ctrlMorvane::CompareCustomerNyusatsuSankaList,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerNyusatsuSankaList",
             &ctrlMorvane::SyncDownloadCustomerNyusatsuSankaList, {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerNyusatsuSankaList",
             &ctrlMorvane::SyncUploadCustomerNyusatsuSankaList, {"LocalDB", "CustID"});
}

}  // namespace morvane
