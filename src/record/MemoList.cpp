#include "record/MemoList.h"

#include "lists/ListKinds.h"
#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cCustKihonMemoItem;
using F = record::ListField<I>;

// A note's dates are kept to the second, and Null when they are no date.
F Moment(std::string_view name, record::Slot<I> slot) {
    return F::Date(name, std::move(slot), record::kStampFormat, record::kStampFormat);
}

// The other texts are optional: an item without them is still whole.
F Optional(std::string_view name, record::Slot<I> slot) {
    F f = F::Text(name, std::move(slot));
    f.row.flagged = false;
    return f;
}

record::ListDecl<I> Build() {
    record::ListDecl<I> s;
    s.listTag = "MemoList";
    s.countTag = "MemoCount";
    s.itemTag = "MemoItem";
    s.itemIdTag = "MemoItemID";
    s.table = "tCustomerHistory";
    s.walkOrder = " ORDER BY id";
    s.strategy = record::RowStrategy::Pool;
    s.vno = record::VnoPolicy::Position;
    s.stampAtPayload = true;
    s.getPage = page::kGetMemo;
    s.getRoutine = facade::Routine::Progress;
    s.setPage = page::kSetMemo;
    s.emptyListPage = page::kSetMemo;

    // In the order of the upload body; a comparison stops at the first difference in any order.
    s.fields = {
        F::Text("History", &I::History),      Moment("RegDate", &I::RegDate),
        Moment("UpdateDate", &I::UpdateDate), Optional("other1", {&I::other, 0}),
        Optional("other2", {&I::other, 1}),   Optional("other3", {&I::other, 2}),
    };
    return s;
}

}  // namespace

const record::ListDecl<cCustKihonMemoItem>& MemoList::Declaration() {
    static const record::ListDecl<cCustKihonMemoItem> decl = Build();
    return decl;
}

}  // namespace morvane
