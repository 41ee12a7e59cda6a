#include "roster/cCustList.h"

#include <bitset>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <limits>
#include <optional>
#include <unordered_set>

#include "platform/Dao.h"
#include "platform/Xml.h"
#include "roster/cCustListSync.h"
#include "roster/frmSelectCompareCustList.h"
#include "roster/frmSelectCompareCustListAll.h"
#include "session/mdlErrTrap.h"
#include "state/ProcessState.h"
#include "store/LocalDatabases.h"
#include "store/mdlMorvaneCommon.h"
#include "util/KeyedCollection.h"
#include "util/Nz.h"
#include "util/Text.h"

namespace morvane {
namespace {

constexpr const char* kCustomerTable = "tCustomer";

// Flags of the tags a compItem must hold: five fields and the 53 stamps.
enum Tag { kCustomerID, kCode, kCorpName0, kCorpKanaS, kInetEnableFlag, kFirstStamp };
constexpr size_t kTagCount = kFirstStamp + kBackupTableCount;

// The index of an exact "RecordUpdate<n>" name, or -1.
int StampIndex(std::string_view name) {
    constexpr std::string_view prefix = "RecordUpdate";
    if (name.size() <= prefix.size() || name.substr(0, prefix.size()) != prefix) return -1;
    const std::string_view digits = name.substr(prefix.size());
    if (digits.size() > 2 || (digits.size() == 2 && digits[0] == '0')) return -1;
    int n = -1;
    const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), n);
    if (ec != std::errc() || end != digits.data() + digits.size()) return -1;
    return n < kBackupTableCount ? n : -1;
}

// The error trap at a worker's closing block.
void Trap() {
    CaptureError(std::current_exception());
    ErrTrap();
}

std::string Key(std::int32_t id) { return "K" + std::to_string(id); }

std::int32_t CountActiveCustomers(dao::Database& db) {
    auto rs = db.OpenRecordset(
        std::string("SELECT COUNT(*) AS reccnt FROM ") + kCustomerTable + " WHERE disabled = 0",
        dao::dbOpenDynaset, dao::dbReadOnly);
    return rs->Eof() ? 0 : NzLong(rs->Fields("reccnt").GetValue());
}

// The roster as the scan of all customers reads it: numbers and server dates in dense
// arrays, the dates one array a table, so that each row reads in order.
class DenseRoster {
public:
    template <class Items>
    explicit DenseRoster(const Items& items) : count_(items.size()) {
        ids_.reserve(count_);
        stamps_.reserve(count_);
        days_.assign(count_ * kBackupTableCount, std::numeric_limits<double>::quiet_NaN());
        for (size_t p = 0; p < count_; ++p) {
            ids_.push_back(items[p]->id);
            stamps_.push_back(items[p]->Stamps);
            if (!stamps_.back()) continue;
            for (int index = 0; index < kBackupTableCount; ++index)
                if (const auto date = stamps_.back()->Date(index))
                    days_[static_cast<size_t>(index) * count_ + p] = date->Days();
        }
    }
    // With a position the roster's own lookup found.
    bool Holds(size_t position, std::int32_t id) const {
        return position < count_ && ids_[position] == id;
    }
    std::optional<DateValue> Date(int index, size_t position) const {
        const double days = days_[static_cast<size_t>(index) * count_ + position];
        if (std::isnan(days)) return std::nullopt;
        return DateValue(days);
    }
    const std::shared_ptr<const ServerStamps>& Stamps(size_t position) const {
        return stamps_[position];
    }

private:
    size_t count_;
    std::vector<std::int32_t> ids_;
    std::vector<std::shared_ptr<const ServerStamps>> stamps_;
    std::vector<double> days_;  // table-major
};

}  // namespace

// ---- The collection --------------------------------------------------------------------

