// The download of a list: the customer's rows are freed, then rewritten in place from the
// server's items (rows found by the list's strategy), rows added when they run out.
#pragma once

#include <cstdint>
#include <string>

#include "record/ListSql.h"
#include "session/ProcessState.h"
#include "store/mdlMorvaneCommon.h"

namespace morvane::record {

// Replaces the whole table by the items, ids numbered from 1 in list order, in one
// transaction, so that a failure leaves the table as it was.
template <class Item>
void WipeListRows(const ListDecl<Item>& spec, const ListData<Item>& server,
                  const std::string& localDb) {
    auto ws = CreateMorvaneWorkspace();
    dao::Database& db = ws->OpenDatabase(localDb);
    ws->BeginTrans();
    db.Execute(WipeSql(spec.table));
    auto rs = db.OpenRecordset(
        RewriteSql(spec.table, spec.strategy, 0) + std::string(spec.walkOrder), dao::dbOpenDynaset);
    const Value now(State().Clock().Now());
    std::int32_t position = 0;
    for (const Item& item : server.items) {
        ++position;
        rs->AddNew();
        // The server's item ids are not kept.
        rs->Fields("ID").PutValue(Value(position));
        if (spec.vno == VnoPolicy::Position) rs->Fields("vno").PutValue(Value(position));
        for (const FieldRow<Item>& row : spec.fields) {
            if (row.column.empty()) continue;
            if (auto v = ToColumn(row.guard, row.writeFormat, row.slot.Get(item)))
                rs->Fields(row.column).PutValue(*v);
        }
        rs->Fields("RecordUpdate").PutValue(now);
        rs->Fields("InetCheckDate").PutValue(now);
        rs->Update();
    }
    rs->Close();
    ws->CommitTrans();
}

// Writes the items as the customer's live rows, in one transaction. Raises on a failure,
// which leaves the rows as they were.
template <class Item>
void DownloadListRows(const ListDecl<Item>& spec, const ListData<Item>& server,
                      const std::string& localDb, std::int32_t custId) {
    if (spec.strategy == RowStrategy::Wipe) return WipeListRows(spec, server, localDb);
    auto ws = CreateMorvaneWorkspace();
    dao::Database& db = ws->OpenDatabase(localDb);
    ws->BeginTrans();
    db.Execute(ReleaseSql(spec.table, spec.releaseFilter, custId));
    auto rs = db.OpenRecordset(RewriteSql(spec.table, spec.strategy, custId), dao::dbOpenDynaset);
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
        if (spec.vno == VnoPolicy::Position) rs->Fields("vno").PutValue(Value(position));
        if (!spec.nextNoColumn.empty()) rs->Fields(spec.nextNoColumn).PutValue(Value(position + 1));
        for (const FieldRow<Item>& row : spec.fields) {
            if (row.column.empty()) continue;
            if (auto v = ToColumn(row.guard, row.writeFormat, row.slot.Get(item)))
                rs->Fields(row.column).PutValue(*v);
        }
        rs->Fields("RecordUpdate").PutValue(now);
        rs->Fields("InetCheckDate").PutValue(now);
        rs->Update();
        if (edit) rs->MoveNext();
    }
    rs->Close();
    ws->CommitTrans();
}

}  // namespace morvane::record
