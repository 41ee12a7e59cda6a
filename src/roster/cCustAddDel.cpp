#include "roster/cCustAddDel.h"

#include "platform/Dao.h"
#include "session/mdlLogin.h"
#include "store/mdlMorvaneCommon.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"
#include "util/Nz.h"

namespace morvane {
namespace {

// Only the reply check judges a reply here: a refusal in the payload's own words passes.
std::int32_t Accepted(const std::string& reply) {
    return !reply.empty() && GetLoginState() == 1 ? 1 : 0;
}

}  // namespace

bool cCustAddDel::ReadLocalCustomer(const std::string& localDb, std::int32_t custId) {
    CustomerID = 0;
    code_.clear();
    corpName0_.clear();
    corpKanaS_.clear();
    auto ws = CreateMorvaneWorkspace();
    dao::Database& db = ws->OpenDatabase(localDb);
    auto rs = db.OpenRecordset(
        "SELECT TOP 1 * FROM tCustomer WHERE id = " + std::to_string(custId) + " ORDER BY id DESC;",
        dao::dbOpenDynaset, dao::dbReadOnly);
    if (rs->Eof()) return false;
    // A deleted row is sent all the same: the host decides which customers go up.
    CustomerID = custId;
    code_ = NzString(rs->Fields("Code").GetValue());
    corpName0_ = NzString(rs->Fields("CorpName0").GetValue());
    corpKanaS_ = NzString(rs->Fields("CorpKanaS").GetValue());
    return true;
}

std::int32_t cCustAddDel::SyncUploadAddCustomer(const std::string& localDb, std::int32_t custId) {
    if (!ReadLocalCustomer(localDb, custId)) return 0;
    std::string body = LowerCustomerBody(custId);
    AppendField(body, "Code", code_);
    AppendField(body, "CorpName0", corpName0_);
    AppendField(body, "CorpKanaS", corpKanaS_);
    // The server's kana name gets the short kana; the local CorpKana0 column is not read.
    AppendField(body, "CorpKana0", corpKanaS_);
    return Accepted(SendRequest(page::kCreateCompKihon, body));
}

std::int32_t cCustAddDel::SyncUploadDelCustomer(std::int32_t custId) {
    CustomerID = custId;
    return Accepted(SendRequest(page::kDeleteCompKihon, LowerCustomerBody(custId)));
}

}  // namespace morvane
