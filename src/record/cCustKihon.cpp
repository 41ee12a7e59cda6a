#include "record/cCustKihon.h"

#include <array>
#include <exception>
#include <unordered_map>
#include <vector>

#include "platform/Dao.h"
#include "platform/Xml.h"
#include "record/GyoshuFields.h"
#include "session/mdlErrTrap.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "store/mdlMorvaneCommon.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"
#include "util/Nz.h"
#include "util/Text.h"

namespace morvane {
namespace {

// Where each CompKihon tag lands: its row, and its field and main flag (-1 for none).
struct TagIndex {
    std::unordered_map<std::string, size_t> rowOfTag;  // upper-case tag
    std::vector<int> fieldFlag;
    std::vector<int> mainFlag;
};

const TagIndex& Tags() {
    static const TagIndex index = [] {
        TagIndex t;
        int field = 0;
        int main = 0;
        const auto& rows = KihonFields();
        for (size_t i = 0; i < rows.size(); ++i) {
            const KihonField& row = rows[i];
            t.fieldFlag.push_back(!row.tag.empty() && row.flagged ? field++ : -1);
            t.mainFlag.push_back(row.required ? main++ : -1);
            if (!row.tag.empty()) t.rowOfTag.emplace(ToUpperAscii(row.tag), i);
        }
        return t;
    }();
    return index;
}

std::string RowCondition(std::int32_t custId) {
    return "disabled=0 AND id =" + std::to_string(custId);
}

std::string RowSql(std::int32_t custId) {
    return std::string("SELECT * FROM ") + kKihonTable + " WHERE " + RowCondition(custId);
}

std::string SideRowSql(std::string_view table, std::int32_t custId) {
    return "SELECT * FROM " + std::string(table) +
           " WHERE disabled = 0 AND Customerid =" + std::to_string(custId) + " ORDER BY id";
}

constexpr std::array<const char*, 2> kSideTables{kKeisinTable, kNyusatsuTable};

// The error trap at a worker's closing block.
void Trap() {
    CaptureError(std::current_exception());
    ErrTrap();
}

bool Empty(dao::Recordset& rs) { return rs.Bof() && rs.Eof(); }

std::string StampOrEmpty(const std::string& text) {
    return IsDateText(text) ? text : std::string();
}

}  // namespace

void cCustKihon::ClearData() {
    customerId_ = 0;
    record_ = KihonRecord{};
    recordUpdate_.clear();
    shokuinCount_ = 0;
    shokuin_.Clear();
    eigyosho_.Clear();
    memo_.Clear();
    nyusatsuKikan_.Clear();
    nyusatsuSanka_.Clear();
    kanriNendoNyusatsu_.clear();
    rendoDifferFlags_.fill(false);
}

// ---- Reading a reply -------------------------------------------------------------------

bool cCustKihon::ReadXMLMain(std::string_view xml) { return ReadXMLSection(xml, Section::Main); }
bool cCustKihon::ReadXMLMain(const platform::XmlDocument& doc) {
    return ReadXMLSection(doc, Section::Main);
}
bool cCustKihon::ReadXMLNormal(std::string_view xml) {
    return ReadXMLSection(xml, Section::Normal);
}
bool cCustKihon::ReadXMLNormal(const platform::XmlDocument& doc) {
    return ReadXMLSection(doc, Section::Normal);
}
bool cCustKihon::ReadXMLGyosyu(std::string_view xml) {
    return ReadXMLSection(xml, Section::Gyosyu);
}

bool cCustKihon::ReadXMLSection(std::string_view xml, Section section) {
    ClearData();
    const auto doc = platform::XmlDocument::Load(xml);
    if (!doc) return false;
    return ReadXMLSection(*doc, section);
}

bool cCustKihon::ReadXMLSection(const platform::XmlDocument& doc, Section section) {
    ClearData();
    const TagIndex& tags = Tags();
    const auto& rows = KihonFields();
    bool customerIdSeen = false;
    bool recordUpdateSeen = false;
    bool shokuinCountSeen = false;
    std::array<bool, kKihonFieldFlags> fieldFlags{};
    std::array<bool, kKihonMainFlags> mainFlags{};
    std::array<bool, kGyoshuFlags> gyoshuFlags{};

    const platform::XmlNode root = doc.DocumentElement();
    if (!root) return false;
    const auto customers = root.SelectNodes("Customer");
    if (customers.empty()) return false;
    for (auto child = customers[0].FirstChildElement(); child; child = child.NextSiblingElement()) {
        const std::string name = ToUpperAscii(child.NameView());
        if (name == "CUSTOMERID") {
            customerIdSeen = true;
            if (auto id = record::FromXmlText(record::Conv::Long, true, child.Text()))
                customerId_ = id->AsLong();
        } else if (name == "RECORDUPDATE") {
            recordUpdateSeen = true;
            recordUpdate_ = StampOrEmpty(child.Text());
        } else if (name == "COMPKIHON") {
            fieldFlags.fill(false);
            mainFlags.fill(false);
            for (auto f = child.FirstChildElement(); f; f = f.NextSiblingElement()) {
                const auto at = tags.rowOfTag.find(ToUpperAscii(f.NameView()));
                if (at == tags.rowOfTag.end()) continue;
                const size_t i = at->second;
                if (tags.fieldFlag[i] >= 0) fieldFlags[tags.fieldFlag[i]] = true;
                if (tags.mainFlag[i] >= 0) mainFlags[tags.mainFlag[i]] = true;
                // A text that will not convert leaves the field, the flag stays set.
                record::StoreXml(rows[i], record_, f.Text());
            }
        } else if (name == "GYOSHU") {
            for (auto f = child.FirstChildElement(); f; f = f.NextSiblingElement()) {
                const std::string tag = ToUpperAscii(f.NameView());
                // The name tells the kind of value before the number is matched.
                Value value;
                if (tag.find("EPMTCHECK") != std::string::npos)
                    value = Value(NzLong(f.Text()));
                else if (tag.find("EPMTDATE") != std::string::npos)
                    value = Value(GyoshuDateText(f.Text()));
                else
                    continue;
                const int row = GyoshuGridRow(tag);
                if (row < 0) continue;
                gyoshuFlags[row] = true;
                GyoshuGridFields()[row].slot.Set(record_, value);
            }
        } else if (name == "SHOKUINLIST") {
            // Only the count matters here; the staff items are read by their own section.
            for (auto f = child.FirstChildElement(); f; f = f.NextSiblingElement()) {
                const std::string inner = ToUpperAscii(f.NameView());
                if (inner == "SHOKUINCOUNT") {
                    shokuinCountSeen = true;
                    if (auto n = record::FromXmlText(record::Conv::Long, true, f.Text()))
                        shokuinCount_ = n->AsLong();
                } else if (inner == "RECORDUPDATE") {
                    recordUpdateSeen = true;
                    recordUpdate_ = StampOrEmpty(f.Text());
                }
            }
        }
    }

    auto all = [](const auto& flags) {
        for (bool f : flags)
            if (!f) return false;
        return true;
    };
    auto any = [](const auto& flags) {
        for (bool f : flags)
            if (f) return true;
        return false;
    };
    const bool mainRecord = customerIdSeen && recordUpdateSeen && all(mainFlags);
    switch (section) {
        case Section::Main:
            return mainRecord && shokuinCountSeen;
        case Section::Normal:
            return mainRecord && any(fieldFlags);
        case Section::Gyosyu:
            return customerIdSeen && all(gyoshuFlags);
        case Section::RendoInfo:
            return mainRecord && any(fieldFlags) && all(gyoshuFlags);
    }
    return false;
}

// ---- Comparing -------------------------------------------------------------------------

std::int32_t cCustKihon::CompareLocalDBMain(const std::string& LocalDB, std::int32_t CustID) {
    return CompareLocal(LocalDB, CustID, true);
}

std::int32_t cCustKihon::CompareLocalDBNormal(const std::string& LocalDB, std::int32_t CustID) {
    return CompareLocal(LocalDB, CustID, false);
}

std::int32_t cCustKihon::CompareLocal(const std::string& LocalDB, std::int32_t CustID,
                                      bool mainOnly) {
    try {
        {
            auto ws = CreateMorvaneWorkspace();
            dao::Database& db = ws->OpenDatabase(LocalDB);
            auto rs = db.OpenRecordset(RowSql(CustID), dao::dbOpenDynaset, dao::dbReadOnly);
            if (Empty(*rs)) return 0;
            rs->MoveFirst();
            const std::int32_t code = CompareInetDates(Value(recordUpdate_), (*rs)["RecordUpdate"],
                                                       (*rs)["InetCheckDate"]);
            if (code == 0) return 0;  // the stamps agree: content is not looked at
            for (const KihonField& row : KihonFields()) {
                if (!row.table.empty() || row.cmp == record::Cmp::None) continue;
                if (mainOnly && !row.required) continue;
                if (record::Differs(row.cmp, row.format, row.slot.Get(record_), (*rs)[row.column]))
                    return code;
            }
        }  // closed before the stamp, which opens the file anew
        // Only the stamps differed. The main comparison leaves the row alone.
        if (!mainOnly) SetInetCheckDate(LocalDB, kKihonTable, RowCondition(CustID));
        return 0;
    } catch (...) {
        Trap();
        return 0;
    }
}

// ---- Writing rows ----------------------------------------------------------------------

std::int32_t cCustKihon::SyncDownloadMain(const std::string& LocalDB, std::int32_t CustID) {
    return Download(LocalDB, CustID, true);
}

std::int32_t cCustKihon::SyncDownloadNormal(const std::string& LocalDB, std::int32_t CustID) {
    return Download(LocalDB, CustID, false);
}

std::int32_t cCustKihon::WriteLocal(
    const std::string& LocalDB,
    const std::function<void(dao::Database&, const Value&)>& write) const {
    try {
        auto ws = CreateMorvaneWorkspace();
        dao::Database& db = ws->OpenDatabase(LocalDB);
        ws->BeginTrans();
        write(db, Value(State().Clock().Now()));
        ws->CommitTrans();
        return 1;
    } catch (...) {
        Trap();
        return 0;
    }
}

void cCustKihon::PutRow(dao::Recordset& rs, const std::vector<const KihonField*>& fields,
                        const Value* now) const {
    for (const KihonField* row : fields)
        if (auto v = record::ToColumn(row->guard, row->writeFormat, row->slot.Get(record_)))
            rs.Fields(row->column).PutValue(*v);
    if (now) {
        rs.Fields("RecordUpdate").PutValue(*now);
        rs.Fields("InetCheckDate").PutValue(*now);
    }
    rs.Update();
}

void cCustKihon::EditFirstRow(dao::Database& db, const std::string& sql,
                              const std::vector<const KihonField*>& fields,
                              const Value* now) const {
    // A missing row is not created.
    auto rs = db.OpenRecordset(sql, dao::dbOpenDynaset);
    if (Empty(*rs)) return;
    rs->MoveFirst();
    rs->Edit();
    PutRow(*rs, fields, now);
}

std::int32_t cCustKihon::Download(const std::string& LocalDB, std::int32_t CustID, bool mainOnly) {
    const auto pick = [](auto take) {
        std::vector<const KihonField*> out;
        for (const KihonField& row : KihonFields())
            if (take(row)) out.push_back(&row);
        return out;
    };
    return WriteLocal(LocalDB, [&](dao::Database& db, const Value& now) {
        // A missing main row is not created; the side rows are still written.
        EditFirstRow(db, RowSql(CustID), pick([&](const KihonField& row) {
                         return row.table.empty() && (row.required || !mainOnly);
                     }),
                     mainOnly ? nullptr : &now);
        if (mainOnly) return;
        for (const char* table : kSideTables) {
            auto rs = db.OpenRecordset(SideRowSql(table, CustID), dao::dbOpenDynaset);
            if (Empty(*rs)) {
                rs->AddNew();
            } else {
                rs->MoveFirst();
                rs->Edit();
            }
            rs->Fields("CustomerID").PutValue(Value(CustID));
            rs->Fields("Disabled").PutValue(Value(std::int32_t{0}));
            PutRow(*rs, pick([&](const KihonField& row) { return row.table == table; }), &now);
        }
    });
}

// ---- Loading and sending ---------------------------------------------------------------

bool cCustKihon::ReadLocalNormal(const std::string& LocalDB, std::int32_t CustID) {
    ClearData();
    try {
        return LoadLocalNormal(LocalDB, CustID);
    } catch (...) {
        Trap();
        return false;
    }
}

bool cCustKihon::LoadLocalNormal(const std::string& LocalDB, std::int32_t CustID) {
    auto ws = CreateMorvaneWorkspace();
    dao::Database& db = ws->OpenDatabase(LocalDB);
    {
        auto rs = db.OpenRecordset(RowSql(CustID), dao::dbOpenDynaset, dao::dbReadOnly);
        if (Empty(*rs)) return false;
        rs->MoveFirst();
        for (const KihonField& row : KihonFields()) {
            if (!row.table.empty()) continue;
            const Value v = (*rs)[row.column];
            if (row.nullFailsLoad && v.IsNull()) return false;
            record::LoadColumn(row, record_, v);
        }
    }
    for (const char* table : kSideTables) {
        auto rs = db.OpenRecordset(SideRowSql(table, CustID), dao::dbOpenDynaset, dao::dbReadOnly);
        if (Empty(*rs)) continue;  // the members stay 0
        rs->MoveFirst();
        for (const KihonField& row : KihonFields())
            if (row.table == table) record::LoadColumn(row, record_, (*rs)[row.column]);
    }
    LoadLocalGyosyu(db, CustID);
    customerId_ = CustID;
    return true;
}

void cCustKihon::LoadKanriNendo(const std::string& LocalDB, std::int32_t CustID) {
    auto ws = CreateMorvaneWorkspace();
    auto rs = ws->OpenDatabase(LocalDB).OpenRecordset(RowSql(CustID), dao::dbOpenDynaset,
                                                      dao::dbReadOnly);
    if (Empty(*rs)) return;
    rs->MoveFirst();
    kanriNendoNyusatsu_ = NzString((*rs)["KanriNendoNyusatsu"]);
}

std::string cCustKihon::UploadBody(std::int32_t CustID) const {
    std::string body = UpperCustomerBody(CustID);
    for (const KihonField& row : KihonFields())
        if (!row.key.empty())
            AppendField(body, row.key, record::ToBody(row.conv, row.slot.Get(record_)));
    return body;
}

std::int32_t cCustKihon::SyncUploadNormal(const std::string& LocalDB, std::int32_t CustID) {
    try {
        if (!ReadLocalNormal(LocalDB, CustID)) return 0;  // nothing is sent
        const std::string reply =
            SendRequestProgress(page::kSetCompKihon, UploadBody(CustID), "", nullptr);
        if (reply.empty() || GetLoginState() != 1) return 0;
        SetInetCheckDate(LocalDB, kKihonTable, RowCondition(CustID));
        return 1;
    } catch (...) {
        Trap();
        return 0;
    }
}

}  // namespace morvane
