#include "dated/cCustKyoka.h"

#include "lists/ListKinds.h"
#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cCustKyokaItem;
using F = record::ListField<I>;

// Permit dates compare by the day in era form: a time of day does not count.
constexpr std::string_view kEraDay = "gggee年mm月dd日";

record::ListDecl<I> Build() {
    record::ListDecl<I> s;
    s.listTag = "KyokaDataList";
    s.countTag = "KyokaDataCount";
    s.itemTag = "KyokaDataItem";
    s.itemIdTag = "KyokaDataItemID";
    s.table = "tCustomerKyokaHistory";
    // Hidden rows stay live and in place: they are neither walked nor freed, yet counted.
    s.walkFilter = " AND Ver511HideFlag = 0";
    s.releaseFilter = " AND Ver511HideFlag = 0";
    s.strategy = record::RowStrategy::Pool;
    s.vno = record::VnoPolicy::Position;
    s.getPage = page::kGetKyokaData;
    s.getRoutine = facade::Routine::Plain;
    s.setPage = page::kSetKyokaData;
    s.emptyListPage = page::kSetKyokaData;

    // In the order of the reply, the comparison and the upload body.
    s.fields = {
        F::Text("other", &I::other).Column("Other"),
        F::Date("PApDate", &I::PApDate, kEraDay),
        F::NumberText("AcPeriod", &I::AcPeriod),
        F::Date("AcDateS", &I::AcDateS, kEraDay),
        F::Date("AcDateE", &I::AcDateE, kEraDay),
        F::Text("DataFile", &I::DataFile),
        F::Integer("CheckSync", &I::CheckSync),
        F::Integer("DefaultUse", &I::DefaultUse),
        // The server's flag is compared but never reaches the table; every upload sends 0.
        F::Integer("Ver511HideFlag", &I::Ver511HideFlag).NotStored(),
        F::Link("DataFileID", &I::DataFileID),
    };
    return s;
}

}  // namespace

const record::ListDecl<cCustKyokaItem>& cCustKyoka::Declaration() {
    static const record::ListDecl<cCustKyokaItem> decl = Build();
    return decl;
}

}  // namespace morvane
