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
#include "support/MorvaneTest.h"
#include "support/Told.h"
#include "transport/mdlServerFile.h"

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
    std::string folder_;
};

TEST_F(FileTransferTest, DownloadPostsTheFormBodyAndSavesTheBytes) {
    const std::string bytes("%PDF\0\xff\r\n", 8);
    server_->On(kGet, [&](const RecordedRequest&) {
        return PageReply{bytes, 200, "application/octet-stream"};
    });
    EXPECT_EQ(
        ServerDownloadFile(kGet, "ID=user1&token=T1&FileName=a.pdf&", folder_, "a.pdf", nullptr),
        "True");
    EXPECT_EQ(ReadBytes(folder_ + "/a.pdf"), bytes);
    const auto req = server_->RequestsTo(kGet).at(0);
    EXPECT_EQ(req.body, "ID=user1&token=T1&FileName=a.pdf&");
    EXPECT_EQ(req.Header("content-type"), "application/x-www-form-urlencoded");
    EXPECT_EQ(req.Header("if-modified-since"), "Thu, 01 Jun 1970 00:00:00 GMT");
    // The form ran the transfer, without an owner, and told nobody anything.
    EXPECT_EQ(Shown(*kit_), std::vector<std::string>{"frmFileDownloadProgress"});
    EXPECT_TRUE(kit_->Boxes().empty());
    // The reply is not judged: the token stays.
    EXPECT_EQ(server_->Requests().size(), 1u);
}

TEST_F(FileTransferTest, EmptyBodyKeepsTheOldFileAndAnErrorPageIsSaved) {
    const std::string old = Write("a.pdf", "old");
    server_->OnSequence(kGet, {"", "<html>500</html>"});
    EXPECT_EQ(ServerDownloadFile(kGet, "x=1&", folder_, "a.pdf", nullptr), "False");
    EXPECT_EQ(ReadBytes(old), "old");
    State().objectUsage = 1;
    EXPECT_TRUE(ServerDownloadFileDirect(kGet, "x=1&", folder_ + "/", "a.pdf"));
    EXPECT_EQ(ReadBytes(old), "<html>500</html>");
    EXPECT_EQ(kit_->ShownForms().size(), 1u);  // the second went without a form
    EXPECT_FALSE(ServerDownloadFileDirect(kGet, "x=1&", folder_ + "/none", "a.pdf"));
}

TEST_F(FileTransferTest, UploadSendsRawBytesWithItsHeadersAndNoContentType) {
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
    // The test server's HTTP library hands header values over percent-decoded.
    EXPECT_EQ(headers, "|13|post|user 1|T&1|7|決算 書#1.pdf|");
    EXPECT_TRUE(kit_->ShownForms().empty());
}

TEST_F(FileTransferTest, UploadHeadersGoInTheirOrder) {
    const auto headers = UploadHeaders("u 1", "t&", "3", "/x/y/決算 書#1.pdf", 42);
    std::vector<std::string> names, values;
    for (const auto& [n, v] : headers) {
        names.push_back(n);
        values.push_back(v);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Content-Length", "CMD", "USERID", "TOKEN",
                                               "CUSTOMERID", "FILENAME"}));
    EXPECT_EQ(values, (std::vector<std::string>{"42", "post", "u 1", "t&", "3",
                                                "%E6%B1%BA%E7%AE%97%20%E6%9B%B8#1.pdf"}));
}

TEST_F(FileTransferTest, FormRouteRefusesMissingAndOversizedFilesTheDirectRouteDoesNot) {
    const std::string ok = Envelope(1, "T2", "<Customer/>");
    server_->On(kSet, ok);
    const std::string exact = Write("exact.bin", std::string(kMaxUploadFileSize, 'e'));
    const std::string over = Write("over.bin", std::string(kMaxUploadFileSize + 1, 'o'));

    EXPECT_EQ(ServerUploadFile(kSet, "user1", "T1", "7", folder_ + "/none.bin", nullptr), "");
    EXPECT_EQ(ServerUploadFile(kSet, "user1", "T1", "7", over, nullptr), "");
    EXPECT_EQ(Told(*kit_),
              (std::vector<std::string>{
                  "アップロードするファイルが見つかりません。 ",
                  "ファイルサイズが大きすぎます。 \r\nアップロードできるファイルサイズは、 約 "
                  "8.00 MB までです。"}));
    EXPECT_EQ(kit_->Boxes()[0].title, "");
    EXPECT_EQ(kit_->Boxes()[1].title, "ファイルのアップロード");
    EXPECT_EQ(kit_->Boxes()[1].icon, forms::MsgIcon::Exclamation);
    EXPECT_TRUE(server_->Requests().empty());

    EXPECT_EQ(ServerUploadFile(kSet, "user1", "T1", "7", exact, nullptr), ok);
    State().objectUsage = 1;
    EXPECT_EQ(ServerUploadFile(kSet, "user1", "T2", "7", over, nullptr), ok);
    const auto sent = server_->RequestsTo(kSet);
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0].body.size(), kMaxUploadFileSize);
    EXPECT_EQ(sent[1].body.size(), kMaxUploadFileSize + 1);
    EXPECT_EQ(kit_->Boxes().size(), 2u);
}

