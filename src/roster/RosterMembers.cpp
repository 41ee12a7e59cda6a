// The roster members: the roster comparison, its per-table snapshot, the roster download
// and the IDs to upload.
#include <exception>

#include "roster/cCustList.h"
#include "session/DispatchTable.h"
#include "session/FacadePatterns.h"
#include "session/ProcessState.h"
#include "session/ctrlMorvane.h"
#include "session/mdlErrTrap.h"
#include "session/mdlLogin.h"
#include "session/mdlServerTime.h"
#include "store/LocalDatabases.h"
#include "store/cCustListSync.h"
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

}  // namespace

std::int32_t ctrlMorvane::CompareCustomerList(const std::string& LocalDB) {
    try {
        const std::string reply = SendRequest(page::kGetCompList, UpperBody());
        if (GetLoginState() != 1) {
            ErrTrap();
            custList_.reset();
            return 0;
        }
        custList_ = std::make_unique<cCustList>();
        if (!custList_->ReadXML(reply)) {
            ErrTrap();
            custList_.reset();
            return 0;
        }
        const std::string prefDb = SiblingPath(LocalDB, kPrefCustomDatabaseName);
        custListSync_ = std::make_unique<cCustListSync>();
        for (const auto& item : *custList_) {
            cCustListSyncItem& s = custListSync_->Add(item->Key, item->id);
            s.CorpName0 = item->CorpName0;
            s.Code = item->Code;
            s.InetEnableFlag = item->InetEnableFlag;
        }
        EnsureDataFolderTimeOffset(LocalDB);
        UpdateServerTimeOffset();
        custList_->CompareLocalDBTable(LocalDB, prefDb, *custListSync_, 0);
        const std::int32_t result = custList_->CompareLocalDB(LocalDB);
        if (result == 0) custList_.reset();
        return result;
    } catch (...) {
        CaptureError(std::current_exception());
        ErrTrap();
        custList_.reset();
        return 0;
    }
}

std::int32_t ctrlMorvane::CompareCustomerListItem(const std::string& LocalDB, std::int32_t CustID) {
    try {
        const std::string reply = SendRequest(page::kGetCompList, UpperBody());
        if (GetLoginState() != 1) {
            ErrTrap();
            custList_.reset();
            return 0;
        }
        custList_ = std::make_unique<cCustList>();
        if (!custList_->ReadXML(reply)) {
            ErrTrap();
            custList_.reset();
            return 0;
        }
        const std::string prefDb = SiblingPath(LocalDB, kPrefCustomDatabaseName);
        // The snapshot of the other customers stays: only this one is refreshed.
        if (!custListSync_) custListSync_ = std::make_unique<cCustListSync>();
        for (const auto& item : *custList_) {
            if (custListSync_->Find(item->Key)) continue;
            cCustListSyncItem& s = custListSync_->Add(item->Key, item->id);
            s.CorpName0 = item->CorpName0;
            s.Code = item->Code;
            s.InetEnableFlag = item->InetEnableFlag;
        }
        UpdateServerTimeOffset();
        custList_->CompareLocalDBTable(LocalDB, prefDb, *custListSync_, CustID);
    } catch (...) {
        CaptureError(std::current_exception());
        ErrTrap();
    }
    custList_.reset();
    return 0;
}

std::int32_t ctrlMorvane::SyncDownloadCustomerList(const std::string& LocalDB) {
    return facade::AlwaysFetch<cCustList>(
        custList_, {page::kGetCompList, UpperBody(), facade::Routine::Plain},
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
}

}  // namespace morvane
