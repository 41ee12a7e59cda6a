// The prefecture form members: the delegation form's comparison, kept-worker download and
// upload, and the machinery list's upload. Each takes the prefecture database, the customer,
// and the data file the form belongs to.
#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "prefcust/cP99Inin.h"
#include "prefcust/cP99KikaiIchiran.h"
#include "session/FacadePatterns.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

struct IninReplies {
    std::string main, sub;
};

// Both pages are asked before the login state is looked at.
IninReplies FetchInin(std::int32_t CustID) {
    const std::string body = UpperCustomerBody(CustID);
    IninReplies replies;
    replies.main = SendRequest(page::kGetIninMain, body);
    replies.sub = SendRequest(page::kGetIninSub, body);
    return replies;
}

}  // namespace

std::int32_t ctrlMorvane::CompareP99Inin(const std::string& LocalDB, std::int32_t CustID,
                                         double DataID, bool bKessan) {
    try {
        const IninReplies replies = FetchInin(CustID);
        if (GetLoginState() != 1) return facade::detail::FailureEnd(p99Inin_);
        p99Inin_ = std::make_unique<cP99Inin>();
        if (!p99Inin_->ReadXML(replies.main, replies.sub))
            return facade::detail::FailureEnd(p99Inin_);
        const std::int32_t result = p99Inin_->CompareLocalDB(LocalDB, CustID, DataID, bKessan);
        if (result == 0) p99Inin_.reset();
        return result;
    } catch (...) {
        return facade::detail::ErrorEnd(p99Inin_);
    }
}

std::int32_t ctrlMorvane::SyncDownloadP99Inin(const std::string& LocalDB, std::int32_t CustID,
                                              double DataID, bool bKessan) {
    try {
        if (GetLoginState() != 1) return facade::detail::FailureEnd(p99Inin_);
        if (!p99Inin_ && State().objectUsage == 1) {
            const IninReplies replies = FetchInin(CustID);
            if (GetLoginState() == 1) {
                p99Inin_ = std::make_unique<cP99Inin>();
                if (!p99Inin_->ReadXML(replies.main, replies.sub)) p99Inin_.reset();
            }
        }
        // The download's own result is not looked at.
        if (p99Inin_) p99Inin_->SyncDownload(LocalDB, CustID, DataID, bKessan);
        p99Inin_.reset();
        return 1;
    } catch (...) {
        return facade::detail::ErrorEnd(p99Inin_);
    }
}

std::int32_t ctrlMorvane::SyncUploadP99Inin(const std::string& LocalDB, std::int32_t CustID,
                                            double DataID, bool bKessan) {
    return facade::Upload<cP99Inin>(
        [&](cP99Inin& w) { return w.SyncUpload(LocalDB, CustID, DataID, bKessan); });
}

std::int32_t ctrlMorvane::SyncUploadP99KikaiIchiran(const std::string& LocalDB, std::int32_t CustID,
                                                    double DataID, bool bKessan) {
    return facade::Upload<cP99KikaiIchiran>(
        [&](cP99KikaiIchiran& w) { return w.SyncUpload(LocalDB, CustID, DataID, bKessan); });
}

void RegisterPrefCustMembers(DispatchTable& t) {
    const std::vector<std::string> params{"LocalDB", "CustID", "DataID", "bKessan"};
    t.Method("CompareP99Inin", &ctrlMorvane::CompareP99Inin, params);
    t.Method("SyncDownloadP99Inin", &ctrlMorvane::SyncDownloadP99Inin, params);
    t.Method("SyncUploadP99Inin", &ctrlMorvane::SyncUploadP99Inin, params);
    t.Method("SyncUploadP99KikaiIchiran", &ctrlMorvane::SyncUploadP99KikaiIchiran, params);
}

}  // namespace morvane
