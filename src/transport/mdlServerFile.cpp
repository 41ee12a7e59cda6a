#include "transport/mdlServerFile.h"

#include <system_error>

#include "platform/AtomicFile.h"
#include "platform/FileReader.h"
#include "state/ProcessState.h"
#include "state/basGetCRC.h"
#include "transport/frmFileDownloadProgress.h"
#include "transport/frmFileUploadProgress.h"
#include "transport/mdlServerCommon.h"
#include "transport/mdlServerReply.h"
#include "util/mdlFileExist1.h"

namespace morvane {

bool ServerDownloadInto(std::string_view url, std::string_view postData,
                        platform::AtomicFile& into) {
    try {
        const std::uint64_t before = into.Written();
        const platform::HttpBodySink write = [&](std::string_view piece) {
            return into.Write(piece);
        };
        const std::string whole = GetServerBaseURL() + std::string(url);
        const platform::HttpReply reply = RunExchange(
            {whole, StandardHeaders(), postData, nullptr, false, &write}, kMaxFileReplyBytes);
        return reply.transported && into.Written() > before;
    } catch (...) {
        return false;
    }
}

bool ServerDownloadFileDirect(std::string_view url, std::string_view postData,
                              std::string_view downloadPath, std::string_view fileTitle) {
    try {
        // The separator is always added: a doubled one names the same folder.
        const std::string target =
            std::string(downloadPath) + kPathSeparator + std::string(fileTitle);
        // A new file under a fresh name, renamed over any earlier one: a link planted at the
        // target is replaced, never written through.
        auto file = platform::AtomicFile::Create(target, 0666, &State().Env());
        return file && ServerDownloadInto(url, postData, *file) && file->Commit() == 0;
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

std::string ServerDownloadFile(std::string_view url, std::string_view postData,
                               platform::AtomicFile& into, forms::Form* owner) {
    if (State().objectUsage == 1) return ServerDownloadInto(url, postData, into) ? "True" : "False";
    frmFileDownloadProgress form(State().Toolkit());
    form.Load();
    form.SetURL(std::string(url));
    form.SetPostData(std::string(postData));
    form.SetTarget(&into);
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
        auto reader = platform::FileReader::Open(std::string(fileName));
        if (!reader) return {};
        // Sent from disk as it is read; a file that changes meanwhile fails the send.
        const platform::HttpBodySource body{
            reader->Opened().size,
            [&](char* into, std::size_t max) { return reader->ReadAsOpened(into, max); }};
        const std::string whole = GetServerBaseURL() + std::string(url);
        platform::HttpReply reply = RunExchange(
            {whole, UploadHeaders(userId, token, customerId, fileName, body.size), {}, &body, true},
            kMaxXmlReplyBytes);
        if (!reply.transported) return {};
        // The check value came with the send: the comparison after it need not read again.
        if (reader->Consumed() == body.size)
            RememberFileCRC(fileName, reader->Opened(), reader->Crc());
        return std::move(reply.body);
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
