#include "dated/cCustKihonOther.h"

#include "lists/ListKinds.h"
#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cCustKihonOtherItem;
using F = record::ListField<I>;

// Both dates are held, written and read to the second.
F Moment(std::string_view name, record::Slot<I> slot) {
    return F::Date(name, std::move(slot), record::kStampFormat, record::kStampFormat);
}

record::ListDecl<I> Build() {
    record::ListDecl<I> s;
    s.listTag = "OtherDataList";
    s.countTag = "OtherDataCount";
    s.itemTag = "OtherDataItem";
    s.itemIdTag = "OtherDataItemID";
    s.table = "tCustomerOtherFile";
    s.strategy = record::RowStrategy::Pool;
    s.vno = record::VnoPolicy::None;
    s.getPage = page::kGetOtherData;
    s.getRoutine = facade::Routine::Progress;
    s.setPage = page::kSetOtherData;
    // So it has always been: the unreachable empty-list post goes to the memo page.
    s.emptyListPage = page::kSetMemo;

    // In the order of the upload body.
    s.fields = {
        F::Text("DataFile", &I::DataFile),
        Moment("RegDate", &I::RegDate),
        Moment("UpdateDate", &I::UpdateDate),
        F::Text("other", &I::other).Column("Other"),
    };
    return s;
}

}  // namespace

const record::ListDecl<cCustKihonOtherItem>& cCustKihonOther::Declaration() {
    static const record::ListDecl<cCustKihonOtherItem> decl = Build();
    return decl;
}

}  // namespace morvane