cCustListItem& cCustList::Add(std::int32_t id, std::int32_t index) {
    auto item = std::make_unique<cCustListItem>();
    item->id = id;
    item->Key = Key(id);
    cCustListItem& ref = *item;
    if (index >= 1 && index <= Count()) {
        items_.insert(items_.begin() + (index - 1), std::move(item));
        Reindex();
    } else {
        byKey_.emplace(ref.Key, items_.size());
        firstOfId_.push_back(byId_.emplace(ref.id, items_.size()).second);
        items_.push_back(std::move(item));
    }
    return ref;
}

std::string cCustList::SearchItemKey(std::int32_t id) const {
    const std::string key = Key(id);
    return byKey_.count(key) ? key : std::string();
}

cCustListItem* cCustList::Item(std::string_view key) {
    const auto it = byKey_.find(std::string(key));
    return it == byKey_.end() ? nullptr : items_[it->second].get();
}

cCustListItem* cCustList::ItemAt(std::int32_t position) {
    if (position < 1 || position > Count()) return nullptr;
    return items_[static_cast<size_t>(position - 1)].get();
}

void cCustList::Remove(std::string_view key) {
    const auto it = byKey_.find(std::string(key));
    if (it == byKey_.end()) return;
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(it->second));
    Reindex();
}

void cCustList::Clear() {
    items_.clear();
    byKey_.clear();
    byId_.clear();
    firstOfId_.clear();
}

void cCustList::Reindex() {
    byKey_.clear();
    byId_.clear();
    firstOfId_.clear();
    for (size_t i = 0; i < items_.size(); ++i) {
        byKey_.emplace(items_[i]->Key, i);
        firstOfId_.push_back(byId_.emplace(items_[i]->id, i).second);
    }
}

const cCustListItem* cCustList::ItemById(std::int32_t id) const {
    const auto it = byId_.find(id);
    return it == byId_.end() ? nullptr : items_[it->second].get();
}

const cCustListItem* cCustList::ItemById(std::int32_t id, size_t& cursor) const {
    if (cursor < items_.size() && firstOfId_[cursor] && items_[cursor]->id == id)
        return items_[cursor++].get();
    const auto it = byId_.find(id);
    if (it == byId_.end()) return nullptr;
    cursor = it->second + 1;
    return items_[it->second].get();
}

// ---- Reading the reply -----------------------------------------------------------------

bool cCustList::ReadXML(std::string_view xml) {
    Clear();
    const auto doc = platform::XmlDocument::Load(xml);
    return doc && ParseCompList(*doc);
}

bool cCustList::ReadXML(const platform::XmlDocument& doc) {
    Clear();
    return ParseCompList(doc);
}

bool cCustList::ParseCompList(const platform::XmlDocument& doc) {
    const platform::XmlNode root = doc.DocumentElement();
    if (!root) return false;
    const auto lists = root.SelectNodes("compList");
    if (lists.size() != 1) return false;
    bool countSeen = false;
    std::int32_t count = 0;
    bool anyItem = false;
    bool lastItem = false;
    for (platform::XmlNode child = lists[0].FirstChildElement(); child;
         child = child.NextSiblingElement()) {
        const std::string_view name = child.NameView();
        if (EqualsNoCase(name, "CompCount")) {
            count = NzLong(child.Text());
            countSeen = true;
        } else if (EqualsNoCase(name, "compItem")) {
            anyItem = true;
            lastItem = AnalyzeCustListItem(child);
            if (!lastItem) break;
        }
    }
    // The count is not held against the number of items.
    return anyItem ? lastItem : countSeen && count == 0;
}

