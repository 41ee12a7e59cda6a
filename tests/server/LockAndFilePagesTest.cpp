// Locks between users, and the data files with their hash replies and wire forms.
#include <filesystem>

#include "ServerFixture.h"

namespace morvane::server::testing {
namespace {

// Grants, refusals, renewal and the holder's unlock are the end-to-end lock test's; lapse is
// the lock table's. Masters are locked for the office as a whole: any master lock keeps out
// every master write.
TEST_F(ServerTest, OthersWritesUnderALockAreRefusedWithMinusTwoAndReadsStayOpen) {
    Login a = LogIn("u1");
    Login b = LogIn("u2", "other");
    CreateCustomer(a, 5);
    ASSERT_EQ(Call(a, "customer/lockComp.php", "CustomerID=5&").At("LockInfo/Customer/result"),
              "1");
    EXPECT_EQ(Flags(a, "customer/setCompKihon.php", "CustomerID=5&Code=A&"), 1);
    EXPECT_EQ(Flags(b, "customer/setCompKihon.php", "CustomerID=5&Code=B&"), -2);
    EXPECT_EQ(Flags(b, "customer/deleteCompKihon.php", "CustomerID=5&"), -2);
    EXPECT_EQ(Call(b, "customer/getCompKihon.php", "CustomerID=5&").At("Customer/CompKihon/Code"),
              "A");
    const std::string yakushoku =
        "YakushokuItemID=1&DISABLEDALL=DISABLEDALL&Yakushoku=x&Flag=0&vno=1&";
    ASSERT_EQ(Call(a, "master/lockMaster.php", "MasterID=1&").At("LockInfo/Master/result"), "1");
    EXPECT_EQ(Flags(b, "master/setYakushoku.php", yakushoku), -2);
    EXPECT_EQ(Flags(a, "master/unlockMaster.php", "MasterID=1&"), 1);
    EXPECT_EQ(Flags(b, "master/setYakushoku.php", yakushoku), 1);
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

// Upload, hash, rename and delete between two offices are the end-to-end tests'; these are the
// server's own answers around them. An unknown file's hash is the customer and an empty list.
TEST_F(FilePagesTest, DownloadsKeepTheTokenAndKindsAndCustomersApart) {
    std::string bytes("PDF\0\x01\xff binary", 14);
    Reply up = UploadFile(user, "Kessan", 3, "%E6%B1%BA%E7%AE%97.pdf", bytes);
    const std::string item = "Customer/KessanFileList/KessanFileItem/";
    // The time of receipt, on the server clock.
    EXPECT_EQ(up.At(item + "FileName") + " " + up.At(item + "LastModified"),
              "決算.pdf " + Post("gettime.php", "").At("datetime"))
        << up.text;
    EXPECT_EQ(Download("Kessan", "決算.pdf"), bytes);
    EXPECT_EQ(Flags(user, "customer/getCompList.php", ""), 1)
        << "a download keeps the token as it was";
    EXPECT_EQ(Download("Kyoka", "決算.pdf") + Download("Kessan", "決算.pdf", "bad-token"), "");
    const Reply none = Hash("Other", "missing.txt");
    EXPECT_EQ(none.Flags(), 1);
    EXPECT_EQ(none.At("Customer/CustomerID"), "3");
    EXPECT_TRUE(none.Payload("Customer").child("OtherFileList"));
    EXPECT_FALSE(none.Payload("Customer").child("OtherFileList").child("OtherFileItem"));

    ASSERT_EQ(Flags(user, "customer/deleteCompKihon.php", "CustomerID=3&"), 1);
    CreateCustomer(user, 3);
    EXPECT_EQ(Download("Kessan", "決算.pdf"), "") << "a deleted customer's files are gone";
}

// Plain names only: no folder, control character, text that is no UTF-8, or a name too long.
TEST_F(FilePagesTest, NamesThatCouldLeaveTheFolderAreRefused) {
    EXPECT_EQ(UploadFile(user, "Other", 3, ".a b.c", "ok").Flags(), 1);
    for (const char* name :
         {"..%2Fescape.txt", "%2Fetc%2Fpasswd", "a%5Cb", "x%01y", "x%7Fy", "..", "x..y"}) {
        Reply r = UploadFile(user, "Other", 3, name, "evil");
        EXPECT_EQ(r.Flags(), -1) << name;
        EXPECT_FALSE(r.Token().empty()) << "the login survives a refusal";
    }
    for (const std::string& name : std::vector<std::string>{"../escape.txt", "a/b", "..", ".", "",
                                                            "\xff\xfe", std::string(256, 'a')}) {
        EXPECT_EQ(Hash("Other", name).Flags(), -1) << name;
        EXPECT_EQ(Flags(user, "customer/renameOtherFile.php",
                        "CustomerID=3&SrcFile=ok.txt&DstFile=" + name + "&"),
                  -1)
            << name;
        EXPECT_EQ(Download("Other", name), "");
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dir_.Path()))
        EXPECT_EQ(entry.path().filename().string().find("escape"), std::string::npos)
            << entry.path();
}

// Far beyond the limit the body is not even read, and the reply is still a judged one: the
// token travels in headers, so the login survives.
TEST_F(FilePagesTest, OversizedOrUnauthorisedUploadIsRefusedAndLeavesTheStoredFile) {
    const std::size_t limit = options_.maxUploadBytes;
    ASSERT_EQ(UploadFile(user, "Other", 3, "big.bin", "small").Flags(), 1);
    EXPECT_EQ(UploadFile(user, "Other", 3, "big.bin", std::string(limit + 1, 'x')).Flags(), -1);
    EXPECT_EQ(Download("Other", "big.bin"), "small");
    EXPECT_EQ(UploadFile(user, "Other", 3, "big.bin", std::string(limit, 'y')).Flags(), 1);
    Reply huge = UploadFile(user, "Other", 3, "big.bin", std::string(4 * 1024 * 1024, 'z'));
    EXPECT_EQ(huge.Flags(), -1) << huge.text;
    EXPECT_FALSE(huge.Token().empty());
    EXPECT_EQ(Download("Other", "big.bin"), std::string(limit, 'y'));

    Login forged{"u1", "nope"};
    EXPECT_EQ(UploadFile(forged, "Kessan", 3, "x.txt", "x").Flags(), 0);
    EXPECT_EQ(UploadFile(user, "Kessan", 42, "x.txt", "x").Flags(), -1);
    EXPECT_EQ(Download("Kessan", "x.txt"), "");
}

}  // namespace
}  // namespace morvane::server::testing
