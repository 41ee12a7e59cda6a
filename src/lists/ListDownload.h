// The download of a list: the customer's rows are freed, then rewritten in place from the
// server's items (rows found by the list's strategy), rows added when they run out.
#pragma once

#include <cstdint>
#include <string>

#include "lists/ListSql.h"
#include "state/ProcessState.h"
#include "store/mdlMorvaneCommon.h"
#include "util/Nz.h"

namespace morvane::record {

// The item's columns, and the moment of the download as its change and agreement stamps, on
// the row being edited or added.
template <class Item>
void PutItemColumns(dao::Recordset& rs, const ListDecl<Item>& decl, const Item& item,
                    const Value& now) {
    for (const FieldRow<Item>& row : decl.fields) {
        if (row.column.empty()) continue;
        if (auto v = ToColumn(row.guard, row.writeFormat, row.slot.Get(item)))
            rs.Fields(row.column).PutValue(*v);
    }
    rs.Fields("RecordUpdate").PutValue(now);
    rs.Fields("InetCheckDate").PutValue(now);
}

// Replaces the whole table by the items, ids numbered from 1 in list order, in one
// transaction, so that a failure leaves the table as it was.
template <class Item>
void WipeListRows(const ListDecl<Item>& decl, const ListData<Item>& server,
                  const std::string& localDb) {
    auto ws = CreateMorvaneWorkspace();
    dao::Database& db = ws->OpenDatabase(localDb);
    ws->BeginTrans();
    db.Execute(WipeSql(decl.table));
    auto rs = db.OpenRecordset(
        RewriteSql(decl.table, decl.strategy, 0) + std::string(decl.walkOrder), dao::dbOpenDynaset);
    const Value now(State().Clock().Now());
    std::int32_t position = 0;
    for (const Item& item : server.items) {
        ++position;
        rs->AddNew();
        // The server's item ids are not kept.
        rs->Fields("ID").PutValue(Value(position));
        if (decl.vno == VnoPolicy::Position)
            rs->Fields(decl.positionName).PutValue(Value(position));
        PutItemColumns(*rs, decl, item, now);
        rs->Update();
    }
    rs->Close();
    ws->CommitTrans();
}

// Gives a customer who has no rows at all the grid's blank rows, numbered from 1.
template <class Item>
void EnsureGridRows(const ListDecl<Item>& decl, dao::Database& db, std::int32_t custId) {
    {
        auto rs = db.OpenRecordset(AllRowsCountSql(decl.table, custId), dao::dbOpenDynaset,
                                   dao::dbReadOnly);
        if (!rs->Eof() && NzLong((*rs)["reccnt"]) > 0) return;
    }
    auto rs = db.OpenRecordset(RewriteSql(decl.table, decl.strategy, custId), dao::dbOpenDynaset);
    for (std::int32_t i = 1; i <= decl.gridRows; ++i) {
        rs->AddNew();
        rs->Fields("CustomerID").PutValue(Value(custId));
        rs->Fields(decl.positionName).PutValue(Value(i));
        rs->Update();
    }
}

// Writes the items as the customer's live rows, in one transaction. Raises on a failure,
// which leaves the rows as they were.
template <class Item>
void DownloadListRows(const ListDecl<Item>& decl, const ListData<Item>& server,
                      const std::string& localDb, std::int32_t custId) {
    if (decl.strategy == RowStrategy::Wipe) return WipeListRows(decl, server, localDb);
    auto ws = CreateMorvaneWorkspace();
    dao::Database& db = ws->OpenDatabase(localDb);
    ws->BeginTrans();
    db.Execute(ReleaseSql(decl.table, decl.releaseFilter, custId));
    const bool grid = decl.strategy == RowStrategy::Grid;
    if (grid) EnsureGridRows(decl, db, custId);
    auto rs = db.OpenRecordset(RewriteSql(decl.table, decl.strategy, custId) +
                                   (grid ? std::string(decl.walkOrder) : std::string()),
                               dao::dbOpenDynaset);
    // Every row written carries one moment, so that it does not look changed afterwards.
    const Value now(State().Clock().Now());
    std::int32_t position = 0;
    for (const Item& item : server.items) {
        ++position;
        // The local id is never written: local and server ids differ freely.
        const bool edit = !rs->Eof();
        if (edit)
            rs->Edit();
        else
            rs->AddNew();
        rs->Fields("CustomerID").PutValue(Value(custId));
        rs->Fields("Disabled").PutValue(Value(std::int32_t{0}));
        if (decl.vno == VnoPolicy::Position)
            rs->Fields(decl.positionName).PutValue(Value(position));
        if (!decl.nextNoColumn.empty()) rs->Fields(decl.nextNoColumn).PutValue(Value(position + 1));
        PutItemColumns(*rs, decl, item, now);
        rs->Update();
        if (edit) rs->MoveNext();
    }
    rs->Close();
    // A freed grid row only marks a row not rewritten: every row of the grid stays live.
    if (grid) db.Execute(ReenableGridSql(decl, custId));
    ws->CommitTrans();
}

}  // namespace morvane::record
