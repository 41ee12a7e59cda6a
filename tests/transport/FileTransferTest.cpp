// The two file transfers on the wire, with and without their progress forms: the download
// saves any non-empty body, the upload sends raw bytes with its parameters in headers.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "platform/AtomicFile.h"
#include "state/ProcessState.h"
#include "state/basGetCRC.h"
#include "support/FileBytes.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"
#include "support/Told.h"
#include "transport/mdlServerFile.h"
#include "util/Text.h"

namespace morvane::test {
namespace {
namespace fs = std::filesystem;

constexpr const char* kGet = "customer/getKessanFile.php";
constexpr const char* kSet = "customer/setKessanFile.php";

class FileTransferTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        LogIn("T1");
        folder_ = (temp_.Path() / "files").string();
        fs::create_directories(folder_);
    }
    std::string Write(const std::string& name, const std::string& bytes) {
        return WriteBytes(folder_ + "/" + name, bytes).string();
    }
    std::string Upload(const std::string& path, forms::Form* owner = nullptr) {
        return ServerUploadFile(kSet, "user1", "T1", "7", path, owner);
    }
    std::string Download(const std::string& name, forms::Form* owner = nullptr) {
        return ServerDownloadFile(kGet, "x=1&", folder_, name, owner);
    }
    std::string folder_;
};

// The reply is not judged: the token stays. The form runs the transfer and tells nobody.
TEST_F(FileTransferTest, DownloadPostsTheFormBodyAndSavesTheBytesAnEmptyOneKeepsTheOldFile) {
    const std::string bytes("%PDF\0\xff\r\n", 8);
    server_->OnSequence(kGet, {bytes, "", "<html>500</html>"});
    EXPECT_EQ(
        ServerDownloadFile(kGet, "ID=user1&token=T1&FileName=a.pdf&", folder_, "a.pdf", nullptr),
        "True");
    EXPECT_EQ(ReadBytes(folder_ + "/a.pdf"), bytes);
    const auto req = server_->RequestsTo(kGet).at(0);
    EXPECT_EQ(req.body, "ID=user1&token=T1&FileName=a.pdf&");
    EXPECT_EQ(req.Header("content-type"), "application/x-www-form-urlencoded");
    EXPECT_EQ(req.Header("if-modified-since"), "Thu, 01 Jun 1970 00:00:00 GMT");
    EXPECT_EQ(Download("a.pdf"), "False");
    EXPECT_EQ(ReadBytes(folder_ + "/a.pdf"), bytes);
    // An error page is saved; under option 1 without a form.
    State().objectUsage = 1;
    EXPECT_TRUE(ServerDownloadFileDirect(kGet, "x=1&", folder_ + "/", "a.pdf"));
    EXPECT_EQ(ReadBytes(folder_ + "/a.pdf"), "<html>500</html>");
    EXPECT_FALSE(ServerDownloadFileDirect(kGet, "x=1&", folder_ + "/none", "a.pdf"));
    EXPECT_EQ(Shown(*kit_),
              (std::vector<std::string>{"frmFileDownloadProgress", "frmFileDownloadProgress"}));
    EXPECT_TRUE(kit_->Boxes().empty());
    EXPECT_EQ(server_->Requests().size(), 3u);
}

// The test server's HTTP library hands header values over percent-decoded.
TEST_F(FileTransferTest, UploadSendsRawBytesWithItsHeadersInTheirOrderAndNoContentType) {
    const std::string bytes("\0\x01\x02 決算&=\xff", 13);
    const std::string path = Write("決算 書#1.pdf", bytes);
    const std::string ok = Envelope(1, "T2", "<Customer><CustomerID>7</CustomerID></Customer>");
    server_->On(kSet, ok);
    State().objectUsage = 1;
    EXPECT_EQ(ServerUploadFile(kSet, "user 1", "T&1", "7", path, nullptr), ok);
    const auto req = server_->RequestsTo(kSet).at(0);
    EXPECT_EQ(req.body, bytes);
    std::string headers;
    for (const char* name :
         {"content-type", "content-length", "cmd", "userid", "token", "customerid", "filename"})
        headers += req.Header(name) + "|";
    EXPECT_EQ(headers, "|13|post|user 1|T&1|7|決算 書#1.pdf|");
    EXPECT_TRUE(kit_->ShownForms().empty());
    std::string sent;
    for (const auto& [name, value] : UploadHeaders("u 1", "t&", "3", "/x/y/決算 書#1.pdf", 42))
        sent += name + ": " + value + "\n";
    EXPECT_EQ(sent,
              "Content-Length: 42\nCMD: post\nUSERID: u 1\nTOKEN: t&\nCUSTOMERID: 3\n"
              "FILENAME: %E6%B1%BA%E7%AE%97%20%E6%9B%B8#1.pdf\n");
}