TEST_F(FileTransferTest, AFailedReplyCheckGivesTheEmptyText) {
    const std::string path = Write("a.txt", "abc");
    server_->On(kSet, Envelope(-1, "T2"));
    EXPECT_EQ(ServerUploadFile(kSet, "user1", "T1", "7", path, nullptr), "");
    EXPECT_FALSE(kit_->Boxes().empty());  // the reply check told the user
    State().objectUsage = 1;
    server_->On(kSet, "not xml");
    EXPECT_EQ(ServerUploadFile(kSet, "user1", "T2", "7", path, nullptr), "");
}

TEST_F(FileTransferTest, ProgressFormsHaveTheirOwner) {
    forms::Form owner(*kit_, "frmHost", "host");
    const std::string path = Write("a.txt", "abc");
    server_->On(kSet, Envelope(1, "T2"));
    server_->On(kGet, "x");
    ServerUploadFile(kSet, "user1", "T1", "7", path, &owner);
    ServerDownloadFile(kGet, "x=1&", folder_, "b.txt", &owner);
    EXPECT_EQ(Shown(*kit_), (std::vector<std::string>{"frmFileUploadProgress<frmHost",
                                                      "frmFileDownloadProgress<frmHost"}));
}

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
    EXPECT_NE(ServerUploadFile(kSet, "user1", "T1", "7", path, nullptr), "");
    EXPECT_TRUE(stored == bytes);
    // The check value read on the way answers for the file until it changes.
    ASSERT_TRUE(State().lastFileSent);
    EXPECT_EQ(CrcText(State().lastFileSent->crc), GetCRC(bytes));
    EXPECT_EQ(GetFileCRC(path), GetCRC(bytes));
    std::fstream(path, std::ios::in | std::ios::out | std::ios::binary) << "changed";
    fs::last_write_time(path, fs::last_write_time(path) - std::chrono::hours(1));
    EXPECT_EQ(GetFileCRC(path), GetCRC(ReadBytes(path)));
    EXPECT_NE(GetFileCRC(path), GetCRC(bytes));

    Write("down.bin", "old");
    EXPECT_EQ(ServerDownloadFile(kGet, "x=1&", folder_, "down.bin", nullptr), "True");
    EXPECT_TRUE(ReadBytes(folder_ + "/down.bin") == bytes);
    EXPECT_TRUE(platform::LeftoverVersions(folder_ + "/down.bin").empty());
}

TEST_F(FileTransferTest, ADownloadCutOffOrUnansweredLeavesTheOldFileAndNothingBeside) {
    const std::string old = Write("a.pdf", "old");
    PageReply cut{std::string(300000, 'n'), 200, "application/octet-stream"};
    cut.dropAfter = 100000;
    server_->On(kGet, [&](const RecordedRequest&) { return cut; });
    for (const int usage : {0, 1}) {
        State().objectUsage = usage;
        EXPECT_EQ(ServerDownloadFile(kGet, "x=1&", folder_, "a.pdf", nullptr), "False");
        auto version = platform::AtomicFile::Create(old);
        ASSERT_TRUE(version);
        EXPECT_EQ(ServerDownloadFile(kGet, "x=1&", *version, nullptr), "False");
    }
    State().serverName = "127.0.0.1:1";  // nobody listens there
    EXPECT_FALSE(ServerDownloadFileDirect(kGet, "x=1&", folder_, "a.pdf"));
    EXPECT_EQ(ReadBytes(old), "old");
    EXPECT_TRUE(platform::LeftoverVersions(old).empty());
}

}  // namespace
}  // namespace morvane::test
