#include "masters/cMastYakushoku.h"

#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cMastYakushokuItem;
using F = record::ListField<I>;

record::ListDecl<I> Build() {
    auto s = masters::MasterDeclaration<I>(
        {"YakushokuList", "YakushokuCount", "YakushokuItem", "YakushokuItemID", "tYakushoku",
         page::kGetYakushoku, page::kSetYakushoku, masters::kByVnoThenId, record::VnoPolicy::None});
    // In the order of the comparison and the upload body.
    s.fields = {F::Text("Yakushoku", &I::Yakushoku), F::Numeric("Flag", &I::Flag),
                F::Numeric("vno", &I::vno)};
    return s;
}

}  // namespace

const record::ListDecl<cMastYakushokuItem>& cMastYakushoku::Declaration() {
    static const record::ListDecl<I> decl = Build();
    return decl;
}

}  // namespace morvane
