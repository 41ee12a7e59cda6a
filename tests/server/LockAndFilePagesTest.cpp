// Locks between users, and the data files with their hash replies and wire forms.
#include <filesystem>

#include "ServerFixture.h"
#include "server/crypto/Secrets.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;

TEST_F(ServerTest, ALockKeepsOthersWritesOutUntilItLapsesOrItsHolderUnlocks) {
    Login a = LogIn("u1");
    Login b = LogIn("u2", "other");
    CreateCustomer(a, 5);
    const auto lock = [&](Login& who, const char* page, const char* kind, const char* id) {
        const Reply r = Call(who, page, id, "id");
        EXPECT_EQ(r.Flags(), 1) << "a refusal is an ordinary reply";
        return r.At(std::string("LockInfo/") + kind + "/result");
    };
    EXPECT_EQ(lock(a, "customer/lockComp.php", "Customer", "CustomerID=5&"), "1");
    EXPECT_EQ(lock(b, "customer/lockComp.php", "Customer", "CustomerID=5&"), "0");
    // The holder's writes pass; the other user's are refused with -2 and change nothing.
    EXPECT_EQ(Flags(a, "customer/setCompKihon.php", "CustomerID=5&Code=A&"), 1);
    EXPECT_EQ(Flags(b, "customer/setCompKihon.php", "CustomerID=5&Code=B&"), -2);
    EXPECT_EQ(Flags(b, "customer/deleteCompKihon.php", "CustomerID=5&", "id"), -2);
    EXPECT_EQ(Call(b, "customer/getCompKihon.php", "CustomerID=5&").At("Customer/CompKihon/Code"),
              "A")
        << "reading stays open to everyone";
    clock_->Advance(16min);
    EXPECT_EQ(lock(b, "customer/lockComp.php", "Customer", "CustomerID=5&"), "1") << "lapsed";

    // Masters are locked for the office as a whole; only the holder's unlock counts.
    EXPECT_EQ(lock(a, "master/lockMaster.php", "Master", "MasterID=1&"), "1");
    EXPECT_EQ(Flags(b, "master/unlockMaster.php", "MasterID=1&", "id"), 1);
    EXPECT_EQ(lock(b, "master/lockMaster.php", "Master", "MasterID=1&"), "0");
    EXPECT_EQ(Flags(b, "master/setYakushoku.php",
                    "YakushokuItemID=1&DISABLEDALL=DISABLEDALL&Yakushoku=x&Flag=0&vno=1&"),
              -2);
    EXPECT_EQ(Flags(a, "master/unlockMaster.php", "MasterID=1&", "id"), 1);
    EXPECT_EQ(lock(b, "master/lockMaster.php", "Master", "MasterID=1&"), "1");
    EXPECT_EQ(Flags(a, "customer/unlockComp.php", "CustomerID=99&", "id"), 1)
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
                         const std::string& token = {}) {
        return RawPost("customer/get" + kind + "File.php",
                       "ID=u1&token=" + (token.empty() ? user.token : token) +
                           "&CustomerID=3&FileName=" + name + "&");
    }
    Login user;
};

TEST_F(FilePagesTest, UploadReplyReportsWhatIsStoredAndDownloadGivesTheBytes) {
    std::string bytes("PDF\0\x01\xff binary", 14);
    Reply up = UploadFile(user, "Kessan", 3, "%E6%B1%BA%E7%AE%97.pdf", bytes);
    ASSERT_EQ(up.Flags(), 1) << up.text;
    const std::string item = "Customer/KessanFileList/KessanFileItem/";
    EXPECT_EQ(up.At("Customer/CustomerID"), "3");
    EXPECT_EQ(up.At(item + "FileName"), "決算.pdf");
    EXPECT_EQ(up.At(item + "FileSize"), std::to_string(bytes.size()));
    EXPECT_EQ(up.At(item + "hash"), CrcText(Crc32Of(bytes)));
    EXPECT_EQ(up.At(item + "LastModified"), Post("gettime.php", "").At("datetime"))
        << "the time of receipt, on the server clock";
    const Reply h = Hash("Kessan", "決算.pdf");
    EXPECT_EQ(h.At(item + "hash") + h.At(item + "LastModified"),
              up.At(item + "hash") + up.At(item + "LastModified"));

    EXPECT_EQ(Download("Kessan", "決算.pdf"), bytes);
    EXPECT_EQ(Flags(user, "customer/getCompList.php", ""), 1)
        << "a download keeps the token as it was";
    EXPECT_EQ(Download("Kyoka", "決算.pdf"), "") << "kinds are kept apart";
    EXPECT_EQ(Download("Kessan", "none.pdf"), "") << "unknown file: empty body";
    EXPECT_EQ(Download("Kessan", "決算.pdf", "bad-token"), "");

    // An unknown file's hash: the customer and an empty list.
    const Reply none = Hash("Other", "missing.txt");
    EXPECT_EQ(none.Flags(), 1);
    EXPECT_EQ(none.At("Customer/CustomerID"), "3");
    EXPECT_TRUE(none.Payload("Customer").child("OtherFileList"));
    EXPECT_FALSE(none.Payload("Customer").child("OtherFileList").child("OtherFileItem"));
}

