// Replies of the trades page and a customer with a permit header and a grid of trades, for
// the trades tests.
#pragma once

#include <filesystem>
#include <string>

#include "KihonTestUtil.h"

namespace morvane::test {

// The permit header as the customer row below holds it.
inline Tags HeaderTags() { return TagsOf(Golden("record/test-util.txt").Joined("header tags")); }

// Trade n (1-based) as the grid rows below hold it: check n % 3, a date on odd trades.
inline std::string CheckOf(int n) { return std::to_string(n % 3); }
inline std::string DateOf(int n) {
    return n % 2 ? "2020/01/" + std::string(n < 10 ? "0" : "") + std::to_string(n) : "";
}

inline Tags GridTags() {
    Tags tags;
    for (int n = 1; n <= 31; ++n) tags.push_back({"EPmtCheck" + std::to_string(n), CheckOf(n)});
    for (int n = 1; n <= 31; ++n) tags.push_back({"EPmtDate" + std::to_string(n), DateOf(n)});
    return tags;
}

inline std::string GyoshuPayload(const Tags& header, const Tags& grid,
                                 const std::string& stamp = "2024/05/01 09:05:00", int custId = 7) {
    const std::string stampTag =
        stamp.empty() ? std::string() : "<RecordUpdate>" + stamp + "</RecordUpdate>";
    return "<Customer><CustomerID>" + std::to_string(custId) + "</CustomerID>" + stampTag +
           "<CompKihon>" + Elements(header) + "</CompKihon><Gyoshu>" + Elements(grid) +
           "</Gyoshu></Customer>";
}

// Customer 7's row with the header above, and its trades 1..rows in order (codes as given
// by `code`), all agreed and last changed at 2024/05/01 09:00:00.
inline void InsertTrades(const std::filesystem::path& db, int rows, int custId = 7,
                         int (*code)(int) = nullptr) {
    std::string sql;
    for (int n = 1; n <= rows; ++n) {
        std::string date = DateOf(n);
        std::replace(date.begin(), date.end(), '/', '-');
        sql +=
            "INSERT INTO tCustomerGyoshu (CustomerID, disabled, GyoshuCode, EPmtCheck, "
            "EPmtDate, RecordUpdate, InetCheckDate) VALUES (" +
            std::to_string(custId) + ", 0, " + std::to_string(code ? code(n) : n) + ", " +
            CheckOf(n) + ", " + (date.empty() ? "NULL" : "'" + date + " 00:00:00'") +
            ", '2024-05-01 09:00:00', '2024-05-01 09:00:00');";
    }
    Sql(db, sql);
}

// Customer 7's row holding the header above, agreed and last changed at 2024/05/01 09:00:00.
inline void InsertCustomer(const std::filesystem::path& db) {
    Sql(db, Golden("record/test-util.txt")["customer with header"]);
}

}  // namespace morvane::test
