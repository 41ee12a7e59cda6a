#include "server/records/RecordStore.h"

namespace morvane::server {

bool RecordStore::CustomerExists(std::int64_t account, std::int64_t customer) {
    auto st = db_.Prepare("SELECT 1 FROM customers WHERE account_id=? AND customer_id=?");
    st.Bind(1, account).Bind(2, customer);
    return st.Step();
}

void RecordStore::CreateCustomer(std::int64_t account, std::int64_t customer, int flag) {
    db_.Prepare("INSERT INTO customers(account_id, customer_id, inet_enable_flag) VALUES(?,?,?)")
        .Bind(1, account)
        .Bind(2, customer)
        .Bind(3, flag)
        .Run();
}

void RecordStore::DeleteCustomer(std::int64_t account, std::int64_t customer) {
    for (const char* sql : {"DELETE FROM items WHERE account_id=? AND customer_id=?",
                            "DELETE FROM stamps WHERE account_id=? AND customer_id=?",
                            "DELETE FROM customers WHERE account_id=? AND customer_id=?"})
        db_.Prepare(sql).Bind(1, account).Bind(2, customer).Run();
}

std::vector<CustomerRow> RecordStore::Customers(std::int64_t account) {
    auto st = db_.Prepare(
        "SELECT customer_id, inet_enable_flag FROM customers WHERE account_id=? "
        "ORDER BY customer_id");
    st.Bind(1, account);
    std::vector<CustomerRow> out;
    while (st.Step())
        out.push_back(
            {static_cast<std::int32_t>(st.Integer(0)), static_cast<std::int32_t>(st.Integer(1))});
    return out;
}

void RecordStore::SetInetEnableFlag(std::int64_t account, std::int64_t customer, int flag) {
    db_.Prepare("UPDATE customers SET inet_enable_flag=? WHERE account_id=? AND customer_id=?")
        .Bind(1, flag)
        .Bind(2, account)
        .Bind(3, customer)
        .Run();
}

int RecordStore::InetEnableFlag(std::int64_t account, std::int64_t customer) {
    auto st =
        db_.Prepare("SELECT inet_enable_flag FROM customers WHERE account_id=? AND customer_id=?");
    st.Bind(1, account).Bind(2, customer);
    return st.Step() ? static_cast<int>(st.Integer(0)) : 0;
}

int RecordStore::EnabledCount(std::int64_t account) {
    auto st =
        db_.Prepare("SELECT COUNT(*) FROM customers WHERE account_id=? AND inet_enable_flag<>0");
    st.Bind(1, account);
    st.Step();
    return static_cast<int>(st.Integer(0));
}

void RecordStore::Touch(std::int64_t account, std::int64_t customer, const std::string& store,
                        const std::string& stamp) {
    db_.Prepare(
           "INSERT INTO stamps(account_id, customer_id, store, stamp) VALUES(?,?,?,?) "
           "ON CONFLICT(account_id, customer_id, store) DO UPDATE SET stamp=excluded.stamp")
        .Bind(1, account)
        .Bind(2, customer)
        .Bind(3, store)
        .Bind(4, stamp)
        .Run();
}

std::string RecordStore::LatestStamp(std::int64_t account, std::int64_t customer,
                                     const std::vector<std::string>& stores) {
    std::string latest;
    auto st =
        db_.Prepare("SELECT stamp FROM stamps WHERE account_id=? AND customer_id=? AND store=?");
    for (const auto& store : stores) {
        st.Bind(1, account).Bind(2, customer).Bind(3, store);
        // The stamp text sorts as its time does.
        if (st.Step() && st.Text(0) > latest) latest = st.Text(0);
        st.Reset();
    }
    return latest;
}

std::int64_t RecordStore::ItemRow(const Place& place, const std::string& store,
                                  const std::string& itemId, bool create, std::int64_t order) {
    auto st = db_.Prepare(
        "SELECT id FROM items WHERE account_id=? AND customer_id=? AND store=? AND scope=? AND "
        "item_id=?");
    st.Bind(1, place.account)
        .Bind(2, place.customer)
        .Bind(3, store)
        .Bind(4, place.scope)
        .Bind(5, itemId);
    if (st.Step()) return st.Integer(0);
    if (!create) return 0;
    db_.Prepare(
           "INSERT INTO items(account_id, customer_id, store, scope, item_id, ord) "
           "VALUES(?,?,?,?,?,?)")
        .Bind(1, place.account)
        .Bind(2, place.customer)
        .Bind(3, store)
        .Bind(4, place.scope)
        .Bind(5, itemId)
        .Bind(6, order)
        .Run();
    return db_.LastInsertId();
}

Fields RecordStore::Record(const Place& place, const std::string& store) {
    Fields out;
    const auto row = ItemRow(place, store, "", false, 0);
    if (!row) return out;
    auto st = db_.Prepare("SELECT name, value FROM item_fields WHERE item=?");
    st.Bind(1, row);
    while (st.Step()) out[st.Text(0)] = st.Text(1);
    return out;
}

void RecordStore::UpdateRecord(const Place& place, const std::string& store,
                               const std::vector<std::pair<std::string, std::string>>& fields) {
    const auto row = ItemRow(place, store, "", true, 0);
    auto st = db_.Prepare(
        "INSERT INTO item_fields(item, name, value) VALUES(?,?,?) "
        "ON CONFLICT(item, name) DO UPDATE SET value=excluded.value");
    for (const auto& [name, value] : fields) st.Bind(1, row).Bind(2, name).Bind(3, value).Run();
}

std::vector<StoredItem> RecordStore::List(const Place& place, const std::string& store) {
    std::vector<StoredItem> out;
    std::vector<std::int64_t> rows;
    auto st = db_.Prepare(
        "SELECT id, item_id FROM items WHERE account_id=? AND customer_id=? AND store=? AND "
        "scope=? ORDER BY ord, id");
    st.Bind(1, place.account).Bind(2, place.customer).Bind(3, store).Bind(4, place.scope);
    while (st.Step()) {
        rows.push_back(st.Integer(0));
        out.push_back({st.Text(1), {}});
    }
    auto fst = db_.Prepare("SELECT name, value FROM item_fields WHERE item=?");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        fst.Bind(1, rows[i]);
        while (fst.Step()) out[i].fields[fst.Text(0)] = fst.Text(1);
        fst.Reset();
    }
    return out;
}

void RecordStore::ClearList(const Place& place, const std::string& store) {
    db_.Prepare("DELETE FROM items WHERE account_id=? AND customer_id=? AND store=? AND scope=?")
        .Bind(1, place.account)
        .Bind(2, place.customer)
        .Bind(3, store)
        .Bind(4, place.scope)
        .Run();
}

void RecordStore::PutItem(const Place& place, const std::string& store, const std::string& itemId,
                          std::int64_t order,
                          const std::vector<std::pair<std::string, std::string>>& fields) {
    if (const auto old = ItemRow(place, store, itemId, false, 0))
        db_.Prepare("DELETE FROM items WHERE id=?").Bind(1, old).Run();
    const auto row = ItemRow(place, store, itemId, true, order);
    auto st = db_.Prepare(
        "INSERT INTO item_fields(item, name, value) VALUES(?,?,?) "
        "ON CONFLICT(item, name) DO UPDATE SET value=excluded.value");
    for (const auto& [name, value] : fields) st.Bind(1, row).Bind(2, name).Bind(3, value).Run();
}

}  // namespace morvane::server
