// What one small judged request costs on each side of the wire: the component's own path
// (body, HTTPS POST, reply check, token kept in the settings store) against the reference
// server in the same process on 127.0.0.1. Prints wall time and CPU per request for both, the
// settings files written and flushed, and the TCP connections the server accepted.
#include <time.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "server/MorvaneServer.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "support/TempDir.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane {
namespace {

constexpr const char* kContract = "K-1";
constexpr std::int32_t kCustomer = 1;

double CpuSeconds(clockid_t clock) {
    timespec ts{};
    clock_gettime(clock, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

struct Snapshot {
    std::chrono::steady_clock::time_point wall;
    double clientCpu, processCpu;
    platform::SettingsStoreCounts settings;
    std::uint64_t accepted;
};

Snapshot Take(const server::MorvaneServer& server) {
    return {std::chrono::steady_clock::now(), CpuSeconds(CLOCK_THREAD_CPUTIME_ID),
            CpuSeconds(CLOCK_PROCESS_CPUTIME_ID), State().Settings().Counts(),
            server.AcceptedConnections()};
}

// One customer's base record compared: the smallest judged exchange a sync makes per customer.
bool OneRequest() {
    return !SendRequest(page::kGetCompKihon, LowerCustomerBody(kCustomer)).empty();
}

int Run(int count) {
    test::TempDir dir;
    server::ServerOptions options;
    options.dataDir = dir.Path() / "server";
    server::MorvaneServer server(options);
    server::AccountFields account;
    account.contractNo = kContract;
    account.maxCustomer = 10;
    server.CreateAccount(account);
    server.AddUser(kContract, "u1", "pw");
    server.Start();

    State().SetSettingsRoot(dir.Path() / "config");
    WriteMorvaneSetting(reg::kServerName, server.ServerName());
    WriteMorvaneSetting(reg::kContractNo, kContract);
    WriteMorvaneSetting("CAFile", server.CertFile().string());
    if (!DoLogin("u1", "pw", kContract)) {
        std::fprintf(stderr, "login failed\n");
        return 1;
    }
    std::string create = LowerCustomerBody(kCustomer);
    AppendField(create, "Code", "C1");
    if (SendRequest(page::kCreateCompKihon, create).empty()) {
        std::fprintf(stderr, "the customer was not created\n");
        return 1;
    }
    for (int i = 0; i < 20; ++i) OneRequest();

    const Snapshot before = Take(server);
    for (int i = 0; i < count; ++i) {
        if (!OneRequest()) {
            std::fprintf(stderr, "request %d failed\n", i);
            return 1;
        }
    }
    const Snapshot after = Take(server);

    const double n = count;
    const double wallMs =
        std::chrono::duration<double, std::milli>(after.wall - before.wall).count() / n;
    const double clientMs = (after.clientCpu - before.clientCpu) * 1e3 / n;
    const double serverMs =
        ((after.processCpu - before.processCpu) - (after.clientCpu - before.clientCpu)) * 1e3 / n;
    std::printf("%d judged requests (%s), client and server in one process\n", count,
                std::string(page::kGetCompKihon).c_str());
    std::printf("wall time per request, kept connection:   %8.3f ms\n", wallMs);
    std::printf("client CPU per request (calling thread):  %8.3f ms\n", clientMs);
    std::printf("server CPU per request (all other threads): %6.3f ms\n", serverMs);
    std::printf("client / server CPU:                      %8.2f\n", clientMs / serverMs);
    std::printf("settings files parsed:  %llu\n",
                static_cast<unsigned long long>(after.settings.parses - before.settings.parses));
    std::printf("settings files written: %llu (in place or replaced), flushed to disk: %llu\n",
                static_cast<unsigned long long>(after.settings.writes - before.settings.writes),
                static_cast<unsigned long long>(after.settings.syncs - before.settings.syncs));
    std::printf("TCP connections accepted by the server: %llu in all, %llu during the requests\n",
                static_cast<unsigned long long>(after.accepted),
                static_cast<unsigned long long>(after.accepted - before.accepted));
    State().Reset();
    server.Stop();
    return 0;
}

}  // namespace
}  // namespace morvane

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 2000;
    return morvane::Run(count > 0 ? count : 2000);
}