TEST_F(FileTransferTest, FormRouteRefusesMissingAndOversizedFilesTheDirectRouteDoesNot) {
    const std::string ok = Envelope(1, "T2", "<Customer/>");
    server_->On(kSet, ok);
    const std::string exact = Write("exact.bin", std::string(kMaxUploadFileSize, 'e'));
    const std::string over = Write("over.bin", std::string(kMaxUploadFileSize + 1, 'o'));
    EXPECT_EQ(Upload(folder_ + "/none.bin"), "");
    EXPECT_EQ(Upload(over), "");
    EXPECT_EQ(Join(Told(*kit_), "\n"), Golden("transport/file-transfer.txt")["refused files"]);
    EXPECT_EQ(kit_->Boxes()[0].title + "|" + kit_->Boxes()[1].title, "|ファイルのアップロード");
    EXPECT_EQ(kit_->Boxes()[1].icon, forms::MsgIcon::Exclamation);
    EXPECT_TRUE(server_->Requests().empty());
    EXPECT_EQ(Upload(exact), ok);
    State().objectUsage = 1;
    EXPECT_EQ(Upload(over), ok);
    const auto sent = server_->RequestsTo(kSet);
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[1].body.size() - sent[0].body.size(), 1u);
    EXPECT_EQ(sent[0].body.size(), kMaxUploadFileSize);
    EXPECT_EQ(kit_->Boxes().size(), 2u);
}

// A reply the check refuses (it tells the user) or cannot read gives the empty text.
TEST_F(FileTransferTest, AFailedReplyCheckGivesTheEmptyTextAndTheFormsHaveTheirOwner) {
    forms::Form owner(*kit_, "frmHost", "host");
    const std::string path = Write("a.txt", "abc");
    server_->OnSequence(kSet, {Envelope(-1, "T2"), "not xml"});
    server_->On(kGet, "x");
    EXPECT_EQ(Upload(path, &owner), "");
    EXPECT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(Download("b.txt", &owner), "True");
    State().objectUsage = 1;
    EXPECT_EQ(Upload(path), "");
    EXPECT_EQ(Shown(*kit_), (std::vector<std::string>{"frmFileUploadProgress<frmHost",
                                                      "frmFileDownloadProgress<frmHost"}));
}

// The check value read on the way answers for the file until it changes.
TEST_F(FileTransferTest, FilesPastOneReadPieceGoUpAndComeDownByteForByte) {
    std::string bytes((std::size_t{3} << 19) + 5, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 13 + (i >> 11));
    std::string stored;
    server_->On(kSet, [&](const RecordedRequest& r) {
        stored = r.body;
        return PageReply{Envelope(1, "T2", "<Customer/>")};
    });
    server_->On(kGet, [&](const RecordedRequest&) {
        return PageReply{stored, 200, "application/octet-stream"};
    });
    const std::string path = Write("up.bin", bytes);
    EXPECT_NE(Upload(path), "");
    EXPECT_TRUE(stored == bytes);
    ASSERT_TRUE(State().lastFileSent);
    EXPECT_EQ(CrcText(State().lastFileSent->crc), GetCRC(bytes));
    EXPECT_EQ(GetFileCRC(path), GetCRC(bytes));
    std::fstream(path, std::ios::in | std::ios::out | std::ios::binary) << "changed";
    fs::last_write_time(path, fs::last_write_time(path) - std::chrono::hours(1));
    EXPECT_EQ(GetFileCRC(path), GetCRC(ReadBytes(path)));
    Write("down.bin", "old");
    EXPECT_EQ(Download("down.bin"), "True");
    EXPECT_TRUE(ReadBytes(folder_ + "/down.bin") == bytes);
    EXPECT_TRUE(platform::LeftoverVersions(folder_ + "/down.bin").empty());
}

}  // namespace
}  // namespace morvane::test
