// Data files against the scripted server: the hash reply, the decision between the local
// and the server's copy, and the five members of each kind with their slots.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <tuple>

#include "component/ctrlMorvane.h"
#include "dated/cCustDataFile.h"
#include "platform/AtomicFile.h"
#include "platform/basFileTime.h"
#include "state/ProcessState.h"
#include "state/basGetCRC.h"
#include "support/FileBytes.h"
#include "support/Golden.h"
#include "support/LeftoverWrite.h"
#include "support/MorvaneTest.h"
#include "support/ScopedEnv.h"

namespace morvane::test {
namespace {
namespace fs = std::filesystem;

// The hash reply's payload: a.pdf of these bytes, with their own hash unless one is given.
std::string HashPayload(const std::string& list, const std::string& bytes,
                        const std::string& modified, std::string hash = {}) {
    if (hash.empty()) hash = GetCRC(bytes);
    return "<Customer><CustomerID>7</CustomerID><" + list + "List><" + list +
           "Item><FileName>a.pdf</FileName><FileSize>" + std::to_string(bytes.size()) +
           "</FileSize><LastModified>" + modified + "</LastModified><hash>" + hash + "</hash></" +
           list + "Item></" + list + "List></Customer>";
}

class DataFileTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        tmp_ = temp_.Path() / "tmp";
        data_ = temp_.Path() / "data";
        fs::create_directories(tmp_);
        fs::create_directories(data_);
        tmpDir_.emplace("TMPDIR", tmp_.string());
        m_ = std::make_unique<ctrlMorvane>();  // before the login, which it resets
        LogIn("T1");
    }
    void TearDown() override {
        m_.reset();
        tmpDir_.reset();
        MorvaneTest::TearDown();
    }

    std::string Write(const std::string& name, const std::string& bytes,
                      const char* modified = nullptr) {
        const fs::path path = WriteBytes(data_ / name, bytes);
        if (modified) {
            DateValue c, a, m;
            EXPECT_EQ(GetFileTimes(path.string(), c, a, m), 1);
            EXPECT_EQ(SetFileTimes(path.string(), c, a, *DateValue::Parse(modified)), 1);
        }
        return path.string();
    }
    void ServerHas(const std::string& page, const std::string& list, const std::string& bytes,
                   const std::string& modified, const std::string& hash = {}) {
        server_->On(page, Envelope(1, "T2", HashPayload(list, bytes, modified, hash)));
    }
    // The server describes these bytes of a kind ("Kessan", ...) and sends `sent` for them.
    void Serve(const std::string& kind, const std::string& bytes, const std::string& modified,
               std::optional<std::string> sent = {}, const std::string& hash = {}) {
        ServerHas("customer/get" + kind + "FileHash.php", kind + "File", bytes, modified, hash);
        server_->On("customer/get" + kind + "File.php", sent.value_or(bytes));
    }
    cCustDataFile Described(const std::string& bytes, const std::string& modified,
                            const std::string& hash = {}) {
        cCustDataFile f;
        EXPECT_TRUE(f.ReadXML(Envelope(1, "T", HashPayload("KessanFile", bytes, modified, hash))));
        return f;
    }

    // The local file after a download: its bytes and time, what the trash holds of a.pdf, and
    // whether anything of the download is left in the temporary folder or beside the file.
    std::string Outcome(const std::string& local) const {
        const fs::path trashed = temp_.Path() / "data-home" / "Trash" / "files" / "a.pdf";
        const bool left = !fs::is_empty(tmp_) || !platform::LeftoverVersions(local).empty();
        return ReadBytes(local) + " | " + ModifiedStamp(local) +
               " | trash: " + (fs::exists(trashed) ? ReadBytes(trashed) : "-") +
               (left ? " | left over" : "");
    }

    std::unique_ptr<ctrlMorvane> m_;
    fs::path tmp_, data_;
    std::optional<ScopedEnv> tmpDir_;
};

TEST_F(DataFileTest, ReadXmlNeedsTheCustomerAndOneItemOfAnyKind) {
    const Golden data("dated/data-file.txt");
    cCustDataFile f;
    EXPECT_TRUE(f.ReadXML(data.Joined("any kind")));
    EXPECT_EQ(
        std::make_tuple(f.CustomerID(), f.FileName(), f.FileSize(), f.LastModified(), f.Hash()),
        std::make_tuple(7, std::string("a.pdf"), 12, std::string("2024/01/02 03:04:05"),
                        std::string("0012d20a")));
    EXPECT_TRUE(f.ReadXML(data.Joined("any case, fields of the last item one by one")));
    EXPECT_EQ(std::make_tuple(f.CustomerID(), f.FileName(), f.FileSize(), f.Hash()),
              std::make_tuple(9, std::string("y"), 0, std::string("AAAAAAAA")));

    auto refused = data.Lines("refused");
    refused.push_back("");
    for (const std::string& reply : refused) EXPECT_FALSE(f.ReadXML(reply)) << reply;
    // A failed read leaves nothing of the last good one.
    ASSERT_TRUE(f.ReadXML(data.Joined("any kind")));
    EXPECT_FALSE(f.ReadXML(refused[0]));
    EXPECT_EQ(f.FileName() + f.Hash(), "");
}

