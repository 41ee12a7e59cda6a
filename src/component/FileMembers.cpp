// The data-file members: compare, download, upload, delete and rename for each of the three
// kinds, written once over a table of the kinds and registered by name.
#include <array>

#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "dated/cCustDataFile.h"
#include "session/FacadePatterns.h"

namespace morvane {
namespace {

using FileSlot = std::unique_ptr<cCustDataFile>;
using FileCall = std::int32_t (cCustDataFile::*)(std::int32_t, const std::string&);
using RenameCall = std::int32_t (cCustDataFile::*)(std::int32_t, const std::string&,
                                                   const std::string&);

struct KindMembers {
    FileCall download, upload, remove;
    RenameCall rename;
};

constexpr std::array<KindMembers, 3> kMembers{{
    {&cCustDataFile::SyncDownloadFileKessan, &cCustDataFile::SyncUploadFileKessan,
     &cCustDataFile::SyncDeleteFileKessan, &cCustDataFile::SyncRenameFileKessan},
    {&cCustDataFile::SyncDownloadFileKyoka, &cCustDataFile::SyncUploadFileKyoka,
     &cCustDataFile::SyncDeleteFileKyoka, &cCustDataFile::SyncRenameFileKyoka},
    {&cCustDataFile::SyncDownloadFileOther, &cCustDataFile::SyncUploadFileOther,
     &cCustDataFile::SyncDeleteFileOther, &cCustDataFile::SyncRenameFileOther},
}};

const KindMembers& MembersOf(DataFileKind kind) { return kMembers.at(static_cast<size_t>(kind)); }

facade::Request HashRequest(DataFileKind kind, std::int32_t custId, const std::string& file) {
    return {PagesOf(kind).hash, cCustDataFile::FileBody(custId, file), facade::Routine::Progress};
}

bool Read(cCustDataFile& f, const std::string& reply) { return f.ReadXML(reply); }

// A file unknown to the server reads as no item and gives 0, as a match does; only a
// server copy to be taken stays cached for the download.
std::int32_t CompareFile(FileSlot& slot, DataFileKind kind, std::int32_t custId,
                         const std::string& localFile) {
    return facade::Compare<cCustDataFile>(
        slot, HashRequest(kind, custId, localFile), Read,
        [&](cCustDataFile& f) { return f.CompareLocalFile(localFile); }, facade::Keep::OnlyOne);
}

// 1 whether or not a file came, as long as the login held at entry.
std::int32_t DownloadFile(FileSlot& slot, DataFileKind kind, std::int32_t custId,
                          const std::string& localFile, forms::Form* owner) {
    return facade::KeptWorker<cCustDataFile>(slot, HashRequest(kind, custId, localFile), Read,
                                             [&](cCustDataFile& f) {
                                                 f.SetOwner(owner);
                                                 (f.*MembersOf(kind).download)(custId, localFile);
                                             });
}

std::int32_t WithFreshFile(forms::Form* owner,
                           const std::function<std::int32_t(cCustDataFile&)>& call) {
    return facade::Upload<cCustDataFile>([&](cCustDataFile& f) {
        f.SetOwner(owner);
        return call(f);
    });
}

std::int32_t FileCallOn(FileCall KindMembers::*which, DataFileKind kind, std::int32_t custId,
                        const std::string& localFile, forms::Form* owner) {
    return WithFreshFile(
        owner, [&](cCustDataFile& f) { return (f.*(MembersOf(kind).*which))(custId, localFile); });
}

std::int32_t RenameFile(DataFileKind kind, std::int32_t custId, const std::string& srcFile,
                        const std::string& dstFile, forms::Form* owner) {
    return WithFreshFile(owner, [&](cCustDataFile& f) {
        return (f.*MembersOf(kind).rename)(custId, srcFile, dstFile);
    });
}

}  // namespace

// ---- Kessan
std::int32_t ctrlMorvane::CompareCustomerKessanFile(std::int32_t CustID,
                                                    const std::string& LocalFile) {
    return CompareFile(custKessanFile_, DataFileKind::Kessan, CustID, LocalFile);
}
std::int32_t ctrlMorvane::SyncDownloadCustomerKessanFile(std::int32_t CustID,
                                                         const std::string& LocalFile,
                                                         forms::Form* Owner) {
    return DownloadFile(custKessanFile_, DataFileKind::Kessan, CustID, LocalFile, Owner);
}
std::int32_t ctrlMorvane::SyncUploadCustomerKessanFile(std::int32_t CustID,
                                                       const std::string& LocalFile,
                                                       forms::Form* Owner) {
    const std::int32_t result =
        FileCallOn(&KindMembers::upload, DataFileKind::Kessan, CustID, LocalFile, Owner);
    custKessanFile_.reset();
    return result;
}
std::int32_t ctrlMorvane::SyncDeleteCustomerKessanFile(std::int32_t CustID,
                                                       const std::string& LocalFile,
                                                       forms::Form* Owner) {
    return FileCallOn(&KindMembers::remove, DataFileKind::Kessan, CustID, LocalFile, Owner);
}
std::int32_t ctrlMorvane::SyncRenameFileCustomerKessanFile(std::int32_t CustID,
                                                           const std::string& SrcFile,
                                                           const std::string& DstFile,
                                                           forms::Form* Owner) {
    return RenameFile(DataFileKind::Kessan, CustID, SrcFile, DstFile, Owner);
}

// ---- Kyoka
std::int32_t ctrlMorvane::CompareCustomerKyokaFile(std::int32_t CustID,
                                                   const std::string& LocalFile) {
    return CompareFile(custKyokaFile_, DataFileKind::Kyoka, CustID, LocalFile);
}
std::int32_t ctrlMorvane::SyncDownloadCustomerKyokaFile(std::int32_t CustID,
                                                        const std::string& LocalFile,
                                                        forms::Form* Owner) {
    return DownloadFile(custKyokaFile_, DataFileKind::Kyoka, CustID, LocalFile, Owner);
}
std::int32_t ctrlMorvane::SyncUploadCustomerKyokaFile(std::int32_t CustID,
                                                      const std::string& LocalFile,
                                                      forms::Form* Owner) {
    const std::int32_t result =
        FileCallOn(&KindMembers::upload, DataFileKind::Kyoka, CustID, LocalFile, Owner);
    custKyokaFile_.reset();
    return result;
}
std::int32_t ctrlMorvane::SyncDeleteCustomerKyokaFile(std::int32_t CustID,
                                                      const std::string& LocalFile,
                                                      forms::Form* Owner) {
    return FileCallOn(&KindMembers::remove, DataFileKind::Kyoka, CustID, LocalFile, Owner);
}
std::int32_t ctrlMorvane::SyncRenameFileCustomerKyokaFile(std::int32_t CustID,
                                                          const std::string& SrcFile,
                                                          const std::string& DstFile,
                                                          forms::Form* Owner) {
    return RenameFile(DataFileKind::Kyoka, CustID, SrcFile, DstFile, Owner);
}

// ---- Other: its upload leaves the cached description in place, unlike the other two.
std::int32_t ctrlMorvane::CompareCustomerOtherFile(std::int32_t CustID,
                                                   const std::string& LocalFile) {
    return CompareFile(custOtherFile_, DataFileKind::Other, CustID, LocalFile);
}
std::int32_t ctrlMorvane::SyncDownloadCustomerOtherFile(std::int32_t CustID,
                                                        const std::string& LocalFile,
                                                        forms::Form* Owner) {
    return DownloadFile(custOtherFile_, DataFileKind::Other, CustID, LocalFile, Owner);
}
std::int32_t ctrlMorvane::SyncUploadCustomerOtherFile(std::int32_t CustID,
                                                      const std::string& LocalFile,
                                                      forms::Form* Owner) {
    return FileCallOn(&KindMembers::upload, DataFileKind::Other, CustID, LocalFile, Owner);
}
std::int32_t ctrlMorvane::SyncDeleteCustomerOtherFile(std::int32_t CustID,
                                                      const std::string& LocalFile,
                                                      forms::Form* Owner) {
    return FileCallOn(&KindMembers::remove, DataFileKind::Other, CustID, LocalFile, Owner);
}
std::int32_t ctrlMorvane::SyncRenameFileCustomerOtherFile(std::int32_t CustID,
                                                          const std::string& SrcFile,
                                                          const std::string& DstFile,
                                                          forms::Form* Owner) {
    return RenameFile(DataFileKind::Other, CustID, SrcFile, DstFile, Owner);
}

void RegisterFileMembers(DispatchTable& t) {
    const std::vector<std::string> one{"CustID", "LocalFile"};
    const std::vector<std::string> owned{"CustID", "LocalFile", "Owner"};
    const std::vector<std::string> rename{"CustID", "SrcFile", "DstFile", "Owner"};
    t.Method("CompareCustomerKessanFile", &ctrlMorvane::CompareCustomerKessanFile, one);
    t.Method("SyncDownloadCustomerKessanFile", &ctrlMorvane::SyncDownloadCustomerKessanFile, owned);
    t.Method("SyncUploadCustomerKessanFile", &ctrlMorvane::SyncUploadCustomerKessanFile, owned);
    t.Method("SyncDeleteCustomerKessanFile", &ctrlMorvane::SyncDeleteCustomerKessanFile, owned);
    t.Method("SyncRenameFileCustomerKessanFile", &ctrlMorvane::SyncRenameFileCustomerKessanFile,
             rename);
    t.Method("CompareCustomerKyokaFile", &ctrlMorvane::CompareCustomerKyokaFile, one);
    t.Method("SyncDownloadCustomerKyokaFile", &ctrlMorvane::SyncDownloadCustomerKyokaFile, owned);
    t.Method("SyncUploadCustomerKyokaFile", &ctrlMorvane::SyncUploadCustomerKyokaFile, owned);
    t.Method("SyncDeleteCustomerKyokaFile", &ctrlMorvane::SyncDeleteCustomerKyokaFile, owned);
    t.Method("SyncRenameFileCustomerKyokaFile", &ctrlMorvane::SyncRenameFileCustomerKyokaFile,
             rename);
    t.Method("CompareCustomerOtherFile", &ctrlMorvane::CompareCustomerOtherFile, one);
    t.Method("SyncDownloadCustomerOtherFile", &ctrlMorvane::SyncDownloadCustomerOtherFile, owned);
    t.Method("SyncUploadCustomerOtherFile", &ctrlMorvane::SyncUploadCustomerOtherFile, owned);
    t.Method("SyncDeleteCustomerOtherFile", &ctrlMorvane::SyncDeleteCustomerOtherFile, owned);
    t.Method("SyncRenameFileCustomerOtherFile", &ctrlMorvane::SyncRenameFileCustomerOtherFile,
             rename);
}

}  // namespace morvane
