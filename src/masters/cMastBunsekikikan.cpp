#include "masters/cMastBunsekikikan.h"

#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cMastBunsekikikanItem;
using F = record::ListField<I>;

record::ListDecl<I> Build() {
    auto s = masters::MasterDeclaration<I>(
        {"BunsekiKikanList", "BunsekiKikanCount", "BunsekiKikanItem", "BunsekiKikanItemID",
         "tBunsekiKikan", page::kGetBunsekiKikan, page::kSetBunsekiKikan, masters::kByVnoThenId,
         record::VnoPolicy::Position});
    // In the order of the comparison and the upload body.
    s.fields = {F::Text("KikanName", &I::KikanName),
                F::Text("DaihyoPost", &I::DaihyoPost),
                F::Text("DaihyoName", &I::DaihyoName),
                F::Text("RegistNo", &I::RegistNo),
                F::Text("RegistDateYear", &I::RegistDateYear),
                F::Text("RegistDateMonth", &I::RegistDateMonth),
                F::Text("RegistDateDay", &I::RegistDateDay),
                F::Numeric("Flag", &I::Flag),
                F::Numeric("vno", &I::vno).ByList()};
    return s;
}

}  // namespace

const record::ListDecl<cMastBunsekikikanItem>& cMastBunsekikikan::Declaration() {
    static const record::ListDecl<I> decl = Build();
    return decl;
}

}  // namespace morvane
