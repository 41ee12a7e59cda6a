#include "server/records/RecordStore.h"

namespace morvane::server {

bool RecordStore::customerExists(std::int64_t account, std::int64_t customer) {
    auto st = db_.prepare("SELECT 1 FROM customers WHERE account_id=? AND customer_id=?");
    st.bind(1, account).bind(2, customer);
    return st.step();
}

void RecordStore::createCustomer(std::int64_t account, std::int64_t customer, int flag) {
    db_.prepare("INSERT INTO customers(account_id, customer_id, inet_enable_flag) VALUES(?,?,?)")
        .bind(1, account)
        .bind(2, customer)
        .bind(3, flag)
        .run();
}

void RecordStore::deleteCustomer(std::int64_t account, std::int64_t customer) {
    for (const char* sql : {"DELETE FROM items WHERE account_id=? AND customer_id=?",
                            "DELETE FROM stamps WHERE account_id=? AND customer_id=?",
                            "DELETE FROM customers WHERE account_id=? AND customer_id=?"})
        db_.prepare(sql).bind(1, account).bind(2, customer).run();
}

std::vector<CustomerRow> RecordStore::customers(std::int64_t account) {
    auto st = db_.prepare(
        "SELECT customer_id, inet_enable_flag FROM customers WHERE account_id=? "
        "ORDER BY customer_id");
    st.bind(1, account);
    std::vector<CustomerRow> out;
    while (st.step())
        out.push_back(
            {static_cast<std::int32_t>(st.integer(0)), static_cast<std::int32_t>(st.integer(1))});
    return out;
}

void RecordStore::setInetEnableFlag(std::int64_t account, std::int64_t customer, int flag) {
    db_.prepare("UPDATE customers SET inet_enable_flag=? WHERE account_id=? AND customer_id=?")
        .bind(1, flag)
        .bind(2, account)
        .bind(3, customer)
        .run();
}

int RecordStore::inetEnableFlag(std::int64_t account, std::int64_t customer) {
    auto st =
        db_.prepare("SELECT inet_enable_flag FROM customers WHERE account_id=? AND customer_id=?");
    st.bind(1, account).bind(2, customer);
    return st.step() ? static_cast<int>(st.integer(0)) : 0;
}

int RecordStore::enabledCount(std::int64_t account) {
    auto st =
        db_.prepare("SELECT COUNT(*) FROM customers WHERE account_id=? AND inet_enable_flag<>0");
    st.bind(1, account);
    st.step();
    return static_cast<int>(st.integer(0));
}

void RecordStore::touch(std::int64_t account, std::int64_t customer, const std::string& store,
                        const std::string& stamp) {
    db_.prepare(
           "INSERT INTO stamps(account_id, customer_id, store, stamp) VALUES(?,?,?,?) "
           "ON CONFLICT(account_id, customer_id, store) DO UPDATE SET stamp=excluded.stamp")
        .bind(1, account)
        .bind(2, customer)
        .bind(3, store)
        .bind(4, stamp)
        .run();
}

std::string RecordStore::latestStamp(std::int64_t account, std::int64_t customer,
                                     const std::vector<std::string>& stores) {
    std::string latest;
    auto st =
        db_.prepare("SELECT stamp FROM stamps WHERE account_id=? AND customer_id=? AND store=?");
    for (const auto& store : stores) {
        st.bind(1, account).bind(2, customer).bind(3, store);
        // The stamp text sorts as its time does.
        if (st.step() && st.text(0) > latest) latest = st.text(0);
        st.reset();
    }
    return latest;
}

std::int64_t RecordStore::itemRow(const Place& place, const std::string& store,
                                  const std::string& itemId, bool create, std::int64_t order) {
    auto st = db_.prepare(
        "SELECT id FROM items WHERE account_id=? AND customer_id=? AND store=? AND scope=? AND "
        "item_id=?");
    st.bind(1, place.account)
        .bind(2, place.customer)
        .bind(3, store)
        .bind(4, place.scope)
        .bind(5, itemId);
    if (st.step()) return st.integer(0);
    if (!create) return 0;
    db_.prepare(
           "INSERT INTO items(account_id, customer_id, store, scope, item_id, ord) "
           "VALUES(?,?,?,?,?,?)")
        .bind(1, place.account)
        .bind(2, place.customer)
        .bind(3, store)
        .bind(4, place.scope)
        .bind(5, itemId)
        .bind(6, order)
        .run();
    return db_.lastInsertId();
}

Fields RecordStore::record(const Place& place, const std::string& store) {
    Fields out;
    const auto row = itemRow(place, store, "", false, 0);
    if (!row) return out;
    auto st = db_.prepare("SELECT name, value FROM item_fields WHERE item=?");
    st.bind(1, row);
    while (st.step()) out[st.text(0)] = st.text(1);
    return out;
}

void RecordStore::updateRecord(const Place& place, const std::string& store,
                               const std::vector<std::pair<std::string, std::string>>& fields) {
    const auto row = itemRow(place, store, "", true, 0);
    auto st = db_.prepare(
        "INSERT INTO item_fields(item, name, value) VALUES(?,?,?) "
        "ON CONFLICT(item, name) DO UPDATE SET value=excluded.value");
    for (const auto& [name, value] : fields) st.bind(1, row).bind(2, name).bind(3, value).run();
}

std::vector<StoredItem> RecordStore::list(const Place& place, const std::string& store) {
    std::vector<StoredItem> out;
    std::vector<std::int64_t> rows;
    auto st = db_.prepare(
        "SELECT id, item_id FROM items WHERE account_id=? AND customer_id=? AND store=? AND "
        "scope=? ORDER BY ord, id");
    st.bind(1, place.account).bind(2, place.customer).bind(3, store).bind(4, place.scope);
    while (st.step()) {
        rows.push_back(st.integer(0));
        out.push_back({st.text(1), {}});
    }
    auto fst = db_.prepare("SELECT name, value FROM item_fields WHERE item=?");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        fst.bind(1, rows[i]);
        while (fst.step()) out[i].fields[fst.text(0)] = fst.text(1);
        fst.reset();
    }
    return out;
}

void RecordStore::clearList(const Place& place, const std::string& store) {
    db_.prepare("DELETE FROM items WHERE account_id=? AND customer_id=? AND store=? AND scope=?")
        .bind(1, place.account)
        .bind(2, place.customer)
        .bind(3, store)
        .bind(4, place.scope)
        .run();
}

void RecordStore::putItem(const Place& place, const std::string& store, const std::string& itemId,
                          std::int64_t order,
                          const std::vector<std::pair<std::string, std::string>>& fields) {
    if (const auto old = itemRow(place, store, itemId, false, 0))
        db_.prepare("DELETE FROM items WHERE id=?").bind(1, old).run();
    const auto row = itemRow(place, store, itemId, true, order);
    auto st = db_.prepare(
        "INSERT INTO item_fields(item, name, value) VALUES(?,?,?) "
        "ON CONFLICT(item, name) DO UPDATE SET value=excluded.value");
    for (const auto& [name, value] : fields) st.bind(1, row).bind(2, name).bind(3, value).run();
}

}  // namespace morvane::server
