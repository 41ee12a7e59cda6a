#include "lists/ListSql.h"

namespace morvane::record {

std::string LiveCondition(std::int32_t custId) {
    return "disabled=0 And CustomerID = " + std::to_string(custId);
}

std::string CountSql(std::string_view table, std::int32_t custId) {
    return "SELECT COUNT(*) as reccnt FROM " + std::string(table) + " WHERE " +
           LiveCondition(custId);
}

std::string AllRowsCountSql(std::string_view table, std::int32_t custId) {
    return "SELECT COUNT(*) as reccnt FROM " + std::string(table) +
           " WHERE CustomerID = " + std::to_string(custId);
}

std::string WalkSql(std::string_view table, std::string_view walkFilter, std::string_view walkOrder,
                    std::int32_t custId) {
    return "SELECT * FROM " + std::string(table) +
           " WHERE disabled = 0 AND Customerid =" + std::to_string(custId) +
           std::string(walkFilter) + std::string(walkOrder);
}

std::string ReleaseSql(std::string_view table, std::string_view releaseFilter,
                       std::int32_t custId) {
    return "UPDATE " + std::string(table) +
           " SET disabled = 1 WHERE CustomerID = " + std::to_string(custId) +
           std::string(releaseFilter);
}

std::string RewriteSql(std::string_view table, RowStrategy strategy, std::int32_t custId) {
    switch (strategy) {
        case RowStrategy::Grid:
            return "SELECT * FROM " + std::string(table) +
                   " WHERE Customerid =" + std::to_string(custId);
        case RowStrategy::Own:
            return "SELECT * FROM " + std::string(table) +
                   " WHERE CustomerID =" + std::to_string(custId) + " ORDER BY id";
        case RowStrategy::Pool:
            break;
        case RowStrategy::Wipe:
            return "SELECT * FROM " + std::string(table);
    }
    return "SELECT * FROM " + std::string(table) + " WHERE disabled=1 ORDER BY id";
}

std::string OfficeCountSql(std::string_view table) {
    return "SELECT COUNT(*) as reccnt FROM " + std::string(table);
}

std::string OfficeWalkSql(std::string_view table, std::string_view walkFilter,
                          std::string_view walkOrder) {
    return "SELECT * FROM " + std::string(table) + std::string(walkFilter) + std::string(walkOrder);
}

std::string WipeSql(std::string_view table) {
    return " DELETE * FROM [" + std::string(table) + "];";
}

}  // namespace morvane::record
