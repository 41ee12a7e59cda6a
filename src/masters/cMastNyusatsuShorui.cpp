#include "masters/cMastNyusatsuShorui.h"

#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cMastNyusatsuShoruiItem;
using F = record::ListField<I>;

record::ListDecl<I> Build() {
    auto s = masters::MasterDeclaration<I>(
        {"NyusatsuShoruiList", "NyusatsuShoruiCount", "NyusatsuShoruiItem", "NyusatsuShoruiItemID",
         "tNyusatsuShorui", page::kGetNyusatsuShorui, page::kSetNyusatsuShorui, masters::kById,
         record::VnoPolicy::None});
    // In the order of the comparison and the upload body.
    s.fields = {F::Text("Name", &I::Name), F::Numeric("Visible", &I::Visible),
                F::Numeric("vno", &I::vno)};
    return s;
}

}  // namespace

const record::ListDecl<cMastNyusatsuShoruiItem>& cMastNyusatsuShorui::Declaration() {
    static const record::ListDecl<I> decl = Build();
    return decl;
}

}  // namespace morvane
