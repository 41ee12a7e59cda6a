// The snapshot of the roster comparison: per customer and backed-up table, whether it is
// backed up, the decision and the three stamps, read by the host through the facade.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "store/BackupTableIndex.h"
#include "util/Value.h"

namespace morvane {

class cCustListSyncItem {
  public:
    explicit cCustListSyncItem(std::int32_t id = 0);

    std::string Key;
    std::int32_t Id() const { return id_; }
    std::string Code;
    std::string CorpName0;
    std::int32_t InetEnableFlag = 0;

    // An index above 52 counts as backed up with decision 0; a negative one as neither.
    bool Backuped(int index) const;
    void SetBackuped(int index, bool on);
    bool AllBackuped() const;
    std::int32_t SyncFlag(int index) const;
    void SetSyncFlag(int index, std::int32_t flag);
    // The stamps as texts ("" outside 0..52).
    std::string RecordUpdate_lc(int index) const;
    std::string RecordUpdate_sv(int index) const;
    std::string RecordUpdate_comp(int index) const;
    // The local stamps are kept as the fields gave them (a date, a text or Null) and read
    // as text; the server's as its text.
    void SetStamps(int index, Value local, std::string server, Value check);
    const Value& LocalStamp(int index) const { return lc_[static_cast<size_t>(index)]; }
    const Value& CheckStamp(int index) const { return comp_[static_cast<size_t>(index)]; }

  private:
    static bool InRange(int index) { return index >= 0 && index < kBackupTableCount; }
    std::int32_t id_;
    std::array<bool, kBackupTableCount> backuped_;
    std::array<std::int32_t, kBackupTableCount> syncFlag_{};
    std::array<Value, kBackupTableCount> lc_;
    std::array<std::string, kBackupTableCount> sv_;
    std::array<Value, kBackupTableCount> comp_;
};

class cCustListSync {
  public:
    // Comma texts of the last backup-target dialog.
    const std::string& EnabledIDs() const { return enabledIDs_; }
    const std::string& DisabledIDs() const { return disabledIDs_; }
    void SetTargetIDs(std::string enabled, std::string disabled);

    // 1 when an item has this customer number, else 0.
    std::int32_t CheckExistCustID(std::int32_t custId) const;
    // A new item under the key (none when empty); an existing key adds nothing and gives
    // the item it names.
    cCustListSyncItem& Add(const std::string& key, std::int32_t id = 0);
    // The item under the key, or nullptr.
    cCustListSyncItem* Item(std::string_view key);
    const cCustListSyncItem* Item(std::string_view key) const;
    bool Find(std::string_view key) const { return Item(key) != nullptr; }
    // The first item, in stored order, with this customer number; in constant time.
    const cCustListSyncItem* FindById(std::int32_t custId) const;
    cCustListSyncItem* FindById(std::int32_t custId);
    std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
    void Remove(std::string_view key);

    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

  private:
    std::vector<std::unique_ptr<cCustListSyncItem>> items_;
    std::unordered_map<std::string, size_t> byKey_;
    std::unordered_map<std::int32_t, size_t> byId_;  // first position of each number
    std::string enabledIDs_;
    std::string disabledIDs_;
};

}  // namespace morvane
