// Locks between users, and the data files with their hash replies and wire forms.
#include <filesystem>

#include "ServerFixture.h"
#include "server/crypto/Secrets.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;

std::string lockResult(const Reply& r, const char* kind) {
    return r.payload("LockInfo").child(kind).child("result").text().get();
}

TEST_F(ServerTest, CustomerLockIsHeldByOneUserRenewedAndLapses) {
    Login a = login("u1");
    Login b = login("u2", "other");
    createCustomer(a, 5);
    Reply granted = call(a, "customer/lockComp.php", "CustomerID=5&", "id");
    EXPECT_EQ(granted.flags(), 1);
    EXPECT_EQ(lockResult(granted, "Customer"), "1");
    Reply refused = call(b, "customer/lockComp.php", "CustomerID=5&", "id");
    EXPECT_EQ(refused.flags(), 1) << "a refusal is an ordinary reply";
    EXPECT_EQ(lockResult(refused, "Customer"), "0");

    // The holder's writes pass; the other user's are refused with -2 and change nothing.
    EXPECT_EQ(call(a, "customer/setCompKihon.php", "CustomerID=5&Code=A&").flags(), 1);
    EXPECT_EQ(call(b, "customer/setCompKihon.php", "CustomerID=5&Code=B&").flags(), -2);
    EXPECT_EQ(call(b, "customer/deleteCompKihon.php", "CustomerID=5&", "id").flags(), -2);
    EXPECT_STREQ(call(b, "customer/getCompKihon.php", "CustomerID=5&")
                     .payload("Customer")
                     .child("CompKihon")
                     .child("Code")
                     .text()
                     .get(),
                 "A")
        << "reading stays open to everyone";

    // Renewal every ten minutes keeps it past the fifteen-minute expiry.
    for (int i = 0; i < 3; ++i) {
        clock_->advance(10min);
        EXPECT_EQ(lockResult(call(a, "customer/lockComp.php", "CustomerID=5&", "id"), "Customer"),
                  "1");
    }
    EXPECT_EQ(lockResult(call(b, "customer/lockComp.php", "CustomerID=5&", "id"), "Customer"), "0");
    clock_->advance(16min);
    // Keep a's login alive is not needed for the lock to lapse.
    EXPECT_EQ(lockResult(call(b, "customer/lockComp.php", "CustomerID=5&", "id"), "Customer"), "1");
}

TEST_F(ServerTest, UnlockByTheHolderFreesItAndByOthersDoesNothing) {
    Login a = login("u1");
    Login b = login("u2", "other");
    call(a, "master/lockMaster.php", "MasterID=1&", "id");
    Reply foreign = call(b, "master/unlockMaster.php", "MasterID=1&", "id");
    EXPECT_EQ(foreign.flags(), 1);
    EXPECT_EQ(lockResult(call(b, "master/lockMaster.php", "MasterID=1&", "id"), "Master"), "0");
    EXPECT_EQ(call(b, "master/setYakushoku.php",
                   "YakushokuItemID=1&DISABLEDALL=DISABLEDALL&Yakushoku=x&Flag=0&vno=1&")
                  .flags(),
              -2)
        << "masters are locked for the office as a whole";
    EXPECT_EQ(call(a, "master/unlockMaster.php", "MasterID=1&", "id").flags(), 1);
    EXPECT_EQ(lockResult(call(b, "master/lockMaster.php", "MasterID=1&", "id"), "Master"), "1");
    EXPECT_EQ(call(a, "customer/unlockComp.php", "CustomerID=99&", "id").flags(), 1)
        << "unlocking what is not locked is harmless";
}

class FilePagesTest : public ServerTest {
  protected:
    void SetUp() override {
        ServerTest::SetUp();
        user = login();
        createCustomer(user, 3);
    }
    Reply hash(const std::string& kind, const std::string& name) {
        return call(user, "customer/get" + kind + "FileHash.php",
                    "CustomerID=3&FileName=" + name + "&");
    }
    std::string download(const std::string& kind, const std::string& name,
                         const std::string& token) {
        return rawPost("customer/get" + kind + "File.php",
                       "ID=u1&token=" + token + "&CustomerID=3&FileName=" + name + "&");
    }
    Login user;
};

TEST_F(FilePagesTest, UploadReplyReportsWhatIsStoredAndDownloadGivesTheBytes) {
    std::string bytes("PDF\0\x01\xff binary", 14);
    Reply up = uploadFile(user, "Kessan", 3, "%E6%B1%BA%E7%AE%97.pdf", bytes);
    ASSERT_EQ(up.flags(), 1) << up.text;
    auto item = up.payload("Customer").child("KessanFileList").child("KessanFileItem");
    EXPECT_STREQ(up.payload("Customer").child("CustomerID").text().get(), "3");
    EXPECT_STREQ(item.child("FileName").text().get(), "決算.pdf");
    EXPECT_EQ(std::string(item.child("FileSize").text().get()), std::to_string(bytes.size()));
    EXPECT_EQ(std::string(item.child("hash").text().get()), crcText(crc32Of(bytes)));
    const std::string modified = item.child("LastModified").text().get();
    EXPECT_EQ(modified, Reply(rawPost("gettime.php", "")).payload("datetime").text().get())
        << "the time of receipt, on the server clock";

    Reply h = hash("Kessan", "決算.pdf");
    auto hashed = h.payload("Customer").child("KessanFileList").child("KessanFileItem");
    EXPECT_STREQ(hashed.child("hash").text().get(), item.child("hash").text().get());
    EXPECT_STREQ(hashed.child("LastModified").text().get(), modified.c_str());

    const std::string before = user.token;
    EXPECT_EQ(download("Kessan", "決算.pdf", user.token), bytes);
    EXPECT_EQ(call(user, "customer/getCompList.php", "").flags(), 1)
        << "a download keeps the token as it was";
    EXPECT_EQ(download("Kyoka", "決算.pdf", user.token), "") << "kinds are kept apart";
    EXPECT_EQ(download("Kessan", "none.pdf", user.token), "") << "unknown file: empty body";
    EXPECT_EQ(download("Kessan", "決算.pdf", "bad-token"), "");
}

