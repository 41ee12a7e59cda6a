// The customer record members: the main record's and the trades' comparisons, downloads and
// uploads, the linkage calls over both and the staff and offices, and the code-only upload.
#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "record/cCustKihon.h"
#include "session/FacadePatterns.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

facade::Request KihonRequest(std::string_view path, std::int32_t custId,
                             facade::Routine routine = facade::Routine::Progress) {
    return {path, UpperCustomerBody(custId), routine};
}

bool ReadNormal(cCustKihon& k, const std::string& reply) { return k.ReadXMLNormal(reply); }
bool ReadGyosyu(cCustKihon& k, const std::string& reply) { return k.ReadXMLGyosyu(reply); }

// The document the reply check parsed when there is one, else the text.
bool ReadMain(cCustKihon& k, const JudgedReply& reply) {
    return reply.document ? k.ReadXMLMain(*reply.document) : k.ReadXMLMain(reply.text);
}

bool ReadRendoInfo(cCustKihon& k, const JudgedReply& reply) {
    return reply.document ? k.ReadXMLRendoInfo(*reply.document) : k.ReadXMLRendoInfo(reply.text);
}

}  // namespace

std::int32_t ctrlMorvane::CompareCustomerKihonMain(const std::string& LocalDB,
                                                   std::int32_t CustID) {
    return facade::CompareJudged<cCustKihon>(
        custKihon_, KihonRequest(page::kGetCompKihonMain, CustID, facade::Routine::Plain), ReadMain,
        [&](cCustKihon& k) { return k.CompareLocalDBMain(LocalDB, CustID); }, facade::Keep::Never);
}

// The main download takes the whole record, from the whole record's page.
std::int32_t ctrlMorvane::SyncDownloadCustomerKihonMain(const std::string& LocalDB,
                                                        std::int32_t CustID) {
    return facade::AlwaysFetch<cCustKihon>(
        custKihon_, KihonRequest(page::kGetCompKihon, CustID), ReadNormal,
        [&](cCustKihon& k) { k.SyncDownloadNormal(LocalDB, CustID); });
}

std::int32_t ctrlMorvane::CompareCustomerKihon(const std::string& LocalDB, std::int32_t CustID) {
    return facade::Compare<cCustKihon>(
        custKihon_, KihonRequest(page::kGetCompKihon, CustID), ReadNormal,
        [&](cCustKihon& k) { return k.CompareLocalDBNormal(LocalDB, CustID); },
        facade::Keep::NonZero);
}

std::int32_t ctrlMorvane::SyncDownloadCustomerKihon(const std::string& LocalDB,
                                                    std::int32_t CustID) {
    return facade::AlwaysFetch<cCustKihon>(
        custKihon_, KihonRequest(page::kGetCompKihon, CustID), ReadNormal,
        [&](cCustKihon& k) { k.SyncDownloadNormal(LocalDB, CustID); });
}

std::int32_t ctrlMorvane::SyncUploadCustomerKihonNormal(const std::string& LocalDB,
                                                        std::int32_t CustID) {
    return facade::Upload<cCustKihon>(
        [&](cCustKihon& k) { return k.SyncUploadNormal(LocalDB, CustID); });
}

std::int32_t ctrlMorvane::CompareCustomerKihonGyosyu(const std::string& LocalDB,
                                                     std::int32_t CustID) {
    return facade::Compare<cCustKihon>(
        custKihon_, KihonRequest(page::kGetCompGyoshu, CustID), ReadGyosyu,
        [&](cCustKihon& k) { return k.CompareLocalDBGyosyu(LocalDB, CustID); },
        facade::Keep::NonZero);
}

std::int32_t ctrlMorvane::SyncDownloadCustomerKihonGyosyu(const std::string& LocalDB,
                                                          std::int32_t CustID) {
    return facade::AlwaysFetch<cCustKihon>(
        custKihon_, KihonRequest(page::kGetCompGyoshu, CustID), ReadGyosyu,
        [&](cCustKihon& k) { k.SyncDownloadGyosyu(LocalDB, CustID); });
}

std::int32_t ctrlMorvane::SyncUploadCustomerKihonGyosyu(const std::string& LocalDB,
                                                        std::int32_t CustID) {
    return facade::Upload<cCustKihon>(
        [&](cCustKihon& k) { return k.SyncUploadGyoshu(LocalDB, CustID); });
}

// Kept for the download when anything differs: the flags of the kinds to write live in it.
std::int32_t ctrlMorvane::CompareCustomerRendoInfo(const std::string& LocalDB,
                                                   std::int32_t CustID) {
    return facade::CompareJudged<cCustKihon>(
        custKihon_, KihonRequest(page::kGetCompDetails, CustID), ReadRendoInfo,
        [&](cCustKihon& k) { return k.CompareLocalDBRendoInfo(LocalDB, CustID); },
        facade::Keep::NonZero);
}

// Never fetches: without the comparison's flags there is nothing to say which kinds to write.
std::int32_t ctrlMorvane::SyncDownloadCustomerRendoInfo(const std::string& LocalDB,
                                                        std::int32_t CustID) {
    return facade::KeptWorker<cCustKihon>(
        custKihon_, KihonRequest(page::kGetCompDetails, CustID),
        [](cCustKihon& k, const std::string& xml) { return k.ReadXMLRendoInfo(xml); },
        [&](cCustKihon& k) { k.SyncDownloadRendoInfo(LocalDB, CustID); },
        facade::FetchWhenEmpty::Never);
}

std::int32_t ctrlMorvane::SyncUploadCustomerRendoInfo(const std::string& LocalDB,
                                                      std::int32_t CustID) {
    return facade::Upload<cCustKihon>(
        [&](cCustKihon& k) { return k.SyncUploadRendoInfo(LocalDB, CustID); });
}

std::int32_t ctrlMorvane::SyncUploadCustomerCustCode(const std::string& LocalDB,
                                                     std::int32_t CustID) {
    return facade::Upload<cCustKihon>(
        [&](cCustKihon& k) { return k.SyncUploadCustCode(LocalDB, CustID); });
}

void RegisterRecordMembers(DispatchTable& t) {
    t.Method("CompareCustomerKihonMain", &ctrlMorvane::CompareCustomerKihonMain,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerKihonMain", &ctrlMorvane::SyncDownloadCustomerKihonMain,
             {"LocalDB", "CustID"});
    t.Method("CompareCustomerKihon", &ctrlMorvane::CompareCustomerKihon, {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerKihon", &ctrlMorvane::SyncDownloadCustomerKihon,
             {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerKihonNormal", &ctrlMorvane::SyncUploadCustomerKihonNormal,
             {"LocalDB", "CustID"});
    t.Method("CompareCustomerKihonGyosyu", &ctrlMorvane::CompareCustomerKihonGyosyu,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerKihonGyosyu", &ctrlMorvane::SyncDownloadCustomerKihonGyosyu,
             {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerKihonGyosyu", &ctrlMorvane::SyncUploadCustomerKihonGyosyu,
             {"LocalDB", "CustID"});
    t.Method("CompareCustomerRendoInfo", &ctrlMorvane::CompareCustomerRendoInfo,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerRendoInfo", &ctrlMorvane::SyncDownloadCustomerRendoInfo,
             {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerRendoInfo", &ctrlMorvane::SyncUploadCustomerRendoInfo,
             {"LocalDB", "CustID"});
    t.Method("SyncUploadCustomerCustCode", &ctrlMorvane::SyncUploadCustomerCustCode,
             {"LocalDB", "CustID"});
}

}  // namespace morvane
