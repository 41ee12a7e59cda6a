// The statements of the list machinery: the customer's live rows (their stamps, count and
// walk), the freeing of rows before a download and the rows a download rewrites.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "lists/ListDecl.h"

namespace morvane::record {

// The condition of the customer's live rows, for the stamps and the agree-stamp.
std::string LiveCondition(std::int32_t custId);
// "SELECT COUNT(*) as reccnt ..." over the live rows, without the walk filter.
std::string CountSql(std::string_view table, std::int32_t custId);
// The same over all the customer's rows, freed ones included.
std::string AllRowsCountSql(std::string_view table, std::int32_t custId);
// The live rows with the walk filter, in walk order.
std::string WalkSql(std::string_view table, std::string_view walkFilter, std::string_view walkOrder,
                    std::int32_t custId);
// Frees the customer's rows (those the release filter leaves).
std::string ReleaseSql(std::string_view table, std::string_view releaseFilter, std::int32_t custId);
// The rows a download rewrites in order, by its strategy (a grid's without their order).
std::string RewriteSql(std::string_view table, RowStrategy strategy, std::int32_t custId);

// The office lists' statements: their whole table, unfiltered.
std::string OfficeCountSql(std::string_view table);
std::string OfficeWalkSql(std::string_view table, std::string_view walkFilter,
                          std::string_view walkOrder);
// Empties the table before a wiping download.
std::string WipeSql(std::string_view table);

// The stamps' condition of the list's rows; an office list has none.
template <class Item>
std::string ListCondition(const ListDecl<Item>& decl, std::int32_t custId) {
    return decl.scope == ListScope::Office ? std::string()
                                           : LiveCondition(custId) + std::string(decl.liveFilter);
}
template <class Item>
std::string ListCountSql(const ListDecl<Item>& decl, std::int32_t custId) {
    return decl.scope == ListScope::Office
               ? OfficeCountSql(decl.table)
               : CountSql(decl.table, custId) + std::string(decl.liveFilter);
}
template <class Item>
std::string ListWalkSql(const ListDecl<Item>& decl, std::int32_t custId) {
    return decl.scope == ListScope::Office
               ? OfficeWalkSql(decl.table, decl.walkFilter, decl.walkOrder)
               : WalkSql(decl.table, std::string(decl.liveFilter) + std::string(decl.walkFilter),
                         decl.walkOrder, custId);
}

// Brings the customer's freed grid rows back live, with every written column blank.
template <class Item>
std::string ReenableGridSql(const ListDecl<Item>& decl, std::int32_t custId) {
    std::string sql = "UPDATE " + std::string(decl.table) + " SET disabled = 0";
    for (const FieldRow<Item>& row : decl.fields)
        if (!row.column.empty() && row.guard != Guard::Never)
            sql += ", " + std::string(row.column) + "=\"\"";
    return sql + " WHERE (disabled=1) And (CustomerID =" + std::to_string(custId) + ")";
}

}  // namespace morvane::record
