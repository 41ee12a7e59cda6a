// The server stays available to everyone while some clients are idle, slow, or announce bodies
// they never send; a busy client keeps its connection.
#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "RawConnection.h"
#include "ServerFixture.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;

// A connection with nothing more to say closes after a second.
template <int ClientTimeoutSeconds>
class LimitedServerTest : public ServerTest {
protected:
    void SetUp() override {
        options_.limits.clientTimeout = std::chrono::seconds(ClientTimeoutSeconds);
        options_.limits.keepAlive = 1s;
        ServerTest::SetUp();
    }
};
// Client time-outs far longer than any check here, so that only a server that never lets one
// client hold up another passes.
using PatientServerTest = LimitedServerTest<60>;
// Short ones, so that cutting a client off can be seen.
using StrictServerTest = LimitedServerTest<1>;

std::string Headers(const std::string& extra) {
    return "POST /login.php HTTP/1.1\r\nHost: 127.0.0.1\r\n"
           "Content-Type: application/x-www-form-urlencoded\r\n" +
           extra;
}
constexpr const char* kHalfHeaders = "POST /login.php HTTP/1.1\r\nHost: 1";

TEST_F(PatientServerTest, IdleAndHalfSentConnectionsDoNotHoldUpOthers) {
    std::vector<RawConnection> idle;
    // Silent before the handshake, far more than the few workers a fixed pool has.
    for (int i = 0; i < 200; ++i) ASSERT_TRUE(idle.emplace_back(server_->Port()).Open());
    for (int i = 0; i < 10; ++i) {
        auto& conn = idle.emplace_back(server_->Port());
        ASSERT_TRUE(conn.StartTls() &&
                    conn.Send(i % 2 ? kHalfHeaders : Headers("Content-Length: 100\r\n\r\nno=K")));
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Post("login.php", "no=K100&ID=u1&PW=secret&").Flags(), 1);
    // Generous for a loaded machine; a starved server answers only after a time-out (60 s).
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST_F(PatientServerTest, ABusyConnectionIsKeptAndAnIdleOneClosed) {
    httplib::SSLClient client("127.0.0.1", server_->Port());
    client.set_ca_cert_path(server_->CertFile().c_str());
    client.enable_server_certificate_verification(true);
    client.set_keep_alive(true);
    const auto clock = [&] {
        const auto res = client.Post("/gettime.php", "", "application/x-www-form-urlencoded");
        return res && res->status == 200;
    };
    const auto accepted = server_->AcceptedConnections();
    // Far past the library's default of five requests a connection.
    for (int i = 0; i < 20; ++i) ASSERT_TRUE(clock()) << i;
    EXPECT_EQ(server_->AcceptedConnections() - accepted, 1u);
    // Idle past the keep-alive time-out (a second), the connection is the server's to end.
    std::this_thread::sleep_for(2500ms);
    // This client finds its connection closed only by a request that fails on it.
    ASSERT_TRUE(clock() || clock());
    EXPECT_EQ(server_->AcceptedConnections() - accepted, 2u);
}

// The reply comes without the body, while the client keeps the connection open and sends
// nothing more; a server that waited for it would answer only at the client time-out.
TEST_F(PatientServerTest, BodiesTooLargeOrWithoutLengthAreRefusedBeforeTheyAreRead) {
    for (const std::string& request : {Headers("Content-Length: 10000000000\r\n\r\n"),
                                       Headers("\r\nno=K100&ID=u1&PW=secret&")}) {
        SCOPED_TRACE(request);
        RawConnection conn(server_->Port());
        ASSERT_TRUE(conn.StartTls() && conn.Send(request));
        const auto outcome = conn.ReadUntilClosed(10s);
        EXPECT_TRUE(outcome.closed);
        const std::string& got = outcome.received;
        EXPECT_EQ(got.substr(0, got.find("\r\n")), "HTTP/1.1 413 Payload Too Large") << got;
        EXPECT_EQ(Reply(got.substr(got.find("\r\n\r\n") + 4)).Flags(), -1) << got;
    }
    // The server is still there for a normal request.
    EXPECT_EQ(Post("login.php", "no=K100&ID=u1&PW=secret&").Flags(), 1);
}

// Cut off after about a second; the check leaves room for a loaded machine. The half sent
// handshake and the silence before it are sent without TLS.
TEST_F(StrictServerTest, SlowClientsAreCutOff) {
    const std::vector<std::pair<bool, std::string>> cases = {
        {false, ""},          {false, std::string("\x16\x03\x01\x00\x80\x01", 6)},   {true, ""},
        {true, kHalfHeaders}, {true, Headers("Content-Length: 100\r\n\r\nno=K100")},
    };
    for (const auto& [tls, sent] : cases) {
        SCOPED_TRACE(sent);
        RawConnection conn(server_->Port());
        ASSERT_TRUE(conn.Open() && (!tls || conn.StartTls()) && (sent.empty() || conn.Send(sent)));
        EXPECT_TRUE(conn.ReadUntilClosed(15s).closed);
    }
}

}  // namespace
}  // namespace morvane::server::testing