bool cCustList::AnalyzeCustListItem(const platform::XmlNode& node) {
    std::bitset<kTagCount> seen;
    cCustListItem read;
    auto stamps = std::make_shared<ServerStamps>();
    std::string scratch;
    for (platform::XmlNode child = node.FirstChildElement(); child;
         child = child.NextSiblingElement()) {
        const std::string_view name = child.NameView();
        if (const int index = StampIndex(name); index >= 0) {
            stamps->SetText(index, child.TextView(scratch));
            seen.set(kFirstStamp + static_cast<size_t>(index));
        } else if (name == "CustomerID") {
            read.id = NzLong(child.TextView(scratch));
            seen.set(kCustomerID);
        } else if (name == "Code") {
            read.Code = child.TextView(scratch);
            seen.set(kCode);
        } else if (name == "CorpName0") {
            read.CorpName0 = child.TextView(scratch);
            seen.set(kCorpName0);
        } else if (name == "CorpKanaS") {
            read.CorpKanaS = child.TextView(scratch);
            seen.set(kCorpKanaS);
        } else if (name == "InetEnableFlag") {
            read.InetEnableFlag = NzLong(child.TextView(scratch));
            seen.set(kInetEnableFlag);
        }
        // "disabled" and unknown tags are passed over.
    }
    if (!seen.all()) return false;
    if (byKey_.count(Key(read.id))) return false;  // a number twice is a broken roster
    cCustListItem& item = Add(read.id);
    item.Code = std::move(read.Code);
    item.CorpName0 = std::move(read.CorpName0);
    item.CorpKanaS = std::move(read.CorpKanaS);
    item.InetEnableFlag = read.InetEnableFlag;
    item.Stamps = std::move(stamps);
    return true;
}

// ---- Comparing with tCustomer ----------------------------------------------------------

std::int32_t cCustList::CompareLocalDB(const std::string& localDb) {
    localDb_ = localDb;
    std::int32_t result = 0;
    try {
        const std::int32_t s = Count();
        std::int32_t code = s == 0 ? 4 : 3;
        auto ws = CreateMorvaneWorkspace();
        dao::Database& db = ws->OpenDatabase(localDb);
        const std::int32_t l = CountActiveCustomers(db);
        bool differ = l != s;
        bool onlySample = false;
        if (l == 1) {
            auto rs = db.OpenRecordset(
                std::string("SELECT CorpName0 FROM ") + kCustomerTable + " WHERE disabled = 0",
                dao::dbOpenDynaset, dao::dbReadOnly);
            onlySample =
                !rs->Eof() && NzString(rs->Fields("CorpName0").GetValue()) == kSampleCustomerName;
        }
        if (l == 0 || onlySample) {
            differ = true;
            code = code == 4 ? 0 : 5;
        }
        if (differ) return code;
        // Only the numbers take part, so only they are read.
        auto rs = db.OpenRecordset(
            std::string("SELECT id FROM ") + kCustomerTable + " WHERE disabled = 0 ORDER BY id",
            dao::dbOpenDynaset, dao::dbReadOnly);
        size_t i = 0;
        for (; !rs->Eof(); rs->MoveNext(), ++i) {
            if (i >= items_.size() || NzLong(rs->Fields("ID").GetValue()) != items_[i]->id)
                return code;
        }
        result = 0;
    } catch (...) {
        Trap();
        result = 0;
    }
    return result;
}

// ---- The table scan --------------------------------------------------------------------

