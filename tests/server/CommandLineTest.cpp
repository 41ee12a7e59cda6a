// The program as scripts drive it: account commands, serving in the foreground, stopping on a
// signal.
#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "ChildProcess.h"
#include "support/TempDir.h"

namespace {

namespace fs = std::filesystem;
using morvane::cli::ChildProcess;

TEST(CommandLine, CreatesAccountsServesAndStopsOnASignal) {
    const morvane::test::TempDir temp;
    const fs::path& dir = temp.Path();
    const fs::path bin = MORVANE_SERVER_BINARY;
    const std::string data = (dir / "data").string();
    const fs::path log = dir / "log";
    const auto run = [&](const std::vector<std::string>& args) {
        return morvane::cli::RunProgram(bin, args, log);
    };

    EXPECT_EQ(run({"add-account", "--data", data, "--contract", "K1", "--max-customer", "9",
                   "--contractor-name", "事務所"}),
              0);
    EXPECT_NE(run({"add-account", "--data", data, "--contract", "K1"}), 0) << "taken";
    EXPECT_EQ(
        run({"add-user", "--data", data, "--contract", "K1", "--user", "u", "--password", "pw"}),
        0);
    EXPECT_NE(
        run({"add-user", "--data", data, "--contract", "K9", "--user", "u", "--password", "pw"}), 0)
        << "no such account";

    const fs::path portFile = dir / "port";
    ChildProcess server(
        bin, {"serve", "--data", data, "--port", "0", "--port-file", portFile.string()}, log);
    int port = 0;
    for (int i = 0; i < 200 && port == 0; ++i) {
        std::ifstream in(portFile);
        if (!(in >> port)) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    ASSERT_GT(port, 0) << "the server never reported its port";

    httplib::SSLClient client("127.0.0.1", port);
    client.set_ca_cert_path((fs::path(data) / "cert.pem").c_str());
    client.enable_server_certificate_verification(true);
    auto res = client.Post("/login.php", "no=K1&ID=u&PW=pw&", "application/x-www-form-urlencoded");
    ASSERT_TRUE(res);
    EXPECT_NE(res->body.find("<flags>1</flags>"), std::string::npos) << res->body;
    EXPECT_NE(res->body.find("<ContractorName>事務所</ContractorName>"), std::string::npos);
    EXPECT_NE(res->body.find("<MaxCustomer>9</MaxCustomer>"), std::string::npos);

    EXPECT_EQ(server.Stop(), 0) << "SIGTERM ends it cleanly";
}

}  // namespace