TEST_F(FilePagesTest, UnknownFileHashHasTheCustomerAndAnEmptyList) {
    Reply h = hash("Other", "missing.txt");
    EXPECT_EQ(h.flags(), 1);
    auto c = h.payload("Customer");
    EXPECT_STREQ(c.child("CustomerID").text().get(), "3");
    EXPECT_TRUE(c.child("OtherFileList"));
    EXPECT_FALSE(c.child("OtherFileList").child("OtherFileItem"));
}

TEST_F(FilePagesTest, DeleteAndRename) {
    uploadFile(user, "Kyoka", 3, "a.txt", "AAA");
    uploadFile(user, "Kyoka", 3, "b.txt", "BBB");
    EXPECT_EQ(
        call(user, "customer/renameKyokaFile.php", "CustomerID=3&SrcFile=a.txt&DstFile=b.txt&")
            .flags(),
        1);
    EXPECT_EQ(download("Kyoka", "b.txt", user.token), "AAA") << "the renamed file replaces";
    EXPECT_EQ(download("Kyoka", "a.txt", user.token), "");
    EXPECT_EQ(call(user, "customer/deleteKyokaFile.php", "CustomerID=3&FileName=b.txt&").flags(),
              1);
    EXPECT_EQ(download("Kyoka", "b.txt", user.token), "");
    EXPECT_EQ(call(user, "customer/deleteKyokaFile.php", "CustomerID=3&FileName=b.txt&").flags(),
              1);
}

TEST_F(FilePagesTest, NamesThatCouldLeaveTheFolderAreRefused) {
    const auto filesRoot = options_.dataDir / "files";
    for (const char* name : {"..%2Fescape.txt", "%2Fetc%2Fpasswd", "a%5Cb", "x%01y", "..", "%zz"}) {
        Reply r = uploadFile(user, "Other", 3, name, "evil");
        EXPECT_EQ(r.flags(), -1) << name;
        EXPECT_FALSE(r.token().empty()) << "the login survives a refusal";
    }
    for (const char* name : {"../escape.txt", "a/b", "..", ""}) {
        EXPECT_EQ(hash("Other", name).flags(), -1) << name;
        EXPECT_EQ(call(user, "customer/renameOtherFile.php",
                       std::string("CustomerID=3&SrcFile=ok.txt&DstFile=") + name + "&")
                      .flags(),
                  -1)
            << name;
        EXPECT_EQ(download("Other", name, user.token), "");
    }
    std::size_t stored = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(
             options_.dataDir, std::filesystem::directory_options::skip_permission_denied))
        if (entry.is_regular_file() && entry.path().string().find("escape") != std::string::npos)
            ++stored;
    EXPECT_EQ(stored, 0u);
    EXPECT_FALSE(std::filesystem::exists(dir_ / "escape.txt"));
}

TEST_F(FilePagesTest, OversizedUploadIsRefusedAndLeavesTheStoredFile) {
    ASSERT_EQ(uploadFile(user, "Other", 3, "big.bin", "small").flags(), 1);
    const std::string tooBig(options_.maxUploadBytes + 1, 'x');
    Reply r = uploadFile(user, "Other", 3, "big.bin", tooBig);
    EXPECT_EQ(r.flags(), -1);
    EXPECT_EQ(download("Other", "big.bin", user.token), "small");
    const std::string exact(options_.maxUploadBytes, 'y');
    EXPECT_EQ(uploadFile(user, "Other", 3, "big.bin", exact).flags(), 1);
    // Far beyond the limit the body is not even read, and the reply is still a judged one.
    Reply huge = uploadFile(user, "Other", 3, "big.bin", std::string(4 * 1024 * 1024, 'z'));
    EXPECT_EQ(huge.flags(), -1) << huge.text;
    EXPECT_FALSE(huge.token().empty()) << "the token travels in headers, so the login survives";
    EXPECT_EQ(download("Other", "big.bin", user.token).size(), exact.size());
}

TEST_F(FilePagesTest, UploadNeedsAValidTokenAndAKnownCustomer) {
    Login forged{"u1", "nope"};
    EXPECT_EQ(uploadFile(forged, "Kessan", 3, "x.txt", "x").flags(), 0);
    EXPECT_EQ(uploadFile(user, "Kessan", 42, "x.txt", "x").flags(), -1);
    EXPECT_EQ(download("Kessan", "x.txt", user.token), "");
}

TEST_F(FilePagesTest, FilesOfADeletedCustomerAreGone) {
    uploadFile(user, "Kessan", 3, "k.pdf", "K");
    ASSERT_EQ(call(user, "customer/deleteCompKihon.php", "CustomerID=3&", "id").flags(), 1);
    createCustomer(user, 3);
    EXPECT_EQ(download("Kessan", "k.pdf", user.token), "");
}

}  // namespace
}  // namespace morvane::server::testing
