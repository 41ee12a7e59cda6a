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

namespace forms {
class Form;
}

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

class cCustListSync;

// One customer of the snapshot. Its per-table answers live in the snapshot, one dense array
// a table, so that a scan over one table writes in order; the item reads them in place.
class cCustListSyncItem {
    struct Token {};  // only the snapshot makes items

public:
    cCustListSyncItem(Token, cCustListSync& owner, size_t position, std::string key,
                      std::int32_t id);
    cCustListSyncItem(const cCustListSyncItem&) = delete;
    cCustListSyncItem& operator=(const cCustListSyncItem&) = delete;

    const std::string Key;
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
    const LocalStamp& LocalStampAt(int index) const;
    const LocalStamp& CheckStampAt(int index) const;

private:
    friend class cCustListSync;
    static bool InRange(int index) { return index >= 0 && index < kBackupTableCount; }
    cCustListSync* owner_;
    size_t position_;
    std::int32_t id_;
};

class cCustListSync {
public:
    cCustListSync() = default;
    // Items point back into the snapshot.
    cCustListSync(const cCustListSync&) = delete;
    cCustListSync& operator=(const cCustListSync&) = delete;

    // Comma texts of the last backup-target dialog.
    const std::string& EnabledIDs() const { return enabledIDs_; }
    const std::string& DisabledIDs() const { return disabledIDs_; }
    void SetTargetIDs(std::string enabled, std::string disabled);

    // 1 when an item has this customer number, else 0.
    std::int32_t CheckExistCustID(std::int32_t custId) const;

    // The backup target flags against a limit of kEnabledLimit customers: 3 room left, 2 the
    // limit filled, 0 more set than it allows, each only with more customers than the limit;
    // else 1, once every customer not backed up is set to 1 (on the server only where its
    // lock was granted).
    std::int32_t CheckInetEnabledFlags(const std::string& localDB);
    // Posts one customer's flag; 1 when the reply was not empty and the login holds.
    std::int32_t SyncUploadInetEnabledFlag(const std::string& localDB, std::int32_t custId,
                                           std::int32_t flag);
    // Lets the user choose the targets: 1 with the chosen IDs kept, 0 cancelled with both
    // texts emptied.
    std::int32_t ShowSelectCustEnabledDlg(forms::Form* owner, const std::string& localDB,
                                          std::int32_t showtype);
    // Kept as it has always been, far above any allowance, so that the check never limits.
    static constexpr std::int32_t kEnabledLimit = 9999;
    // A new item under the key (none when empty); an existing key adds nothing and gives
    // the item it names.
    cCustListSyncItem& Add(const std::string& key, std::int32_t id = 0);
    // Room for this many items, so that adding them moves no table.
    void Reserve(size_t count);
    // The item under the key, or nullptr.
    cCustListSyncItem* Item(std::string_view key);
    const cCustListSyncItem* Item(std::string_view key) const;
    bool Find(std::string_view key) const { return Item(key) != nullptr; }
    // The first item, in stored order, with this customer number; in constant time.
    const cCustListSyncItem* FindById(std::int32_t custId) const;
    cCustListSyncItem* FindById(std::int32_t custId);
    std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
    void Remove(std::string_view key);

    // For the table scan, which works on positions rather than items: the position of the
    // item under the key "K" + id, trying first the place after the last one found, so that
    // a walk in the items' own order hashes nothing.
    std::optional<size_t> KeyedPosition(std::int32_t id, size_t& cursor) const;
    std::optional<size_t> PositionOf(std::string_view key) const;
    const cCustListSyncItem& ItemAt(size_t position) const { return *items_[position]; }
    bool BackupedAt(int index, size_t position) const {
        return tables_[static_cast<size_t>(index)][position].backuped;
    }
    // One table's answers for one customer, as the scan decides them; index in 0..52.
    void Store(int index, size_t position, bool backuped, std::int32_t flag, LocalStamp local,
               const std::shared_ptr<const ServerStamps>& server, LocalStamp check);

    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

private:
    friend class cCustListSyncItem;

    // One table of one customer.
    struct Cell {
        LocalStamp lc;
        LocalStamp comp;
        std::int32_t flag = 0;
        bool backuped = true;
        // Where the server stamp comes from: 0 none, 1 the customer's newest roster, k + 2
        // older[k]. A scan of one customer against a newer roster can mix rosters.
        std::uint8_t svFrom = 0;
    };
    struct Sources {
        std::shared_ptr<const ServerStamps> newest;
        std::vector<std::shared_ptr<const ServerStamps>> older;
    };
    Cell& CellAt(int index, size_t position) {
        return tables_[static_cast<size_t>(index)][position];
    }
    const Cell& CellAt(int index, size_t position) const {
        return tables_[static_cast<size_t>(index)][position];
    }
    const ServerStamps* Source(int index, size_t position) const;
    void SetSource(int index, size_t position, const std::shared_ptr<const ServerStamps>& server);
    void Reindex();

    std::vector<std::unique_ptr<cCustListSyncItem>> items_;
    std::array<std::vector<Cell>, kBackupTableCount> tables_;  // per table, by position
    std::vector<Sources> sources_;                             // by position
    std::vector<std::int32_t> ids_;                            // by position
    std::vector<bool> plainKey_;                               // by position: the key is "K" + id
    std::unordered_map<std::string, size_t> byKey_;
    std::unordered_map<std::int32_t, size_t> byId_;  // first position of each number
    std::vector<bool> firstOfId_;                    // by position: byId_ names it
    std::string enabledIDs_;
    std::string disabledIDs_;
};

}  // namespace morvane
