// The roster members: the roster comparison, its per-table snapshot, the roster download,
// the IDs to upload, the dialogs that reconcile the rosters, and adding and deleting
// customers on the server.
#include <exception>

#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "roster/cCustAddDel.h"
#include "roster/cCustList.h"
#include "roster/cCustListSync.h"
#include "session/FacadePatterns.h"
#include "session/mdlErrTrap.h"
#include "session/mdlLogin.h"
#include "session/mdlServerTime.h"
#include "state/ProcessState.h"
#include "store/LocalDatabases.h"
#include "store/mdlMorvaneCommon.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane {
namespace {

// Stamps on or before this day count as none in the newest-of-all answers.
const DateValue kStampFloor = DateValue::FromCivil({2000, 1, 1, 0, 0, 0});

template <class Result, class Read>
Result ReadSnapshot(const std::unique_ptr<cCustListSync>& sync, std::int32_t custId, Read read,
                    Result empty = Result{}) {
    return facade::ReadSlot<Result, cCustListSync>(
        sync,
        [&](cCustListSync& s) -> Result {
            const cCustListSyncItem* item = s.FindById(custId);
            return item ? read(*item) : empty;
        },
        empty);
}

template <class Stamp>
std::string Newest(const std::unique_ptr<cCustListSync>& sync, std::int32_t custId, Stamp stamp) {
    if (custId == 0) return {};
    return ReadSnapshot<std::string>(sync, custId, [&](const cCustListSyncItem& item) {
        DateValue newest = kStampFloor;
        bool found = false;
        for (int index = 0; index < kBackupTableCount; ++index) {
            const auto date = DateValue::Parse(stamp(item, index));
            if (date && *date > newest) {
                newest = *date;
                found = true;
            }
        }
        return found ? newest.StampText() : std::string();
    });
}

facade::Request RosterRequest() {
    return {page::kGetCompList, UpperBody(), facade::Routine::Plain};
}

// The roster from the document the reply check parsed, so that it is parsed only once.
bool ReadRoster(cCustList& list, const JudgedReply& reply) {
    return reply.document ? list.ReadXML(*reply.document) : list.ReadXML(reply.text);
}

// Customers of the roster that the snapshot does not hold yet; those it holds stay as they are.
void AddToSnapshot(const cCustList& list, cCustListSync& sync) {
    sync.Reserve(static_cast<size_t>(sync.Count()) + static_cast<size_t>(list.Count()));
    for (const auto& item : list) {
        if (sync.Find(item->Key)) continue;
        cCustListSyncItem& s = sync.Add(item->Key, item->id);
        s.CorpName0 = item->CorpName0;
        s.Code = item->Code;
        s.InetEnableFlag = item->InetEnableFlag;
    }
}

}  // namespace

std::int32_t ctrlMorvane::CompareCustomerList(const std::string& LocalDB) {
    return facade::CompareJudged<cCustList>(
        custList_, RosterRequest(), ReadRoster,
        [&](cCustList& list) {
            custListSync_ = std::make_unique<cCustListSync>();
            AddToSnapshot(list, *custListSync_);
            EnsureDataFolderTimeOffset(LocalDB);
            UpdateServerTimeOffset();
            list.CompareLocalDBTable(LocalDB, SiblingPath(LocalDB, kPrefCustomDatabaseName),
                                     *custListSync_, 0);
            return list.CompareLocalDB(LocalDB);
        },
        facade::Keep::NonZero);
}

std::int32_t ctrlMorvane::CompareCustomerListItem(const std::string& LocalDB, std::int32_t CustID) {
    // Only this customer is refreshed: the snapshot of the others stays. The host wants the
    // snapshot, not a result, so the roster is let go and the answer is always 0.
    facade::CompareJudged<cCustList>(
        custList_, RosterRequest(), ReadRoster,
        [&](cCustList& list) {
            if (!custListSync_) custListSync_ = std::make_unique<cCustListSync>();
            AddToSnapshot(list, *custListSync_);
            UpdateServerTimeOffset();
            list.CompareLocalDBTable(LocalDB, SiblingPath(LocalDB, kPrefCustomDatabaseName),
                                     *custListSync_, CustID);
            return 0;
        },
        facade::Keep::Never);
    return 0;
}

