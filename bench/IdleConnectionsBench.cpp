// How much 1,000 idle connections delay a normal request to the reference server: the median
// and worst of a login on a quiet server, then with the idle connections open.
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

// Each login on a connection of its own, as a client's first request after a pause.
Figures TimeLogins(const MorvaneServer& server, int count) {
    std::vector<double> ms;
    for (int i = 0; i < count; ++i) {
        httplib::SSLClient client("127.0.0.1", server.Port());
        client.set_ca_cert_path(server.CertFile().c_str());
        client.enable_server_certificate_verification(true);
        const auto start = Clock::now();
        auto res =
            client.Post("/login.php", "no=K1&ID=u1&PW=pw&", "application/x-www-form-urlencoded");
        const auto took = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        if (!res || res->status != 200) {
            std::fprintf(stderr, "login %d failed\n", i);
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

        TimeLogins(server, 3);  // warm up
        const Figures quiet = TimeLogins(server, 20);
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
        const Figures busy = TimeLogins(server, 20);
        std::printf("login on a quiet server:        median %7.2f ms, worst %7.2f ms\n",
                    quiet.median, quiet.worst);
        std::printf("with %5d idle connections open: median %7.2f ms, worst %7.2f ms\n", idleCount,
                    busy.median, busy.worst);
        std::printf("delay by the idle connections:  median %7.2f ms, worst %7.2f ms\n",
                    busy.median - quiet.median, busy.worst - quiet.median);
    }
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
    return 0;
}
