#include "ObjectComponent.h"

#include <exception>
#include <filesystem>
#include <limits>
#include <system_error>
#include <variant>

#include "ReachReason.h"
#include "platform/Dao.h"
#include "session/basTextEncrypt.h"
#include "session/mdlLogin.h"
#include "session/mdlLoginInfo.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "store/BackupTableIndex.h"
#include "store/LocalDatabases.h"
#include "util/Nz.h"

namespace morvane::cli {

namespace {

template <class... Call>
struct Overloaded : Call... {
    using Call::operator()...;
};
// Clang before 17 deduces no aggregate's arguments by itself.
template <class... Call>
Overloaded(Call...) -> Overloaded<Call...>;

}  // namespace

std::int32_t ObjectComponent::Run(const KindMember& member, const KindArgs& a) {
    ctrlMorvane& o = obj_;
    return std::visit(
        Overloaded{
            [](std::monostate) { return std::int32_t{0}; },
            [&](CustomerCall call) { return (o.*call)(a.db, a.custId); },
            [&](MasterCall call) { return (o.*call)(a.db); },
            [&](FileCompareCall call) { return (o.*call)(a.custId, a.file); },
            [&](FileMoveCall call) { return (o.*call)(a.custId, a.file, nullptr); },
            [&](FormCall call) { return (o.*call)(a.db, a.custId, a.dataId, a.kessan); },
        },
        member.call);
}

std::int32_t ObjectComponent::CompareCustomerList(const std::string& localDb) {
    return obj_.CompareCustomerList(localDb);
}

std::int32_t ObjectComponent::SyncDownloadCustomerList(const std::string& localDb) {
    return obj_.SyncDownloadCustomerList(localDb);
}

std::int32_t ObjectComponent::SyncUploadAddCustomer(const std::string& localDb,
                                                    std::int32_t custId) {
    return obj_.SyncUploadAddCustomer(localDb, custId);
}

std::int32_t ObjectComponent::SyncUploadDelCustomer(std::int32_t custId) {
    return obj_.SyncUploadDelCustomer(custId);
}

RosterChoice ObjectComponent::ShowCompareCustListDlg() {
    RosterChoice chosen;
    chosen.answer = obj_.ShowCompareCustListDlg(nullptr, Value(), Value(), Value(), Value());
    chosen.addLocal = obj_.GetCompareCustListDlg_AddLocalIDs();
    chosen.addServer = obj_.GetCompareCustListDlg_AddServerIDs();
    chosen.delLocal = obj_.GetCompareCustListDlg_DelLocalIDs();
    chosen.delServer = obj_.GetCompareCustListDlg_DelServerIDs();
    return chosen;
}

std::int32_t ObjectComponent::CheckInetEnabledFlags(const std::string& localDb) {
    return obj_.CheckInetEnabledFlags(localDb);
}

std::int32_t ObjectComponent::ShowSelectCustEnabledDlg(const std::string& localDb,
                                                       std::int32_t showType) {
    return obj_.ShowSelectCustEnabledDlg(nullptr, localDb, showType, Value(), Value(), Value(),
                                         Value());
}

std::int32_t ObjectComponent::CheckExistCustID(std::int32_t custId) {
    return obj_.CheckExistCustID(custId);
}

std::int32_t ObjectComponent::CustmerInetEnabledFlag(std::int32_t custId) {
    return obj_.CustmerInetEnabledFlag(custId);
}

std::int32_t ObjectComponent::CustmerBackupedTableSyncFlag(std::int32_t custId,
                                                           std::int32_t index) {
    return obj_.CustmerBackupedTableSyncFlag(custId, index);
}

std::string ObjectComponent::CustmerRecordUpdateTable_Server(std::int32_t custId,
                                                             std::int32_t index) {
    return obj_.CustmerRecordUpdateTable_Server(custId, index);
}

std::string ObjectComponent::CustmerRecordUpdateTable_Local(std::int32_t custId,
                                                            std::int32_t index) {
    return obj_.CustmerRecordUpdateTable_Local(custId, index);
}

std::string ObjectComponent::InetDateServer() { return obj_.InetDateServer(); }

std::int32_t ObjectComponent::LockCoustomer(std::int32_t custId) {
    return obj_.LockCoustomer(custId);
}

std::int32_t ObjectComponent::UnlockCoustomer(std::int32_t custId) {
    return obj_.UnlockCoustomer(custId);
}

std::int32_t ObjectComponent::LockMasterData(std::int32_t mastId) {
    return obj_.LockMasterData(mastId);
}

std::int32_t ObjectComponent::UnlockMasterData(std::int32_t mastId) {
    return obj_.UnlockMasterData(mastId);
}

std::int32_t ObjectComponent::ShowCompareMsg(const std::string& title) {
    return obj_.ShowCompareMsg(nullptr, title, Value(), Value(), Value(), Value());
}

void ObjectComponent::setObjectUsage(std::int32_t usage) { obj_.setObjectUsage(usage); }

int ObjectComponent::LoginFromSettings() {
    LoadLoginInfo();
    if (obj_.LoginState() == 1) return 1;
    return LoginWithSavedPassword();
}

int ObjectComponent::LoginWithSavedPassword() {
    // As the login dialog would with the saved password filled in.
    if (ReadMorvaneSetting(reg::kSaveLoginPWD) != "True") return obj_.LoginState();
    const std::string password = DecryptText(ReadMorvaneSetting(reg::kLoginPWD));
    DoLogin(ReadMorvaneSetting(reg::kLoginUID), password, ReadMorvaneSetting(reg::kContractNo));
    const int state = obj_.LoginState();
    if (state == 1) SaveLoginInfo(GetLoginID(), GetLoginToken(), std::to_string(state));
    return state;
}

int ObjectComponent::LoginState() const { return obj_.LoginState(); }

ExchangeCounts ObjectComponent::Exchanges() const {
    const auto& e = State().exchanges;
    return {e.tried, e.unanswered, e.failed, State().trappedErrors};
}

SeenStamps ObjectComponent::TakeComparedStamps() {
    ProcessState& state = State();
    const SeenStamps seen{state.comparedServerStamps, state.comparedLocalStamps};
    state.comparedServerStamps = 0;
    state.comparedLocalStamps = 0;
    return seen;
}

bool ObjectComponent::RosterUploadIDs(const std::string& localDb, std::string& add,
                                      std::string& del, std::string& update) {
    add.clear();
    del.clear();
    update.clear();
    return obj_.GetUploadCustomerListIDs(localDb, add, del, update) == 1;
}

std::vector<std::int32_t> ObjectComponent::LocalCustomerIDs(const std::string& localDb) {
    std::vector<std::int32_t> ids;
    try {
        dao::Workspace ws("", "");
        dao::Database& db = ws.OpenDatabase(localDb);
        auto rs =
            db.OpenRecordset("SELECT id, CorpName0 FROM tCustomer WHERE disabled = 0 ORDER BY id");
        bool onlySample = true;
        for (; !rs->Eof(); rs->MoveNext()) {
            ids.push_back(NzLong((*rs)["id"]));
            onlySample = onlySample && NzString((*rs)["CorpName0"]) == kSampleCustomerName;
        }
        // A fresh host's sample customer alone is no data, as the roster comparison holds.
        if (ids.size() == 1 && onlySample) ids.clear();
    } catch (const std::exception&) {
        ids.clear();
    }
    return ids;
}

std::vector<std::string> ObjectComponent::DataFiles(const std::string& localDb,
                                                    const std::string& table, std::int32_t custId) {
    std::vector<std::string> names;
    try {
        dao::Workspace ws("", "");
        dao::Database& db = ws.OpenDatabase(localDb);
        // Rows hidden from synchronisation take no part in it, nor do their files.
        auto rs = db.OpenRecordset(
            "SELECT DataFile FROM [" + table +
            "] WHERE disabled = 0 AND CustomerID = " + std::to_string(custId) +
            (table == "tCustomerKyokaHistory" ? " AND Ver511HideFlag = 0" : "") + " ORDER BY id");
        for (; !rs->Eof(); rs->MoveNext()) {
            std::string name = NzString((*rs)["DataFile"]);
            if (!name.empty()) names.push_back(std::move(name));
        }
    } catch (const std::exception&) {
        names.clear();
    }
    return names;
}

std::vector<FormOwner> ObjectComponent::FormOwners(const std::string& prefDb,
                                                   const std::string& table, std::int32_t custId) {
    std::vector<FormOwner> owners;
    const auto number = [](const Value& v) {
        return v.IsDouble() ? v.AsDouble() : static_cast<double>(NzLong(v));
    };
    try {
        dao::Workspace ws("", "");
        dao::Database& db = ws.OpenDatabase(prefDb);
        auto rs = db.OpenRecordset(
            "SELECT DataFileID, DataFileID_KY FROM [" + table +
            "] WHERE disabled = 0 AND CustomerID = " + std::to_string(custId) + " ORDER BY id");
        for (; !rs->Eof(); rs->MoveNext()) {
            const double kessan = number((*rs)["DataFileID"]);
            const double kyoka = number((*rs)["DataFileID_KY"]);
            owners.push_back(kessan != 0 || kyoka == 0 ? FormOwner{kessan, true}
                                                       : FormOwner{kyoka, false});
        }
    } catch (const std::exception&) {
        owners.clear();
    }
    return owners;
}

std::map<std::int32_t, std::uint64_t> ObjectComponent::LocalFingerprints(
    const std::vector<LocalTable>& tables, const std::filesystem::path& filesDir) {
    std::map<std::int32_t, std::uint64_t> folds;
    for (const LocalTable& t : tables) {
        try {
            dao::Workspace ws("", "");
            dao::Database& db = ws.OpenDatabase(t.db);
            const std::string key = "[" + t.key + "]";
            if (t.files) {
                // The files a customer's live rows name, by size and time: a file replaced
                // outside the program moves too.
                auto rs = db.OpenRecordset("SELECT " + key + " AS k, DataFile FROM [" + t.table +
                                           "] WHERE disabled = 0 ORDER BY " + key + ", id");
                for (; !rs->Eof(); rs->MoveNext()) {
                    const std::string name = NzString((*rs)["DataFile"]);
                    if (name.empty()) continue;
                    const std::filesystem::path named(name);
                    const std::filesystem::path path =
                        named.is_absolute() ? named : filesDir / named;
                    std::error_code ec;
                    const auto size = std::filesystem::file_size(path, ec);
                    const auto time = ec ? std::filesystem::file_time_type{}
                                         : std::filesystem::last_write_time(path, ec);
                    std::uint64_t& fold = folds[NzLong((*rs)["k"])];
                    fold = FoldText(fold,
                                    name + "\t" +
                                        (ec ? std::string("missing")
                                            : std::to_string(size) + "\t" +
                                                  std::to_string(time.time_since_epoch().count())));
                }
                continue;
            }
            // Every row, deleted and hidden ones too: how many, how many deleted or hidden,
            // and the newest stamp among them.
            auto rs = db.OpenRecordset(
                "SELECT " + key + " AS k, COUNT(*) AS n, TOTAL(disabled) AS d, " +
                (t.hideFlag ? "TOTAL(Ver511HideFlag)" : "0") +
                " AS h, MAX(RecordUpdate) AS ru FROM [" + t.table + "] GROUP BY " + key);
            for (; !rs->Eof(); rs->MoveNext()) {
                std::uint64_t& fold = folds[NzLong((*rs)["k"])];
                fold = FoldText(fold, t.table + "\t" + (*rs)["n"].ToText() + "\t" +
                                          (*rs)["d"].ToText() + "\t" + (*rs)["h"].ToText() + "\t" +
                                          (*rs)["ru"].ToText());
            }
        } catch (const std::exception&) {
            // Unreadable: no customer looks unchanged.
            return {};
        }
    }
    return folds;
}

namespace {

// The customer's rows of the table that count, by the snapshot's own statement, up to `most`;
// -1 when unknown, which is never taken for "nothing to send".
int CountRows(const LocalTable& t, std::int32_t custId, int most) {
    if (t.index < 0) return -1;
    try {
        dao::Workspace ws("", "");
        dao::Database& db = ws.OpenDatabase(t.db);
        auto rs = db.OpenRecordset(BackupTableStatement(t.index, custId));
        int rows = 0;
        for (; rows < most && !rs->Eof(); rs->MoveNext()) ++rows;
        return rows;
    } catch (const std::exception&) {
        return -1;
    }
}

}  // namespace

int ObjectComponent::LiveRows(const LocalTable& t, std::int32_t custId) {
    return CountRows(t, custId, 1);
}

int ObjectComponent::RowCount(const LocalTable& t, std::int32_t custId) {
    return CountRows(t, custId, std::numeric_limits<int>::max());
}

DateValue ObjectComponent::ServerNow() {
    return DateValue(State().Clock().Now().Days() - State().inetServerTimeOffset);
}

std::string ObjectComponent::UnreachableReason() { return cli::UnreachableReason(); }

}  // namespace morvane::cli
