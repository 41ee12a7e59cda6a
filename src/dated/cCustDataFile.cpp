#include "dated/cCustDataFile.h"

#include <array>
#include <cmath>
#include <exception>
#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/Xml.h"
#include "session/mdlErrTrap.h"
#include "session/mdlLogin.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerFile.h"
#include "transport/mdlServerReply.h"
#include "util/DateValue.h"
#include "util/Nz.h"
#include "util/RuntimeError.h"
#include "util/Text.h"
#include "util/basFileTime.h"
#include "util/basGetCRC.h"
#include "util/basShell.h"
#include "util/basTempPath.h"
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

// Renames the downloaded file into place; a temporary folder on another file system is
// crossed by a copy that keeps the modification time.
void MoveInto(const fs::path& from, const fs::path& to) {
    std::error_code ec;
    fs::rename(from, to, ec);
    if (!ec) return;
    if (ec != std::errc::cross_device_link)
        throw RuntimeError(errnum::kPathFileAccess,
                           "cannot move " + from.string() + ": " + ec.message());
    fs::copy_file(from, to, fs::copy_options::none);
    fs::last_write_time(to, fs::last_write_time(from));
    fs::remove(from, ec);
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
        const std::string temp = GetTempFolder(1024);
        const std::string name = GetFileNamePart(localFile);
        const std::string result = ServerDownloadFile(
            PagesOf(kind).download, FileBody(custId, localFile), temp, name, owner_);
        const std::string downloaded = temp + name;
        if (!FileExists(downloaded) || !EqualsNoCase(result, "True")) return 0;
        // The size alone accepts a download: the server's hash plays no part here.
        if (static_cast<long long>(fs::file_size(downloaded)) != fileSize_) return 0;
        if (const auto stamp = DateValue::Parse(lastModified_)) {
            DateValue created, accessed, modified;
            if (GetFileTimes(downloaded, created, accessed, modified) == 1)
                SetFileTimes(downloaded, created, accessed, *stamp);
        }
        if (FileExists(localFile)) {
            ShellFileOperation(localFile, kFofAllowUndo | kFofNoConfirmation, nullptr, "");
            // The old copy is never overwritten where it could not go to the trash.
            if (FileExists(localFile))
                throw RuntimeError(errnum::kPathFileAccess,
                                   "cannot move the old file to the trash: " + localFile);
        }
        MakePath(GetParentPath(localFile));
        MoveInto(downloaded, localFile);
        return 1;
    });
}

std::int32_t cCustDataFile::SyncUploadFile(DataFileKind kind, std::int32_t custId,
                                           const std::string& localFile) {
    return Guarded([&]() -> std::int32_t {
        if (!FileExists(localFile)) return 0;
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
