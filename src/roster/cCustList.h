// The server's customer roster as one reply brings it, compared with tCustomer, scanned
// table by table into the snapshot, and taken whole by the roster download.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "store/BackupTableIndex.h"
#include "store/ServerStamps.h"

namespace morvane {

namespace forms {
class Form;
}
namespace platform {
class XmlDocument;
class XmlNode;
}  // namespace platform
class cCustListSync;

class cCustListItem {
public:
    std::string Key;
    std::int32_t id = 0;
    std::int32_t Disabled = 0;
    std::string Code;
    std::string CorpName0;
    std::string CorpKanaS;
    // The server stamps of the 53 tables; the snapshot shares them. Null: all "".
    std::shared_ptr<const ServerStamps> Stamps;
    std::int32_t InetEnableFlag = 0;

    std::string_view RecordUpdate(int index) const {
        return Stamps ? Stamps->Text(index) : std::string_view();
    }
};

class cCustList {
public:
    // The four ID texts the user chose in the last roster dialog.
    const std::string& AddLocalIDs() const { return addLocalIDs_; }
    const std::string& AddServerIDs() const { return addServerIDs_; }
    const std::string& DelLocalIDs() const { return delLocalIDs_; }
    const std::string& DelServerIDs() const { return delServerIDs_; }
    // The LocalDB of the last CompareLocalDB, for the dialogs that follow.
    const std::string& LocalDB() const { return localDb_; }

    // Clears, then reads a getCompList reply; false for a malformed or incomplete one.
    bool ReadXML(std::string_view xml);
    // The same on a reply the reply check has already parsed.
    bool ReadXML(const platform::XmlDocument& doc);
    // 0 the rosters agree (or both are empty), 3 they differ, 4 the server's is empty,
    // 5 the local one is (the host's sample customer alone counts as empty). 0 on failure.
    std::int32_t CompareLocalDB(const std::string& localDb);
    // Fills the snapshot for every customer (custId 0) or one, from the 53 tables.
    void CompareLocalDBTable(const std::string& localDb, const std::string& prefDb,
                             cCustListSync& sync, std::int32_t custId);
    // Takes the server's roster into tCustomer in one transaction; 1 on success, else 0
    // with tCustomer as it was.
    std::int32_t SyncDownload(const std::string& localDb);
    // Local IDs missing on the server, server IDs missing locally, and common IDs whose
    // Code, CorpName0 or CorpKanaS differ; comma texts. 1 on success, else 0.
    std::int32_t GetUploadIDs(const std::string& localDb, std::string& addIDs, std::string& delIDs,
                              std::string& updateIDs);

    // Asks the user how to reconcile rosters that differ, by a dialog whose kind depends on
    // how far apart they are: -1 cancelled, 0 nothing to ask, 1 take the server's roster,
    // 2 the local one, 4 the server's is empty, 5 the local one is, 6 the four ID texts hold
    // the choices.
    std::int32_t ShowCompareCustListDlg(forms::Form* owner);

    // Appends, or inserts before position `index` when it lies between 1 and Count.
    cCustListItem& Add(std::int32_t id, std::int32_t index = 0);
    // "K" + id when an item has this id, else "".
    std::string SearchItemKey(std::int32_t id) const;
    cCustListItem* Item(std::string_view key);
    cCustListItem* ItemAt(std::int32_t position);  // from 1
    std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
    void Remove(std::string_view key);
    void Clear();

    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

private:
    bool ParseCompList(const platform::XmlDocument& doc);
    bool AnalyzeCustListItem(const platform::XmlNode& node);
    void Reindex();
    const cCustListItem* ItemById(std::int32_t id) const;
    // The same, trying first the place after the last one found.
    const cCustListItem* ItemById(std::int32_t id, size_t& cursor) const;

    std::vector<std::unique_ptr<cCustListItem>> items_;
    std::unordered_map<std::string, size_t> byKey_;
    std::unordered_map<std::int32_t, size_t> byId_;
    std::vector<bool> firstOfId_;  // per position: byId_ names it
    std::string localDb_;
    std::string addLocalIDs_, addServerIDs_, delLocalIDs_, delServerIDs_;
};

// The numbers of a comma text; the empty text holds none.
std::vector<std::int32_t> SplitIDs(std::string_view ids);

}  // namespace morvane