TEST_F(DataFileTest, ContentDecidesWhetherTimesOnlyWhichWay) {
    const std::string local = Write("a.pdf", "local bytes", "2024/05/01 10:00:00");
    for (const auto& row : Golden("dated/data-file.txt").Table("decisions")) {
        cCustDataFile f = Described(row[1], row[2], row[3]);
        EXPECT_EQ(f.CompareLocalFile(local), std::stoi(row[4])) << row[0];
    }
    EXPECT_EQ(Described("x", "2024/05/01 10:00:00").CompareLocalFile((data_ / "none").string()), 1);
    const std::string empty = Write("empty.pdf", "", "2024/05/01 10:00:00");
    EXPECT_EQ(Described("", "2000/01/01 00:00:00", "00000000").CompareLocalFile(empty), 0);
}

// Only a server copy to take is kept for the download, which otherwise fetches for itself
// under the usage option alone; through an upload only the Other kind keeps it.
TEST_F(DataFileTest, CompareKeepsTheDescriptionOnlyForAServerCopyToTake) {
    const std::string local = Write("a.pdf", "local", "2024/05/01 10:00:00");
    Serve("Kessan", "newer", "2024/05/02 00:00:00");
    EXPECT_EQ(m_->CompareCustomerKessanFile(7, local), 1);
    EXPECT_EQ(server_->RequestsTo("customer/getKessanFileHash.php").at(0).body,
              "ID=user1&token=T1&CustomerID=7&FileName=a.pdf&");
    EXPECT_EQ(m_->SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_EQ(ReadBytes(local), "newer");

    Write("a.pdf", "local again", "2024/06/01 00:00:00");
    EXPECT_EQ(m_->CompareCustomerKessanFile(7, local), 2);
    server_->ClearRequests();
    EXPECT_EQ(m_->SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_EQ(ReadBytes(local), "local again");
    const std::string fresh = (data_ / "new" / "a.pdf").string();
    m_->setObjectUsage(1);
    EXPECT_EQ(m_->SyncDownloadCustomerKessanFile(7, fresh, nullptr), 1);
    EXPECT_EQ(ReadBytes(fresh), "newer");
    m_->setObjectUsage(0);

    // A file the server does not know reads as no item: 0, as a match would be.
    server_->On(
        "customer/getKessanFileHash.php",
        Envelope(1, "T3", "<Customer><CustomerID>7</CustomerID><KessanFileList/></Customer>"));
    EXPECT_EQ(m_->CompareCustomerKessanFile(7, local), 0);

    Write("a.pdf", "local", "2024/01/01 00:00:00");
    for (const std::string kind : {"Kessan", "Other"}) {
        Serve(kind, "server", "2030/01/01 00:00:00");
        ServerHas("customer/set" + kind + "File.php", kind + "File", "local",
                  "2030/01/01 00:00:00");
    }
    ASSERT_EQ(m_->CompareCustomerKessanFile(7, local), 1);
    ASSERT_EQ(m_->CompareCustomerOtherFile(7, local), 1);
    EXPECT_EQ(m_->SyncUploadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_EQ(m_->SyncUploadCustomerOtherFile(7, local, nullptr), 1);
    server_->ClearRequests();
    EXPECT_EQ(m_->SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_EQ(m_->SyncDownloadCustomerOtherFile(7, local, nullptr), 1);
    EXPECT_EQ(server_->RequestsTo("customer/getOtherFile.php").size(), 1u);
    EXPECT_EQ(ReadBytes(local), "server");
}

TEST_F(DataFileTest, DownloadOfTheRightSizeReplacesTrashesAndStampsWhateverItsCrcElseLeavesIt) {
    const std::string local = Write("k/a.pdf", "old content", "2024/01/01 00:00:00");
    Serve("Kyoka", "twelve bytes", "2024/03/04 05:06:07", "<html>error</html>");
    ASSERT_EQ(m_->CompareCustomerKyokaFile(7, local), 1);
    EXPECT_EQ(m_->SyncDownloadCustomerKyokaFile(7, local, nullptr), 1);
    EXPECT_EQ(Outcome(local), "old content | 2024/01/01 00:00:00 | trash: -");

    Serve("Kessan", "NEW content", "2024/03/04 05:06:07", {}, "DEADBEEF");
    ASSERT_EQ(m_->CompareCustomerKessanFile(7, local), 1);
    EXPECT_EQ(m_->SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_EQ(Outcome(local), "NEW content | 2024/03/04 05:06:07 | trash: old content");
    EXPECT_EQ(server_->RequestsTo("customer/getKessanFile.php").at(0).body,
              "ID=user1&token=T2&CustomerID=7&FileName=a.pdf&");
}

TEST_F(DataFileTest, AFileWhoseDownloadWasCutShortIsFetchedAgainAndNeverSent) {
    // Newer here by its time: were the cut-short download not seen, it would go up.
    const std::string local = Write("a.pdf", "old content", "2030/01/01 00:00:00");
    LeaveUnfinishedWrite(local);
    Serve("Kessan", "the server's", "2024/03/04 05:06:07");
    ServerHas("customer/setKessanFile.php", "KessanFile", "the server's", "2024/03/04 05:06:07");
    EXPECT_EQ(m_->SyncUploadCustomerKessanFile(7, local, nullptr), 0);
    EXPECT_TRUE(server_->RequestsTo("customer/setKessanFile.php").empty());
    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_NE(kit_->Boxes()[0].text.find(local), std::string::npos);

    ASSERT_EQ(m_->CompareCustomerKessanFile(7, local), 1);
    EXPECT_EQ(m_->SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_EQ(Outcome(local), "the server's | 2024/03/04 05:06:07 | trash: old content");
    EXPECT_EQ(m_->CompareCustomerKessanFile(7, local), 0);
    EXPECT_EQ(m_->SyncUploadCustomerKessanFile(7, local, nullptr), 1);
}

TEST_F(DataFileTest, DownloadNeverWritesThroughALinkPlantedOnItsWay) {
    const fs::path victim = temp_.Path() / "victim";
    const std::string local = (data_ / "a.pdf").string();
    for (const bool asTheFile : {false, true}) {
        SCOPED_TRACE(asTheFile ? "a link as the file" : "a link in the temporary folder");
        std::ofstream(victim) << "precious";
        const fs::path link = asTheFile ? fs::path(local) : tmp_ / "a.pdf";
        fs::create_symlink(victim, link);
        Serve("Kessan", "server bytes", "2099/03/04 05:06:07");
        ASSERT_EQ(m_->CompareCustomerKessanFile(7, local), 1);
        EXPECT_EQ(m_->SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
        EXPECT_EQ(ReadBytes(victim), "precious");
        EXPECT_FALSE(fs::is_symlink(local));
        EXPECT_EQ(ReadBytes(local), "server bytes");
        EXPECT_TRUE(platform::LeftoverVersions(local).empty());
        fs::remove(local);
        fs::remove(link);
    }
}

TEST_F(DataFileTest, UploadCountsOnlyWhenTheServerReportsTheSameFile) {
    const std::string local = Write("a.pdf", "abc");
    ServerHas("customer/setKessanFile.php", "KessanFile", "abc", "2024/01/01 00:00:00");
    EXPECT_EQ(m_->SyncUploadCustomerKessanFile(7, local, nullptr), 1);

    // Another file reported, no file at all, a refusal.
    for (const std::string& reply :
         {Envelope(1, "T2", HashPayload("KessanFile", "abc", "2024/01/01 00:00:00", "00000000")),
          Envelope(1, "T4", "<Customer><CustomerID>7</CustomerID></Customer>"),
          Envelope(-1, "T5")}) {
        server_->On("customer/setKessanFile.php", reply);
        EXPECT_EQ(m_->SyncUploadCustomerKessanFile(7, local, nullptr), 0);
    }

    server_->ClearRequests();
    EXPECT_EQ(m_->SyncUploadCustomerKessanFile(7, (data_ / "none.pdf").string(), nullptr), 0);
    EXPECT_TRUE(server_->Requests().empty());
}

TEST_F(DataFileTest, DeleteAndRenameGoOutOnlyWhenTheLocalChangeIsThere) {
    const std::string present = Write("here.pdf", "x");
    const std::string gone = (data_ / "gone.pdf").string();
    server_->On("customer/deleteKyokaFile.php", Envelope(1, "T2"));
    server_->On("customer/renameKyokaFile.php", Envelope(1, "T3"));
    EXPECT_EQ(m_->SyncDeleteCustomerKyokaFile(7, present, nullptr), 0);
    EXPECT_EQ(m_->SyncRenameFileCustomerKyokaFile(7, present, present, nullptr), 0);
    EXPECT_EQ(m_->SyncRenameFileCustomerKyokaFile(7, gone, gone, nullptr), 0);
    EXPECT_TRUE(server_->Requests().empty());

    EXPECT_EQ(m_->SyncDeleteCustomerKyokaFile(7, gone, nullptr), 1);
    EXPECT_EQ(m_->SyncRenameFileCustomerKyokaFile(7, gone, present, nullptr), 1);
    EXPECT_EQ(server_->Requests().size(), 2u);

    server_->On("customer/deleteKyokaFile.php", Envelope(-1, "T4"));
    EXPECT_EQ(m_->SyncDeleteCustomerKyokaFile(7, gone, nullptr), 0);
}

}  // namespace
}  // namespace morvane::test
