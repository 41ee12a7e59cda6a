// The comparison of a list read from the server with the customer's live rows: the stamps
// first, then the count, then row n against item n, and an agree-stamp when only the
// stamps differed.
#pragma once

#include <cstdint>
#include <string>

#include "lists/ListLoader.h"
#include "store/mdlMorvaneCommon.h"

namespace morvane::record {

// The tables an agreement stamps.
template <class Item>
std::vector<std::string_view> AgreeTables(const ListDecl<Item>& decl) {
    if (decl.agreeTables.empty()) return {decl.table};
    return decl.agreeTables;
}

// True at the first compared field in which the two items differ.
template <class Item>
bool ItemsDiffer(const ListDecl<Item>& decl, const Item& server, const Item& local) {
    for (const FieldRow<Item>& row : decl.fields)
        if (Differs(row.cmp, row.format, row.slot.Get(server), row.slot.Get(local))) return true;
    return false;
}

// 0 when the two agree (stamping the rows when the stamps alone differed), else the
// decision code of the stamps. Raises on a database failure.
template <class Item>
std::int32_t CompareListRows(const ListDecl<Item>& decl, const ListData<Item>& server,
                             const std::string& localDb, std::int32_t custId) {
    const std::string cond = ListCondition(decl, custId);
    const std::int32_t code = CompareInetDates(Value(server.recordUpdate),
                                               GetRecordUpdateLocal(localDb, decl.table, cond),
                                               GetInetCheckDateLocal(localDb, decl.table, cond));
    if (code == 0) return 0;  // content is not looked at
    {
        auto ws = CreateMorvaneWorkspace();
        dao::Database& db = ws->OpenDatabase(localDb);
        {
            auto rs =
                db.OpenRecordset(ListCountSql(decl, custId), dao::dbOpenDynaset, dao::dbReadOnly);
            const std::int32_t count = rs->Eof() ? 0 : NzLong((*rs)["reccnt"]);
            if (count != static_cast<std::int32_t>(server.items.size())) return code;
        }
        auto rs = db.OpenRecordset(ListWalkSql(decl, custId), dao::dbOpenDynaset, dao::dbReadOnly);
        size_t n = 0;
        for (; !rs->Eof(); rs->MoveNext(), ++n) {
            // The position pairs them, never the id.
            if (n >= server.items.size()) return code;
            if (ItemsDiffer(decl, server.items[n], LoadListItem(decl, *rs, custId))) return code;
        }
        // A walk shorter than the count (rows left out of it) leaves server items unmatched.
        if (n != server.items.size()) return code;
    }  // closed before the stamp, which opens the file anew
    for (std::string_view table : AgreeTables(decl)) SetInetCheckDate(localDb, table, cond);
    return 0;
}

}  // namespace morvane::record
