// Stored records, lists, stamps and the customer roster of each account, in the server database.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "server/core/Storage.h"

namespace morvane::server {

using Fields = std::map<std::string, std::string>;

struct StoredItem {
    std::string itemId;
    Fields fields;
};

struct CustomerRow {
    std::int32_t customerId = 0;
    std::int32_t inetEnableFlag = 0;
};

// Where data lives: the account, the customer (0 for office data) and an extra scope text.
struct Place {
    std::int64_t account = 0;
    std::int64_t customer = 0;
    std::string scope;
};

class RecordStore {
public:
    explicit RecordStore(SQLite::Database& db) : db_(db) {}

    // Roster.
    bool CustomerExists(std::int64_t account, std::int64_t customer);
    void CreateCustomer(std::int64_t account, std::int64_t customer, int inetEnableFlag);
    // Removes the customer with all its records, lists and stamps.
    void DeleteCustomer(std::int64_t account, std::int64_t customer);
    std::vector<CustomerRow> Customers(std::int64_t account);
    void SetInetEnableFlag(std::int64_t account, std::int64_t customer, int flag);
    int InetEnableFlag(std::int64_t account, std::int64_t customer);
    int EnabledCount(std::int64_t account);

    // Stamps: the last accepted write per store.
    void Touch(std::int64_t account, std::int64_t customer, const std::string& store,
               const std::string& stamp);
    // The latest stamp among `stores`, "" when none was ever written.
    std::string LatestStamp(std::int64_t account, std::int64_t customer,
                            const std::vector<std::string>& stores);

    // Records: one item under the empty item ID.
    Fields Record(const Place& place, const std::string& store);
    void UpdateRecord(const Place& place, const std::string& store,
                      const std::vector<std::pair<std::string, std::string>>& fields);

    // Lists, in order (order number, then arrival).
    std::vector<StoredItem> List(const Place& place, const std::string& store);
    void ClearList(const Place& place, const std::string& store);
    // Adds the item, replacing one with the same item ID.
    void PutItem(const Place& place, const std::string& store, const std::string& itemId,
                 std::int64_t order,
                 const std::vector<std::pair<std::string, std::string>>& fields);

private:
    std::int64_t ItemRow(const Place& place, const std::string& store, const std::string& itemId,
                         bool create, std::int64_t order);
    static constexpr const char* kFieldsOfItem = "SELECT name, value FROM item_fields WHERE item=?";
    // Adds the fields of item `row` to `out`, leaving `st` ready for the next item.
    static void ReadFields(SQLite::Statement& st, std::int64_t row, Fields& out);
    void WriteFields(std::int64_t row,
                     const std::vector<std::pair<std::string, std::string>>& fields);
    SQLite::Database& db_;
};

}  // namespace morvane::server
