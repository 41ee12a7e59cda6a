#include "store/cCustListSync.h"

#include <cmath>

#include "store/mdlMorvaneCommon.h"
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

cCustListSyncItem::cCustListSyncItem(std::int32_t id) : id_(id) { backuped_.fill(true); }

bool cCustListSyncItem::Backuped(int index) const {
    if (index < 0) return false;
    if (index >= kBackupTableCount) return true;  // a table this version does not know
    return backuped_[static_cast<size_t>(index)];
}

void cCustListSyncItem::SetBackuped(int index, bool on) {
    if (InRange(index)) backuped_[static_cast<size_t>(index)] = on;
}

bool cCustListSyncItem::AllBackuped() const {
    for (bool b : backuped_)
        if (!b) return false;
    return true;
}

std::int32_t cCustListSyncItem::SyncFlag(int index) const {
    return InRange(index) ? syncFlag_[static_cast<size_t>(index)] : 0;
}

void cCustListSyncItem::SetSyncFlag(int index, std::int32_t flag) {
    if (InRange(index)) syncFlag_[static_cast<size_t>(index)] = flag;
}

std::string cCustListSyncItem::RecordUpdate_lc(int index) const {
    return InRange(index) ? lc_[static_cast<size_t>(index)].Text() : std::string();
}

std::string cCustListSyncItem::RecordUpdate_sv(int index) const {
    if (!InRange(index)) return {};
    const std::uint8_t from = svFrom_[static_cast<size_t>(index)];
    return from ? std::string(svSources_[from - 1u]->Text(index)) : std::string();
}

std::string cCustListSyncItem::RecordUpdate_comp(int index) const {
    return InRange(index) ? comp_[static_cast<size_t>(index)].Text() : std::string();
}

void cCustListSyncItem::SetStamps(int index, LocalStamp local,
                                  const std::shared_ptr<const ServerStamps>& server,
                                  LocalStamp check) {
    if (!InRange(index)) return;
    const auto i = static_cast<size_t>(index);
    lc_[i] = std::move(local);
    comp_[i] = std::move(check);
    if (!server) {
        svFrom_[i] = 0;
        return;
    }
    if (svSources_.empty() || svSources_.back() != server) {
        // Rosters no stamp points into any more are let go before a new one is kept.
        std::vector<std::shared_ptr<const ServerStamps>> kept;
        std::array<std::uint8_t, kBackupTableCount> from{};
        for (size_t j = 0; j < svFrom_.size(); ++j) {
            if (!svFrom_[j] || j == i) continue;
            const auto& source = svSources_[svFrom_[j] - 1u];
            size_t k = 0;
            while (k < kept.size() && kept[k] != source) ++k;
            if (k == kept.size()) kept.push_back(source);
            from[j] = static_cast<std::uint8_t>(k + 1);
        }
        kept.push_back(server);
        svSources_ = std::move(kept);
        svFrom_ = from;
    }
    svFrom_[i] = static_cast<std::uint8_t>(svSources_.size());
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
    auto item = std::make_unique<cCustListSyncItem>(id);
    item->Key = key;
    const size_t position = items_.size();
    if (!key.empty()) byKey_.emplace(key, position);
    firstOfId_.push_back(byId_.emplace(id, position).second);  // keeps the first position
    items_.push_back(std::move(item));
    return *items_.back();
}

cCustListSyncItem* cCustListSync::Item(std::string_view key) {
    const auto it = byKey_.find(std::string(key));
    return it == byKey_.end() ? nullptr : items_[it->second].get();
}

const cCustListSyncItem* cCustListSync::Item(std::string_view key) const {
    const auto it = byKey_.find(std::string(key));
    return it == byKey_.end() ? nullptr : items_[it->second].get();
}

const cCustListSyncItem* cCustListSync::FindById(std::int32_t custId) const {
    const auto it = byId_.find(custId);
    return it == byId_.end() ? nullptr : items_[it->second].get();
}

cCustListSyncItem* cCustListSync::FindById(std::int32_t custId) {
    const auto it = byId_.find(custId);
    return it == byId_.end() ? nullptr : items_[it->second].get();
}

cCustListSyncItem* cCustListSync::FindById(std::int32_t custId, size_t& cursor) {
    if (cursor < items_.size() && firstOfId_[cursor] && items_[cursor]->Id() == custId)
        return items_[cursor++].get();
    const auto it = byId_.find(custId);
    if (it == byId_.end()) return nullptr;
    cursor = it->second + 1;
    return items_[it->second].get();
}

void cCustListSync::Remove(std::string_view key) {
    const auto it = byKey_.find(std::string(key));
    if (it == byKey_.end()) return;
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(it->second));
    byKey_.clear();
    byId_.clear();
    firstOfId_.clear();
    for (size_t i = 0; i < items_.size(); ++i) {
        if (!items_[i]->Key.empty()) byKey_.emplace(items_[i]->Key, i);
        firstOfId_.push_back(byId_.emplace(items_[i]->Id(), i).second);
    }
}

}  // namespace morvane
