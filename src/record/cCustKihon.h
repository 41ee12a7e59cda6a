// One customer's base data as it travels between the server's replies, the local database
// and the upload bodies: the main record and its trades, read, compared, written and sent by
// their field tables.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "record/EigyoshoList.h"
#include "record/KihonFields.h"
#include "record/MemoList.h"
#include "record/NyusatsuKikanList.h"
#include "record/NyusatsuSankaList.h"
#include "record/ShokuinList.h"

namespace morvane {

namespace platform {
class XmlDocument;
}
namespace dao {
class Database;
class Recordset;
}  // namespace dao

// The four kinds the linkage calls move as one: main record, trades, staff, offices.
using RendoResults = std::array<std::int32_t, 4>;
using RendoFlags = std::array<bool, 4>;
// Flags the kinds whose result is not 0 and folds the results into one: 0 when none differ,
// 2 when any says the local data is newer, else 1 (asking the user included).
std::int32_t FoldRendoResults(const RendoResults& results, RendoFlags& flags);

class cCustKihon {
public:
    std::int32_t CustomerID() const { return customerId_; }
    const std::string& Code() const { return record_.Code; }
    // Every field of the main record; arrays are bounds-checked through at().
    const KihonRecord& Kihon() const { return record_; }
    // The stamp of the last section read; empty unless the XML text was a date.
    const std::string& RecordUpdate() const { return recordUpdate_; }
    std::int32_t ShokuinCount() const { return shokuinCount_; }

    // Clear, then read the main section: the 15 main fields and the staff count must be there.
    bool ReadXMLMain(std::string_view xml);
    bool ReadXMLMain(const platform::XmlDocument& doc);
    // Clear, then read the whole record: the 15 main fields must be there.
    bool ReadXMLNormal(std::string_view xml);
    bool ReadXMLNormal(const platform::XmlDocument& doc);

    // The decision code of the stamps when one of the 15 main fields differs, else 0.
    // Writes nothing.
    std::int32_t CompareLocalDBMain(const std::string& LocalDB, std::int32_t CustID);
    // The same over every compared field; stamps the row as agreed when only stamps differ.
    std::int32_t CompareLocalDBNormal(const std::string& LocalDB, std::int32_t CustID);
    // Writes the 15 main fields, without stamps and side rows; 1 on success.
    std::int32_t SyncDownloadMain(const std::string& LocalDB, std::int32_t CustID);
    // Writes the whole record and its two side rows, stamped now; 1 on success.
    std::int32_t SyncDownloadNormal(const std::string& LocalDB, std::int32_t CustID);
    // Loads the record from the database and posts it; 1 when the server took it.
    std::int32_t SyncUploadNormal(const std::string& LocalDB, std::int32_t CustID);

    // Clear, then read the trades: the header rides in CompKihon, the 31 checks and dates
    // of the grid must all be there.
    bool ReadXMLGyosyu(std::string_view xml);
    // Header first, then the trades' stamps, then the grid by position; a grid that is not
    // the 31 trades in order gives 0 and stamps nothing.
    std::int32_t CompareLocalDBGyosyu(const std::string& LocalDB, std::int32_t CustID);
    // Writes the header and the grid row by row, adding rows past the last; 1 on success.
    std::int32_t SyncDownloadGyosyu(const std::string& LocalDB, std::int32_t CustID);
    // Loads the record and posts the header and grid; 1 when the server took them.
    std::int32_t SyncUploadGyoshu(const std::string& LocalDB, std::int32_t CustID);
    // The body SyncUploadGyoshu posts for what the object holds.
    std::string GyoshuUploadBody(std::int32_t CustID) const;

    // Clear, then fill from the database; false when the row is missing or has no code.
    bool ReadLocalNormal(const std::string& LocalDB, std::int32_t CustID);
    // The body SyncUploadNormal posts for what the object holds.
    std::string UploadBody(std::int32_t CustID) const;

