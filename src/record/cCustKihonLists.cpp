// The customer record's lists on cCustKihon: each method forwards to the list's worker,
// which reads, compares, writes and sends the list by its declaration.
#include "record/cCustKihon.h"

#include <exception>

#include "session/mdlErrTrap.h"
#include "session/mdlLogin.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane {
namespace {

// Clears the object, then reads the list; the list's stamp becomes the object's.
template <class List>
bool ReadList(List& list, std::string_view xml, std::int32_t& customerId,
              std::string& recordUpdate) {
    const bool good = list.ReadXML(xml);
    customerId = list.CustomerID();
    recordUpdate = list.RecordUpdate();
    return good;
}

}  // namespace

bool cCustKihon::ReadXMLShokuin(std::string_view xml) {
    ClearData();
    const bool good = ReadList(shokuin_, xml, customerId_, recordUpdate_);
    shokuinCount_ = shokuin_.Count();
    return good;
}
std::int32_t cCustKihon::CompareLocalDBShokuin(const std::string& LocalDB, std::int32_t CustID) {
    return shokuin_.CompareLocalDB(LocalDB, CustID);
}
std::int32_t cCustKihon::SyncDownloadShokuin(const std::string& LocalDB, std::int32_t CustID) {
    return shokuin_.SyncDownload(LocalDB, CustID);
}
std::int32_t cCustKihon::SyncUploadShokuin(const std::string& LocalDB, std::int32_t CustID) {
    return shokuin_.SyncUpload(LocalDB, CustID);
}

bool cCustKihon::ReadXMLEigyosho(std::string_view xml) {
    ClearData();
    return ReadList(eigyosho_, xml, customerId_, recordUpdate_);
}
std::int32_t cCustKihon::CompareLocalDBEigyosho(const std::string& LocalDB, std::int32_t CustID) {
    return eigyosho_.CompareLocalDB(LocalDB, CustID);
}
std::int32_t cCustKihon::SyncDownloadEigyosho(const std::string& LocalDB, std::int32_t CustID) {
    return eigyosho_.SyncDownload(LocalDB, CustID);
}
std::int32_t cCustKihon::SyncUploadEigyosho(const std::string& LocalDB, std::int32_t CustID) {
    return eigyosho_.SyncUpload(LocalDB, CustID);
}

bool cCustKihon::ReadXMLMemo(std::string_view xml) {
    ClearData();
    return ReadList(memo_, xml, customerId_, recordUpdate_);
}
std::int32_t cCustKihon::CompareLocalDBMemo(const std::string& LocalDB, std::int32_t CustID) {
    return memo_.CompareLocalDB(LocalDB, CustID);
}
std::int32_t cCustKihon::SyncDownloadMemo(const std::string& LocalDB, std::int32_t CustID) {
    return memo_.SyncDownload(LocalDB, CustID);
}
std::int32_t cCustKihon::SyncUploadMemo(const std::string& LocalDB, std::int32_t CustID) {
    return memo_.SyncUpload(LocalDB, CustID);
}

bool cCustKihon::ReadXMLNyusatuKikan(std::string_view xml) {
    ClearData();
    return ReadList(nyusatsuKikan_, xml, customerId_, recordUpdate_);
}
std::int32_t cCustKihon::CompareLocalDBNyusatsuKikan(const std::string& LocalDB,
                                                     std::int32_t CustID) {
    return nyusatsuKikan_.CompareLocalDB(LocalDB, CustID);
}
std::int32_t cCustKihon::SyncDownloadNyusatsuKikan(const std::string& LocalDB,
                                                   std::int32_t CustID) {
    return nyusatsuKikan_.SyncDownload(LocalDB, CustID);
}
std::int32_t cCustKihon::SyncUploadNyusatsuKikan(const std::string& LocalDB, std::int32_t CustID) {
    ClearData();
    try {
        LoadKanriNendo(LocalDB, CustID);
    } catch (...) {
        CaptureError(std::current_exception());
        ErrTrap();
        return 0;
    }
    // The year rides on the main record's page, after the last agency was taken.
    return nyusatsuKikan_.SyncUpload(LocalDB, CustID, [&] {
        std::string body = UpperCustomerBody(CustID);
        AppendField(body, "KanriNendoNyusatsu", kanriNendoNyusatsu_);
        const std::string reply = SendRequestProgress(page::kSetCompKihon, body, "", nullptr);
        return !reply.empty() && GetLoginState() == 1;
    });
}

bool cCustKihon::ReadXMLNyusatuSanka(std::string_view xml) {
    ClearData();
    return ReadList(nyusatsuSanka_, xml, customerId_, recordUpdate_);
}
std::int32_t cCustKihon::CompareLocalDBNyusatsuSanka(const std::string& LocalDB,
                                                     std::int32_t CustID) {
    return nyusatsuSanka_.CompareLocalDB(LocalDB, CustID);
}
std::int32_t cCustKihon::SyncDownloadNyusatsuSanka(const std::string& LocalDB,
                                                   std::int32_t CustID) {
    return nyusatsuSanka_.SyncDownload(LocalDB, CustID);
}
std::int32_t cCustKihon::SyncUploadNyusatsuSanka(const std::string& LocalDB, std::int32_t CustID) {
    return nyusatsuSanka_.SyncUpload(LocalDB, CustID);
}

}  // namespace morvane