std::int32_t ctrlMorvane::SyncDownloadCustomerList(const std::string& LocalDB) {
    return facade::AlwaysFetch<cCustList>(
        custList_, RosterRequest(),
        [](cCustList& list, const std::string& reply) { return list.ReadXML(reply); },
        [&](cCustList& list) { list.SyncDownload(LocalDB); });
}

std::int32_t ctrlMorvane::GetUploadCustomerListIDs(const std::string& LocalDB, std::string& AddIDs,
                                                   std::string& DelIDs, std::string& UpdateIDs) {
    try {
        if (!custList_) return 0;
        return custList_->GetUploadIDs(LocalDB, AddIDs, DelIDs, UpdateIDs);
    } catch (...) {
        CaptureError(std::current_exception());
        ErrTrap();
        return 0;
    }
}

bool ctrlMorvane::CustmerBackuped(std::int32_t CustID) const {
    return ReadSnapshot<bool>(custListSync_, CustID,
                              [](const cCustListSyncItem& i) { return i.AllBackuped(); });
}

bool ctrlMorvane::CustmerBackupedTable(std::int32_t CustID, std::int32_t Index) const {
    return ReadSnapshot<bool>(custListSync_, CustID,
                              [&](const cCustListSyncItem& i) { return i.Backuped(Index); });
}

std::int32_t ctrlMorvane::CustmerBackupedTableSyncFlag(std::int32_t CustID,
                                                       std::int32_t Index) const {
    return ReadSnapshot<std::int32_t>(
        custListSync_, CustID, [&](const cCustListSyncItem& i) { return i.SyncFlag(Index); });
}

std::string ctrlMorvane::CustmerRecordUpdateTable_Local(std::int32_t CustID,
                                                        std::int32_t Index) const {
    return ReadSnapshot<std::string>(custListSync_, CustID, [&](const cCustListSyncItem& i) {
        return i.RecordUpdate_lc(Index);
    });
}

std::string ctrlMorvane::CustmerRecordUpdateTable_Server(std::int32_t CustID,
                                                         std::int32_t Index) const {
    return ReadSnapshot<std::string>(custListSync_, CustID, [&](const cCustListSyncItem& i) {
        return i.RecordUpdate_sv(Index);
    });
}

std::string ctrlMorvane::CustmerRecordUpdateTable_Comper(std::int32_t CustID,
                                                         std::int32_t Index) const {
    return ReadSnapshot<std::string>(custListSync_, CustID, [&](const cCustListSyncItem& i) {
        return i.RecordUpdate_comp(Index);
    });
}

std::string ctrlMorvane::CustmerRecordUpdate_Local(std::int32_t CustID) const {
    return Newest(custListSync_, CustID,
                  [](const cCustListSyncItem& i, int index) { return i.RecordUpdate_lc(index); });
}

std::string ctrlMorvane::CustmerRecordUpdate_Server(std::int32_t CustID) const {
    return Newest(custListSync_, CustID,
                  [](const cCustListSyncItem& i, int index) { return i.RecordUpdate_sv(index); });
}

std::int32_t ctrlMorvane::SyncUploadAddCustomer(const std::string& LocalDB, std::int32_t CustID) {
    return facade::Upload<cCustAddDel>(
        [&](cCustAddDel& w) { return w.SyncUploadAddCustomer(LocalDB, CustID); });
}

std::int32_t ctrlMorvane::SyncUploadDelCustomer(std::int32_t CustID) {
    return facade::Upload<cCustAddDel>(
        [&](cCustAddDel& w) { return w.SyncUploadDelCustomer(CustID); });
}

std::int32_t ctrlMorvane::ShowCompareCustListDlg(forms::Form* OwnerForm, const Value&, const Value&,
                                                 const Value&, const Value&) {
    try {
        if (!custList_) return 0;
        return custList_->ShowCompareCustListDlg(OwnerForm);
    } catch (...) {
        CaptureError(std::current_exception());
        ErrTrap();
        return 0;
    }
}

