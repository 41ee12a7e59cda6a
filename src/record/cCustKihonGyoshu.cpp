// The trades of cCustKihon: the permit header and the grid of 31 trades, compared,
// written, loaded and sent.
#include <exception>
#include <string>

#include "platform/Dao.h"
#include "record/GyoshuFields.h"
#include "record/cCustKihon.h"
#include "session/mdlErrTrap.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "store/mdlMorvaneCommon.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"
#include "util/Nz.h"

namespace morvane {
namespace {

std::string HeaderCondition(std::int32_t custId) {
    return "disabled=0 AND id =" + std::to_string(custId);
}

std::string HeaderSql(std::int32_t custId) {
    return std::string("SELECT * FROM ") + kKihonTable + " WHERE " + HeaderCondition(custId);
}

std::string GridCondition(std::int32_t custId) {
    return "disabled=0 And CustomerID =" + std::to_string(custId);
}

std::string GridSql(std::int32_t custId) {
    return std::string("SELECT * FROM ") + kGyoshuTable +
           " WHERE disabled=0 AND Customerid =" + std::to_string(custId) +
           " ORDER BY GyoShuCode ASC, Id ASC;";
}

void Trap() {
    CaptureError(std::current_exception());
    ErrTrap();
}

bool Empty(dao::Recordset& rs) { return rs.Bof() && rs.Eof(); }

// Stamps both tables as agreed.
void StampAgreed(const std::string& LocalDB, std::int32_t custId) {
    SetInetCheckDate(LocalDB, kKihonTable, HeaderCondition(custId));
    SetInetCheckDate(LocalDB, kGyoshuTable, GridCondition(custId));
}

}  // namespace

std::int32_t cCustKihon::CompareLocalDBGyosyu(const std::string& LocalDB, std::int32_t CustID) {
    try {
        bool differs = false;
        {
            auto ws = CreateMorvaneWorkspace();
            dao::Database& db = ws->OpenDatabase(LocalDB);
            auto rs = db.OpenRecordset(HeaderSql(CustID), dao::dbOpenDynaset, dao::dbReadOnly);
            if (!Empty(*rs)) {
                rs->MoveFirst();
                for (const KihonField& row : GyoshuHeaderFields()) {
                    if (record::Differs(row.cmp, row.format, row.slot.Get(record_),
                                        (*rs)[row.column])) {
                        differs = true;
                        break;
                    }
                }
            }
        }
        // The grid's own stamps decide whether to look, whatever the header showed.
        const std::int32_t code =
            CompareInetDates(Value(recordUpdate_),
                             GetRecordUpdateLocal(LocalDB, kGyoshuTable, GridCondition(CustID)),
                             GetInetCheckDateLocal(LocalDB, kGyoshuTable, GridCondition(CustID)));
        if (code == 0) return 0;
        {
            auto ws = CreateMorvaneWorkspace();
            dao::Database& db = ws->OpenDatabase(LocalDB);
            auto rs = db.OpenRecordset(GridSql(CustID), dao::dbOpenDynaset, dao::dbReadOnly);
            if (Empty(*rs)) {
                differs = true;
            } else {
                rs->MoveFirst();
                for (int i = 0; i < kGyoshuCount; ++i) {
                    // A grid that is not the 31 trades in order is no difference, and no
                    // agreement either.
                    if (rs->Eof()) return 0;
                    if (NzLong((*rs)["GyoshuCode"]) != i + 1) return 0;
                    if (!differs) {
                        for (const KihonField* cell : {&GyoshuCheckField(i), &GyoshuDateField(i)})
                            if (record::Differs(cell->cmp, cell->format, cell->slot.Get(record_),
                                                (*rs)[cell->column]))
                                differs = true;
                    }
                    rs->MoveNext();
                }
            }
        }
        if (differs) return code;
        StampAgreed(LocalDB, CustID);
        return 0;
    } catch (...) {
        Trap();
        return 0;
    }
}

std::int32_t cCustKihon::SyncDownloadGyosyu(const std::string& LocalDB, std::int32_t CustID) {
    return WriteLocal(LocalDB, [&](dao::Database& db, const Value& now) {
        std::vector<const KihonField*> header;
        for (const KihonField& row : GyoshuHeaderFields()) header.push_back(&row);
        EditFirstRow(db, HeaderSql(CustID), header, &now);
        // Rows are matched by position; an added row takes its code from the table.
        auto rs = db.OpenRecordset(GridSql(CustID), dao::dbOpenDynaset);
        bool adding = Empty(*rs);
        if (!adding) rs->MoveFirst();
        for (int i = 0; i < kGyoshuCount; ++i) {
            if (!adding && rs->Eof()) adding = true;
            if (adding) {
                rs->AddNew();
                rs->Fields("Customerid").PutValue(Value(CustID));
                rs->Fields("disabled").PutValue(Value(std::int32_t{0}));
            } else {
                rs->Edit();
            }
            PutRow(*rs, {&GyoshuCheckField(i), &GyoshuDateField(i)}, &now);
            if (!adding) rs->MoveNext();
        }
    });
}

void cCustKihon::LoadLocalGyosyu(dao::Database& db, std::int32_t CustID) {
    auto rs = db.OpenRecordset(GridSql(CustID), dao::dbOpenDynaset, dao::dbReadOnly);
    if (Empty(*rs)) return;
    rs->MoveFirst();
    for (int i = 0; i < kGyoshuCount && !rs->Eof(); ++i) {
        for (const KihonField* cell : {&GyoshuCheckField(i), &GyoshuDateField(i)})
            record::LoadColumn(*cell, record_, (*rs)[cell->column]);
        rs->MoveNext();
    }
}

std::string cCustKihon::GyoshuUploadBody(std::int32_t CustID) const {
    std::string body = UpperCustomerBody(CustID);
    for (const auto* rows : {&GyoshuHeaderFields(), &GyoshuGridFields()})
        for (const KihonField& row : *rows)
            AppendField(body, row.key, record::ToBody(row.conv, row.slot.Get(record_)));
    return body;
}

std::int32_t cCustKihon::SyncUploadGyoshu(const std::string& LocalDB, std::int32_t CustID) {
    try {
        if (!ReadLocalNormal(LocalDB, CustID)) return 0;  // nothing is sent
        const std::string reply =
            SendRequestProgress(page::kSetCompGyoshu, GyoshuUploadBody(CustID), "", nullptr);
        if (reply.empty() || GetLoginState() != 1) return 0;
        StampAgreed(LocalDB, CustID);
        return 1;
    } catch (...) {
        Trap();
        return 0;
    }
}

}  // namespace morvane
