#include "masters/cMastNyusatsukikan.h"

#include "lists/NumberedNames.h"
#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cMastNyusatsuKikanItem;
using F = record::ListField<I>;

constexpr auto kReceptionFlags = record::Numbered<10, 16>("ReceptionFlags", 0, 1);
constexpr auto kTel = record::Numbered<3, 8>("TEL", 1, 1);
constexpr auto kFax = record::Numbered<3, 8>("FAX", 1, 1);
constexpr auto kNeedDoc = record::Numbered<100, 12>("NeedDoc", 0, 2);

// Each name of the table into one element of the array member.
template <class Names, class Member>
void Each(std::vector<record::FieldRow<I>>& rows, F (*kind)(std::string_view, record::Slot<I>),
          const Names& names, Member member) {
    for (std::size_t i = 0; i < names.size(); ++i) rows.push_back(kind(names[i], {member, i}));
}

record::ListDecl<I> Build() {
    auto s = masters::MasterDeclaration<I>(
        {"NyusatsuKikanList", "NyusatsuKikanCount", "NyusatsuKikanItem", "NyusatsuKikanItemID",
         "tNyusatsuKikan", page::kGetMasterNyusatsuKikan, page::kSetMasterNyusatsuKikan,
         masters::kByVnoThenId, record::VnoPolicy::Position});
    // In the order of the reply, the comparison and the upload body.
    auto& r = s.fields;
    r = {F::Text("KikanCode", &I::KikanCode),
         F::Text("KikanName", &I::KikanName),
         F::Numeric("ReceptionYear", &I::ReceptionYear),
         F::Numeric("ValidityTerm", &I::ValidityTerm),
         F::Text("ReceptionDateFrom", &I::ReceptionDateFrom),
         F::Text("ReceptionDateTo", &I::ReceptionDateTo),
         F::Text("ReceptionTime1From", &I::ReceptionTime1From),
         F::Text("ReceptionTime1To", &I::ReceptionTime1To),
         F::Text("ReceptionTime2From", &I::ReceptionTime2From),
         F::Text("ReceptionTime2To", &I::ReceptionTime2To)};
    Each(r, F::Numeric, kReceptionFlags, &I::ReceptionFlags);
    for (F f : {F::Text("PresentationPlace", &I::PresentationPlace),
                F::Text("PresentationNote", &I::PresentationNote),
                F::Text("DistributionDate", &I::DistributionDate),
                F::Text("DistributionPlace", &I::DistributionPlace),
                F::Text("DistributionPlice", &I::DistributionPlice),
                F::Text("DistributionNote", &I::DistributionNote),
                F::Text("ZipCode1", &I::ZipCode1), F::Text("ZipCode2", &I::ZipCode2),
                F::Text("Address", &I::Address), F::Text("Station", &I::Station)})
        r.push_back(f);
    Each(r, F::Text, kTel, &I::TEL);
    Each(r, F::Text, kFax, &I::FAX);
    for (F f : {F::Text("Mail", &I::Mail), F::Text("ApplicationPlace", &I::ApplicationPlace),
                F::Text("ApplicationName", &I::ApplicationName),
                F::Text("ApplicationNote", &I::ApplicationNote)})
        r.push_back(f);
    Each(r, F::Numeric, kNeedDoc, &I::NeedDoc);
    r.push_back(F::Text("NeedDocOthers", &I::NeedDocOthers));
    r.push_back(F::Numeric("vno", &I::vno).ByList());
    return s;
}

}  // namespace

const record::ListDecl<cMastNyusatsuKikanItem>& cMastNyusatsukikan::Declaration() {
    static const record::ListDecl<I> decl = Build();
    return decl;
}

}  // namespace morvane
