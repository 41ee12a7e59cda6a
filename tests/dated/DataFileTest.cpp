// Data files against the scripted server: the hash reply, the decision between the local
// and the server's copy, and the five members of each kind with their slots.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <tuple>

#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "dated/cCustDataFile.h"
#include "platform/AtomicFile.h"
#include "platform/basFileTime.h"
#include "session/mdlLogin.h"
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

std::string Item(const std::string& list, const std::string& name, const std::string& size,
                 const std::string& modified, const std::string& hash) {
    return "<" + list + "List><" + list + "Item><FileName>" + name + "</FileName><FileSize>" +
           size + "</FileSize><LastModified>" + modified + "</LastModified><hash>" + hash +
           "</hash></" + list + "Item></" + list + "List>";
}

std::string HashPayload(const std::string& items, int custId = 7) {
    return "<Customer><CustomerID>" + std::to_string(custId) + "</CustomerID>" + items +
           "</Customer>";
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
    // The server describes a file of these bytes.
    void ServerHas(const std::string& page, const std::string& list, const std::string& bytes,
                   const std::string& modified, std::string hash = {}) {
        if (hash.empty()) hash = GetCRC(bytes);
        server_->On(page, Envelope(1, "T2",
                                   HashPayload(Item(list, "a.pdf", std::to_string(bytes.size()),
                                                    modified, hash))));
    }
    // The server describes these bytes of a kind ("Kessan", ...) and sends `sent` for them.
    void Serve(const std::string& kind, const std::string& bytes, const std::string& modified,
               std::optional<std::string> sent = {}, const std::string& hash = {}) {
        ServerHas("customer/get" + kind + "FileHash.php", kind + "File", bytes, modified, hash);
        server_->On("customer/get" + kind + "File.php", sent.value_or(bytes));
    }
    cCustDataFile Described(const std::string& bytes, const std::string& modified,
                            std::string hash = {}) {
        cCustDataFile f;
        if (hash.empty()) hash = GetCRC(bytes);
        EXPECT_TRUE(
            f.ReadXML(Envelope(1, "T",
                               HashPayload(Item("KessanFile", "a.pdf", std::to_string(bytes.size()),
                                                modified, hash)))));
        return f;
    }

    // What the trash holds under a file name, or nothing.
    std::optional<std::string> Trashed(const std::string& name) const {
        const fs::path file = temp_.Path() / "data-home" / "Trash" / "files" / name;
        if (!fs::exists(file)) return std::nullopt;
        return ReadBytes(file);
    }
    // Nothing of a download is left in the temporary folder or beside the file.
    void ExpectNoDownloadLeft(const std::string& local) const {
        EXPECT_TRUE(fs::is_empty(tmp_));
        EXPECT_TRUE(platform::LeftoverVersions(local).empty());
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
    for (const std::string& reply : refused) {
        EXPECT_FALSE(f.ReadXML(reply)) << reply;
        // A failed read leaves nothing of the last one.
        EXPECT_EQ(f.FileName() + f.Hash(), "") << reply;
    }
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

TEST_F(DataFileTest, CompareKeepsTheDescriptionOnlyForAServerCopyToTake) {
    const std::string local = Write("a.pdf", "local", "2024/05/01 10:00:00");
    ctrlMorvane& m = *m_;
    Serve("Kessan", "newer", "2024/05/02 00:00:00");
    EXPECT_EQ(m.CompareCustomerKessanFile(7, local), 1);
    EXPECT_EQ(server_->RequestsTo("customer/getKessanFileHash.php").at(0).body,
              "ID=user1&token=T1&CustomerID=7&FileName=a.pdf&");
    EXPECT_EQ(m.SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_EQ(ReadBytes(local), "newer");

    // Local newer: nothing is kept, so a download without the option does nothing.
    Write("a.pdf", "local again", "2024/06/01 00:00:00");
    EXPECT_EQ(m.CompareCustomerKessanFile(7, local), 2);
    server_->ClearRequests();
    EXPECT_EQ(m.SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_EQ(ReadBytes(local), "local again");

    // A file the server does not know reads as no item: 0, as a match would be.
    server_->On("customer/getKessanFileHash.php",
                Envelope(1, "T3", HashPayload("<KessanFileList/>")));
    EXPECT_EQ(m.CompareCustomerKessanFile(7, local), 0);
}

TEST_F(DataFileTest, DownloadOfTheRightSizeReplacesTrashesAndStampsWhateverItsCrc) {
    const std::string local = Write("k/a.pdf", "old content", "2024/01/01 00:00:00");
    Serve("Kessan", "NEW content", "2024/03/04 05:06:07", {}, "DEADBEEF");
    ctrlMorvane& m = *m_;
    ASSERT_EQ(m.CompareCustomerKessanFile(7, local), 1);
    EXPECT_EQ(m.SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_EQ(ReadBytes(local), "NEW content");
    EXPECT_EQ(ModifiedStamp(local), "2024/03/04 05:06:07");
    EXPECT_EQ(Trashed("a.pdf"), "old content");
    ExpectNoDownloadLeft(local);
    EXPECT_EQ(server_->RequestsTo("customer/getKessanFile.php").at(0).body,
              "ID=user1&token=T2&CustomerID=7&FileName=a.pdf&");
    EXPECT_TRUE(kit_->Boxes().empty());
}

TEST_F(DataFileTest, DownloadOfTheWrongSizeLeavesTheLocalFileAndStillAnswersOne) {
    const std::string local = Write("a.pdf", "old", "2024/01/01 00:00:00");
    Serve("Kyoka", "twelve bytes", "2024/03/04 05:06:07", "<html>error</html>");
    ctrlMorvane& m = *m_;
    ASSERT_EQ(m.CompareCustomerKyokaFile(7, local), 1);
    EXPECT_EQ(m.SyncDownloadCustomerKyokaFile(7, local, nullptr), 1);
    EXPECT_EQ(ReadBytes(local), "old");
    EXPECT_EQ(Trashed("a.pdf"), std::nullopt);
    ExpectNoDownloadLeft(local);
}

TEST_F(DataFileTest, AFileWhoseDownloadWasCutShortIsFetchedAgainAndNeverSent) {
    // Newer here by its time: were the cut-short download not seen, it would go up.
    const std::string local = Write("a.pdf", "old content", "2030/01/01 00:00:00");
    LeaveUnfinishedWrite(local);
    Serve("Kessan", "the server's", "2024/03/04 05:06:07");
    ServerHas("customer/setKessanFile.php", "KessanFile", "the server's", "2024/03/04 05:06:07");
    ctrlMorvane& m = *m_;
    EXPECT_EQ(m.SyncUploadCustomerKessanFile(7, local, nullptr), 0);
    EXPECT_TRUE(server_->RequestsTo("customer/setKessanFile.php").empty());
    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_NE(kit_->Boxes()[0].text.find(local), std::string::npos);

    ASSERT_EQ(m.CompareCustomerKessanFile(7, local), 1);
    EXPECT_EQ(m.SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_EQ(ReadBytes(local), "the server's");
    EXPECT_EQ(Trashed("a.pdf"), "old content");
    ExpectNoDownloadLeft(local);
    EXPECT_EQ(m.CompareCustomerKessanFile(7, local), 0);
    EXPECT_EQ(m.SyncUploadCustomerKessanFile(7, local, nullptr), 1);
}

TEST_F(DataFileTest, DownloadNeverWritesThroughALinkPlantedOnItsWay) {
    const fs::path victim = temp_.Path() / "victim";
    const std::string local = (data_ / "a.pdf").string();
    ctrlMorvane& m = *m_;
    for (const bool asTheFile : {false, true}) {
        SCOPED_TRACE(asTheFile ? "a link as the file" : "a link in the temporary folder");
        std::ofstream(victim) << "precious";
        const fs::path link = asTheFile ? fs::path(local) : tmp_ / "a.pdf";
        fs::create_symlink(victim, link);
        Serve("Kessan", "server bytes", "2099/03/04 05:06:07");
        ASSERT_EQ(m.CompareCustomerKessanFile(7, local), 1);
        EXPECT_EQ(m.SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
        EXPECT_EQ(ReadBytes(victim), "precious");
        EXPECT_FALSE(fs::is_symlink(local));
        EXPECT_EQ(ReadBytes(local), "server bytes");
        EXPECT_TRUE(platform::LeftoverVersions(local).empty());
        fs::remove(local);
        fs::remove(link);
    }
}

TEST_F(DataFileTest, DownloadCreatesTheFoldersAndFetchesForItselfUnderTheOption) {
    const std::string local = (data_ / "new" / "deep" / "a.pdf").string();
    Serve("Other", "bytes", "not a date");
    ctrlMorvane& m = *m_;
    m.setObjectUsage(1);
    EXPECT_EQ(m.SyncDownloadCustomerOtherFile(7, local, nullptr), 1);
    EXPECT_EQ(ReadBytes(local), "bytes");
    EXPECT_TRUE(kit_->ShownForms().empty());
}

TEST_F(DataFileTest, DownloadWithTheLoginLostSendsNothing) {
    const std::string local = Write("a.pdf", "old");
    ServerHas("customer/getKessanFileHash.php", "KessanFile", "new", "2030/01/01 00:00:00");
    ctrlMorvane& m = *m_;
    ASSERT_EQ(m.CompareCustomerKessanFile(7, local), 1);
    State().login.loginState = 2;
    server_->ClearRequests();
    EXPECT_EQ(m.SyncDownloadCustomerKessanFile(7, local, nullptr), 0);
    EXPECT_TRUE(server_->Requests().empty());
    State().login.loginState = 1;
    EXPECT_EQ(m.SyncDownloadCustomerKessanFile(7, local, nullptr), 1);  // the slot went
    EXPECT_TRUE(server_->Requests().empty());
}

TEST_F(DataFileTest, UploadCountsOnlyWhenTheServerReportsTheSameFile) {
    const std::string local = Write("a.pdf", "abc");
    ctrlMorvane& m = *m_;
    ServerHas("customer/setKessanFile.php", "KessanFile", "abc", "2024/01/01 00:00:00");
    EXPECT_EQ(m.SyncUploadCustomerKessanFile(7, local, nullptr), 1);
    const auto sent = server_->RequestsTo("customer/setKessanFile.php").at(0);
    EXPECT_EQ(sent.body, "abc");
    EXPECT_EQ(sent.Header("userid"), "user1");
    EXPECT_EQ(sent.Header("token"), "T1");
    EXPECT_EQ(sent.Header("customerid"), "7");
    EXPECT_EQ(sent.Header("filename"), "a.pdf");

    ServerHas("customer/setKessanFile.php", "KessanFile", "abc", "2024/01/01 00:00:00", "00000000");
    EXPECT_EQ(m.SyncUploadCustomerKessanFile(7, local, nullptr), 0);
    server_->On("customer/setKessanFile.php", Envelope(1, "T4", HashPayload("")));
    EXPECT_EQ(m.SyncUploadCustomerKessanFile(7, local, nullptr), 0);
    server_->On("customer/setKessanFile.php", Envelope(-1, "T5"));
    EXPECT_EQ(m.SyncUploadCustomerKessanFile(7, local, nullptr), 0);

    server_->ClearRequests();
    EXPECT_EQ(m.SyncUploadCustomerKessanFile(7, (data_ / "none.pdf").string(), nullptr), 0);
    EXPECT_TRUE(server_->Requests().empty());
}

TEST_F(DataFileTest, OnlyTheOtherKindKeepsItsDescriptionThroughAnUpload) {
    const std::string local = Write("a.pdf", "local", "2024/01/01 00:00:00");
    ctrlMorvane& m = *m_;
    for (const std::string kind : {"Kessan", "Other"}) {
        Serve(kind, "server", "2030/01/01 00:00:00");
        ServerHas("customer/set" + kind + "File.php", kind + "File", "local",
                  "2030/01/01 00:00:00");
    }
    ASSERT_EQ(m.CompareCustomerKessanFile(7, local), 1);
    ASSERT_EQ(m.CompareCustomerOtherFile(7, local), 1);
    EXPECT_EQ(m.SyncUploadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_EQ(m.SyncUploadCustomerOtherFile(7, local, nullptr), 1);
    server_->ClearRequests();
    EXPECT_EQ(m.SyncDownloadCustomerKessanFile(7, local, nullptr), 1);
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_EQ(m.SyncDownloadCustomerOtherFile(7, local, nullptr), 1);
    EXPECT_EQ(server_->RequestsTo("customer/getOtherFile.php").size(), 1u);
    EXPECT_EQ(ReadBytes(local), "server");
}

TEST_F(DataFileTest, DeleteAndRenameGoOutOnlyWhenTheLocalChangeIsThere) {
    const std::string present = Write("here.pdf", "x");
    const std::string gone = (data_ / "gone.pdf").string();
    server_->On("customer/deleteKyokaFile.php", Envelope(1, "T2"));
    server_->On("customer/renameKyokaFile.php", Envelope(1, "T3"));
    ctrlMorvane& m = *m_;
    EXPECT_EQ(m.SyncDeleteCustomerKyokaFile(7, present, nullptr), 0);
    EXPECT_EQ(m.SyncRenameFileCustomerKyokaFile(7, present, present, nullptr), 0);
    EXPECT_EQ(m.SyncRenameFileCustomerKyokaFile(7, gone, gone, nullptr), 0);
    EXPECT_TRUE(server_->Requests().empty());

    EXPECT_EQ(m.SyncDeleteCustomerKyokaFile(7, gone, nullptr), 1);
    EXPECT_EQ(m.SyncRenameFileCustomerKyokaFile(7, gone, present, nullptr), 1);
    EXPECT_EQ(server_->RequestsTo("customer/deleteKyokaFile.php").at(0).body,
              "ID=user1&token=T1&CustomerID=7&FileName=gone.pdf&");
    EXPECT_EQ(server_->RequestsTo("customer/renameKyokaFile.php").at(0).body,
              "ID=user1&token=T2&CustomerID=7&SrcFile=gone.pdf&DstFile=here.pdf&");

    server_->On("customer/deleteKyokaFile.php", Envelope(-1, "T4"));
    EXPECT_EQ(m.SyncDeleteCustomerKyokaFile(7, gone, nullptr), 0);
}

}  // namespace
}  // namespace morvane::test
