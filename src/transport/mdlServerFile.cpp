#include "transport/mdlServerFile.h"

#include <fstream>
#include <iterator>
#include <system_error>

#include "platform/AtomicFile.h"
#include "session/ProcessState.h"
#include "transport/frmFileDownloadProgress.h"
#include "transport/frmFileUploadProgress.h"
#include "transport/mdlServerCommon.h"
#include "transport/mdlServerReply.h"
#include "util/mdlFileExist1.h"

namespace morvane {

bool ServerDownloadFileDirect(std::string_view url, std::string_view postData,
                              std::string_view downloadPath, std::string_view fileTitle) {
    try {
        platform::HttpReply reply = PostWithHeaders(GetServerBaseURL() + std::string(url), {},
                                                    postData, kMaxFileReplyBytes);
        if (!reply.transported || reply.body.empty()) return false;
        // The separator is always added: a doubled one names the same folder.
        const std::string target =
            std::string(downloadPath) + kPathSeparator + std::string(fileTitle);
        // A new file under a fresh name, renamed over any earlier one: a link planted at the
        // target is replaced, never written through.
        return platform::WriteFileAtomically(target, reply.body) == 0;
    } catch (...) {
        return false;
    }
}

std::string ServerDownloadFile(std::string_view url, std::string_view postData,
                               std::string_view downloadPath, std::string_view fileTitle,
                               forms::Form* owner) {
    if (State().objectUsage == 1)
        return ServerDownloadFileDirect(url, postData, downloadPath, fileTitle) ? "True" : "False";
    frmFileDownloadProgress form(State().Toolkit());
    form.Load();
    form.SetURL(std::string(url));
    form.SetPostData(std::string(postData));
    form.SetDownloadPath(std::string(downloadPath));
    form.SetFileTitle(std::string(fileTitle));
    form.ShowModal(owner);
    std::string result = form.ReturnString();
    form.Unload();
    return result;
}

platform::HttpHeaders UploadHeaders(std::string_view userId, std::string_view token,
                                    std::string_view customerId, std::string_view fileName,
                                    std::uintmax_t size) {
    return {{"Content-Length", std::to_string(size)},
            {"CMD", "post"},
            {"USERID", std::string(userId)},
            {"TOKEN", std::string(token)},
            {"CUSTOMERID", std::string(customerId)},
            {"FILENAME", EncodeURIValue(GetFileNamePart(fileName))}};
}

std::string ServerUploadFileDirect(std::string_view url, std::string_view userId,
                                   std::string_view token, std::string_view customerId,
                                   std::string_view fileName) {
    try {
        std::ifstream in(std::string(fileName), std::ios::binary);
        if (!in) return {};
        const std::string bytes{std::istreambuf_iterator<char>(in),
                                std::istreambuf_iterator<char>()};
        if (in.bad()) return {};
        platform::HttpReply reply =
            RunExchange(GetServerBaseURL() + std::string(url),
                        UploadHeaders(userId, token, customerId, fileName, bytes.size()), bytes,
                        true, kMaxXmlReplyBytes);
        return reply.transported ? std::move(reply.body) : std::string();
    } catch (...) {
        return {};
    }
}

std::string ServerUploadFile(std::string_view url, std::string_view userId, std::string_view token,
                             std::string_view customerId, std::string_view fileName,
                             forms::Form* owner) {
    if (State().objectUsage == 1) {
        // No existence test and no size limit on this route.
        std::string reply = ServerUploadFileDirect(url, userId, token, customerId, fileName);
        return CheckServerReply(reply) != 0 ? reply : std::string();
    }
    frmFileUploadProgress form(State().Toolkit());
    form.Load();
    form.SetURL(std::string(url));
    form.SetUserID(std::string(userId));
    form.SetToken(std::string(token));
    form.SetCustomerID(std::string(customerId));
    form.SetFileName(std::string(fileName));
    form.ShowModal(owner);
    std::string result = form.ReturnString();
    form.Unload();
    return result;
}

}  // namespace morvane
