// The POST with exact headers against the test server: no Content-Type of its own, a given
// Content-Length, and bytes with NULs unchanged both ways. Requests share one connection pool,
// as the component's do, so that nothing of one request rides on the next.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "platform/AtomicFile.h"
#include "platform/FileReader.h"
#include "platform/Http.h"
#include "support/FileBytes.h"
#include "support/TempDir.h"
#include "support/TestServer.h"

namespace morvane::test {
namespace {
namespace fs = std::filesystem;

constexpr std::size_t kCap = 200000;

class HttpRawTest : public ::testing::Test {
protected:
    platform::HttpOptions Options(std::size_t maxReplyBytes = std::size_t{64} << 20) const {
        platform::HttpOptions options;
        options.caFile = server_.CaFile();
        options.connectTimeoutSeconds = 5;
        options.stallTimeoutSeconds = 5;
        options.maxReplyBytes = maxReplyBytes;
        return options;
    }
    std::string Url() const { return "https://" + server_.HostName() + "/echo.php"; }
    platform::HttpReply Send(bool raw, const platform::HttpHeaders& headers, std::string body,
                             std::size_t maxReplyBytes = std::size_t{64} << 20) {
        platform::HttpClient client(Options(maxReplyBytes), &pool_);
        return raw ? client.PostRaw(Url(), headers, body) : client.Post(Url(), headers, body);
    }
    // The page answers every request with this reply.
    void Answer(const PageReply& reply) {
        server_.On("echo.php", [reply](const RecordedRequest&) { return reply; });
    }
    TestServer server_;
    platform::HttpConnectionPool pool_;
    TempDir dir_;
};

// Only the given headers go out: no Content-Type or Expect of curl's own on the raw route.
TEST_F(HttpRawTest, BytesTravelUnchangedWithExactlyTheGivenHeaders) {
    server_.On("echo.php", [](const RecordedRequest& r) {
        return PageReply{r.body + std::string("\0\x01", 2), 200, "application/octet-stream"};
    });
    const std::string bytes("PK\0\x03\xff\r\n\0end", 11);
    const auto reply = Send(true, {{"Content-Length", "11"}, {"CMD", "post"}}, bytes);
    ASSERT_TRUE(reply.transported) << reply.error;
    EXPECT_EQ(reply.body, bytes + std::string("\0\x01", 2));
    ASSERT_TRUE(Send(true, {{"Content-Type", "text/plain"}}, "a=1&").transported);
    ASSERT_TRUE(Send(false, {}, "a=1&").transported);
    std::vector<std::string> seen;
    for (const auto& r : server_.Requests())
        seen.push_back(r.body.substr(0, 2) + "|" + r.Header("content-type") + "|" +
                       r.Header("content-length") + "|" + r.Header("cmd") + "|" +
                       r.Header("expect"));
    EXPECT_EQ(seen, (std::vector<std::string>{"PK||11|post|", "a=|text/plain|4||",
                                              "a=|application/x-www-form-urlencoded|4||"}));
}

TEST_F(HttpRawTest, ReplyUpToTheCapComesWholeAndOneByteMoreIsNone) {
    for (const bool chunked : {false, true}) {
        for (const std::size_t size : {kCap, kCap + 1}) {
            SCOPED_TRACE(std::to_string(size) + (chunked ? " chunked" : " announced"));
            PageReply r{"<a/>"};
            r.padding = size - 4;
            r.chunked = chunked;
            Answer(r);
            const auto reply = Send(false, {}, "a=1&", kCap);
            EXPECT_EQ(reply.transported, size == kCap) << reply.error;
            EXPECT_EQ(reply.body.size(), size == kCap ? size : 0u);
            if (!reply.transported) {
                EXPECT_NE(reply.error.find("larger than 200000"), std::string::npos);
            }
        }
    }
}

// Past the cap, announced or not, refused by the sink, or stalled; a reply cut off mid-way is
// the file transfers' own test.
TEST_F(HttpRawTest, AStreamedReplyRefusedTooLargeOrStalledLeavesTheOldFileAndNothingBeside) {
    const std::string type = "application/octet-stream";
    const struct {
        const char* name;
        PageReply reply;
        bool sinkTakes;
    } cases[] = {
        {"past the cap", {"<a/>", 200, type, {}, 300000}, true},
        {"past the cap unannounced", {"<a/>", 200, type, {}, 300000, true}, true},
        {"not written", {std::string(1000, 'a'), 200, type}, false},
        {"stalled", {"late", 200, type, std::chrono::milliseconds(2500)}, true},
    };
    const fs::path target = WriteBytes(dir_.Path() / "a.pdf", "old");
    auto options = Options(kCap);
    options.stallTimeoutSeconds = 1;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Answer(c.reply);
        {
            auto version = platform::AtomicFile::Create(target);
            ASSERT_TRUE(version);
            const auto reply = platform::HttpClient(options).PostInto(
                Url(), {}, "a=1&",
                [&](std::string_view piece) { return c.sinkTakes && version->Write(piece); });
            EXPECT_FALSE(reply.transported);
            EXPECT_FALSE(reply.error.empty());
        }
        EXPECT_EQ(ReadBytes(target), "old");
        EXPECT_TRUE(platform::LeftoverVersions(target).empty());
    }
}

// Sent from the file as it is read, past curl's piece of a streamed body and no multiple of
// it; between pieces the file is changed.
TEST_F(HttpRawTest, AFileThatChangesWhileSentFailsTheSendAndNothingArrives) {
    const std::string bytes((std::size_t{3} << 19) + 11, 'b');
    const struct {
        const char* name;
        std::function<void(const fs::path&)> change;
    } cases[] = {
        {"removed", [](const fs::path& p) { fs::remove(p); }},
        {"cut short", [](const fs::path& p) { fs::resize_file(p, 1000); }},
        {"grown", [](const fs::path& p) { std::ofstream(p, std::ios::app) << "more"; }},
        {"replaced",
         [&](const fs::path& p) { fs::rename(WriteBytes(p.string() + ".other", bytes), p); }},
        {"rewritten in place",
         [](const fs::path& p) {
             std::fstream(p, std::ios::in | std::ios::out | std::ios::binary) << "XYZ";
             fs::last_write_time(p, fs::last_write_time(p) - std::chrono::hours(1));
         }},
    };
    server_.On("echo.php", "ok");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const fs::path path = WriteBytes(dir_.Path() / "up.bin", bytes);
        auto reader = platform::FileReader::Open(path);
        ASSERT_TRUE(reader);
        bool changed = false;
        const platform::HttpBodySource body{reader->Opened().size, [&](char* into, size_t max) {
                                                const auto n = reader->ReadAsOpened(into, max);
                                                if (!std::exchange(changed, true)) c.change(path);
                                                return n;
                                            }};
        EXPECT_FALSE(platform::HttpClient(Options(), &pool_)
                         .PostRawFrom(Url(), {{"Content-Length", std::to_string(body.size)}}, body)
                         .transported);
        EXPECT_TRUE(changed);
        EXPECT_TRUE(server_.Requests().empty());
    }
}

}  // namespace
}  // namespace morvane::test
