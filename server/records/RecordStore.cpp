#include "server/records/RecordStore.h"

#include <algorithm>

namespace morvane::server {

bool RecordStore::CustomerExists(std::int64_t account, std::int64_t customer) {
    SQLite::Statement st(db_, "SELECT 1 FROM customers WHERE account_id=? AND customer_id=?");
    SQLite::bind(st, account, customer);
    return st.executeStep();
}

void RecordStore::CreateCustomer(std::int64_t account, std::int64_t customer, int flag) {
    Execute(db_, "INSERT INTO customers(account_id, customer_id, inet_enable_flag) VALUES(?,?,?)",
            account, customer, flag);
}

void RecordStore::DeleteCustomer(std::int64_t account, std::int64_t customer) {
    for (const char* sql : {"DELETE FROM items WHERE account_id=? AND customer_id=?",
                            "DELETE FROM stamps WHERE account_id=? AND customer_id=?",
                            "DELETE FROM customers WHERE account_id=? AND customer_id=?"})
        Execute(db_, sql, account, customer);
}

std::vector<CustomerRow> RecordStore::Customers(std::int64_t account) {
    SQLite::Statement st(db_,
                         "SELECT customer_id, inet_enable_flag FROM customers WHERE account_id=? "
                         "ORDER BY customer_id");
    st.bind(1, account);
    std::vector<CustomerRow> out;
    while (st.executeStep()) out.push_back({st.getColumn(0).getInt(), st.getColumn(1).getInt()});
    return out;
}

void RecordStore::SetInetEnableFlag(std::int64_t account, std::int64_t customer, int flag) {
    Execute(db_, "UPDATE customers SET inet_enable_flag=? WHERE account_id=? AND customer_id=?",
            flag, account, customer);
}

int RecordStore::InetEnableFlag(std::int64_t account, std::int64_t customer) {
    SQLite::Statement st(
        db_, "SELECT inet_enable_flag FROM customers WHERE account_id=? AND customer_id=?");
    SQLite::bind(st, account, customer);
    return st.executeStep() ? st.getColumn(0).getInt() : 0;
}

int RecordStore::EnabledCount(std::int64_t account) {
    SQLite::Statement st(
        db_, "SELECT COUNT(*) FROM customers WHERE account_id=? AND inet_enable_flag<>0");
    st.bind(1, account);
    st.executeStep();
    return st.getColumn(0).getInt();
}

void RecordStore::Touch(std::int64_t account, std::int64_t customer, const std::string& store,
                        const std::string& stamp) {
    Execute(db_,
            "INSERT INTO stamps(account_id, customer_id, store, stamp) VALUES(?,?,?,?) "
            "ON CONFLICT(account_id, customer_id, store) DO UPDATE SET stamp=excluded.stamp",
            account, customer, store, stamp);
}

std::string RecordStore::LatestStamp(std::int64_t account, std::int64_t customer,
                                     const std::vector<std::string>& stores) {
    std::string latest;
    SQLite::Statement st(
        db_, "SELECT stamp FROM stamps WHERE account_id=? AND customer_id=? AND store=?");
    for (const auto& store : stores) {
        SQLite::bind(st, account, customer, store);
        // The stamp text sorts as its time does.
        if (st.executeStep()) latest = std::max(latest, st.getColumn(0).getString());
        st.reset();
    }
    return latest;
}

std::int64_t RecordStore::ItemRow(const Place& place, const std::string& store,
                                  const std::string& itemId, bool create, std::int64_t order) {
    SQLite::Statement st(db_,
                         "SELECT id FROM items WHERE account_id=? AND customer_id=? AND store=? "
                         "AND scope=? AND item_id=?");
    SQLite::bind(st, place.account, place.customer, store, place.scope, itemId);
    if (st.executeStep()) return st.getColumn(0).getInt64();
    if (!create) return 0;
    Execute(db_,
            "INSERT INTO items(account_id, customer_id, store, scope, item_id, ord) "
            "VALUES(?,?,?,?,?,?)",
            place.account, place.customer, store, place.scope, itemId, order);
    return db_.getLastInsertRowid();
}

void RecordStore::ReadFields(SQLite::Statement& st, std::int64_t row, Fields& out) {
    st.bind(1, row);
    while (st.executeStep()) out[st.getColumn(0).getString()] = st.getColumn(1).getString();
    st.reset();
}

void RecordStore::WriteFields(std::int64_t row,
                              const std::vector<std::pair<std::string, std::string>>& fields) {
    SQLite::Statement st(db_,
                         "INSERT INTO item_fields(item, name, value) VALUES(?,?,?) "
                         "ON CONFLICT(item, name) DO UPDATE SET value=excluded.value");
    for (const auto& [name, value] : fields) {
        SQLite::bind(st, row, name, value);
        st.exec();
        st.reset();
    }
}

Fields RecordStore::Record(const Place& place, const std::string& store) {
    Fields out;
    const auto row = ItemRow(place, store, "", false, 0);
    if (!row) return out;
    SQLite::Statement st(db_, kFieldsOfItem);
    ReadFields(st, row, out);
    return out;
}

void RecordStore::UpdateRecord(const Place& place, const std::string& store,
                               const std::vector<std::pair<std::string, std::string>>& fields) {
    WriteFields(ItemRow(place, store, "", true, 0), fields);
}

std::vector<StoredItem> RecordStore::List(const Place& place, const std::string& store) {
    std::vector<StoredItem> out;
    std::vector<std::int64_t> rows;
    SQLite::Statement st(db_,
                         "SELECT id, item_id FROM items WHERE account_id=? AND customer_id=? AND "
                         "store=? AND scope=? ORDER BY ord, id");
    SQLite::bind(st, place.account, place.customer, store, place.scope);
    while (st.executeStep()) {
        rows.push_back(st.getColumn(0).getInt64());
        out.push_back({st.getColumn(1).getString(), {}});
    }
    SQLite::Statement fields(db_, kFieldsOfItem);
    for (std::size_t i = 0; i < rows.size(); ++i) ReadFields(fields, rows[i], out[i].fields);
    return out;
}

void RecordStore::ClearList(const Place& place, const std::string& store) {
    Execute(db_, "DELETE FROM items WHERE account_id=? AND customer_id=? AND store=? AND scope=?",
            place.account, place.customer, store, place.scope);
}

void RecordStore::PutItem(const Place& place, const std::string& store, const std::string& itemId,
                          std::int64_t order,
                          const std::vector<std::pair<std::string, std::string>>& fields) {
    if (const auto old = ItemRow(place, store, itemId, false, 0))
        Execute(db_, "DELETE FROM items WHERE id=?", old);
    WriteFields(ItemRow(place, store, itemId, true, order), fields);
}

}  // namespace morvane::server
