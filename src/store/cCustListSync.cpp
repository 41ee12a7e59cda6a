#include "store/cCustListSync.h"

#include "util/Nz.h"

namespace morvane {

cCustListSyncItem::cCustListSyncItem(std::int32_t id) : id_(id) {
    backuped_.fill(true);
}

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
    return InRange(index) ? NzString(lc_[static_cast<size_t>(index)]) : std::string();
}

std::string cCustListSyncItem::RecordUpdate_sv(int index) const {
    return InRange(index) ? sv_[static_cast<size_t>(index)] : std::string();
}

std::string cCustListSyncItem::RecordUpdate_comp(int index) const {
    return InRange(index) ? NzString(comp_[static_cast<size_t>(index)]) : std::string();
}

void cCustListSyncItem::SetStamps(int index, Value local, std::string server, Value check) {
    if (!InRange(index)) return;
    const auto i = static_cast<size_t>(index);
    lc_[i] = std::move(local);
    sv_[i] = std::move(server);
    comp_[i] = std::move(check);
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
    byId_.emplace(id, position);  // keeps the first position of a number
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

void cCustListSync::Remove(std::string_view key) {
    const auto it = byKey_.find(std::string(key));
    if (it == byKey_.end()) return;
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(it->second));
    byKey_.clear();
    byId_.clear();
    for (size_t i = 0; i < items_.size(); ++i) {
        if (!items_[i]->Key.empty()) byKey_.emplace(items_[i]->Key, i);
        byId_.emplace(items_[i]->Id(), i);
    }
}

}  // namespace morvane