    // The customer's lists, each read, compared, written and sent by its declaration.
    // A read clears the whole object first; the stamp of the list read is RecordUpdate.
    const EigyoshoList& Eigyosho() const { return eigyosho_; }
    std::int32_t EigyoshoCount() const { return eigyosho_.Count(); }
    bool ReadXMLEigyosho(std::string_view xml);
    std::int32_t CompareLocalDBEigyosho(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadEigyosho(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadEigyosho(const std::string& LocalDB, std::int32_t CustID);

    const ShokuinList& Shokuin() const { return shokuin_; }
    bool ReadXMLShokuin(std::string_view xml);
    std::int32_t CompareLocalDBShokuin(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadShokuin(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadShokuin(const std::string& LocalDB, std::int32_t CustID);

    const MemoList& Memo() const { return memo_; }
    std::int32_t MemoCount() const { return memo_.Count(); }
    bool ReadXMLMemo(std::string_view xml);
    std::int32_t CompareLocalDBMemo(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadMemo(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadMemo(const std::string& LocalDB, std::int32_t CustID);

    const NyusatsuKikanList& NyusatsuKikan() const { return nyusatsuKikan_; }
    std::int32_t NyusatsuKikanCount() const { return nyusatsuKikan_.Count(); }
    // Only ever sent: the agency list's management year, from the main row.
    const std::string& KanriNendoNyusatsu() const { return kanriNendoNyusatsu_; }
    bool ReadXMLNyusatuKikan(std::string_view xml);
    std::int32_t CompareLocalDBNyusatsuKikan(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadNyusatsuKikan(const std::string& LocalDB, std::int32_t CustID);
    // Sends the filled rows, then the management year; stamps only when both were taken.
    std::int32_t SyncUploadNyusatsuKikan(const std::string& LocalDB, std::int32_t CustID);

    const NyusatsuSankaList& NyusatsuSanka() const { return nyusatsuSanka_; }
    bool ReadXMLNyusatuSanka(std::string_view xml);
    std::int32_t CompareLocalDBNyusatsuSanka(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncDownloadNyusatsuSanka(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t SyncUploadNyusatsuSanka(const std::string& LocalDB, std::int32_t CustID);

    // The linkage reply: main record, trades, staff and offices under the reply's last stamp.
    const RendoFlags& RendoDifferFlags() const { return rendoDifferFlags_; }
    bool ReadXMLRendoInfo(std::string_view xml);
    bool ReadXMLRendoInfo(const platform::XmlDocument& doc);
    // Compares the four kinds in order, flags those that differ and folds their results.
    std::int32_t CompareLocalDBRendoInfo(const std::string& LocalDB, std::int32_t CustID);
    // Writes the flagged kinds only; 1 with none flagged.
    std::int32_t SyncDownloadRendoInfo(const std::string& LocalDB, std::int32_t CustID);
    // Sends all four kinds in order, stopping at the first that fails.
    std::int32_t SyncUploadRendoInfo(const std::string& LocalDB, std::int32_t CustID);
    // Sends the customer's code alone; 0 and nothing sent when the code is empty.
    std::int32_t SyncUploadCustCode(const std::string& LocalDB, std::int32_t CustID);

private:
    enum class Section { Main = 0, Normal = 1, Gyosyu = 2, RendoInfo = 8 };
    void ClearData();
    bool ReadXMLSection(std::string_view xml, Section section);
    bool ReadXMLSection(const platform::XmlDocument& doc, Section section);
    bool LoadLocalNormal(const std::string& LocalDB, std::int32_t CustID);
    void LoadLocalGyosyu(dao::Database& db, std::int32_t CustID);
    // The management year from the customer's main row; empty when there is no row.
    void LoadKanriNendo(const std::string& LocalDB, std::int32_t CustID);
    std::int32_t CompareLocal(const std::string& LocalDB, std::int32_t CustID, bool mainOnly);
    std::int32_t Download(const std::string& LocalDB, std::int32_t CustID, bool mainOnly);
    // Runs `write` on the local database in one transaction, with the present time for the
    // rows' stamps: 1 when it committed, else 0 with the error trapped and nothing written.
    std::int32_t WriteLocal(const std::string& LocalDB,
                            const std::function<void(dao::Database&, const Value&)>& write) const;
    // Writes the record's value of each field into the row `rs` is editing or adding, and the
    // stamps when `now` is given, then saves the row.
    void PutRow(dao::Recordset& rs, const std::vector<const KihonField*>& fields,
                const Value* now) const;
    // The same into the first row `sql` selects; a missing row is not created.
    void EditFirstRow(dao::Database& db, const std::string& sql,
                      const std::vector<const KihonField*>& fields, const Value* now) const;

    std::int32_t customerId_ = 0;
    KihonRecord record_;
    std::string recordUpdate_;
    std::int32_t shokuinCount_ = 0;
    ShokuinList shokuin_;
    EigyoshoList eigyosho_;
    MemoList memo_;
    NyusatsuKikanList nyusatsuKikan_;
    NyusatsuSankaList nyusatsuSanka_;
    std::string kanriNendoNyusatsu_;
    RendoFlags rendoDifferFlags_{};
};

}  // namespace morvane
