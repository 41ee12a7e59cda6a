#include "masters/cMastKessanTaioh.h"

#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cMastKessanTaiohItem;
using F = record::ListField<I>;

record::ListDecl<I> Build() {
    auto s = masters::MasterDeclaration<I>({"KessanTaiohList", "KessanTaiohCount",
                                            "KessanTaiohItem", "KessanTaiohItemID", "tKessanTaioh",
                                            page::kGetKessanTaioh, page::kSetKessanTaioh,
                                            masters::kByVnoThenId, record::VnoPolicy::Position});
    // In the order of the comparison and the upload body.
    s.fields = {F::Text("Taioh", &I::Taioh), F::Numeric("Flag", &I::Flag),
                F::Numeric("vno", &I::vno).ByList()};
    return s;
}

}  // namespace

const record::ListDecl<cMastKessanTaiohItem>& cMastKessanTaioh::Declaration() {
    static const record::ListDecl<I> decl = Build();
    return decl;
}

}  // namespace morvane