void cCustList::CompareLocalDBTable(const std::string& localDb, const std::string& prefDb,
                                    cCustListSync& sync, std::int32_t custId) {
    // The process-wide stamps are left as the last decision of the scan leaves them; they
    // are written once at the end rather than half a million times.
    struct LastDecision {
        const cCustListSync& sync;
        std::int32_t result = 0;
        std::optional<size_t> position;
        int index = 0;
        ~LastDecision() {
            if (!position) return;
            const cCustListSyncItem& item = sync.ItemAt(*position);
            KeepComparedStamps(result, Value(item.RecordUpdate_sv(index)),
                               item.LocalStampAt(index).ToValue(),
                               item.CheckStampAt(index).ToValue());
        }
    } last{sync, 0, std::nullopt, 0};
    const double offset = State().inetServerTimeOffset;
    static const std::shared_ptr<const ServerStamps> kNone;
    try {
        // Only the scan of all customers reads enough rows to pay for the dense copy.
        std::optional<DenseRoster> dense;
        if (custId == 0) dense.emplace(items_);
        auto ws = CreateMorvaneWorkspace();
        dao::Database& local = ws->OpenDatabase(localDb);
        dao::Database* pref = nullptr;  // opened when the scan reaches its tables
        for (int index = 0; index < kBackupTableCount; ++index) {
            const std::string sql = BackupTableStatement(index, custId);
            if (sql.empty()) continue;
            if (BackupTables()[index].inPrefCustom && !pref) pref = &ws->OpenDatabase(prefDb);
            dao::Database& db = BackupTables()[index].inPrefCustom ? *pref : local;
            const bool main = index == kIndexCustomer;
            auto rs = db.OpenRecordset(sql, dao::dbOpenDynaset, dao::dbReadOnly);
            const dao::Field keyField = rs->Fields(main ? "id" : "CustomerID");
            const dao::Field localField = rs->Fields(main ? "RecordUpdate" : "rumax");
            const dao::Field checkField = rs->Fields(main ? "InetCheckDate" : "cdmax");

            auto judge = [&](size_t position, std::optional<DateValue> serverDate,
                             const std::shared_ptr<const ServerStamps>& server, LocalStamp lc,
                             LocalStamp cd, bool hasRows) {
                const std::int32_t result =
                    DecideInetDates(serverDate, lc.Date(), cd.Date(), offset);
                bool backuped = false;
                if (result == 0)
                    backuped = true;
                else if (index == kIndexGyoshu)
                    backuped = sync.BackupedAt(kIndexCustomer, position);
                else if (index == kIndexPrintCustomerData)
                    backuped = true;
                else if (index == kIndexT28KyokaShinseiHyoshi && hasRows)
                    backuped = true;
                sync.Store(index, position, backuped, result, std::move(lc), server, std::move(cd));
                last.result = result;
                last.position = position;
                last.index = index;
            };
            auto judgeListed = [&](size_t position, const cCustListItem* listed, LocalStamp lc,
                                   LocalStamp cd, bool hasRows) {
                const ServerStamps* server = listed ? listed->Stamps.get() : nullptr;
                judge(position, server ? server->Date(index) : std::nullopt,
                      listed ? listed->Stamps : kNone, std::move(lc), std::move(cd), hasRows);
            };
            // Stamps come as dates in the stored form, or Null, nearly always: other values
            // take the general way.
            auto stamp = [](const dao::Field& field) {
                DateValue date;
                switch (field.GetStamp(date)) {
                    case dao::Field::StampKind::Null:
                        return LocalStamp();
                    case dao::Field::StampKind::Date:
                        return LocalStamp(date);
                    default:
                        return LocalStamp(field.GetValue());
                }
            };

            // Rows come in ascending customer order, as the roster and the snapshot mostly
            // do: each lookup first tries the place after the last one found.
            auto listPosition = [&](std::int32_t id, size_t& cursor) -> std::optional<size_t> {
                if (firstOfId_.size() > cursor && firstOfId_[cursor] && dense->Holds(cursor, id))
                    return cursor++;
                const auto it = byId_.find(id);
                if (it == byId_.end()) return std::nullopt;
                cursor = it->second + 1;
                return it->second;
            };
            size_t syncCursor = 0, listCursor = 0;
            if (!rs->Eof()) {
                for (; !rs->Eof(); rs->MoveNext()) {
                    std::optional<size_t> position;
                    if (const auto id = keyField.GetLong()) {
                        position = sync.KeyedPosition(*id, syncCursor);
                        if (!position) continue;
                        if (dense) {
                            const auto at = listPosition(*id, listCursor);
                            if (at)
                                judge(*position, dense->Date(index, *at), dense->Stamps(*at),
                                      stamp(localField), stamp(checkField), true);
                            else
                                judge(*position, std::nullopt, kNone, stamp(localField),
                                      stamp(checkField), true);
                        } else {
                            judgeListed(*position, ItemById(*id, listCursor), stamp(localField),
                                        stamp(checkField), true);
                        }
                    } else {
                        // Items are keyed "K" + number: a row whose key names no item is a
                        // customer the server does not know.
                        const Value key = keyField.GetValue();
                        position = key.IsLong() ? sync.KeyedPosition(key.AsLong(), syncCursor)
                                                : sync.PositionOf("K" + NzString(key));
                        if (!position) continue;
                        judgeListed(
                            *position,
                            key.IsLong() ? ItemById(key.AsLong()) : Item("K" + NzString(key)),
                            stamp(localField), stamp(checkField), true);
                    }
                }
            } else if (custId > 0) {
                if (const auto position = sync.KeyedPosition(custId, syncCursor))
                    judgeListed(*position, ItemById(custId), LocalStamp(), LocalStamp(), false);
            }
        }
    } catch (...) {
        Trap();  // the items keep what was stored so far
    }
}

