// Bad requests get failure replies and change nothing; concurrent clients stay consistent.
#include <SQLiteCpp/Database.h>

#include <atomic>
#include <thread>

#include "ServerFixture.h"
#include "server/core/Storage.h"
#include "support/Golden.h"

namespace morvane::server::testing {
namespace {

using morvane::test::Golden;

// A refusal keeps the login; a body that is no form, or none, is not a login at all.
TEST_F(ServerTest, MalformedBodiesUnknownPagesAndBadNumbersAreRefused) {
    Login u = LogIn();
    Reply r = Post("customer/getCompList.php", "garbage&ID=u1&token=" + u.token + "&");
    EXPECT_EQ(r.Flags(), -1);
    EXPECT_FALSE(r.Token().empty());
    u.token = r.Token();
    EXPECT_EQ(Post("customer/getCompList.php", std::string("\0\x01\x02", 3)).Flags(), 0);
    EXPECT_EQ(Post("customer/getCompList.php", "").Flags(), 0);
    for (const char* page : {"customer/getNothing.php", "logout.php"})
        EXPECT_EQ(Post(page, "ID=u1&token=" + u.token + "&").Flags(), -1) << page;
    for (const auto& row : Golden("server/bad-input.txt").Table("refused")) {
        Reply bad = Call(u, row[0], row[1]);
        EXPECT_EQ(bad.Flags(), -1) << row[0] << " " << row[1];
        EXPECT_FALSE(bad.Payload("Customer")) << row[0] << " " << row[1];
    }
    EXPECT_EQ(Call(u, "customer/getCompList.php", "").At("compList/CompCount"), "0");
}

// A write without an item ID, to an unknown customer, or with a value that no XML reply could
// carry is refused before the list is emptied; a database error fails that page only.
TEST_F(ServerTest, AFailedWriteOrADatabaseErrorChangesNothing) {
    Login u = LogIn();
    CreateCustomer(u, 1);
    for (const auto& row : Golden("server/bad-input.txt").Table("lists")) {
        const std::string& stem = row[0];
        const std::string& field = row[1];
        const std::string page = "customer/set" + stem + ".php";
        const std::string id = stem + "ItemID=";
        const std::string list = "Customer/" + stem + "List/";
        ASSERT_EQ(
            Flags(u, page, "CustomerID=1&" + id + "1&DISABLEDALL=DISABLEDALL&" + field + "=keep&"),
            1);
        const auto read = [&] { return Call(u, "customer/get" + stem + ".php", "CustomerID=1&"); };
        const std::string stamp = read().At(list + "RecordUpdate");
        for (const std::string& body :
             {"CustomerID=1&" + field + "=no item&", "CustomerID=77&" + id + "2&" + field + "=x&",
              "CustomerID=1&" + id + "3&DISABLEDALL=DISABLEDALL&" + field + "=a\x01&"})
            EXPECT_EQ(Flags(u, page, body), -1) << body;
        Reply after = read();
        EXPECT_EQ(after.At(list + stem + "Count") + after.At(list + stem + "Item/" + field) +
                      after.At(list + "RecordUpdate"),
                  "1keep" + stamp);
    }
    EXPECT_EQ(Flags(u, "customer/createCompKihon.php", "CustomerID=2&Code=\x02&"), -1);
    EXPECT_EQ(Call(u, "customer/getCompList.php", "").At("compList/CompCount"), "1");

    // The item row of the memo is written before the failing statement; the page's transaction
    // drops it. Outside a page's transaction the error still ends in a failure reply.
    SQLite::Database db(Storage::DatabaseFile(options_.dataDir).string(), SQLite::OPEN_READWRITE);
    db.exec("DROP TABLE item_fields; DROP TABLE users");
    const auto items = [&] { return db.execAndGet("SELECT COUNT(*) FROM items").getInt(); };
    const int before = items();

    Reply read = Call(u, "customer/getCompKihon.php", "CustomerID=1&");
    EXPECT_EQ(read.Flags(), -1);
    EXPECT_FALSE(read.Token().empty()) << "the session goes on";
    EXPECT_EQ(Call(u, "customer/setMemo.php", "CustomerID=1&MemoItemID=9&History=h&").Flags(), -1);
    EXPECT_EQ(items(), before);
    EXPECT_EQ(Call(u, "customer/lockComp.php", "CustomerID=1&").At("LockInfo/Customer/result"),
              "1");
    EXPECT_EQ(Post("login.php", "no=K100&ID=u1&PW=secret&").Flags(), -1);
}

// u1 holds the lock in two sessions, so one user got it: two grants of the same user, none
// of u2's.
TEST_F(ServerTest, ConcurrentClientsOnOneCustomerKeepEveryItemAndOneLockHolder) {
    Login owner = LogIn();
    CreateCustomer(owner, 1);
    Call(owner, "customer/setMemo.php",
         "CustomerID=1&MemoItemID=0&DISABLEDALL=DISABLEDALL&History=start&");
    constexpr int kClients = 4;
    constexpr int kItems = 8;
    std::vector<Login> logins;
    for (int c = 0; c < kClients; ++c)
        logins.push_back(LogIn(c % 2 ? "u2" : "u1", c % 2 ? "other" : "secret"));
    std::atomic<int> failures{0};
    std::atomic<int> granted{0};
    std::vector<std::thread> threads;
    for (int c = 0; c < kClients; ++c) {
        threads.emplace_back([&, c] {
            Login& me = logins[static_cast<std::size_t>(c)];
            for (int id = 1 + c * kItems; id <= (c + 1) * kItems; ++id) {
                const std::string n = std::to_string(id);
                if (Flags(me, "customer/setMemo.php",
                          "CustomerID=1&MemoItemID=" + n + "&History=h" + n + "&") != 1)
                    ++failures;
            }
            Reply lock = Call(me, "customer/lockComp.php", "CustomerID=2&");
            if (lock.At("LockInfo/Customer/result") == "1") ++granted;
        });
    }
    for (auto& t : threads) t.join();
    EXPECT_EQ(failures.load(), 0);
    EXPECT_EQ(granted.load(), 2);
    EXPECT_EQ(
        Call(owner, "customer/getMemo.php", "CustomerID=1&").At("Customer/MemoList/MemoCount"),
        std::to_string(1 + kClients * kItems));
}

}  // namespace
}  // namespace morvane::server::testing
