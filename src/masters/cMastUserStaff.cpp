#include "masters/cMastUserStaff.h"

#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cMastUserStaffItem;
using F = record::ListField<I>;

record::ListDecl<I> Build() {
    auto s = masters::MasterDeclaration<I>(
        {"UserStaffList", "UserStaffCount", "UserStaffItem", "UserStaffItemID", "tUserStaff",
         page::kGetUserStaff, page::kSetUserStaff, masters::kById, record::VnoPolicy::None});
    // In the order of the comparison and the upload body.
    s.fields = {F::Text("事務所職員コード", &I::SyokuinCode),
                F::Text("事務所職員名", &I::SyokuinName),
                F::Text("郵便番号", &I::ZipCode),
                F::Text("住所", &I::Address),
                F::Text("TEL", &I::TEL),
                F::Text("FAX", &I::FAX),
                F::Text("パスワード", &I::strPW),
                F::Numeric("Flag", &I::Flag)};
    return s;
}

}  // namespace

const record::ListDecl<cMastUserStaffItem>& cMastUserStaff::Declaration() {
    static const record::ListDecl<I> decl = Build();
    return decl;
}

}  // namespace morvane
