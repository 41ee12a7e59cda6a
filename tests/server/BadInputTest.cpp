// Bad requests get failure replies and change nothing; concurrent clients stay consistent.
#include <SQLiteCpp/Database.h>

#include <atomic>
#include <thread>

#include "ServerFixture.h"
#include "server/core/Storage.h"

namespace morvane::server::testing {
namespace {

std::string LockResult(const Reply& r) {
    return r.Payload("LockInfo").child("Customer").child("result").text().get();
}

TEST_F(ServerTest, MalformedBodyIsRefusedWithTheLoginKept) {
    Login u = LogIn();
    Reply r = Post("customer/getCompList.php", "garbage&ID=u1&token=" + u.token + "&");
    EXPECT_EQ(r.Flags(), -1);
    EXPECT_FALSE(r.Token().empty());
    EXPECT_EQ(Post("customer/getCompList.php", std::string("\0\x01\x02", 3)).Flags(), 0);
    EXPECT_EQ(Post("customer/getCompList.php", "").Flags(), 0);
}

TEST_F(ServerTest, UnknownCustomerAndBadNumbersAreRefused) {
    Login u = LogIn();
    for (const char* rest :
         {"CustomerID=77&", "CustomerID=&", "CustomerID=abc&", "", "CustomerID=99999999999&"}) {
        Reply r = Call(u, "customer/getCompKihon.php", rest);
        EXPECT_EQ(r.Flags(), -1) << rest;
        EXPECT_FALSE(r.Payload("Customer")) << rest;
    }
    EXPECT_EQ(Call(u, "customer/setMemo.php", "CustomerID=77&MemoItemID=1&History=x&").Flags(), -1);
    EXPECT_EQ(Call(u, "customer/lockComp.php", "CustomerID=x&", "id").Flags(), -1);
    EXPECT_STREQ(
        Call(u, "customer/getCompList.php", "").Payload("compList").child("CompCount").text().get(),
        "0");
}

TEST_F(ServerTest, UnknownPageGetsAFailureReply) {
    Login u = LogIn();
    Reply r = Call(u, "customer/getNothing.php", "");
    EXPECT_EQ(r.Flags(), -1);
    Reply logout = Post("logout.php", "ID=u1&token=" + u.token + "&");
    EXPECT_EQ(logout.Flags(), -1);
}

TEST_F(ServerTest, AFailedWriteChangesNothing) {
    Login u = LogIn();
    CreateCustomer(u, 1);
    Call(u, "customer/setMemo.php",
         "CustomerID=1&MemoItemID=1&DISABLEDALL=DISABLEDALL&History=keep&");
    const std::string stamp = Call(u, "customer/getMemo.php", "CustomerID=1&")
                                  .Payload("Customer")
                                  .child("MemoList")
                                  .child("RecordUpdate")
                                  .text()
                                  .get();
    // A value that no XML reply could carry is refused before the list is emptied.
    Reply bad =
        Call(u, "customer/setMemo.php",
             std::string("CustomerID=1&MemoItemID=2&DISABLEDALL=DISABLEDALL&History=a\x01&"));
    EXPECT_EQ(bad.Flags(), -1);
    EXPECT_EQ(Call(u, "customer/setMemo.php", "CustomerID=1&History=no item&").Flags(), -1);
    Reply after = Call(u, "customer/getMemo.php", "CustomerID=1&");
    auto list = after.Payload("Customer").child("MemoList");
    EXPECT_STREQ(list.child("MemoCount").text().get(), "1");
    EXPECT_STREQ(list.child("MemoItem").child("History").text().get(), "keep");
    EXPECT_EQ(std::string(list.child("RecordUpdate").text().get()), stamp);
    EXPECT_EQ(Call(u, "customer/createCompKihon.php", "CustomerID=2&Code=\x02&", "id").Flags(), -1);
    EXPECT_STREQ(
        Call(u, "customer/getCompList.php", "").Payload("compList").child("CompCount").text().get(),
        "1");
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
    EXPECT_EQ(LockResult(Call(u, "customer/lockComp.php", "CustomerID=1&", "id")), "1");
    // Outside a page's transaction the error still ends in a failure reply.
    EXPECT_EQ(Post("login.php", "no=K100&ID=u1&PW=secret&").Flags(), -1);
}

TEST_F(ServerTest, BadBiddingListBodiesAreRefusedAndChangeNothing) {
    Login u = LogIn();
    CreateCustomer(u, 1);
    for (const auto& [stem, field] :
         {std::pair<std::string, std::string>{"NyusatsuKikan", "KikanName"},
          {"NyusatsuSanka", "KikanCode"}}) {
        const std::string page = "customer/set" + stem + ".php";
        const std::string id = stem + "ItemID=";
        ASSERT_EQ(
            Call(u, page, "CustomerID=1&" + id + "1&DISABLEDALL=DISABLEDALL&" + field + "=keep&")
                .Flags(),
            1);
        for (const std::string& body :
             {"CustomerID=1&" + field + "=no item&", "CustomerID=77&" + id + "2&" + field + "=x&",
              "CustomerID=1&" + id + "3&DISABLEDALL=DISABLEDALL&" + field + "=a\x01&"})
            EXPECT_EQ(Call(u, page, body).Flags(), -1) << body;
        Reply after = Call(u, "customer/get" + stem + ".php", "CustomerID=1&");
        auto list = after.Payload("Customer").child((stem + "List").c_str());
        EXPECT_STREQ(list.child((stem + "Count").c_str()).text().get(), "1") << stem;
        EXPECT_STREQ(list.child((stem + "Item").c_str()).child(field.c_str()).text().get(), "keep");
    }
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
            Reply lock = Call(me, "customer/lockComp.php", "CustomerID=2&", "id");
            if (std::string(
                    lock.Payload("LockInfo").child("Customer").child("result").text().get()) == "1")
                ++granted;
        });
    }
    for (auto& t : threads) t.join();
    EXPECT_EQ(failures.load(), 0);
    // u1 holds it in two sessions, so one user got it: two grants of the same user, none of u2.
    EXPECT_EQ(granted.load(), 2);
    Reply list = Call(owner, "customer/getMemo.php", "CustomerID=1&");
    EXPECT_STREQ(list.Payload("Customer").child("MemoList").child("MemoCount").text().get(),
                 std::to_string(1 + kClients * kItems).c_str());
}

}  // namespace
}  // namespace morvane::server::testing
