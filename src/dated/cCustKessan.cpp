#include "dated/cCustKessan.h"

#include <array>
#include <string_view>

#include "lists/ListKinds.h"
#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cCustKessanItem;
using F = record::ListField<I>;
using Names = std::array<std::string_view, 5>;

constexpr Names kAcPeriod{"AcPeriod0", "AcPeriod1", "AcPeriod2", "AcPeriod3", "AcPeriod4"};
constexpr Names kAcDateS{"AcDateS0", "AcDateS1", "AcDateS2", "AcDateS3", "AcDateS4"};
constexpr Names kAcDateE{"AcDateE0", "AcDateE1", "AcDateE2", "AcDateE3", "AcDateE4"};
constexpr Names kZaimuType{"ZaimuType0", "ZaimuType1", "ZaimuType2", "ZaimuType3", "ZaimuType4"};
constexpr Names kCalcWay{"CalcWay0", "CalcWay1", "CalcWay2", "CalcWay3", "CalcWay4"};
constexpr Names kProfDate{"ProfDate0", "ProfDate1", "ProfDate2", "ProfDate3", "ProfDate4"};

// The five terms of a numbered field, in term order.
template <class Member>
void Terms(std::vector<record::FieldRow<I>>& rows, F (*kind)(std::string_view, record::Slot<I>),
           const Names& names, Member member) {
    for (size_t i = 0; i < names.size(); ++i) rows.push_back(kind(names[i], {member, i}));
}

record::ListDecl<I> Build() {
    record::ListDecl<I> s;
    s.listTag = "KessanDataList";
    s.countTag = "KessanDataCount";
    s.itemTag = "KessanDataItem";
    s.itemIdTag = "KessanDataItemID";
    s.table = "tCustomerKessanHistory";
    s.strategy = record::RowStrategy::Pool;
    s.vno = record::VnoPolicy::Position;
    s.getPage = page::kGetKessanData;
    s.getRoutine = facade::Routine::Plain;
    s.setPage = page::kSetKessanData;
    s.emptyListPage = page::kSetKessanData;

    // In the order of the reply, the comparison and the upload body.
    auto& r = s.fields;
    r.push_back(F::Stamp("RecDate", &I::RecDate));
    r.push_back(F::Date("ExDate", &I::ExDate));
    r.push_back(F::Date("ScDate", &I::ScDate));
    r.push_back(F::Text("DataFile", &I::DataFile));
    r.push_back(F::Integer("CheckEx", &I::CheckEx));
    r.push_back(F::Text("other", &I::other).Tag("Other").Column("Other"));
    r.push_back(F::Check("CheckOther", &I::CheckOther));
    r.push_back(F::Stamp("OtherDate1", &I::OtherDate1));
    r.push_back(F::Stamp("OtherDate2", &I::OtherDate2));
    r.push_back(F::Text("other1", &I::other1));
    r.push_back(F::Text("other2", &I::other2));
    r.push_back(F::Text("other3", &I::other3));
    r.push_back(F::Stamp("RegDate", &I::RegDate));
    r.push_back(F::Stamp("UpdateDate", &I::UpdateDate));
    Terms(r, F::NumberText, kAcPeriod, &I::AcPeriod);
    Terms(
        r, [](std::string_view n, record::Slot<I> slot) { return F::Date(n, slot); }, kAcDateS,
        &I::AcDateS);
    Terms(
        r, [](std::string_view n, record::Slot<I> slot) { return F::Date(n, slot); }, kAcDateE,
        &I::AcDateE);
    r.push_back(F::Integer("CheckSync", &I::CheckSync));
    Terms(r, F::Integer, kZaimuType, &I::ZaimuType);
    Terms(r, F::Integer, kCalcWay, &I::CalcWay);
    r.push_back(F::Integer("DefaultUse", &I::DefaultUse));
    Terms(
        r, [](std::string_view n, record::Slot<I> slot) { return F::Date(n, slot); }, kProfDate,
        &I::ProfDate);
    r.push_back(F::Link("DataFileID", &I::DataFileID));
    return s;
}

}  // namespace

const record::ListDecl<cCustKessanItem>& cCustKessan::Declaration() {
    static const record::ListDecl<cCustKessanItem> decl = Build();
    return decl;
}

}  // namespace morvane
