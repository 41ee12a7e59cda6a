#include "prefcust/cP99KikaiIchiran.h"

#include "lists/ListUpload.h"
#include "prefcust/PrefCustRead.h"
#include "store/mdlMorvaneCommon.h"
#include "transport/mdlServerConst.h"
#include "util/Nz.h"

namespace morvane {
namespace {

KikaiDataFile ReadDataFile(dao::Recordset& rs) {
    return {NzString(rs["DataFileID"]), NzString(rs["DataFileID_KY"]),
            NzString(rs["DataFileIDStr"]), NzString(rs["DataFileIDStr_KY"])};
}

template <size_t N>
void ReadFields(dao::Recordset& rs, const std::array<std::string_view, N>& names,
                std::array<std::string, N>& values) {
    for (size_t i = 0; i < N; ++i) values[i] = NzString(rs[names[i]]);
}

template <size_t N>
void AppendFields(std::string& body, const std::array<std::string_view, N>& names,
                  const std::array<std::string, N>& values) {
    for (size_t i = 0; i < N; ++i) AppendField(body, names[i], values[i]);
}

}  // namespace

std::string cP99KikaiIchiranSub::Field(std::string_view name) const {
    for (size_t i = 0; i < kKikaiIchiranSubFields.size(); ++i)
        if (kKikaiIchiranSubFields[i] == name) return fields[i];
    return {};
}

std::string cP99KikaiIchiran::RowFilter(std::int32_t custId, std::int32_t dataFileType,
                                        double dataId) {
    if (dataFileType != 1 && dataFileType != 2) return {};
    return " WHERE CustomerID = " + std::to_string(custId) +
           (dataFileType == 1 ? " AND DataFileID = " : " AND DataFileID_KY = ") +
           DoubleText(dataId);
}

bool cP99KikaiIchiran::ReadLocalDB(const std::string& LocalDB, std::int32_t CustID, double DataID,
                                   std::int32_t dataFileType) {
    *this = cP99KikaiIchiran();
    const std::int16_t custId = prefcust::FormCustomerNumber(CustID);
    customerId_ = custId;
    const std::string filter = RowFilter(custId, dataFileType, DataID);
    auto ws = CreateMorvaneWorkspace();
    dao::Database& db = ws->OpenDatabase(LocalDB);
    bool found = false;
    {
        auto rs =
            db.OpenRecordset("SELECT * FROM t99_KIKAIICHIRAN_MAIN " + filter + " AND disabled = 0",
                             dao::dbOpenDynaset, dao::dbReadOnly);
        if (!rs->Eof()) {
            found = true;
            mainId_ = NzString(rs->Fields("id").GetValue());
            ReadFields(*rs, kKikaiIchiranMainFields, main_);
            mainDataFile_ = ReadDataFile(*rs);
            recordUpdate_ = NzString(rs->Fields("RecordUpdate").GetValue());
        }
    }
    auto rs = db.OpenRecordset(
        "SELECT * FROM t99_KIKAIICHIRAN_SUB " + filter + " AND disabled = 0 ORDER BY vno",
        dao::dbOpenDynaset, dao::dbReadOnly);
    for (; !rs->Eof(); rs->MoveNext()) {
        cP99KikaiIchiranSub sub;
        sub.id = NzString(rs->Fields("id").GetValue());
        ReadFields(*rs, kKikaiIchiranSubFields, sub.fields);
        sub.dataFile = ReadDataFile(*rs);
        subs_.push_back(std::move(sub));
    }
    return found;
}

std::int32_t cP99KikaiIchiran::SyncUpload(const std::string& LocalDB, std::int32_t CustID,
                                          double DataID, bool bKessan) {
    try {
        const std::int32_t type = bKessan ? 1 : 2;
        if (!ReadLocalDB(LocalDB, CustID, DataID, type)) return 0;
        // The login is read anew for every post: the token changes with every reply.
        const auto start = [&] {
            std::string body = UpperCustomerBody(CustID);
            AppendField(body, "DataFileID", DoubleText(DataID));
            AppendField(body, "DataFileType", std::to_string(type));
            return body;
        };
        std::string body = start();
        AppendField(body, "KikaiIchiranMainItemID", mainId_);
        AppendFields(body, kKikaiIchiranMainFields, main_);
        std::string reply = SendRequest(page::kSetKikaiIchiranMain, body);
        if (GetLoginState() != 1 || reply.empty()) return 0;
        SetInetCheckDate(LocalDB, "t99_KIKAIICHIRAN_MAIN",
                         RowFilter(customerId_, type, DataID) + " AND disabled = 0");

        bool first = true;
        for (const cP99KikaiIchiranSub& sub : subs_) {
            body = start();
            AppendField(body, "KikaiIchiranSubItemID", sub.id);
            if (first) body += record::kDisabledAll;
            first = false;
            AppendFields(body, kKikaiIchiranSubFields, sub.fields);
            reply = SendRequest(page::kSetKikaiIchiranSub, body);
            if (GetLoginState() != 1 || reply.empty()) return 0;
        }
        // A list without machines still empties the server's.
        if (subs_.empty())
            reply = SendRequest(page::kSetKikaiIchiranSub, start() + record::kDisabledAll);
        // The machine rows are not stamped: only the main table is.
        return GetLoginState() == 1 && !reply.empty() ? 1 : 0;
    } catch (...) {
        return prefcust::TrapFailure(std::int32_t{0});
    }
}

}  // namespace morvane
