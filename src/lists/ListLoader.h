// The local read of a list: the customer's live rows, each turned into an item column by
// column under its field's load rule.
#pragma once

#include <cstdint>
#include <string>

#include "lists/ListDecl.h"
#include "lists/ListSql.h"
#include "platform/Dao.h"
#include "util/Nz.h"

namespace morvane::record {

// The item of the current row, owned by the customer given.
template <class Item>
Item LoadListItem(const ListDecl<Item>& decl, dao::Recordset& rs, std::int32_t custId) {
    Item item;
    item.id = NzLong(rs["id"]);
    item.CustID = custId;
    item.Key = "K" + std::to_string(item.id);
    for (const FieldRow<Item>& row : decl.fields)
        if (!row.column.empty() && row.load != Load::Skip) LoadColumn(row, item, rs[row.column]);
    return item;
}

// Stores the live row count and an item per walked row; true when a row was walked.
template <class Item>
bool LoadListRows(const ListDecl<Item>& decl, dao::Database& db, std::int32_t custId,
                  ListData<Item>& data) {
    {
        auto rs = db.OpenRecordset(ListCountSql(decl, custId), dao::dbOpenDynaset, dao::dbReadOnly);
        data.count = rs->Eof() ? 0 : NzLong((*rs)["reccnt"]);
    }
    auto rs = db.OpenRecordset(ListWalkSql(decl, custId), dao::dbOpenDynaset, dao::dbReadOnly);
    for (; !rs->Eof(); rs->MoveNext()) data.items.push_back(LoadListItem(decl, *rs, custId));
    return !data.items.empty();
}

}  // namespace morvane::record
