// The POST against the test server: the reply cap to the byte, and a body streamed from a file
// that changes while it is sent. Requests share one connection pool, as the component's do.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

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
    platform::HttpOptions Options() const {
        platform::HttpOptions options;
        options.caFile = server_.CaFile();
        options.connectTimeoutSeconds = 5;
        options.stallTimeoutSeconds = 5;
        options.maxReplyBytes = kCap;
        return options;
    }
    std::string Url() const { return "https://" + server_.HostName() + "/echo.php"; }
    TestServer server_;
    platform::HttpConnectionPool pool_;
    TempDir dir_;
};

// Kept in memory or streamed to a sink, announced or chunked; a sink may refuse.
TEST_F(HttpRawTest, ReplyUpToTheCapComesWholeAndOneByteMoreIsNone) {
    for (const bool streamed : {false, true}) {
        for (const bool chunked : {false, true}) {
            for (const std::size_t size : {kCap, kCap + 1}) {
                SCOPED_TRACE(std::to_string(size) + (chunked ? " chunked" : " announced") +
                             (streamed ? " streamed" : ""));
                PageReply r{"<a/>"};
                r.padding = size - 4;
                r.chunked = chunked;
                server_.On("echo.php", [r](const RecordedRequest&) { return r; });
                std::string sunk;
                const platform::HttpBodySink sink = [&](std::string_view piece) {
                    sunk += piece;
                    return true;
                };
                platform::HttpClient client(Options(), &pool_);
                const auto reply = streamed ? client.PostInto(Url(), {}, "a=1&", sink)
                                            : client.Post(Url(), {}, "a=1&");
                EXPECT_EQ(reply.transported, size == kCap) << reply.error;
                // A stream may have taken the pieces before the one past the cap.
                EXPECT_EQ((streamed ? sunk : reply.body).size() == size, size == kCap);
                if (!reply.transported) {
                    EXPECT_NE(reply.error.find("larger than 200000"), std::string::npos);
                }
            }
        }
    }
    // A sink that refuses a piece ends the transfer.
    server_.On("echo.php", "ok");
    EXPECT_FALSE(platform::HttpClient(Options(), &pool_)
                     .PostInto(Url(), {}, "a=1&", [](std::string_view) { return false; })
                     .transported);
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
