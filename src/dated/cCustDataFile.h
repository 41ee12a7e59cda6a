// One data file of a customer's settlement, permit or other record, kept in step with its
// copy on the server: content decides whether the two differ, times which way to move.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace morvane {

namespace forms {
class Form;
}

// The three kinds differ only in their pages; the number is the kind's index.
enum class DataFileKind { Kessan = 0, Kyoka = 1, Other = 2 };

struct DataFilePages {
    std::string_view hash, download, upload, remove, rename;
};
const DataFilePages& PagesOf(DataFileKind kind);

class cCustDataFile {
public:
    // The customer number of the last reply read.
    std::int32_t CustomerID() const { return customerId_; }
    // The window that owns the progress forms of a transfer.
    void SetOwner(forms::Form* owner) { owner_ = owner; }

    // Clears the description, then reads a hash reply: true when it names the customer and
    // holds at least one file item (the last item's fields stand).
    bool ReadXML(std::string_view xml);
    // 0 the same content, 1 the server's copy is to be taken, 2 the local one to be sent.
    std::int32_t CompareLocalFile(const std::string& localFile) const;

    // 1 on success, 0 otherwise, for each kind.
    std::int32_t SyncDownloadFileKessan(std::int32_t custId, const std::string& localFile) {
        return SyncDownloadFile(DataFileKind::Kessan, custId, localFile);
    }
    std::int32_t SyncDownloadFileKyoka(std::int32_t custId, const std::string& localFile) {
        return SyncDownloadFile(DataFileKind::Kyoka, custId, localFile);
    }
    std::int32_t SyncDownloadFileOther(std::int32_t custId, const std::string& localFile) {
        return SyncDownloadFile(DataFileKind::Other, custId, localFile);
    }
    std::int32_t SyncUploadFileKessan(std::int32_t custId, const std::string& localFile) {
        return SyncUploadFile(DataFileKind::Kessan, custId, localFile);
    }
    std::int32_t SyncUploadFileKyoka(std::int32_t custId, const std::string& localFile) {
        return SyncUploadFile(DataFileKind::Kyoka, custId, localFile);
    }
    std::int32_t SyncUploadFileOther(std::int32_t custId, const std::string& localFile) {
        return SyncUploadFile(DataFileKind::Other, custId, localFile);
    }
    std::int32_t SyncDeleteFileKessan(std::int32_t custId, const std::string& localFile) {
        return SyncDeleteFile(DataFileKind::Kessan, custId, localFile);
    }
    std::int32_t SyncDeleteFileKyoka(std::int32_t custId, const std::string& localFile) {
        return SyncDeleteFile(DataFileKind::Kyoka, custId, localFile);
    }
    std::int32_t SyncDeleteFileOther(std::int32_t custId, const std::string& localFile) {
        return SyncDeleteFile(DataFileKind::Other, custId, localFile);
    }
    std::int32_t SyncRenameFileKessan(std::int32_t custId, const std::string& srcFile,
                                      const std::string& dstFile) {
        return SyncRenameFile(DataFileKind::Kessan, custId, srcFile, dstFile);
    }
    std::int32_t SyncRenameFileKyoka(std::int32_t custId, const std::string& srcFile,
                                     const std::string& dstFile) {
        return SyncRenameFile(DataFileKind::Kyoka, custId, srcFile, dstFile);
    }
    std::int32_t SyncRenameFileOther(std::int32_t custId, const std::string& srcFile,
                                     const std::string& dstFile) {
        return SyncRenameFile(DataFileKind::Other, custId, srcFile, dstFile);
    }

    // The description as the server last reported it.
    const std::string& FileName() const { return fileName_; }
    std::int32_t FileSize() const { return fileSize_; }
    const std::string& LastModified() const { return lastModified_; }
    const std::string& Hash() const { return hash_; }

    // The body of the hash query and of the download: the customer and the file's name.
    static std::string FileBody(std::int32_t custId, const std::string& localFile);

private:
    std::int32_t SyncDownloadFile(DataFileKind kind, std::int32_t custId,
                                  const std::string& localFile);
    std::int32_t SyncUploadFile(DataFileKind kind, std::int32_t custId,
                                const std::string& localFile);
    // Tells the server of a file deleted here; only when it is gone.
    std::int32_t SyncDeleteFile(DataFileKind kind, std::int32_t custId,
                                const std::string& localFile);
    // Tells the server of a file renamed here; only when the source is gone and the target
    // is there.
    std::int32_t SyncRenameFile(DataFileKind kind, std::int32_t custId, const std::string& srcFile,
                                const std::string& dstFile);

    std::int32_t customerId_ = 0;
    std::string fileName_;
    std::int32_t fileSize_ = 0;
    std::string lastModified_;
    std::string hash_;
    forms::Form* owner_ = nullptr;
};

}  // namespace morvane
