// The snapshot of the roster comparison: per customer and backed-up table, whether it is
// backed up, the decision and the three stamps, read by the host through the facade.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "store/BackupTableIndex.h"
#include "store/ServerStamps.h"
#include "util/Value.h"

namespace morvane {

// A local stamp as its field gave it: nothing (Null), a date, or any other value kept whole.
class LocalStamp {
public:
    LocalStamp() = default;
    explicit LocalStamp(DateValue date) : days_(date.Days()) {}
    explicit LocalStamp(Value value);

    // The stamp as the decision reads it: a date, or a text that reads as one.
    std::optional<DateValue> Date() const;
    // The stamp as the host reads it: "" for Null.
    std::string Text() const;
    Value ToValue() const;

private:
    static constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    double days_ = kNone;           // a date unless NaN
    std::unique_ptr<Value> other_;  // a value that is neither Null nor a date
};

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
    // The server's stamp of the index is taken from the roster's stamps (none: "").
    void SetStamps(int index, LocalStamp local, const std::shared_ptr<const ServerStamps>& server,
                   LocalStamp check);
    const LocalStamp& LocalStampAt(int index) const { return lc_[static_cast<size_t>(index)]; }
    const LocalStamp& CheckStampAt(int index) const { return comp_[static_cast<size_t>(index)]; }

private:
    static bool InRange(int index) { return index >= 0 && index < kBackupTableCount; }
    std::int32_t id_;
    std::array<bool, kBackupTableCount> backuped_;
    std::array<std::int32_t, kBackupTableCount> syncFlag_{};
    std::array<LocalStamp, kBackupTableCount> lc_;
    std::array<LocalStamp, kBackupTableCount> comp_;
    // Where each server stamp comes from: 0 none, else a place in svSources_ counted from 1.
    // A scan of one customer against a newer roster can mix rosters within one item.
    std::array<std::uint8_t, kBackupTableCount> svFrom_{};
    std::vector<std::shared_ptr<const ServerStamps>> svSources_;
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
    // The same, trying first the place after the last one found, so that a walk in the
    // items' own order hashes nothing.
    cCustListSyncItem* FindById(std::int32_t custId, size_t& cursor);
    std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
    void Remove(std::string_view key);

    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

private:
    std::vector<std::unique_ptr<cCustListSyncItem>> items_;
    std::unordered_map<std::string, size_t> byKey_;
    std::unordered_map<std::int32_t, size_t> byId_;  // first position of each number
    std::vector<bool> firstOfId_;                    // per position: byId_ names it
    std::string enabledIDs_;
    std::string disabledIDs_;
};

}  // namespace morvane
