// The program as scripts drive it: account commands, serving in the foreground, stopping on a
// signal.
#include <gtest/gtest.h>
#include <httplib.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <fcntl.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

extern char** environ;

namespace {

namespace fs = std::filesystem;

// A child process that is killed if the test leaves early.
class Child {
public:
    explicit Child(std::vector<std::string> args) {
        std::vector<char*> argv;
        for (auto& a : args) argv.push_back(a.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        if (posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ) != 0) pid_ = -1;
        posix_spawn_file_actions_destroy(&actions);
    }
    ~Child() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
    }
    pid_t Pid() const { return pid_; }
    // Exit status, or -1 when it ended otherwise.
    int Wait() {
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t pid_ = -1;
};

int RunProgram(std::vector<std::string> args) { return Child(std::move(args)).Wait(); }

TEST(CommandLine, CreatesAccountsServesAndStopsOnASignal) {
    std::string pattern = (fs::temp_directory_path() / "morvane-cli-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    const fs::path dir = pattern;
    const std::string bin = MORVANE_SERVER_BINARY;
    const std::string data = (dir / "data").string();

    EXPECT_EQ(RunProgram({bin, "add-account", "--data", data, "--contract", "K1", "--max-customer",
                          "9", "--contractor-name", "事務所"}),
              0);
    EXPECT_NE(RunProgram({bin, "add-account", "--data", data, "--contract", "K1"}), 0) << "taken";
    EXPECT_EQ(RunProgram({bin, "add-user", "--data", data, "--contract", "K1", "--user", "u",
                          "--password", "pw"}),
              0);
    EXPECT_NE(RunProgram({bin, "add-user", "--data", data, "--contract", "K9", "--user", "u",
                          "--password", "pw"}),
              0)
        << "no such account";

    const fs::path portFile = dir / "port";
    Child server({bin, "serve", "--data", data, "--port", "0", "--port-file", portFile.string()});
    ASSERT_GT(server.Pid(), 0);
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

    kill(server.Pid(), SIGTERM);
    EXPECT_EQ(server.Wait(), 0);
    std::error_code ec;
    fs::remove_all(dir, ec);
}

}  // namespace
