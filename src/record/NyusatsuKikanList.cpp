#include "record/NyusatsuKikanList.h"

#include "lists/ListKinds.h"
#include "lists/NumberedNames.h"
#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cCustKihonNyusatsuKikanItem;
using F = record::ListField<I>;

constexpr auto kNendo = record::Numbered<10, 16>("Nendo", 1, 1);

// A row counts when any of its twelve texts is filled; blank rows of the grid never do.
constexpr std::string_view kFilled =
    " AND ((KikanName<>\"\") OR (Kubun<>\"\") "
    "   OR (Nendo1<>\"\") OR (Nendo2<>\"\") "
    "   OR (Nendo3<>\"\") OR (Nendo4<>\"\") "
    "   OR (Nendo5<>\"\") OR (Nendo6<>\"\") "
    "   OR (Nendo7<>\"\") OR (Nendo8<>\"\") "
    "   OR (Nendo9<>\"\") OR (Nendo10<>\"\")) ";

bool SkipBlank(const I& item) { return item.Blank(); }

record::ListDecl<I> Build() {
    record::ListDecl<I> s;
    s.listTag = "NyusatsuKikanList";
    s.countTag = "NyusatsuKikanCount";
    s.itemTag = "NyusatsuKikanItem";
    s.itemIdTag = "NyusatsuKikanItemID";
    s.table = "tCustomerNyusatsuKanri";
    s.liveFilter = kFilled;
    s.walkOrder = " ORDER BY LocalIndex";
    s.strategy = record::RowStrategy::Grid;
    s.gridRows = 100;
    s.vno = record::VnoPolicy::Position;
    s.positionName = "LocalIndex";
    s.stampAtPayload = true;
    s.skipOnUpload = SkipBlank;
    s.getPage = page::kGetNyusatsuKikan;
    s.getRoutine = facade::Routine::Progress;
    s.setPage = page::kSetNyusatsuKikan;
    s.emptyListPage = page::kSetNyusatsuKikan;

    // The server's LocalIndex is only compared: the rows take the item's position.
    s.fields = {F::Integer("LocalIndex", &I::LocalIndex).ByList(),
                F::Text("KikanName", &I::KikanName), F::Text("Kubun", &I::Kubun)};
    for (size_t i = 0; i < kNendo.size(); ++i)
        s.fields.push_back(F::Text(kNendo[i], {&I::Nendo, i}));
    return s;
}

}  // namespace

bool cCustKihonNyusatsuKikanItem::Blank() const {
    if (!KikanName.empty() || !Kubun.empty()) return false;
    for (const std::string& year : Nendo)
        if (!year.empty()) return false;
    return true;
}

const record::ListDecl<cCustKihonNyusatsuKikanItem>& NyusatsuKikanList::Declaration() {
    static const record::ListDecl<cCustKihonNyusatsuKikanItem> decl = Build();
    return decl;
}

}  // namespace morvane
