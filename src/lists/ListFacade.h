// The facade members of a list kind, written once: compare, kept-worker download and
// upload, each taking its page, routine and keep rule from the worker's declaration.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "lists/ListUpload.h"
#include "session/FacadePatterns.h"
#include "transport/RequestBody.h"

namespace morvane::record {

template <class Worker>
facade::Request ListGetRequest(std::int32_t custId) {
    const auto& decl = Worker::Declaration();
    return {decl.getPage, ListBodyStart(decl, custId), decl.getRoutine};
}

// Compare pattern: an unreadable reply looks like agreement (0).
template <class Worker>
std::int32_t CompareListMember(std::unique_ptr<Worker>& slot, const std::string& LocalDB,
                               std::int32_t CustID) {
    return facade::CompareJudged<Worker>(
        slot, ListGetRequest<Worker>(CustID),
        [](Worker& w, const JudgedReply& reply) {
            // The document the reply check parsed, when there is one.
            return reply.document ? w.ReadXML(*reply.document) : w.ReadXML(reply.text);
        },
        [&](Worker& w) { return w.CompareLocalDB(LocalDB, CustID); }, Worker::Declaration().keep);
}

// Kept-worker pattern: writes what the comparison left; 1 whatever the download gave.
template <class Worker>
std::int32_t DownloadListMember(std::unique_ptr<Worker>& slot, const std::string& LocalDB,
                                std::int32_t CustID) {
    return facade::KeptWorker<Worker>(
        slot, ListGetRequest<Worker>(CustID),
        [](Worker& w, const std::string& xml) { return w.ReadXML(xml); },
        [&](Worker& w) { w.SyncDownload(LocalDB, CustID); });
}

// Upload pattern: a fresh worker; the slot is not touched.
template <class Worker>
std::int32_t UploadListMember(const std::string& LocalDB, std::int32_t CustID) {
    return facade::Upload<Worker>([&](Worker& w) { return w.SyncUpload(LocalDB, CustID); });
}

}  // namespace morvane::record
