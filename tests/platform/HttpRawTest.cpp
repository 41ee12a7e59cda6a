// The POST with exact headers against the test server: no Content-Type of its own, a given
// Content-Length, and bytes with NULs unchanged both ways. Requests share one connection pool,
// as the component's do, so that nothing of one request rides on the next.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "platform/Http.h"
#include "support/TestServer.h"

namespace morvane::test {
namespace {

class HttpRawTest : public ::testing::Test {
protected:
    platform::HttpReply Send(bool raw, const platform::HttpHeaders& headers, std::string body,
                             std::size_t maxReplyBytes = std::size_t{64} << 20) {
        platform::HttpOptions options;
        options.caFile = server_.CaFile();
        options.connectTimeoutSeconds = 5;
        options.stallTimeoutSeconds = 5;
        options.maxReplyBytes = maxReplyBytes;
        platform::HttpClient client(options, &pool_);
        const std::string url = "https://" + server_.HostName() + "/echo.php";
        return raw ? client.PostRaw(url, headers, body) : client.Post(url, headers, body);
    }
    TestServer server_;
    platform::HttpConnectionPool pool_;
};

TEST_F(HttpRawTest, BytesTravelUnchangedWithoutAContentType) {
    server_.On("echo.php", [](const RecordedRequest& r) {
        return PageReply{r.body + std::string("\0\x01", 2), 200, "application/octet-stream"};
    });
    const std::string bytes("PK\0\x03\xff\r\n\0end", 11);
    const auto reply = Send(true, {{"Content-Length", "11"}, {"CMD", "post"}}, bytes);
    ASSERT_TRUE(reply.transported) << reply.error;
    EXPECT_EQ(reply.body, bytes + std::string("\0\x01", 2));
    const auto req = server_.Requests().at(0);
    EXPECT_EQ(req.body, bytes);
    EXPECT_EQ(req.Header("content-type"), "");
    EXPECT_EQ(req.Header("content-length"), "11");
    EXPECT_EQ(req.Header("cmd"), "post");
    EXPECT_EQ(req.Header("expect"), "");
}

TEST_F(HttpRawTest, AGivenContentTypeStandsAndThePlainPostKeepsTheFormType) {
    server_.On("echo.php", "ok");
    ASSERT_TRUE(Send(true, {{"Content-Type", "text/plain"}}, "a=1&").transported);
    ASSERT_TRUE(Send(false, {}, "a=1&").transported);
    const auto requests = server_.Requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].Header("content-type"), "text/plain");
    EXPECT_EQ(requests[1].Header("content-type"), "application/x-www-form-urlencoded");
}

TEST_F(HttpRawTest, TlsIsVerifiedOnTheRawRouteToo) {
    server_.On("echo.php", "ok");
    platform::HttpClient client(platform::HttpOptions{});  // the test CA not trusted
    const auto reply =
        client.PostRaw("https://" + server_.HostName() + "/echo.php", {}, std::string("x"));
    EXPECT_FALSE(reply.transported);
    EXPECT_TRUE(server_.Requests().empty());
}

TEST_F(HttpRawTest, ReplyUpToTheCapComesWholeAndOneByteMoreIsNone) {
    for (const bool chunked : {false, true}) {
        for (const std::size_t size : {std::size_t{200000}, std::size_t{200001}}) {
            SCOPED_TRACE(std::to_string(size) + (chunked ? " chunked" : " announced"));
            server_.On("echo.php", [&](const RecordedRequest&) {
                PageReply r{"<a/>"};
                r.padding = size - 4;
                r.chunked = chunked;
                return r;
            });
            const auto reply = Send(false, {}, "a=1&", 200000);
            EXPECT_EQ(reply.transported, size == 200000) << reply.error;
            EXPECT_EQ(reply.body.size(), size == 200000 ? size : 0u);
            if (!reply.transported) {
                EXPECT_NE(reply.error.find("larger than 200000"), std::string::npos) << reply.error;
            }
        }
    }
}

TEST_F(HttpRawTest, NoExchangeStartsPastTheDeadline) {
    server_.On("echo.php", "ok");
    platform::HttpOptions options;
    options.caFile = server_.CaFile();
    options.deadline = std::chrono::steady_clock::now() - std::chrono::seconds(1);
    const auto reply =
        platform::HttpClient(options).Post("https://" + server_.HostName() + "/echo.php", {}, "a");
    EXPECT_FALSE(reply.transported);
    EXPECT_TRUE(server_.Requests().empty());
}

}  // namespace
}  // namespace morvane::test
