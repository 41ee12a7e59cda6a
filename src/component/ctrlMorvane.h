// The public object of the component: the host creates it and drives the whole online
// backup through its members, which never throw and answer with small integer codes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/Forms.h"
#include "util/Value.h"

namespace morvane {

class cCustList;
class cCustListSync;
class cCustKihon;
class cCustDataFile;
class cCustKessan;
class cCustKyoka;
class cCustKihonOther;
class cMastBunsekikikan;
class cMastKessanTaioh;
class cMastMinister;
class cMastNyusatsukikan;
class cMastNyusatsuShorui;
class cMastSakuseisha;
class cMastUserStaff;
class cMastYakushoku;
class cP99Inin;
class cP99KikaiIchiran;

class ctrlMorvane {
public:
    // Starts with the object usage option 0 and a reset login, for every object of the process.
    ctrlMorvane();
    // Stops the login timer and empties every slot; no logout is ever sent.
    ~ctrlMorvane();
    ctrlMorvane(const ctrlMorvane&) = delete;
    ctrlMorvane& operator=(const ctrlMorvane&) = delete;

    // The toolkit that shows the component's dialogs (headless when none is set).
    static void UseToolkit(std::shared_ptr<forms::Toolkit> toolkit);

    // ---- Session and settings
    void setObjectUsage(std::int32_t n);
    std::int32_t LoginState() const;
    void SetDisableMorvane();
    std::string LoginAccountUserName() const;
    std::string LoginAccountContractorName() const;
    std::string LoginAccountContractBegin() const;
    std::string LoginAccountContractEnd() const;
    std::string LoginAccountSharedCount() const;
    std::string LoginAccountMaxCustomer() const;

    // ---- Login dialog, keep-alive timer, login hand-over and settings dialog
    std::int32_t ShowLogin(forms::Form* OwnerForm);
    void StartLoginTimer(bool bMust);
    std::int32_t RegLoginInfoToPrefCustom();
    std::int32_t ClearLoginInfoToPrefCustom();
    std::int32_t GetLoginInfoFromPrefCustom();
    std::int32_t ShowSetting(forms::Form* OwnerForm);
    std::int32_t ShowInfo(forms::Form* OwnerForm);

    // ---- Comparison stamps and the user's choice between two versions
    std::string InetDateServer() const;
    std::string InetDateLocal() const;
    std::string InetDateCheck() const;
    std::int32_t ShowCompareMsg(forms::Form* OwnerForm, const std::string& DataTitle,
                                const Value& Param1, const Value& Param2, const Value& Param3,
                                const Value& Param4);

    // ---- Clock offsets
    void UpdateServerTimeOffset();
    std::string InetServerTimeOffset() const;
    std::string InetDataFolderTimeOffset() const;

    // ---- Server locks on a customer or a master, renewed while they are wanted
    std::int32_t LockCoustomer(std::int32_t CustID);
    std::int32_t UnlockCoustomer(std::int32_t CustID);
    std::int32_t LockMasterData(std::int32_t MastID);
    std::int32_t UnlockMasterData(std::int32_t MastID);

    // ---- Backup target flags of the roster snapshot, and the dialog that sets them
    std::int32_t CustmerInetEnabledFlag(std::int32_t CustID) const;
    std::string CustmerCode_Server(std::int32_t CustID) const;
    std::string CustmerCorpName_Server(std::int32_t CustID) const;
    std::int32_t CheckExistCustID(std::int32_t CustID) const;
    std::int32_t CheckInetEnabledFlags(const std::string& LocalDB);
    std::int32_t SyncUploadCustomerInetEnabledFlag(const std::string& LocalDB, std::int32_t CustID,
                                                   std::int32_t nFlag);
    // The four parameters are accepted and not used.
    std::int32_t ShowSelectCustEnabledDlg(forms::Form* OwnerForm, const std::string& LocalDB,
                                          std::int32_t Showtype, const Value& Param1,
                                          const Value& Param2, const Value& Param3,
                                          const Value& Param4);

