#include "roster/cCustListSync.h"

#include <cmath>

#include "locks/mdlLock.h"
#include "roster/frmSelectEnabledCustList.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "store/mdlMorvaneCommon.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"
#include "util/Nz.h"

namespace morvane {

LocalStamp::LocalStamp(Value value) {
    if (value.IsNull() || value.IsEmpty()) return;
    if (value.IsDateValue())
        days_ = value.AsDate().Days();
    else
        other_ = std::make_unique<Value>(std::move(value));
}

std::optional<DateValue> LocalStamp::Date() const {
    if (other_) return AsDate(*other_);
    if (std::isnan(days_)) return std::nullopt;
    return DateValue(days_);
}

std::string LocalStamp::Text() const {
    if (other_) return NzString(*other_);
    if (std::isnan(days_)) return {};
    return DateValue(days_).Text();
}

Value LocalStamp::ToValue() const {
    if (other_) return *other_;
    if (std::isnan(days_)) return Value::Null();
    return Value(DateValue(days_));
}

namespace {
std::string KeyOf(std::int32_t id) { return "K" + std::to_string(id); }
}  // namespace

cCustListSyncItem::cCustListSyncItem(Token, cCustListSync& owner, size_t position, std::string key,
                                     std::int32_t id)
    : Key(std::move(key)), owner_(&owner), position_(position), id_(id) {}

bool cCustListSyncItem::Backuped(int index) const {
    if (index < 0) return false;
    if (index >= kBackupTableCount) return true;  // a table this version does not know
    return owner_->CellAt(index, position_).backuped;
}

void cCustListSyncItem::SetBackuped(int index, bool on) {
    if (InRange(index)) owner_->CellAt(index, position_).backuped = on;
}

bool cCustListSyncItem::AllBackuped() const {
    for (int index = 0; index < kBackupTableCount; ++index)
        if (!owner_->CellAt(index, position_).backuped) return false;
    return true;
}

std::int32_t cCustListSyncItem::SyncFlag(int index) const {
    return InRange(index) ? owner_->CellAt(index, position_).flag : 0;
}

void cCustListSyncItem::SetSyncFlag(int index, std::int32_t flag) {
    if (InRange(index)) owner_->CellAt(index, position_).flag = flag;
}

std::string cCustListSyncItem::RecordUpdate_lc(int index) const {
    return InRange(index) ? owner_->CellAt(index, position_).lc.Text() : std::string();
}

std::string cCustListSyncItem::RecordUpdate_sv(int index) const {
    if (!InRange(index)) return {};
    const ServerStamps* source = owner_->Source(index, position_);
    return source ? std::string(source->Text(index)) : std::string();
}

std::string cCustListSyncItem::RecordUpdate_comp(int index) const {
    return InRange(index) ? owner_->CellAt(index, position_).comp.Text() : std::string();
}

void cCustListSyncItem::SetStamps(int index, LocalStamp local,
                                  const std::shared_ptr<const ServerStamps>& server,
                                  LocalStamp check) {
    if (!InRange(index)) return;
    auto& cell = owner_->CellAt(index, position_);
    cell.lc = std::move(local);
    cell.comp = std::move(check);
    owner_->SetSource(index, position_, server);
}

const LocalStamp& cCustListSyncItem::LocalStampAt(int index) const {
    return owner_->CellAt(index, position_).lc;
}

const LocalStamp& cCustListSyncItem::CheckStampAt(int index) const {
    return owner_->CellAt(index, position_).comp;
}

const ServerStamps* cCustListSync::Source(int index, size_t position) const {
    const std::uint8_t from = CellAt(index, position).svFrom;
    if (from == 0) return nullptr;
    const Sources& sources = sources_[position];
    return from == 1 ? sources.newest.get() : sources.older[from - 2u].get();
}

void cCustListSync::SetSource(int index, size_t position,
                              const std::shared_ptr<const ServerStamps>& server) {
    Cell& cell = CellAt(index, position);
    if (!server) {
        cell.svFrom = 0;
        return;
    }
    Sources& sources = sources_[position];
    if (sources.newest != server) {
        // Rosters no stamp points into any more are let go before a new one is kept.
        std::vector<std::shared_ptr<const ServerStamps>> older;
        for (int j = 0; j < kBackupTableCount; ++j) {
            Cell& other = CellAt(j, position);
            if (!other.svFrom || j == index) continue;
            const std::shared_ptr<const ServerStamps>& source =
                other.svFrom == 1 ? sources.newest : sources.older[other.svFrom - 2u];
            if (source == server) {
                other.svFrom = 1;
                continue;
            }
            size_t k = 0;
            while (k < older.size() && older[k] != source) ++k;
            if (k == older.size()) older.push_back(source);
            other.svFrom = static_cast<std::uint8_t>(k + 2);
        }
        sources.newest = server;
        sources.older = std::move(older);
    }
    cell.svFrom = 1;
}

void cCustListSync::SetTargetIDs(std::string enabled, std::string disabled) {
    enabledIDs_ = std::move(enabled);
    disabledIDs_ = std::move(disabled);
}

std::int32_t cCustListSync::CheckExistCustID(std::int32_t custId) const {
    return FindById(custId) ? 1 : 0;
}

cCustListSyncItem& cCustListSync::Add(const std::string& key, std::int32_t id) {
    if (!key.empty())
        if (auto* existing = Item(key)) return *existing;
    const size_t position = items_.size();
    items_.push_back(
        std::make_unique<cCustListSyncItem>(cCustListSyncItem::Token{}, *this, position, key, id));
    for (auto& table : tables_) table.emplace_back();
    sources_.emplace_back();
    ids_.push_back(id);
    plainKey_.push_back(key == KeyOf(id));
    if (!key.empty()) byKey_.emplace(key, position);
    firstOfId_.push_back(byId_.emplace(id, position).second);  // keeps the first position
    return *items_.back();
}

void cCustListSync::Reserve(size_t count) {
    items_.reserve(count);
    for (auto& table : tables_) table.reserve(count);
    sources_.reserve(count);
    ids_.reserve(count);
}

cCustListSyncItem* cCustListSync::Item(std::string_view key) {
    const auto position = PositionOf(key);
    return position ? items_[*position].get() : nullptr;
}

const cCustListSyncItem* cCustListSync::Item(std::string_view key) const {
    const auto position = PositionOf(key);
    return position ? items_[*position].get() : nullptr;
}

std::optional<size_t> cCustListSync::PositionOf(std::string_view key) const {
    const auto it = byKey_.find(std::string(key));
    if (it == byKey_.end()) return std::nullopt;
    return it->second;
}

const cCustListSyncItem* cCustListSync::FindById(std::int32_t custId) const {
    const auto it = byId_.find(custId);
    return it == byId_.end() ? nullptr : items_[it->second].get();
}

cCustListSyncItem* cCustListSync::FindById(std::int32_t custId) {
    const auto it = byId_.find(custId);
    return it == byId_.end() ? nullptr : items_[it->second].get();
}

std::optional<size_t> cCustListSync::KeyedPosition(std::int32_t id, size_t& cursor) const {
    if (cursor < ids_.size() && firstOfId_[cursor] && ids_[cursor] == id && plainKey_[cursor])
        return cursor++;
    // The first item with the number, when its key names it; else whichever item the key
    // names, whatever its number.
    if (const auto it = byId_.find(id); it != byId_.end() && plainKey_[it->second]) {
        cursor = it->second + 1;
        return it->second;
    }
    return PositionOf(KeyOf(id));
}

void cCustListSync::Store(int index, size_t position, bool backuped, std::int32_t flag,
                          LocalStamp local, const std::shared_ptr<const ServerStamps>& server,
                          LocalStamp check) {
    Cell& cell = CellAt(index, position);
    cell.backuped = backuped;
    cell.flag = flag;
    cell.lc = std::move(local);
    cell.comp = std::move(check);
    SetSource(index, position, server);
}

void cCustListSync::Remove(std::string_view key) {
    const auto found = PositionOf(key);
    if (!found) return;
    const auto at = static_cast<std::ptrdiff_t>(*found);
    items_.erase(items_.begin() + at);
    for (auto& table : tables_) table.erase(table.begin() + at);
    sources_.erase(sources_.begin() + at);
    ids_.erase(ids_.begin() + at);
    plainKey_.erase(plainKey_.begin() + at);
    Reindex();
}

void cCustListSync::Reindex() {
    byKey_.clear();
    byId_.clear();
    firstOfId_.clear();
    for (size_t i = 0; i < items_.size(); ++i) {
        items_[i]->position_ = i;
        if (!items_[i]->Key.empty()) byKey_.emplace(items_[i]->Key, i);
        firstOfId_.push_back(byId_.emplace(items_[i]->Id(), i).second);
    }
}

std::int32_t cCustListSync::CheckInetEnabledFlags(const std::string& localDB) {
    const std::int32_t total = Count();
    std::int32_t enabled = 0;
    for (const auto& item : items_)
        if (item->InetEnableFlag == 1) ++enabled;
    if (kEnabledLimit < total) {
        if (kEnabledLimit > enabled) return 3;
        return kEnabledLimit == enabled ? 2 : 0;
    }
    if (total == enabled) return 1;
    for (const auto& item : items_) {
        if (item->InetEnableFlag != 0) continue;
        const std::int32_t custId = item->Id();
        if (custId > 0 && LockCustomerWorker(custId) == 1) {
            SyncUploadInetEnabledFlag(localDB, custId, 1);
            UnlockCustomerWorker(custId);
        }
        // Set even when the lock was refused: the server keeps the old flag then.
        item->InetEnableFlag = 1;
    }
    return 1;
}

std::int32_t cCustListSync::SyncUploadInetEnabledFlag(const std::string& /*localDB*/,
                                                      std::int32_t custId, std::int32_t flag) {
    std::string body = LowerCustomerBody(custId);
    AppendField(body, "InetEnableFlag", std::to_string(flag));
    const std::string reply = SendRequest(page::kSetInetEnableFlag, body);
    return !reply.empty() && GetLoginState() == 1 ? 1 : 0;
}

std::int32_t cCustListSync::ShowSelectCustEnabledDlg(forms::Form* owner, const std::string& localDB,
                                                     std::int32_t showtype) {
    frmSelectEnabledCustList form(State().Toolkit());
    form.LocalDB = localDB;
    form.Showtype = std::to_string(showtype);
    form.ServerData = this;
    form.ShowModal(owner);
    const bool cancelled = form.bCancel();
    std::string enabled = form.EnabledIDs();
    std::string disabled = form.DisabledIDs();
    form.Unload();
    if (cancelled) {
        SetTargetIDs({}, {});
        return 0;
    }
    SetTargetIDs(std::move(enabled), std::move(disabled));
    return 1;
}

}  // namespace morvane