TEST_F(FilePagesTest, RenameReplacesDeleteRemovesAndADeletedCustomersFilesAreGone) {
    UploadFile(user, "Kyoka", 3, "a.txt", "AAA");
    UploadFile(user, "Kyoka", 3, "b.txt", "BBB");
    EXPECT_EQ(
        Flags(user, "customer/renameKyokaFile.php", "CustomerID=3&SrcFile=a.txt&DstFile=b.txt&"),
        1);
    EXPECT_EQ(Download("Kyoka", "b.txt") + "|" + Download("Kyoka", "a.txt"), "AAA|");
    for (int twice = 0; twice < 2; ++twice)
        EXPECT_EQ(Flags(user, "customer/deleteKyokaFile.php", "CustomerID=3&FileName=b.txt&"), 1);
    EXPECT_EQ(Download("Kyoka", "b.txt"), "");

    UploadFile(user, "Kessan", 3, "k.pdf", "K");
    ASSERT_EQ(Flags(user, "customer/deleteCompKihon.php", "CustomerID=3&", "id"), 1);
    CreateCustomer(user, 3);
    EXPECT_EQ(Download("Kessan", "k.pdf"), "");
}

TEST_F(FilePagesTest, NamesThatCouldLeaveTheFolderAreRefused) {
    for (const char* name : {"..%2Fescape.txt", "%2Fetc%2Fpasswd", "a%5Cb", "x%01y", ".."}) {
        Reply r = UploadFile(user, "Other", 3, name, "evil");
        EXPECT_EQ(r.Flags(), -1) << name;
        EXPECT_FALSE(r.Token().empty()) << "the login survives a refusal";
    }
    for (const char* name : {"../escape.txt", "a/b", "..", ""}) {
        EXPECT_EQ(Hash("Other", name).Flags(), -1) << name;
        EXPECT_EQ(Flags(user, "customer/renameOtherFile.php",
                        std::string("CustomerID=3&SrcFile=ok.txt&DstFile=") + name + "&"),
                  -1)
            << name;
        EXPECT_EQ(Download("Other", name), "");
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dir_))
        EXPECT_EQ(entry.path().filename().string().find("escape"), std::string::npos)
            << entry.path();
}

TEST_F(FilePagesTest, OversizedOrUnauthorisedUploadIsRefusedAndLeavesTheStoredFile) {
    ASSERT_EQ(UploadFile(user, "Other", 3, "big.bin", "small").Flags(), 1);
    EXPECT_EQ(UploadFile(user, "Other", 3, "big.bin", std::string(options_.maxUploadBytes + 1, 'x'))
                  .Flags(),
              -1);
    EXPECT_EQ(Download("Other", "big.bin"), "small");
    const std::string exact(options_.maxUploadBytes, 'y');
    EXPECT_EQ(UploadFile(user, "Other", 3, "big.bin", exact).Flags(), 1);
    // Far beyond the limit the body is not even read, and the reply is still a judged one.
    Reply huge = UploadFile(user, "Other", 3, "big.bin", std::string(4 * 1024 * 1024, 'z'));
    EXPECT_EQ(huge.Flags(), -1) << huge.text;
    EXPECT_FALSE(huge.Token().empty()) << "the token travels in headers, so the login survives";
    EXPECT_EQ(Download("Other", "big.bin").size(), exact.size());

    Login forged{"u1", "nope"};
    EXPECT_EQ(UploadFile(forged, "Kessan", 3, "x.txt", "x").Flags(), 0);
    EXPECT_EQ(UploadFile(user, "Kessan", 42, "x.txt", "x").Flags(), -1);
    EXPECT_EQ(Download("Kessan", "x.txt"), "");
}

}  // namespace
}  // namespace morvane::server::testing
