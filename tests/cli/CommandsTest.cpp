// The command line's smaller commands as the program runs them: calls by name on one object,
// the local databases of init-db, usage errors, and the demo run as the README runs it.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "InitDbCommand.h"
#include "platform/Dao.h"
#include "support/TempDir.h"
#include "util/Nz.h"

namespace morvane::cli {
namespace {

namespace fs = std::filesystem;

TEST(InitDb, CreatesTheThreeFilesAndNeverOverwritesThem) {
    test::TempDir dir;
    std::ostringstream out, err;
    ASSERT_EQ(RunInitDb(dir.Path() / "db", 2, out, err), 0) << err.str();
    for (const char* name : {"Customer.dat", "Master.dat", "prefcustom.dat"})
        EXPECT_GT(fs::file_size(dir.Path() / "db" / name), 0u) << name;
    {
        // A new office has never agreed anything with a server.
        dao::Workspace ws("", "");
        auto rs = ws.OpenDatabase((dir.Path() / "db" / "Customer.dat").string())
                      .OpenRecordset(
                          "SELECT SUM(disabled = 0) AS live, COUNT(InetCheckDate) "
                          "AS agreed FROM tCustomer");
        EXPECT_EQ(NzLong((*rs)["live"]), 2);
        EXPECT_EQ(NzLong((*rs)["agreed"]), 0);
    }
    const auto size = fs::file_size(dir.Path() / "db" / "Customer.dat");
    EXPECT_EQ(RunInitDb(dir.Path() / "db", 0, out, err), 1);
    EXPECT_EQ(fs::file_size(dir.Path() / "db" / "Customer.dat"), size);
    EXPECT_EQ(RunInitDb(dir.Path() / "other", -1, out, err), 2);
    EXPECT_FALSE(fs::exists(dir.Path() / "other" / "Customer.dat"));
}

struct ProgramRun {
    int exitCode = -1;
    std::string output;
};

ProgramRun RunCli(const std::string& args) {
    ProgramRun run;
    const std::string command = std::string(MORVANE_CLI_BINARY) + " " + args + " </dev/null";
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return run;
    std::array<char, 4096> buffer{};
    while (std::fgets(buffer.data(), buffer.size(), pipe)) run.output += buffer.data();
    const int status = ::pclose(pipe);
    if (WIFEXITED(status)) run.exitCode = WEXITSTATUS(status);
    return run;
}

// Calls print one result a line and stop at the first bad one; what went wrong, and the
// component's message boxes, go to stderr.
TEST(CallProgram, PrintsEachResultAndStopsAtTheFirstBadCall) {
    test::TempDir dir;
    const std::string call = "--config " + dir.Path().string() + " call ";
    const std::string none = "CompareCustomerList " + (dir.Path() / "none.dat").string();
    struct Case {
        std::string args;
        int exitCode;
        std::string out, err;
    };
    const std::vector<Case> cases{
        {"CustmerBackuped 1 --then LoginState", 0, "False\n0\n", ""},
        {"LoginState --then loginstate", 0, "0\n0\n", ""},
        {"--then --then LoginState", 0, "0\n", ""},
        {"LoginState --then NoSuchMember --then LoginState", 2, "0\n",
         "no member named NoSuchMember"},
        {"CustmerBackuped", 2, "", "takes 1 argument(s), 0 given"},
        {"CustmerBackuped not-a-number", 2, "", "CustmerBackuped: error"},
        {"", 2, "", ""},
        {none, 0, "0\n", "[サーバー通信エラー]"},
    };
    for (const Case& c : cases) {
        const ProgramRun run = RunCli(call + c.args + " 2>/dev/null");
        EXPECT_EQ(run.exitCode, c.exitCode) << c.args;
        EXPECT_EQ(run.output, c.out) << c.args;
        const std::string err = RunCli(call + c.args + " 2>&1 >/dev/null").output;
        EXPECT_NE(err.find(c.err), std::string::npos) << c.args << ": " << err;
    }
}

// Usage errors end with 2 and say what was wrong; help and the version with 0; a login that
// reached no server, or a sync without a login, with 1.
TEST(Program, FollowsTheUsualConventions) {
    test::TempDir dir;
    std::ostringstream out, err;
    ASSERT_EQ(RunInitDb(dir.Path() / "db", 1, out, err), 0);
    const std::string office =
        "--config " + dir.Path().string() + " sync --db " + (dir.Path() / "db").string();
    struct Case {
        std::string args;
        int exitCode;
        std::string says;
    };
    const std::vector<Case> cases{
        {"--version", 0, "0."},
        {"--help", 0, "Exit codes: 0 success; 1 failures or conflicts left; 2 usage"},
        {"", 2, "a command is required"},
        {"bogus", 2, "unknown command 'bogus'"},
        {"--bogus status", 2, "unknown argument '--bogus'"},
        {"status extra", 2, "not expected: extra"},
        {"sync --db x --prefer sometimes", 2, "--prefer"},
        {"sync --db x --stall-timeout 0", 2, "--stall-timeout"},
        {"sync --db x --time-limit soon", 2, "--time-limit"},
        {office + "/none.dat --stall-timeout 5 --time-limit 600", 2, "no customer database"},
        {office + "/Customer.dat", 1, "run `morvane login` first"},
        {"--config /nonexistent/morvane login --server 127.0.0.1:1 --contract C --user U", 1,
         "nothing answered at 127.0.0.1:1"},
    };
    for (const Case& c : cases) {
        const ProgramRun run = RunCli(c.args + " 2>&1");
        EXPECT_EQ(run.exitCode, c.exitCode) << c.args << ": " << run.output;
        EXPECT_NE(run.output.find(c.says), std::string::npos) << c.args << ": " << run.output;
    }
    EXPECT_FALSE(fs::exists(dir.Path() / "db" / "none.dat")) << "nothing is created";
}

// The README's main job: the real program, a real server, two offices; leaves nothing behind.
TEST(Demo, RunsToACleanEndAndStopsItsServer) {
    test::TempDir dir;
    const fs::path work = dir.Path() / "work";
    const ProgramRun run = RunCli("demo --workdir " + work.string() + " 2>&1");
    EXPECT_EQ(run.exitCode, 0) << run.output;
    for (const char* line :
         {"morvane-server listens on https://127.0.0.1:", "roster: added customer 3 to the server",
          "customer 2 customer record: downloaded", "customer 2 bidding participation: downloaded",
          "customer 2 file files/2/kessan-3.txt: downloaded", "file(s), byte for byte",
          "The demo ran to a clean end."})
        EXPECT_NE(run.output.find(line), std::string::npos) << line << "\n" << run.output;
    // The server wrote its port file; nothing may still listen there.
    std::ifstream portFile(work / "server-data" / "port");
    int port = 0;
    portFile >> port;
    EXPECT_GT(port, 0);
    const std::string probe = "exec 3<>/dev/tcp/127.0.0.1/" + std::to_string(port) + " 2>/dev/null";
    EXPECT_NE(std::system(("bash -c '" + probe + "'").c_str()), 0) << "the server still listens";
}

}  // namespace
}  // namespace morvane::cli
