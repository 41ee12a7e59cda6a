// A data file between two offices through the reference server: one office sends it up,
// the other finds it missing, takes it, and then agrees, with the same bytes and time.
#include <gtest/gtest.h>

#include "OfficeServerTest.h"
#include "dated/cCustDataFile.h"
#include "platform/basFileTime.h"
#include "support/FileBytes.h"
#include "support/ScopedEnv.h"

namespace morvane::test {
namespace {
namespace fs = std::filesystem;

class DataFileSyncTest : public OfficeServerTest {
protected:
    void SetUp() override {
        OfficeServerTest::SetUp();
        fs::create_directories(temp_.Path() / "tmp");
    }
    ScopedEnv tmpDir_{"TMPDIR", (temp_.Path() / "tmp").string()};
};

TEST_F(DataFileSyncTest, OneOfficeSendsAFileAndTheOtherTakesItAndAgrees) {
    const std::string bytes =
        std::string("%PDF-1.4\0\xff\xfe 決算書\r\n", 23) + std::string(5000, 'z');
    const fs::path fileA = temp_.Path() / "a" / "data" / "決算書 2024#1.pdf";
    const fs::path fileB = temp_.Path() / "b" / "data" / "2" / "決算書 2024#1.pdf";

    UseOffice("a");
    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    CreateCustomer(2);
    WriteBytes(fileA, bytes);
    EXPECT_EQ(a.CompareCustomerKessanFile(2, fileA.string()), 0);  // unknown to the server
    ASSERT_EQ(a.SyncUploadCustomerKessanFile(2, fileA.string(), nullptr), 1);
    EXPECT_EQ(a.CompareCustomerKessanFile(2, fileA.string()), 0);
    NoBoxes();

    clock_->Advance(std::chrono::hours(1));
    UseOffice("b");
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    EXPECT_EQ(b.CompareCustomerKessanFile(2, fileB.string()), 1);
    EXPECT_EQ(b.SyncDownloadCustomerKessanFile(2, fileB.string(), nullptr), 1);
    EXPECT_EQ(b.CompareCustomerKessanFile(2, fileB.string()), 0);
    EXPECT_EQ(ReadBytes(fileB), bytes);
    cCustDataFile server;  // what the server reports of the file now
    EXPECT_TRUE(server.ReadXML(
        SendRequest(page::kGetKessanFileHash, cCustDataFile::FileBody(2, fileB.string()))));
    EXPECT_EQ(server.FileSize(), static_cast<std::int32_t>(bytes.size()));
    EXPECT_EQ(ModifiedStamp(fileB), DateValue::Parse(server.LastModified())->StampText());
    NoBoxes();
}

TEST_F(DataFileSyncTest, ANewerLocalCopyGoesUpAndARenameAndDeleteFollow) {
    UseOffice("a");
    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    CreateCustomer(3);
    const fs::path folder = temp_.Path() / "a" / "files";
    const fs::path one = WriteBytes(folder / "100% 許可.txt", "first");
    ASSERT_EQ(a.SyncUploadCustomerOtherFile(3, one.string(), nullptr), 1);
    clock_->Advance(std::chrono::minutes(1));

    WriteBytes(one, "second, longer");
    DateValue c, ac, m;
    ASSERT_EQ(GetFileTimes(one.string(), c, ac, m), 1);
    ASSERT_EQ(SetFileTimes(one.string(), c, ac, DateValue(m.Days() + 1)), 1);  // tomorrow
    EXPECT_EQ(a.CompareCustomerOtherFile(3, one.string()), 2);
    ASSERT_EQ(a.SyncUploadCustomerOtherFile(3, one.string(), nullptr), 1);
    EXPECT_EQ(a.CompareCustomerOtherFile(3, one.string()), 0);

    const fs::path two = folder / "renamed.txt";
    fs::rename(one, two);
    EXPECT_EQ(a.SyncRenameFileCustomerOtherFile(3, one.string(), two.string(), nullptr), 1);
    EXPECT_EQ(a.CompareCustomerOtherFile(3, two.string()), 0);
    fs::remove(two);
    EXPECT_EQ(a.CompareCustomerOtherFile(3, two.string()), 1);  // the server still has it
    EXPECT_EQ(a.SyncDeleteCustomerOtherFile(3, two.string(), nullptr), 1);
    WriteBytes(two, "x");
    EXPECT_EQ(a.CompareCustomerOtherFile(3, two.string()), 0);  // gone from the server
    NoBoxes();
}

}  // namespace
}  // namespace morvane::test
