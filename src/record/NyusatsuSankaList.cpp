#include "record/NyusatsuSankaList.h"

#include "lists/ListKinds.h"
#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cCustKihonNyusatsuSankaItem;
using F = record::ListField<I>;
using record::Cmp;

// A 32-bit number straight from its text; a text that is no number leaves the member.
F Number(std::string_view name, std::int32_t I::*member, Cmp cmp) {
    F f = F::Integer(name, member);
    f.row.conv = record::Conv::Long;
    f.row.cmp = cmp;
    return f;
}

// Carried to and fro, never compared.
F Carried(std::string_view name, std::string I::*member) {
    F f = F::Text(name, member);
    f.row.cmp = Cmp::None;
    return f;
}

record::ListDecl<I> Build() {
    record::ListDecl<I> s;
    s.listTag = "NyusatsuSankaList";
    s.countTag = "NyusatsuSankaCount";
    s.itemTag = "NyusatsuSankaItem";
    s.itemIdTag = "NyusatsuSankaItemID";
    s.table = "tCustomerNyusatsuHistory_V5";
    s.walkOrder = " ORDER BY vno";
    s.strategy = record::RowStrategy::Pool;
    s.vno = record::VnoPolicy::Position;
    s.stampAtPayload = true;
    s.getPage = page::kGetNyusatsuSanka;
    s.getRoutine = facade::Routine::Progress;
    s.setPage = page::kSetNyusatsuSanka;
    s.emptyListPage = page::kSetNyusatsuSanka;

    // In the order of the upload body.
    s.fields = {
        F::Text("KikanCode", &I::KikanCode),
        Number("Effective", &I::Effective, Cmp::Long),
        Number("Reservation", &I::Reservation, Cmp::Long),
        Carried("Other", &I::other),
        Carried("DataFile", &I::DataFile),
        Number("CheckSync", &I::CheckSync, Cmp::None),
        Carried("Other1", &I::other1),
    };
    return s;
}

}  // namespace

const record::ListDecl<cCustKihonNyusatsuSankaItem>& NyusatsuSankaList::Declaration() {
    static const record::ListDecl<cCustKihonNyusatsuSankaItem> decl = Build();
    return decl;
}

}  // namespace morvane
