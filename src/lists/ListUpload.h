// The upload of a list: one POST per item, the first carrying DISABLEDALL so that the server
// retires its list before it takes the item, stopping at the first failed post.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "lists/ListCompare.h"
#include "session/mdlLogin.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerReply.h"

namespace morvane::record {

inline constexpr const char* kDisabledAll = "DISABLEDALL=DISABLEDALL&";

// The start of every body of the list: the login, and the customer's number unless the list
// is the office's.
template <class Item>
std::string ListBodyStart(const ListDecl<Item>& decl, std::int32_t custId) {
    return decl.scope == ListScope::Office ? UpperBody() : UpperCustomerBody(custId);
}

// The body of the item at a position counted from 1.
template <class Item>
std::string ListItemBody(const ListDecl<Item>& decl, const Item& item, std::int32_t custId,
                         std::int32_t position) {
    std::string body = ListBodyStart(decl, custId);
    AppendField(body, decl.itemIdTag, std::to_string(item.id));
    if (position == 1) body += kDisabledAll;
    for (const FieldRow<Item>& row : decl.fields) {
        if (decl.vno == VnoPolicy::Position && !row.key.empty() && row.key == decl.vnoBeforeKey)
            AppendField(body, decl.positionName, std::to_string(position));
        if (!row.key.empty()) AppendField(body, row.key, ToBody(row.conv, row.slot.Get(item)));
    }
    if (decl.vno == VnoPolicy::Position && decl.vnoBeforeKey.empty())
        AppendField(body, decl.positionName, std::to_string(position));
    return body;
}

// Posts the loaded items, then runs the closing step when there is one; 1 when every post was
// answered while the login held, and the customer's rows are then stamped as agreed. The
// server keeps what it got before a failure.
template <class Item>
std::int32_t UploadListItems(const ListDecl<Item>& decl, const ListData<Item>& local,
                             const std::string& localDb, std::int32_t custId,
                             const std::function<bool()>& closing = {}) {
    std::string reply;
    if (local.items.empty()) {
        reply = SendRequestProgress(decl.emptyListPage, ListBodyStart(decl, custId) + kDisabledAll,
                                    "", nullptr);
        if (GetLoginState() != 1 || reply.empty()) return 0;
    }
    std::int32_t position = 0;
    for (const Item& item : local.items) {
        if (decl.skipOnUpload && decl.skipOnUpload(item)) continue;
        reply = SendRequestProgress(decl.setPage, ListItemBody(decl, item, custId, ++position), "",
                                    nullptr);
        if (GetLoginState() != 1 || reply.empty()) return 0;
    }
    if (closing && !closing()) return 0;
    const std::string cond = ListCondition(decl, custId);
    for (std::string_view table : AgreeTables(decl)) SetInetCheckDate(localDb, table, cond);
    return 1;
}

}  // namespace morvane::record
