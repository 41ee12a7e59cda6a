// The declaration of one kind of list (its payload tags, table, filters, download strategy,
// pages and field rows), from which the list machinery reads, compares, writes and sends it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "lists/FieldRow.h"
#include "session/FacadePatterns.h"

namespace morvane::record {

// What every item of a list holds beside its declared fields.
struct ListItem {
    std::int32_t id = 0;
    std::int32_t CustID = 0;
    std::string Key;  // "K" and the id
};

// How a download finds the rows it rewrites, after it has freed the customer's rows.
enum class RowStrategy {
    Own,   // the customer's own rows, freed ones included
    Pool,  // every free row of the table, whoever owned it
    Wipe,  // none: the whole table is deleted and the items inserted with ids 1 to n
    // The customer's own rows in walk order, a fixed grid: a customer with none gets the grid
    // first, and the rows the list leaves over come back live and blank.
    Grid,
};

// Whose rows a list holds: one customer's, or the office's (no CustomerID anywhere, and no
// filter on the table).
enum class ListScope { Customer, Office };

// Whether the rows carry their position: written on download and sent as "vno".
enum class VnoPolicy { Position, None };

template <class Item>
struct ListDecl {
    std::string_view root = "Customer";  // payload element below the document root
    ListScope scope = ListScope::Customer;
    std::string_view listTag;
    std::string_view countTag;
    std::string_view itemTag;
    std::string_view itemIdTag;  // also the POST key of the item's id

    std::string_view table;
    // Added to the walk (not to the count) of the customer's live rows.
    std::string_view walkFilter;
    std::string_view walkOrder = " ORDER BY id";
    // Added to every condition on the customer's live rows (stamps, count, walk, agree-stamp):
    // rows outside it do not exist for the list.
    std::string_view liveFilter;
    // Added to the statement that frees the customer's rows before a download.
    std::string_view releaseFilter;
    RowStrategy strategy = RowStrategy::Pool;
    VnoPolicy vno = VnoPolicy::Position;
    // The column and body key the position goes under.
    std::string_view positionName = "vno";
    // The rows a Grid download makes for a customer who has none.
    std::int32_t gridRows = 0;
    // Items an upload passes over without giving them a position; none when null.
    bool (*skipOnUpload)(const Item&) = nullptr;
    // The key the position goes before in a body; empty: the position comes last.
    std::string_view vnoBeforeKey;
    // A column written with the position plus one on download; empty: none.
    std::string_view nextNoColumn;
    // A RecordUpdate beside the list, in the payload itself, counts as the list's stamp.
    bool stampAtPayload = false;
    // Stamped as agreed after an equal comparison or an upload; empty: the list's table.
    std::vector<std::string_view> agreeTables;

    std::string_view getPage;
    facade::Routine getRoutine = facade::Routine::Plain;
    facade::Keep keep = facade::Keep::NonZero;
    std::string_view setPage;
    // Where an upload with no items would post its DISABLEDALL (a read of no rows fails first).
    std::string_view emptyListPage;

    std::vector<FieldRow<Item>> fields;
};

// What a list worker holds: the server's list after a read, or the local rows after a load.
template <class Item>
struct ListData {
    std::int32_t customerId = 0;
    std::string recordUpdate;  // empty unless the reply's stamp was a date
    std::int32_t count = 0;    // the count tag, or the local row count
    std::vector<Item> items;
};

}  // namespace morvane::record
