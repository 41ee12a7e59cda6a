#include "masters/cMastSakuseisha.h"

#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cMastSakuseishaItem;
using F = record::ListField<I>;

record::ListDecl<I> Build() {
    auto s = masters::MasterDeclaration<I>(
        {"SakuseishaList", "SakuseishaCount", "SakuseishaItem", "SakuseishaItemID", "tSakuseisha",
         page::kGetSakuseisha, page::kSetSakuseisha, masters::kById, record::VnoPolicy::None});
    // In the order of the comparison and the upload body.
    s.fields = {F::Text("ZipCode1", &I::ZipCode1), F::Text("ZipCode2", &I::ZipCode2),
                F::Text("Address", &I::Address),   F::Text("Office", &I::Office),
                F::Text("Belong", &I::Belong),     F::Text("UserName", &I::UserName),
                F::Text("UserNo", &I::userNo),     F::Text("TEL1", &I::TEL1),
                F::Text("TEL2", &I::TEL2),         F::Text("TEL3", &I::TEL3),
                F::Text("FAX1", &I::FAX1),         F::Text("FAX2", &I::FAX2),
                F::Text("FAX3", &I::FAX3),         F::Text("Mail", &I::Mail),
                F::Text("Others1", &I::Others1),   F::Text("Others2", &I::Others2),
                F::Text("Others3", &I::Others3)};
    return s;
}

}  // namespace

const record::ListDecl<cMastSakuseishaItem>& cMastSakuseisha::Declaration() {
    static const record::ListDecl<I> decl = Build();
    return decl;
}

}  // namespace morvane
