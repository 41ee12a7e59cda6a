#include "record/EigyoshoList.h"

#include "lists/ListKinds.h"
#include "transport/mdlServerConst.h"
#include "util/Nz.h"

namespace morvane {
namespace {

using I = cCustKihonEigyoshoItem;
using F = record::ListField<I>;

// A mark: in a reply any number but 0 sets it, in a column only 1 does; so a 2 on both
// sides differs.
F Mark(std::string_view name, record::Slot<I> slot) {
    F f = F::Integer(name, std::move(slot));
    f.row.conv = record::Conv::NonZeroIsOne;
    f.row.load = record::Load::OnlyOneIsOne;
    return f;
}

record::ListDecl<I> Build() {
    record::ListDecl<I> s;
    s.listTag = "EigyoshoList";
    s.countTag = "EigyoshoCount";
    s.itemTag = "EigyoshoItem";
    s.itemIdTag = "EigyoshoItemID";
    s.table = "tCustomerEigyosyo";
    s.walkOrder = " ORDER BY vno,id";
    s.strategy = record::RowStrategy::Own;
    s.vno = record::VnoPolicy::Position;
    s.nextNoColumn = "No";  // the first office is number 2
    s.stampAtPayload = true;
    s.getPage = page::kGetEigyosho;
    s.getRoutine = facade::Routine::Progress;
    s.setPage = page::kSetEigyosho;
    s.emptyListPage = page::kSetEigyosho;

    // In the order of the upload body.
    s.fields = {
        Mark("MainEigyo", &I::MainEigyo),
        Mark("MainRendo", &I::MainRendo),
        F::Text("Name", &I::Name),
        F::Text("Kana", &I::Kana),
        F::Integer("S_Code", &I::S_Code),
        F::Text("PrefName", &I::PrefName),
        F::Text("CityName", &I::CityName),
        F::Text("Address", &I::Address),
        F::Text("Yubin1", {&I::Yubin, 0}),
        F::Text("Yubin2", {&I::Yubin, 1}),
        F::Text("Tel1", {&I::TEL, 0}).Column("TEL1"),
        F::Text("Tel2", {&I::TEL, 1}).Column("TEL2"),
        F::Text("Tel3", {&I::TEL, 2}).Column("TEL3"),
        F::Text("Gyosyu", &I::Gyosyu_String),
    };
    static constexpr std::array<std::string_view, 11> kReserved{
        "Reserved0", "Reserved1", "Reserved2", "Reserved3", "Reserved4", "Reserved5",
        "Reserved6", "Reserved7", "Reserved8", "Reserved9", "Reserved10"};
    for (size_t i = 0; i < kReserved.size(); ++i)
        s.fields.push_back(F::Text(kReserved[i], {&I::Reserved, i}));
    return s;
}

}  // namespace

std::array<std::int16_t, 31> cCustKihonEigyoshoItem::Gyosyu() const {
    std::array<std::int16_t, 31> out{};
    size_t from = 0;
    for (size_t i = 0; i < out.size() && !Gyosyu_String.empty(); ++i) {
        const size_t tab = Gyosyu_String.find('\t', from);
        out[i] = static_cast<std::int16_t>(NzLong(Gyosyu_String.substr(from, tab - from)));
        if (tab == std::string::npos) break;
        from = tab + 1;
    }
    return out;
}

const record::ListDecl<cCustKihonEigyoshoItem>& EigyoshoList::Declaration() {
    static const record::ListDecl<cCustKihonEigyoshoItem> decl = Build();
    return decl;
}

}  // namespace morvane
