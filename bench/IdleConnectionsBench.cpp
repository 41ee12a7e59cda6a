// How much 1,000 idle connections delay a normal request to the reference server: the median
// and worst of a clock request and of a login, each on a new connection, on a quiet server and
// then with the idle connections open. The clock request shows the connection's own cost; a
// login adds the password check, whose memory-hard hash swings with the machine's load.
#include <httplib.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "server/MorvaneServer.h"
#include "server/RawConnection.h"

namespace {

using Clock = std::chrono::steady_clock;
using morvane::server::MorvaneServer;

struct Figures {
    double median = 0, worst = 0;
};

// Each request on a connection of its own, as a client's first request after a pause.
Figures TimeRequests(const MorvaneServer& server, const char* path, const char* body, int count) {
    std::vector<double> ms;
    for (int i = 0; i < count; ++i) {
        httplib::SSLClient client("127.0.0.1", server.Port());
        client.set_ca_cert_path(server.CertFile().c_str());
        client.enable_server_certificate_verification(true);
        const auto start = Clock::now();
        auto res = client.Post(path, body, "application/x-www-form-urlencoded");
        const auto took = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        if (!res || res->status != 200) {
            std::fprintf(stderr, "%s %d failed\n", path, i);
            std::exit(1);
        }
        ms.push_back(took);
    }
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.back()};
}

}  // namespace

int main(int argc, char** argv) {
    const int idleCount = argc > 1 ? std::atoi(argv[1]) : 1000;
    std::string pattern =
        (std::filesystem::temp_directory_path() / "morvane-idle-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) return 1;
    const std::filesystem::path dir = pattern;
    {
        morvane::server::ServerOptions options;
        options.dataDir = dir / "data";
        MorvaneServer server(options);
        server.Start();
        morvane::server::AccountFields account;
        account.contractNo = "K1";
        account.maxCustomer = 10;
        server.CreateAccount(account);
        server.AddUser("K1", "u1", "pw");

        struct Request {
            const char* name;
            const char* path;
            const char* body;
            Figures quiet, busy;
        };
        Request requests[] = {{"clock request", "/gettime.php", "", {}, {}},
                              {"login", "/login.php", "no=K1&ID=u1&PW=pw&", {}, {}}};
        for (auto& r : requests) {
            TimeRequests(server, r.path, r.body, 3);  // warm up
            r.quiet = TimeRequests(server, r.path, r.body, 20);
        }
        std::vector<morvane::server::testing::RawConnection> idle;
        idle.reserve(static_cast<std::size_t>(idleCount));
        for (int i = 0; i < idleCount; ++i) {
            idle.emplace_back(server.Port());
            if (!idle.back().Open()) {
                std::fprintf(stderr, "connection %d failed\n", i);
                return 1;
            }
            // Half of them finish the handshake and stop there, half never begin it.
            if (i % 2 && !idle.back().StartTls()) {
                std::fprintf(stderr, "handshake %d failed\n", i);
                return 1;
            }
        }
        for (auto& r : requests) r.busy = TimeRequests(server, r.path, r.body, 20);
        for (const auto& r : requests) {
            std::printf("%s on a quiet server:          median %7.2f ms, worst %7.2f ms\n", r.name,
                        r.quiet.median, r.quiet.worst);
            std::printf("%s with %5d idle connections: median %7.2f ms, worst %7.2f ms\n", r.name,
                        idleCount, r.busy.median, r.busy.worst);
            std::printf("%s delayed by the idle ones:   median %7.2f ms, worst %7.2f ms\n", r.name,
                        r.busy.median - r.quiet.median, r.busy.worst - r.quiet.median);
        }
    }
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
    return 0;
}