// ---- Taking the server's roster --------------------------------------------------------

std::int32_t cCustList::SyncDownload(const std::string& localDb) {
    try {
        auto ws = CreateMorvaneWorkspace();
        dao::Database& db = ws->OpenDatabase(localDb);
        ws->BeginTrans();
        try {
            db.Execute(std::string("UPDATE ") + kCustomerTable +
                       " SET disabled = 999 WHERE disabled = 0");
            for (const auto& item : items_) {
                auto rs =
                    db.OpenRecordset(std::string("SELECT * FROM ") + kCustomerTable +
                                     " WHERE id = " + std::to_string(item->id) + " ORDER BY Code");
                auto clearStamps = [&] {
                    rs->Fields("RecordUpdate").PutValue(Value::Null());
                    rs->Fields("InetCheckDate").PutValue(Value::Null());
                    rs->Fields("InetSyncFlag").PutValue(Value(1));
                };
                if (rs->Eof()) {
                    rs->AddNew();
                    rs->Fields("id").PutValue(Value(item->id));
                    clearStamps();
                } else {
                    const bool same =
                        NzString(rs->Fields("Code").GetValue()) == item->Code &&
                        NzString(rs->Fields("CorpName0").GetValue()) == item->CorpName0 &&
                        NzString(rs->Fields("CorpKanaS").GetValue()) == item->CorpKanaS;
                    const bool comesBack = NzLong(rs->Fields("disabled").GetValue()) == 1;
                    rs->Edit();
                    if (!same || comesBack) clearStamps();
                }
                rs->Fields("Code").PutValue(Value(item->Code));
                rs->Fields("CorpName0").PutValue(Value(item->CorpName0));
                rs->Fields("CorpKanaS").PutValue(Value(item->CorpKanaS));
                rs->Fields("disabled").PutValue(Value(0));
                rs->Update();
            }
            db.Execute(std::string("UPDATE ") + kCustomerTable +
                       " SET disabled = 1 WHERE disabled = 999");
            ws->CommitTrans();
        } catch (...) {
            if (ws->InTransaction()) ws->Rollback();
            throw;
        }
        return 1;
    } catch (...) {
        Trap();
        return 0;
    }
}

