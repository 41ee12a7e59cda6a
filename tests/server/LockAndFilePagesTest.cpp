// Locks between users, and the data files with their hash replies and wire forms.
#include <filesystem>

#include "ServerFixture.h"
#include "server/crypto/Secrets.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;

std::string LockResult(const Reply& r, const char* kind) {
    return r.Payload("LockInfo").child(kind).child("result").text().get();
}

TEST_F(ServerTest, CustomerLockIsHeldByOneUserRenewedAndLapses) {
    Login a = LogIn("u1");
    Login b = LogIn("u2", "other");
    CreateCustomer(a, 5);
    Reply granted = Call(a, "customer/lockComp.php", "CustomerID=5&", "id");
    EXPECT_EQ(granted.Flags(), 1);
    EXPECT_EQ(LockResult(granted, "Customer"), "1");
    Reply refused = Call(b, "customer/lockComp.php", "CustomerID=5&", "id");
    EXPECT_EQ(refused.Flags(), 1) << "a refusal is an ordinary reply";
    EXPECT_EQ(LockResult(refused, "Customer"), "0");

    // The holder's writes pass; the other user's are refused with -2 and change nothing.
    EXPECT_EQ(Call(a, "customer/setCompKihon.php", "CustomerID=5&Code=A&").Flags(), 1);
    EXPECT_EQ(Call(b, "customer/setCompKihon.php", "CustomerID=5&Code=B&").Flags(), -2);
    EXPECT_EQ(Call(b, "customer/deleteCompKihon.php", "CustomerID=5&", "id").Flags(), -2);
    EXPECT_STREQ(Call(b, "customer/getCompKihon.php", "CustomerID=5&")
                     .Payload("Customer")
                     .child("CompKihon")
                     .child("Code")
                     .text()
                     .get(),
                 "A")
        << "reading stays open to everyone";

    // Renewal every ten minutes keeps it past the fifteen-minute expiry.
    for (int i = 0; i < 3; ++i) {
        clock_->Advance(10min);
        EXPECT_EQ(LockResult(Call(a, "customer/lockComp.php", "CustomerID=5&", "id"), "Customer"),
                  "1");
    }
    EXPECT_EQ(LockResult(Call(b, "customer/lockComp.php", "CustomerID=5&", "id"), "Customer"), "0");
    clock_->Advance(16min);
    // Keep a's login alive is not needed for the lock to lapse.
    EXPECT_EQ(LockResult(Call(b, "customer/lockComp.php", "CustomerID=5&", "id"), "Customer"), "1");
}

TEST_F(ServerTest, UnlockByTheHolderFreesItAndByOthersDoesNothing) {
    Login a = LogIn("u1");
    Login b = LogIn("u2", "other");
    Call(a, "master/lockMaster.php", "MasterID=1&", "id");
    Reply foreign = Call(b, "master/unlockMaster.php", "MasterID=1&", "id");
    EXPECT_EQ(foreign.Flags(), 1);
    EXPECT_EQ(LockResult(Call(b, "master/lockMaster.php", "MasterID=1&", "id"), "Master"), "0");
    EXPECT_EQ(Call(b, "master/setYakushoku.php",
                   "YakushokuItemID=1&DISABLEDALL=DISABLEDALL&Yakushoku=x&Flag=0&vno=1&")
                  .Flags(),
              -2)
        << "masters are locked for the office as a whole";
    EXPECT_EQ(Call(a, "master/unlockMaster.php", "MasterID=1&", "id").Flags(), 1);
    EXPECT_EQ(LockResult(Call(b, "master/lockMaster.php", "MasterID=1&", "id"), "Master"), "1");
    EXPECT_EQ(Call(a, "customer/unlockComp.php", "CustomerID=99&", "id").Flags(), 1)
        << "unlocking what is not locked is harmless";
}

class FilePagesTest : public ServerTest {
protected:
    void SetUp() override {
        ServerTest::SetUp();
        user = LogIn();
        CreateCustomer(user, 3);
    }
    Reply Hash(const std::string& kind, const std::string& name) {
        return Call(user, "customer/get" + kind + "FileHash.php",
                    "CustomerID=3&FileName=" + name + "&");
    }
    std::string Download(const std::string& kind, const std::string& name,
                         const std::string& token) {
        return RawPost("customer/get" + kind + "File.php",
                       "ID=u1&token=" + token + "&CustomerID=3&FileName=" + name + "&");
    }
    Login user;
};

TEST_F(FilePagesTest, UploadReplyReportsWhatIsStoredAndDownloadGivesTheBytes) {
    std::string bytes("PDF\0\x01\xff binary", 14);
    Reply up = UploadFile(user, "Kessan", 3, "%E6%B1%BA%E7%AE%97.pdf", bytes);
    ASSERT_EQ(up.Flags(), 1) << up.text;
    auto item = up.Payload("Customer").child("KessanFileList").child("KessanFileItem");
    EXPECT_STREQ(up.Payload("Customer").child("CustomerID").text().get(), "3");
    EXPECT_STREQ(item.child("FileName").text().get(), "決算.pdf");
    EXPECT_EQ(std::string(item.child("FileSize").text().get()), std::to_string(bytes.size()));
    EXPECT_EQ(std::string(item.child("hash").text().get()), CrcText(Crc32Of(bytes)));
    const std::string modified = item.child("LastModified").text().get();
    EXPECT_EQ(modified, Reply(RawPost("gettime.php", "")).Payload("datetime").text().get())
        << "the time of receipt, on the server clock";

    Reply h = Hash("Kessan", "決算.pdf");
    auto hashed = h.Payload("Customer").child("KessanFileList").child("KessanFileItem");
    EXPECT_STREQ(hashed.child("hash").text().get(), item.child("hash").text().get());
    EXPECT_STREQ(hashed.child("LastModified").text().get(), modified.c_str());

    const std::string before = user.token;
    EXPECT_EQ(Download("Kessan", "決算.pdf", user.token), bytes);
    EXPECT_EQ(Call(user, "customer/getCompList.php", "").Flags(), 1)
        << "a download keeps the token as it was";
    EXPECT_EQ(Download("Kyoka", "決算.pdf", user.token), "") << "kinds are kept apart";
    EXPECT_EQ(Download("Kessan", "none.pdf", user.token), "") << "unknown file: empty body";
    EXPECT_EQ(Download("Kessan", "決算.pdf", "bad-token"), "");
}

