#include "dated/cCustDataFile.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <exception>
#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/AtomicFile.h"
#include "platform/Trash.h"
#include "platform/Xml.h"
#include "platform/basFileTime.h"
#include "session/mdlErrTrap.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/basGetCRC.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerFile.h"
#include "transport/mdlServerReply.h"
#include "util/DateValue.h"
#include "util/Nz.h"
#include "util/RuntimeError.h"
#include "util/Text.h"
#include "util/mdlFileExist1.h"

namespace morvane {
namespace {
namespace fs = std::filesystem;

constexpr std::array<DataFilePages, 3> kPages{{
    {page::kGetKessanFileHash, page::kGetKessanFile, page::kSetKessanFile, page::kDeleteKessanFile,
     page::kRenameKessanFile},
    {page::kGetKyokaFileHash, page::kGetKyokaFile, page::kSetKyokaFile, page::kDeleteKyokaFile,
     page::kRenameKyokaFile},
    {page::kGetOtherFileHash, page::kGetOtherFile, page::kSetOtherFile, page::kDeleteOtherFile,
     page::kRenameOtherFile},
}};

// Any kind's list and item tags are read in any reply, whatever kind was asked for.
bool IsListTag(std::string_view name) {
    return EqualsNoCase(name, "KessanFileList") || EqualsNoCase(name, "KyokaFileList") ||
           EqualsNoCase(name, "OtherFileList");
}
bool IsItemTag(std::string_view name) {
    return EqualsNoCase(name, "KessanFileItem") || EqualsNoCase(name, "KyokaFileItem") ||
           EqualsNoCase(name, "OtherFileItem");
}

// Times are compared to the second.
long long Seconds(DateValue d) { return std::llround(d.Days() * 86400.0); }

// The end of every routine here: the pending error told, the pointer set back.
template <class Body>
std::int32_t Guarded(Body body) {
    std::int32_t result = 0;
    try {
        result = body();
    } catch (...) {
        CaptureError(std::current_exception());
        result = 0;
    }
    ErrTrap();
    return result;
}

// A download that never finished leaves its new version beside the file: what is there may
// be an old copy the server has moved on from, so it is fetched again and never sent.
bool DownloadUnfinished(const std::string& localFile) {
    return !platform::LeftoverVersions(localFile).empty();
}

[[noreturn]] void FailOn(const std::string& what, const std::string& path) {
    throw RuntimeError(errnum::kPathFileAccess,
                       what + " " + path + ": " + std::generic_category().message(errno));
}

std::string JudgedPost(std::string_view path, const std::string& body) {
    return SendRequestProgress(path, body, "", nullptr);
}

}  // namespace

const DataFilePages& PagesOf(DataFileKind kind) { return kPages.at(static_cast<size_t>(kind)); }

std::string cCustDataFile::FileBody(std::int32_t custId, const std::string& localFile) {
    std::string body = UpperCustomerBody(custId);
    AppendField(body, "FileName", GetFileNamePart(localFile));
    return body;
}

bool cCustDataFile::ReadXML(std::string_view xml) {
    customerId_ = 0;
    fileName_.clear();
    fileSize_ = 0;
    lastModified_.clear();
    hash_.clear();
    const auto doc = platform::XmlDocument::Load(xml);
    if (!doc) return false;
    const auto customers = doc->DocumentElement().SelectNodes("Customer");
    if (customers.empty()) return false;
    bool customerSeen = false, itemSeen = false;
    for (const auto& child : customers.front().Children()) {
        const std::string_view name = child.NameView();
        if (EqualsNoCase(name, "CustomerID")) {
            customerId_ = NzLong(child.Text());
            customerSeen = true;
        } else if (IsListTag(name)) {
            for (const auto& item : child.Children()) {
                if (!IsItemTag(item.NameView())) continue;
                itemSeen = true;
                for (const auto& field : item.Children()) {
                    const std::string_view tag = field.NameView();
                    if (EqualsNoCase(tag, "FileName"))
                        fileName_ = field.Text();
                    else if (EqualsNoCase(tag, "FileSize"))
                        fileSize_ = NzLong(field.Text());
                    else if (EqualsNoCase(tag, "LastModified"))
                        lastModified_ = field.Text();
                    else if (EqualsNoCase(tag, "hash"))
                        hash_ = field.Text();
                }
            }
        }
    }
    return customerSeen && itemSeen;
}

std::int32_t cCustDataFile::CompareLocalFile(const std::string& localFile) const {
    if (!FileExists(localFile)) return 1;
    const auto localSize = static_cast<long long>(fs::file_size(localFile));
    const std::string localCrc = GetFileCRC(localFile);
    DateValue created, accessed, modified;
    const std::string localText =
        GetFileTimes(localFile, created, accessed, modified) == 1 ? modified.StampText() : "";

    if (EqualsNoCase(localCrc, hash_) && localSize == fileSize_) return 0;
    if (DownloadUnfinished(localFile)) return 1;
    // The content differs: the times only tell the direction, and a tie counts as local.
    const std::optional<DateValue> server = DateValue::Parse(lastModified_);
    const std::optional<DateValue> local = DateValue::Parse(localText);
    if (server && local) return Seconds(*server) <= Seconds(*local) ? 2 : 1;
    if (!server && local) return 2;
    return 0;
}

std::int32_t cCustDataFile::SyncDownloadFile(DataFileKind kind, std::int32_t custId,
                                             const std::string& localFile) {
    return Guarded([&]() -> std::int32_t {
        MakePath(GetParentPath(localFile));
        // The new version is opened beside the file before anything moves: should the process
        // die during the transfer, it is left there and tells the next run so.
        auto incoming = platform::AtomicFile::Create(localFile, 0666, &State().Env());
        if (!incoming) FailOn("cannot write beside", localFile);
        // The reply is written into the new version as it arrives: no copy in between.
        const std::string result = ServerDownloadFile(
            PagesOf(kind).download, FileBody(custId, localFile), *incoming, owner_);
        if (!EqualsNoCase(result, "True")) return 0;
        // The size alone accepts a download: the server's hash plays no part here.
        if (static_cast<long long>(incoming->Written()) != fileSize_) return 0;
        if (const auto stamp = DateValue::Parse(lastModified_)) {
            const std::string fresh = incoming->TempPath().string();
            DateValue created, accessed, modified;
            if (GetFileTimes(fresh, created, accessed, modified) == 1)
                SetFileTimes(fresh, created, accessed, *stamp);
        }
        // The old copy reaches the trash before the new one takes its name, so the file is
        // always one whole version or the other, and the old one is never lost.
        const int err = incoming->Commit(
            [&]() -> int { return FileExists(localFile) ? platform::CopyToTrash(localFile) : 0; });
        if (err) {
            errno = err;
            FailOn("cannot replace", localFile);
        }
        platform::RemoveLeftoverVersions(localFile);
        return 1;
    });
}

std::int32_t cCustDataFile::SyncUploadFile(DataFileKind kind, std::int32_t custId,
                                           const std::string& localFile) {
    return Guarded([&]() -> std::int32_t {
        if (!FileExists(localFile)) return 0;
        if (DownloadUnfinished(localFile))
            throw RuntimeError(errnum::kInvalidCall,
                               "ダウンロードが途中で終わったファイルのため、送信しませんでした。"
                               "もう一度同期すると、サーバーのファイルを取り直します。\n" +
                                   localFile);
        const std::string reply =
            ServerUploadFile(PagesOf(kind).upload, GetLoginID(), GetLoginToken(),
                             std::to_string(custId), localFile, owner_);
        // It counts only when the server reports holding what is here.
        if (GetLoginState() != 1 || reply.empty() || !ReadXML(reply)) return 0;
        return CompareLocalFile(localFile) == 0 ? 1 : 0;
    });
}

std::int32_t cCustDataFile::SyncDeleteFile(DataFileKind kind, std::int32_t custId,
                                           const std::string& localFile) {
    return Guarded([&]() -> std::int32_t {
        if (FileExists(localFile)) return 0;
        const std::string reply = JudgedPost(PagesOf(kind).remove, FileBody(custId, localFile));
        return GetLoginState() == 1 && !reply.empty() ? 1 : 0;
    });
}

std::int32_t cCustDataFile::SyncRenameFile(DataFileKind kind, std::int32_t custId,
                                           const std::string& srcFile, const std::string& dstFile) {
    return Guarded([&]() -> std::int32_t {
        if (FileExists(srcFile) || !FileExists(dstFile)) return 0;
        std::string body = UpperCustomerBody(custId);
        AppendField(body, "SrcFile", GetFileNamePart(srcFile));
        AppendField(body, "DstFile", GetFileNamePart(dstFile));
        const std::string reply = JudgedPost(PagesOf(kind).rename, body);
        return GetLoginState() == 1 && !reply.empty() ? 1 : 0;
    });
}

}  // namespace morvane