std::int32_t cCustList::GetUploadIDs(const std::string& localDb, std::string& addIDs,
                                     std::string& delIDs, std::string& updateIDs) {
    try {
        struct Row {
            std::string code, name, kana;
        };
        std::unordered_map<std::int32_t, Row> rows;
        CLong local;
        {
            auto ws = CreateMorvaneWorkspace();
            dao::Database& db = ws->OpenDatabase(localDb);
            auto rs = db.OpenRecordset(
                std::string("SELECT * FROM ") + kCustomerTable + " WHERE disabled = 0 ORDER BY id",
                dao::dbOpenDynaset, dao::dbReadOnly);
            for (; !rs->Eof(); rs->MoveNext()) {
                const std::int32_t id = NzLong(rs->Fields("ID").GetValue());
                local.Add(id);
                rows.emplace(id, Row{NzString(rs->Fields("Code").GetValue()),
                                     NzString(rs->Fields("CorpName0").GetValue()),
                                     NzString(rs->Fields("CorpKanaS").GetValue())});
            }
        }
        CLong server;
        for (const auto& item : items_) server.Add(item->id);
        CLong add, del, update;
        for (const auto& entry : local)
            if (!server.FindValue(entry.item)) add.Add(entry.item);
        for (const auto& entry : server)
            if (!local.FindValue(entry.item)) del.Add(entry.item);
        for (const auto& entry : server) {
            if (del.FindValue(entry.item)) continue;
            const auto row = rows.find(entry.item);
            const cCustListItem* item = Item(Key(entry.item));
            if (row == rows.end() || !item) continue;
            if (row->second.code != item->Code || row->second.name != item->CorpName0 ||
                row->second.kana != item->CorpKanaS)
                update.Add(entry.item);
        }
        addIDs = add.CommaText();
        delIDs = del.CommaText();
        updateIDs = update.CommaText();
        return 1;
    } catch (...) {
        Trap();
        return 0;
    }
}

// ---- Asking the user --------------------------------------------------------------------

std::int32_t cCustList::ShowCompareCustListDlg(forms::Form* owner) {
    std::int32_t l = 0;
    {
        // Nothing is written: the database need not stay open while the user decides.
        auto ws = CreateMorvaneWorkspace();
        l = CountActiveCustomers(ws->OpenDatabase(localDb_));
    }
    const std::int32_t s = Count();
    if (l == 0 && s == 0) return 0;
    if (l == 0) return 5;
    if (s == 0) return 4;
    int kind = 0;
    // Rosters this far apart are not offered customer by customer.
    if (std::abs(static_cast<std::int64_t>(l) - s) > 10) {
        kind = 2;
    } else {
        const double ls = static_cast<double>(l) / s;
        const double sl = static_cast<double>(s) / l;
        if ((ls < 0.5 && l < s) || (sl < 0.5 && s < l)) kind = 2;
    }
    std::string addIDs, delIDs, updateIDs;
    if (kind == 0) {
        GetUploadIDs(localDb_, addIDs, delIDs, updateIDs);
        const size_t nAdd = SplitIDs(addIDs).size();
        const size_t nDel = SplitIDs(delIDs).size();
        const size_t nUpd = SplitIDs(updateIDs).size();
        // Changed names alone do not bother the user.
        if (nAdd == 0 && nDel == 0)
            kind = 0;
        else if (nAdd > 10 || nDel > 10 || nUpd > 5)
            kind = 2;
        else
            kind = 1;
    }
    if (kind == 0) return 0;
    forms::Toolkit& kit = State().Toolkit();
    if (kind == 1) {
        frmSelectCompareCustList form(kit);
        form.SetLocalDB(localDb_);
        form.SetServerData(this);
        form.SetOnlyLc_IDs(addIDs);
        form.SetOnlySv_IDs(delIDs);
        form.ShowModal(owner);
        addLocalIDs_.clear();
        addServerIDs_.clear();
        delLocalIDs_.clear();
        delServerIDs_.clear();
        std::int32_t result = -1;
        if (!form.bCancel()) {
            addLocalIDs_ = form.AddLocalDs();
            delLocalIDs_ = form.DelLocalDs();
            addServerIDs_ = form.AddServerDs();
            delServerIDs_ = form.DelServerDs();
            result = 6;
        }
        form.Unload();
        return result;
    }
    frmSelectCompareCustListAll form(kit);
    form.SetLocalDB(localDb_);
    form.SetServerData(this);
    form.ShowModal(owner);
    const std::int32_t result = form.DlgResult();
    form.Unload();
    return result;
}

std::vector<std::int32_t> SplitIDs(std::string_view ids) {
    std::vector<std::int32_t> numbers;
    if (ids.empty()) return numbers;
    for (const std::string& part : Split(ids, ",")) numbers.push_back(NzLong(part));
    return numbers;
}

}  // namespace morvane