TEST_F(FilePagesTest, UnknownFileHashHasTheCustomerAndAnEmptyList) {
    Reply h = Hash("Other", "missing.txt");
    EXPECT_EQ(h.Flags(), 1);
    auto c = h.Payload("Customer");
    EXPECT_STREQ(c.child("CustomerID").text().get(), "3");
    EXPECT_TRUE(c.child("OtherFileList"));
    EXPECT_FALSE(c.child("OtherFileList").child("OtherFileItem"));
}

TEST_F(FilePagesTest, DeleteAndRename) {
    UploadFile(user, "Kyoka", 3, "a.txt", "AAA");
    UploadFile(user, "Kyoka", 3, "b.txt", "BBB");
    EXPECT_EQ(
        Call(user, "customer/renameKyokaFile.php", "CustomerID=3&SrcFile=a.txt&DstFile=b.txt&")
            .Flags(),
        1);
    EXPECT_EQ(Download("Kyoka", "b.txt", user.token), "AAA") << "the renamed file replaces";
    EXPECT_EQ(Download("Kyoka", "a.txt", user.token), "");
    EXPECT_EQ(Call(user, "customer/deleteKyokaFile.php", "CustomerID=3&FileName=b.txt&").Flags(),
              1);
    EXPECT_EQ(Download("Kyoka", "b.txt", user.token), "");
    EXPECT_EQ(Call(user, "customer/deleteKyokaFile.php", "CustomerID=3&FileName=b.txt&").Flags(),
              1);
}

TEST_F(FilePagesTest, NamesThatCouldLeaveTheFolderAreRefused) {
    const auto filesRoot = options_.dataDir / "files";
    for (const char* name : {"..%2Fescape.txt", "%2Fetc%2Fpasswd", "a%5Cb", "x%01y", ".."}) {
        Reply r = UploadFile(user, "Other", 3, name, "evil");
        EXPECT_EQ(r.Flags(), -1) << name;
        EXPECT_FALSE(r.Token().empty()) << "the login survives a refusal";
    }
    for (const char* name : {"../escape.txt", "a/b", "..", ""}) {
        EXPECT_EQ(Hash("Other", name).Flags(), -1) << name;
        EXPECT_EQ(Call(user, "customer/renameOtherFile.php",
                       std::string("CustomerID=3&SrcFile=ok.txt&DstFile=") + name + "&")
                      .Flags(),
                  -1)
            << name;
        EXPECT_EQ(Download("Other", name, user.token), "");
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
    ASSERT_EQ(UploadFile(user, "Other", 3, "big.bin", "small").Flags(), 1);
    const std::string tooBig(options_.maxUploadBytes + 1, 'x');
    Reply r = UploadFile(user, "Other", 3, "big.bin", tooBig);
    EXPECT_EQ(r.Flags(), -1);
    EXPECT_EQ(Download("Other", "big.bin", user.token), "small");
    const std::string exact(options_.maxUploadBytes, 'y');
    EXPECT_EQ(UploadFile(user, "Other", 3, "big.bin", exact).Flags(), 1);
    // Far beyond the limit the body is not even read, and the reply is still a judged one.
    Reply huge = UploadFile(user, "Other", 3, "big.bin", std::string(4 * 1024 * 1024, 'z'));
    EXPECT_EQ(huge.Flags(), -1) << huge.text;
    EXPECT_FALSE(huge.Token().empty()) << "the token travels in headers, so the login survives";
    EXPECT_EQ(Download("Other", "big.bin", user.token).size(), exact.size());
}

TEST_F(FilePagesTest, UploadNeedsAValidTokenAndAKnownCustomer) {
    Login forged{"u1", "nope"};
    EXPECT_EQ(UploadFile(forged, "Kessan", 3, "x.txt", "x").Flags(), 0);
    EXPECT_EQ(UploadFile(user, "Kessan", 42, "x.txt", "x").Flags(), -1);
    EXPECT_EQ(Download("Kessan", "x.txt", user.token), "");
}

TEST_F(FilePagesTest, FilesOfADeletedCustomerAreGone) {
    UploadFile(user, "Kessan", 3, "k.pdf", "K");
    ASSERT_EQ(Call(user, "customer/deleteCompKihon.php", "CustomerID=3&", "id").Flags(), 1);
    CreateCustomer(user, 3);
    EXPECT_EQ(Download("Kessan", "k.pdf", user.token), "");
}

}  // namespace
}  // namespace morvane::server::testing