    // ---- Customer roster and the per-table snapshot of its comparison
    std::int32_t CompareCustomerList(const std::string& LocalDB);
    std::int32_t CompareCustomerListItem(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerList(const std::string& LocalDB);
    // The three texts are in-out parameters.
    std::int32_t GetUploadCustomerListIDs(const std::string& LocalDB, std::string& AddIDs,
                                          std::string& DelIDs, std::string& UpdateIDs);
    bool CustmerBackuped(std::int32_t CustID) const;
    bool CustmerBackupedTable(std::int32_t CustID, std::int32_t Index) const;
    std::int32_t CustmerBackupedTableSyncFlag(std::int32_t CustID, std::int32_t Index) const;
    std::string CustmerRecordUpdateTable_Local(std::int32_t CustID, std::int32_t Index) const;
    std::string CustmerRecordUpdateTable_Server(std::int32_t CustID, std::int32_t Index) const;
    std::string CustmerRecordUpdateTable_Comper(std::int32_t CustID, std::int32_t Index) const;
    std::string CustmerRecordUpdate_Local(std::int32_t CustID) const;
    std::string CustmerRecordUpdate_Server(std::int32_t CustID) const;

    // ---- Roster changes on the server, and the dialogs that reconcile the rosters
    std::int32_t SyncUploadAddCustomer(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadDelCustomer(std::int32_t CustID);
    std::int32_t ShowCompareCustListDlg(forms::Form* OwnerForm, const Value& Param1,
                                        const Value& Param2, const Value& Param3,
                                        const Value& Param4);
    std::string GetCompareCustListDlg_AddLocalIDs() const;
    std::string GetCompareCustListDlg_AddServerIDs() const;
    std::string GetCompareCustListDlg_DelLocalIDs() const;
    std::string GetCompareCustListDlg_DelServerIDs() const;

    // ---- Customer main record
    std::int32_t CompareCustomerKihonMain(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerKihonMain(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t CompareCustomerKihon(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerKihon(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadCustomerKihonNormal(const std::string& LocalDB, std::int32_t CustID);

    // ---- Trades of a customer, with their permit header
    std::int32_t CompareCustomerKihonGyosyu(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerKihonGyosyu(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadCustomerKihonGyosyu(const std::string& LocalDB, std::int32_t CustID);

    // ---- Lists of the customer record: staff, offices and memos
    std::int32_t CompareCustomerSyokuinList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerSyokuinList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadCustomerSyokuinList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t CompareCustomerEigyoshoList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerEigyoshoList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadCustomerEigyoshoList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t CompareCustomerMemoList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerMemoList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadCustomerMemoList(const std::string& LocalDB, std::int32_t CustID);

    // ---- Bidding lists: agencies and participation
    std::int32_t CompareCustomerNyusatsuKikanList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerNyusatsuKikanList(const std::string& LocalDB,
                                                       std::int32_t CustID);
    std::int32_t SyncUploadCustomerNyusatsuKikanList(const std::string& LocalDB,
                                                     std::int32_t CustID);
    std::int32_t CompareCustomerNyusatsuSankaList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerNyusatsuSankaList(const std::string& LocalDB,
                                                       std::int32_t CustID);
    std::int32_t SyncUploadCustomerNyusatsuSankaList(const std::string& LocalDB,
                                                     std::int32_t CustID);

    // ---- Linkage info (main record, trades, staff, offices as one) and the customer code
    std::int32_t CompareCustomerRendoInfo(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerRendoInfo(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadCustomerRendoInfo(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadCustomerCustCode(const std::string& LocalDB, std::int32_t CustID);

    // ---- Data files of settlement, permit and other records, named by their local path.
    // Compare: 0 the same, 1 take the server's copy, 2 send the local one.
    std::int32_t CompareCustomerKessanFile(std::int32_t CustID, const std::string& LocalFile);
    std::int32_t SyncDownloadCustomerKessanFile(std::int32_t CustID, const std::string& LocalFile,
                                                forms::Form* Owner);
    std::int32_t SyncUploadCustomerKessanFile(std::int32_t CustID, const std::string& LocalFile,
                                              forms::Form* Owner);
    std::int32_t SyncDeleteCustomerKessanFile(std::int32_t CustID, const std::string& LocalFile,
                                              forms::Form* Owner);
    std::int32_t SyncRenameFileCustomerKessanFile(std::int32_t CustID, const std::string& SrcFile,
                                                  const std::string& DstFile, forms::Form* Owner);
    std::int32_t CompareCustomerKyokaFile(std::int32_t CustID, const std::string& LocalFile);
    std::int32_t SyncDownloadCustomerKyokaFile(std::int32_t CustID, const std::string& LocalFile,
                                               forms::Form* Owner);
    std::int32_t SyncUploadCustomerKyokaFile(std::int32_t CustID, const std::string& LocalFile,
                                             forms::Form* Owner);
    std::int32_t SyncDeleteCustomerKyokaFile(std::int32_t CustID, const std::string& LocalFile,
                                             forms::Form* Owner);
    std::int32_t SyncRenameFileCustomerKyokaFile(std::int32_t CustID, const std::string& SrcFile,
                                                 const std::string& DstFile, forms::Form* Owner);
    std::int32_t CompareCustomerOtherFile(std::int32_t CustID, const std::string& LocalFile);
    std::int32_t SyncDownloadCustomerOtherFile(std::int32_t CustID, const std::string& LocalFile,
                                               forms::Form* Owner);
    std::int32_t SyncUploadCustomerOtherFile(std::int32_t CustID, const std::string& LocalFile,
                                             forms::Form* Owner);
    std::int32_t SyncDeleteCustomerOtherFile(std::int32_t CustID, const std::string& LocalFile,
                                             forms::Form* Owner);
    std::int32_t SyncRenameFileCustomerOtherFile(std::int32_t CustID, const std::string& SrcFile,
                                                 const std::string& DstFile, forms::Form* Owner);

    // ---- Dated records: settlement, permit and other records
    std::int32_t CompareCustomerKessanList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerKessanList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadCustomerKessanList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t CompareCustomerKyokaList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerKyokaList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadCustomerKyokaList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t CompareCustomerOtherList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadCustomerOtherList(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadCustomerOtherList(const std::string& LocalDB, std::int32_t CustID);

    // ---- Shared masters of the office, in Master.dat
    std::int32_t CompareMasterBunsekiKikan(const std::string& LocalDB);
    std::int32_t SyncDownloadMasterBunsekiKikan(const std::string& LocalDB);
    std::int32_t SyncUploadMasterBunsekiKikan(const std::string& LocalDB);
    std::int32_t CompareMasterKessanTaioh(const std::string& LocalDB);
    std::int32_t SyncDownloadMasterKessanTaioh(const std::string& LocalDB);
    std::int32_t SyncUploadMasterKessanTaioh(const std::string& LocalDB);
    std::int32_t CompareMasterMinister(const std::string& LocalDB);
    std::int32_t SyncDownloadMasterMinister(const std::string& LocalDB);
    std::int32_t SyncUploadMasterMinister(const std::string& LocalDB);
    std::int32_t CompareMasterNyusatsukikan(const std::string& LocalDB);
    std::int32_t SyncDownloadMasterNyusatsukikan(const std::string& LocalDB);
    std::int32_t SyncUploadMasterNyusatsukikan(const std::string& LocalDB);
    std::int32_t CompareMasterNyusatsuShorui(const std::string& LocalDB);
    std::int32_t SyncDownloadMasterNyusatsuShorui(const std::string& LocalDB);
    std::int32_t SyncUploadMasterNyusatsuShorui(const std::string& LocalDB);
    std::int32_t CompareMasterSakuseisha(const std::string& LocalDB);
    std::int32_t SyncDownloadMasterSakuseisha(const std::string& LocalDB);
    std::int32_t SyncUploadMasterSakuseisha(const std::string& LocalDB);
    std::int32_t CompareMasterUserStaff(const std::string& LocalDB);
    std::int32_t SyncDownloadMasterUserStaff(const std::string& LocalDB);
    std::int32_t SyncUploadMasterUserStaff(const std::string& LocalDB);
    std::int32_t CompareMasterYakushoku(const std::string& LocalDB);
    std::int32_t SyncDownloadMasterYakushoku(const std::string& LocalDB);
    std::int32_t SyncUploadMasterYakushoku(const std::string& LocalDB);

    // ---- Prefecture forms, in prefcustom.dat: the form of a customer's data file
    std::int32_t CompareP99Inin(const std::string& LocalDB, std::int32_t CustID, double DataID,
                                bool bKessan);
    std::int32_t SyncDownloadP99Inin(const std::string& LocalDB, std::int32_t CustID, double DataID,
                                     bool bKessan);
    std::int32_t SyncUploadP99Inin(const std::string& LocalDB, std::int32_t CustID, double DataID,
                                   bool bKessan);
    std::int32_t SyncUploadP99KikaiIchiran(const std::string& LocalDB, std::int32_t CustID,
                                           double DataID, bool bKessan);

private:
    // Worker slots, one per kind, added with the members that fill them.
    std::unique_ptr<cCustList> custList_;
    std::unique_ptr<cCustListSync> custListSync_;
    // Shared by every kind of the customer record.
    std::unique_ptr<cCustKihon> custKihon_;
    // One cached data-file description per kind, left by a comparison that found the
    // server's copy newer.
    std::unique_ptr<cCustDataFile> custKessanFile_;
    std::unique_ptr<cCustDataFile> custKyokaFile_;
    std::unique_ptr<cCustDataFile> custOtherFile_;

    // Dated records, kept by a comparison for the download that may follow.
    std::unique_ptr<cCustKessan> custKessan_;
    std::unique_ptr<cCustKyoka> custKyoka_;
    std::unique_ptr<cCustKihonOther> custKihonOther_;

    // Shared masters, kept by a comparison for the download that may follow.
    std::unique_ptr<cMastBunsekikikan> mastBunsekikikan_;
    std::unique_ptr<cMastKessanTaioh> mastKessanTaioh_;
    std::unique_ptr<cMastMinister> mastMinister_;
    std::unique_ptr<cMastNyusatsukikan> mastNyusatsukikan_;
    std::unique_ptr<cMastNyusatsuShorui> mastNyusatsuShorui_;
    std::unique_ptr<cMastSakuseisha> mastSakuseisha_;
    std::unique_ptr<cMastUserStaff> mastUserStaff_;
    std::unique_ptr<cMastYakushoku> mastYakushoku_;

    // The delegation form, kept by a comparison for the download that may follow. The
    // machinery list, sent up only, never needs a slot.
    std::unique_ptr<cP99Inin> p99Inin_;
};

}  // namespace morvane