std::string ctrlMorvane::GetCompareCustListDlg_AddLocalIDs() const {
    return facade::ReadSlot<std::string, cCustList>(custList_,
                                                    [](cCustList& l) { return l.AddLocalIDs(); });
}

std::string ctrlMorvane::GetCompareCustListDlg_AddServerIDs() const {
    return facade::ReadSlot<std::string, cCustList>(custList_,
                                                    [](cCustList& l) { return l.AddServerIDs(); });
}

std::string ctrlMorvane::GetCompareCustListDlg_DelLocalIDs() const {
    return facade::ReadSlot<std::string, cCustList>(custList_,
                                                    [](cCustList& l) { return l.DelLocalIDs(); });
}

std::string ctrlMorvane::GetCompareCustListDlg_DelServerIDs() const {
    return facade::ReadSlot<std::string, cCustList>(custList_,
                                                    [](cCustList& l) { return l.DelServerIDs(); });
}

void RegisterRosterMembers(DispatchTable& t) {
    t.Method("CompareCustomerList", &ctrlMorvane::CompareCustomerList, {"LocalDB"});
    t.Method("CompareCustomerListItem", &ctrlMorvane::CompareCustomerListItem,
             {"LocalDB", "CustID"});
    t.Method("SyncDownloadCustomerList", &ctrlMorvane::SyncDownloadCustomerList, {"LocalDB"});
    // Called by name the three texts go in; they do not come back to the caller.
    t.Method("GetUploadCustomerListIDs", &ctrlMorvane::GetUploadCustomerListIDs,
             {"LocalDB", "AddIDs", "DelIDs", "UpdateIDs"});
    t.Method("CustmerBackuped", &ctrlMorvane::CustmerBackuped, {"CustID"});
    t.Method("CustmerBackupedTable", &ctrlMorvane::CustmerBackupedTable, {"CustID", "Index"});
    t.Method("CustmerBackupedTableSyncFlag", &ctrlMorvane::CustmerBackupedTableSyncFlag,
             {"CustID", "Index"});
    t.Method("CustmerRecordUpdateTable_Local", &ctrlMorvane::CustmerRecordUpdateTable_Local,
             {"CustID", "Index"});
    t.Method("CustmerRecordUpdateTable_Server", &ctrlMorvane::CustmerRecordUpdateTable_Server,
             {"CustID", "Index"});
    t.Method("CustmerRecordUpdateTable_Comper", &ctrlMorvane::CustmerRecordUpdateTable_Comper,
             {"CustID", "Index"});
    t.Method("CustmerRecordUpdate_Local", &ctrlMorvane::CustmerRecordUpdate_Local, {"CustID"});
    t.Method("CustmerRecordUpdate_Server", &ctrlMorvane::CustmerRecordUpdate_Server, {"CustID"});
    t.Method("SyncUploadAddCustomer", &ctrlMorvane::SyncUploadAddCustomer, {"LocalDB", "CustID"});
    t.Method("SyncUploadDelCustomer", &ctrlMorvane::SyncUploadDelCustomer, {"CustID"});
    t.Method("ShowCompareCustListDlg", &ctrlMorvane::ShowCompareCustListDlg,
             {"OwnerForm", "Param1", "Param2", "Param3", "Param4"});
    t.Method("GetCompareCustListDlg_AddLocalIDs", &ctrlMorvane::GetCompareCustListDlg_AddLocalIDs);
    t.Method("GetCompareCustListDlg_AddServerIDs",
             &ctrlMorvane::GetCompareCustListDlg_AddServerIDs);
    t.Method("GetCompareCustListDlg_DelLocalIDs", &ctrlMorvane::GetCompareCustListDlg_DelLocalIDs);
    t.Method("GetCompareCustListDlg_DelServerIDs",
             &ctrlMorvane::GetCompareCustListDlg_DelServerIDs);
}

}  // namespace morvane
