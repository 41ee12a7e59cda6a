// The engine of the office's shared masters: each is a list of a whole table of Master.dat,
// under the root Master and without a customer, replaced outright on a download.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "lists/ListDecl.h"
#include "lists/ListKinds.h"
#include "lists/ListWorker.h"

namespace morvane::masters {

// The names that differ from master to master.
struct MasterTags {
    std::string_view list, count, item, itemId;  // <stem>List, <stem>Count, ...
    std::string_view table;
    std::string_view getPage, setPage;
    std::string_view order;  // of the comparison and the local read
    record::VnoPolicy vno = record::VnoPolicy::None;
};

inline constexpr std::string_view kByVnoThenId = " ORDER BY  [vno],[ID]";
inline constexpr std::string_view kById = " ORDER BY  [ID]";

// A master's declaration without its fields.
template <class Item>
record::ListDecl<Item> MasterDeclaration(const MasterTags& t) {
    record::ListDecl<Item> s;
    s.root = "Master";
    s.scope = record::ListScope::Office;
    s.listTag = t.list;
    s.countTag = t.count;
    s.itemTag = t.item;
    s.itemIdTag = t.itemId;
    s.table = t.table;
    s.walkOrder = t.order;
    s.strategy = record::RowStrategy::Wipe;
    s.vno = t.vno;
    s.getPage = t.getPage;
    s.getRoutine = facade::Routine::Progress;
    s.keep = facade::Keep::NonZero;
    s.setPage = t.setPage;
    s.emptyListPage = t.setPage;
    return s;
}

// A master's worker: the list worker with the master's members, which take Master.dat alone.
template <class Item>
class MasterList : public record::ListWorker<Item> {
    using Base = record::ListWorker<Item>;

public:
    using Base::Base;
    using Base::CompareLocalDB;
    using Base::ReadLocalDB;
    using Base::SyncDownload;
    using Base::SyncUpload;

    // 0 when the server's master and the table agree, else the decision code.
    std::int32_t CompareLocalDB(const std::string& LocalDB) {
        return Base::CompareLocalDB(LocalDB, 0);
    }
    // Replaces the table by the master read; 1 on success.
    std::int32_t SyncDownload(const std::string& LocalDB) { return Base::SyncDownload(LocalDB, 0); }
    // Sends the table; 0 and nothing sent when it is empty.
    std::int32_t SyncUpload(const std::string& LocalDB) { return Base::SyncUpload(LocalDB, 0); }
    bool ReadLocalDB(const std::string& LocalDB) { return Base::ReadLocalDB(LocalDB, 0); }
};

}  // namespace morvane::masters
