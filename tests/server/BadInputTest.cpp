// Bad requests get failure replies and change nothing; concurrent clients stay consistent.
#include <atomic>
#include <thread>

#include "ServerFixture.h"

namespace morvane::server::testing {
namespace {

TEST_F(ServerTest, MalformedBodyIsRefusedWithTheLoginKept) {
    Login u = login();
    Reply r = post("customer/getCompList.php", "garbage&ID=u1&token=" + u.token + "&");
    EXPECT_EQ(r.flags(), -1);
    EXPECT_FALSE(r.token().empty());
    EXPECT_EQ(post("customer/getCompList.php", std::string("\0\x01\x02", 3)).flags(), 0);
    EXPECT_EQ(post("customer/getCompList.php", "").flags(), 0);
}

TEST_F(ServerTest, UnknownCustomerAndBadNumbersAreRefused) {
    Login u = login();
    for (const char* rest :
         {"CustomerID=77&", "CustomerID=&", "CustomerID=abc&", "", "CustomerID=99999999999&"}) {
        Reply r = call(u, "customer/getCompKihon.php", rest);
        EXPECT_EQ(r.flags(), -1) << rest;
        EXPECT_FALSE(r.payload("Customer")) << rest;
    }
    EXPECT_EQ(call(u, "customer/setMemo.php", "CustomerID=77&MemoItemID=1&History=x&").flags(), -1);
    EXPECT_EQ(call(u, "customer/lockComp.php", "CustomerID=x&", "id").flags(), -1);
    EXPECT_STREQ(
        call(u, "customer/getCompList.php", "").payload("compList").child("CompCount").text().get(),
        "0");
}

TEST_F(ServerTest, UnknownPageGetsAFailureReply) {
    Login u = login();
    Reply r = call(u, "customer/getNothing.php", "");
    EXPECT_EQ(r.flags(), -1);
    Reply logout = post("logout.php", "ID=u1&token=" + u.token + "&");
    EXPECT_EQ(logout.flags(), -1);
}

TEST_F(ServerTest, AFailedWriteChangesNothing) {
    Login u = login();
    createCustomer(u, 1);
    call(u, "customer/setMemo.php",
         "CustomerID=1&MemoItemID=1&DISABLEDALL=DISABLEDALL&History=keep&");
    const std::string stamp = call(u, "customer/getMemo.php", "CustomerID=1&")
                                  .payload("Customer")
                                  .child("MemoList")
                                  .child("RecordUpdate")
                                  .text()
                                  .get();
    // A value that no XML reply could carry is refused before the list is emptied.
    Reply bad =
        call(u, "customer/setMemo.php",
             std::string("CustomerID=1&MemoItemID=2&DISABLEDALL=DISABLEDALL&History=a\x01&"));
    EXPECT_EQ(bad.flags(), -1);
    EXPECT_EQ(call(u, "customer/setMemo.php", "CustomerID=1&History=no item&").flags(), -1);
    Reply after = call(u, "customer/getMemo.php", "CustomerID=1&");
    auto list = after.payload("Customer").child("MemoList");
    EXPECT_STREQ(list.child("MemoCount").text().get(), "1");
    EXPECT_STREQ(list.child("MemoItem").child("History").text().get(), "keep");
    EXPECT_EQ(std::string(list.child("RecordUpdate").text().get()), stamp);
    EXPECT_EQ(call(u, "customer/createCompKihon.php", "CustomerID=2&Code=\x02&", "id").flags(), -1);
    EXPECT_STREQ(
        call(u, "customer/getCompList.php", "").payload("compList").child("CompCount").text().get(),
        "1");
}

TEST_F(ServerTest, ConcurrentClientsOnOneCustomerKeepEveryItemAndOneLockHolder) {
    Login owner = login();
    createCustomer(owner, 1);
    call(owner, "customer/setMemo.php",
         "CustomerID=1&MemoItemID=0&DISABLEDALL=DISABLEDALL&History=start&");
    constexpr int kClients = 4;
    constexpr int kItems = 8;
    std::vector<Login> logins;
    for (int c = 0; c < kClients; ++c)
        logins.push_back(login(c % 2 ? "u2" : "u1", c % 2 ? "other" : "secret"));
    std::atomic<int> failures{0};
    std::atomic<int> granted{0};
    std::vector<std::thread> threads;
    for (int c = 0; c < kClients; ++c) {
        threads.emplace_back([&, c] {
            Login& me = logins[static_cast<std::size_t>(c)];
            for (int i = 0; i < kItems; ++i) {
                const int id = 1 + c * kItems + i;
                Reply r = call(me, "customer/setMemo.php",
                               "CustomerID=1&MemoItemID=" + std::to_string(id) + "&History=h" +
                                   std::to_string(id) + "&");
                if (r.flags() != 1) ++failures;
            }
            Reply lock = call(me, "customer/lockComp.php", "CustomerID=2&", "id");
            if (std::string(
                    lock.payload("LockInfo").child("Customer").child("result").text().get()) == "1")
                ++granted;
        });
    }
    for (auto& t : threads) t.join();
    EXPECT_EQ(failures.load(), 0);
    // u1 holds it in two sessions, so one user got it: two grants of the same user, none of u2.
    EXPECT_EQ(granted.load(), 2);
    Reply list = call(owner, "customer/getMemo.php", "CustomerID=1&");
    EXPECT_STREQ(list.payload("Customer").child("MemoList").child("MemoCount").text().get(),
                 std::to_string(1 + kClients * kItems).c_str());
}

}  // namespace
}  // namespace morvane::server::testing
