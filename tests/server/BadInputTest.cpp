// Bad requests get failure replies and change nothing; concurrent clients stay consistent.
#include <SQLiteCpp/Database.h>

#include <atomic>
#include <thread>

#include "ServerFixture.h"
#include "server/core/Storage.h"

namespace morvane::server::testing {
namespace {

TEST_F(ServerTest, MalformedBodiesUnknownPagesAndBadNumbersAreRefused) {
    Login u = LogIn();
    Reply r = Post("customer/getCompList.php", "garbage&ID=u1&token=" + u.token + "&");
    EXPECT_EQ(r.Flags(), -1);
    EXPECT_FALSE(r.Token().empty()) << "the login is kept";
    u.token = r.Token();
    EXPECT_EQ(Post("customer/getCompList.php", std::string("\0\x01\x02", 3)).Flags(), 0);
    EXPECT_EQ(Post("customer/getCompList.php", "").Flags(), 0);
    for (const char* page : {"customer/getNothing.php", "logout.php"})
        EXPECT_EQ(Post(page, "ID=u1&token=" + u.token + "&").Flags(), -1) << page;
    for (const char* rest :
         {"CustomerID=77&", "CustomerID=&", "CustomerID=abc&", "", "CustomerID=99999999999&"}) {
        Reply bad = Call(u, "customer/getCompKihon.php", rest);
        EXPECT_EQ(bad.Flags(), -1) << rest;
        EXPECT_FALSE(bad.Payload("Customer")) << rest;
    }
    EXPECT_EQ(Flags(u, "customer/setMemo.php", "CustomerID=77&MemoItemID=1&History=x&"), -1);
    EXPECT_EQ(Flags(u, "customer/lockComp.php", "CustomerID=x&"), -1);
    EXPECT_EQ(Call(u, "customer/getCompList.php", "").At("compList/CompCount"), "0");
}

TEST_F(ServerTest, AFailedWriteChangesNothing) {
    Login u = LogIn();
    CreateCustomer(u, 1);
    for (const auto& [stem, field] : std::vector<std::pair<std::string, std::string>>{
             {"Memo", "History"}, {"NyusatsuKikan", "KikanName"}, {"NyusatsuSanka", "KikanCode"}}) {
        const std::string page = "customer/set" + stem + ".php";
        const std::string id = stem + "ItemID=";
        ASSERT_EQ(
            Flags(u, page, "CustomerID=1&" + id + "1&DISABLEDALL=DISABLEDALL&" + field + "=keep&"),
            1);
        const std::string list = "Customer/" + stem + "List/";
        const std::string stamp =
            Call(u, "customer/get" + stem + ".php", "CustomerID=1&").At(list + "RecordUpdate");
        // A value that no XML reply could carry is refused before the list is emptied.
        for (const std::string& body :
             {"CustomerID=1&" + field + "=no item&", "CustomerID=77&" + id + "2&" + field + "=x&",
              "CustomerID=1&" + id + "3&DISABLEDALL=DISABLEDALL&" + field + "=a\x01&"})
            EXPECT_EQ(Flags(u, page, body), -1) << body;
        Reply after = Call(u, "customer/get" + stem + ".php", "CustomerID=1&");
        EXPECT_EQ(after.At(list + stem + "Count") + after.At(list + stem + "Item/" + field),
                  "1keep");
        EXPECT_EQ(after.At(list + "RecordUpdate"), stamp) << stem;
    }
    EXPECT_EQ(Flags(u, "customer/createCompKihon.php", "CustomerID=2&Code=\x02&"), -1);
    EXPECT_EQ(Call(u, "customer/getCompList.php", "").At("compList/CompCount"), "1");
}

TEST_F(ServerTest, ADatabaseErrorFailsThatPageOnlyAndStoresNothing) {
    Login u = LogIn();
    CreateCustomer(u, 1);
    SQLite::Database db(Storage::DatabaseFile(options_.dataDir).string(), SQLite::OPEN_READWRITE);
    db.exec("DROP TABLE item_fields; DROP TABLE users");
    const auto items = [&] { return db.execAndGet("SELECT COUNT(*) FROM items").getInt(); };
    const int before = items();

    Reply read = Call(u, "customer/getCompKihon.php", "CustomerID=1&");
    EXPECT_EQ(read.Flags(), -1);
    EXPECT_FALSE(read.Token().empty()) << "the session goes on";
    // The item row was written before the failing statement; the page's transaction drops it.
    EXPECT_EQ(Call(u, "customer/setMemo.php", "CustomerID=1&MemoItemID=1&History=h&").Flags(), -1);
    EXPECT_EQ(items(), before);
    EXPECT_EQ(Call(u, "customer/lockComp.php", "CustomerID=1&").At("LockInfo/Customer/result"),
              "1");
    // Outside a page's transaction the error still ends in a failure reply.
    EXPECT_EQ(Post("login.php", "no=K100&ID=u1&PW=secret&").Flags(), -1);
}

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
            for (int i = 0; i < kItems; ++i) {
                const int id = 1 + c * kItems + i;
                Reply r = Call(me, "customer/setMemo.php",
                               "CustomerID=1&MemoItemID=" + std::to_string(id) + "&History=h" +
                                   std::to_string(id) + "&");
                if (r.Flags() != 1) ++failures;
            }
            Reply lock = Call(me, "customer/lockComp.php", "CustomerID=2&");
            if (lock.At("LockInfo/Customer/result") == "1") ++granted;
        });
    }
    for (auto& t : threads) t.join();
    EXPECT_EQ(failures.load(), 0);
    // u1 holds it in two sessions, so one user got it: two grants of the same user, none of u2.
    EXPECT_EQ(granted.load(), 2);
    Reply list = Call(owner, "customer/getMemo.php", "CustomerID=1&");
    EXPECT_EQ(list.At("Customer/MemoList/MemoCount"), std::to_string(1 + kClients * kItems));
}

}  // namespace
}  // namespace morvane::server::testing
