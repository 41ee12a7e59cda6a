#include "masters/cMastMinister.h"

#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cMastMinisterItem;
using F = record::ListField<I>;

record::ListDecl<I> Build() {
    auto s = masters::MasterDeclaration<I>({"MinisterList", "MinisterCount", "MinisterItem",
                                            "MinisterItemID", "tMinister", page::kGetMinister,
                                            page::kSetMinister, masters::kByVnoThenId,
                                            record::VnoPolicy::Position});
    // In the order of the comparison and the upload body.
    s.fields = {F::Text("ApfPlace", &I::ApfPlace), F::Text("MinName", &I::MinName),
                F::Numeric("Flag", &I::Flag), F::Numeric("vno", &I::vno).ByList()};
    return s;
}

}  // namespace

const record::ListDecl<cMastMinisterItem>& cMastMinister::Declaration() {
    static const record::ListDecl<I> decl = Build();
    return decl;
}

}  // namespace morvane
