// The component as the command line's sync sees it: one public object, its typed members
// called directly, the login taken from the saved settings.
#pragma once

#include "SyncRun.h"
#include "component/ctrlMorvane.h"

namespace morvane::cli {

class ObjectComponent final : public Component {
public:
    std::int32_t Run(const KindMember& member, const KindArgs& args) override;
    std::int32_t CompareCustomerList(const std::string& localDb) override;
    std::int32_t SyncDownloadCustomerList(const std::string& localDb) override;
    std::int32_t SyncUploadAddCustomer(const std::string& localDb, std::int32_t custId) override;
    std::int32_t SyncUploadDelCustomer(std::int32_t custId) override;
    bool RosterUploadIDs(const std::string& localDb, std::string& add, std::string& del,
                         std::string& update) override;
    RosterChoice ShowCompareCustListDlg() override;
    std::int32_t CheckInetEnabledFlags(const std::string& localDb) override;
    std::int32_t ShowSelectCustEnabledDlg(const std::string& localDb,
                                          std::int32_t showType) override;
    std::int32_t CheckExistCustID(std::int32_t custId) override;
    std::int32_t CustmerInetEnabledFlag(std::int32_t custId) override;
    std::int32_t CustmerBackupedTableSyncFlag(std::int32_t custId, std::int32_t index) override;
    std::string CustmerRecordUpdateTable_Server(std::int32_t custId, std::int32_t index) override;
    std::string CustmerRecordUpdateTable_Local(std::int32_t custId, std::int32_t index) override;
    std::string InetDateServer() override;
    std::int32_t LockCoustomer(std::int32_t custId) override;
    std::int32_t UnlockCoustomer(std::int32_t custId) override;
    std::int32_t LockMasterData(std::int32_t mastId) override;
    std::int32_t UnlockMasterData(std::int32_t mastId) override;
    std::int32_t ShowCompareMsg(const std::string& title) override;
    void setObjectUsage(std::int32_t usage) override;

    int LoginFromSettings() override;
    int LoginWithSavedPassword() override;
    int LoginState() const override;
    ExchangeCounts Exchanges() const override;
    SeenStamps TakeComparedStamps() override;
    std::vector<std::int32_t> LocalCustomerIDs(const std::string& localDb) override;
    std::vector<std::string> DataFiles(const std::string& localDb, const std::string& table,
                                       std::int32_t custId) override;
    std::vector<FormOwner> FormOwners(const std::string& prefDb, const std::string& table,
                                      std::int32_t custId) override;
    std::map<std::int32_t, std::uint64_t> LocalFingerprints(
        const std::vector<LocalTable>& tables, const std::filesystem::path& filesDir) override;
    int LiveRows(const LocalTable& table, std::int32_t custId) override;
    DateValue ServerNow() override;
    std::string UnreachableReason() override;
    int RowCount(const LocalTable& table, std::int32_t custId) override;

private:
    ctrlMorvane obj_;
};

}  // namespace morvane::cli
