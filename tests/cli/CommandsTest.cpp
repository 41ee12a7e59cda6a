// The command line's smaller commands: calls split on --then, calls by name on one object,
// the local databases of init-db, and the demo run as the README runs it.
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

#include "CallCommand.h"
#include "InitDbCommand.h"
#include "platform/Dao.h"
#include "support/MorvaneTest.h"
#include "util/Nz.h"

namespace morvane::cli {
namespace {

namespace fs = std::filesystem;

TEST(SplitCalls, ThenStartsANewCallAndArgumentsStayWithTheirMember) {
    const auto calls = SplitCalls({"A", "x", "y", "--then", "B", "--then", "C", "z"});
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].member, "A");
    EXPECT_EQ(calls[0].args, (std::vector<std::string>{"x", "y"}));
    EXPECT_TRUE(calls[1].args.empty());
    EXPECT_EQ(calls[2].args, (std::vector<std::string>{"z"}));
    EXPECT_TRUE(SplitCalls({}).empty());
    EXPECT_EQ(SplitCalls({"--then", "--then", "A"}).size(), 1u) << "empty calls are dropped";
}

class CallTest : public test::MorvaneTest {};

TEST_F(CallTest, CallsPrintOneResultPerLineAndStopAtTheFirstBadOne) {
    std::ostringstream out, err;
    EXPECT_EQ(RunCalls(SplitCalls({"LoginState", "--then", "loginstate"}), out, err), 0);
    EXPECT_EQ(out.str(), "0\n0\n") << "names match without regard to case";

    out.str("");
    EXPECT_EQ(RunCalls(SplitCalls({"LoginState", "--then", "NoSuchMember", "--then", "LoginState"}),
                       out, err),
              2);
    EXPECT_EQ(out.str(), "0\n");
    EXPECT_NE(err.str().find("no member named NoSuchMember"), std::string::npos);

    err.str("");
    EXPECT_EQ(RunCalls(SplitCalls({"CustmerBackuped"}), out, err), 2);
    EXPECT_NE(err.str().find("takes 1 argument(s), 0 given"), std::string::npos);
    err.str("");
    EXPECT_EQ(RunCalls(SplitCalls({"CustmerBackuped", "not-a-number"}), out, err), 2)
        << "a text that is no number is a type mismatch, not a crash";
}

TEST(InitDb, CreatesTheThreeFilesAndNeverOverwritesThem) {
    std::string pattern = (fs::temp_directory_path() / "morvane-initdb-XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    const fs::path dir = pattern;
    std::ostringstream out, err;
    ASSERT_EQ(RunInitDb(dir / "db", 2, out, err), 0) << err.str();
    for (const char* name : {"Customer.dat", "Master.dat", "prefcustom.dat"})
        EXPECT_GT(fs::file_size(dir / "db" / name), 0u) << name;
    {
        // A new office has never agreed anything with a server.
        dao::Workspace ws("", "");
        auto& db = ws.OpenDatabase((dir / "db" / "Customer.dat").string());
        auto live = db.OpenRecordset("SELECT COUNT(*) AS n FROM tCustomer WHERE disabled = 0");
        EXPECT_EQ(NzLong((*live)["n"]), 2);
        for (const char* table : {"tCustomer", "tCustomerHistory", "tCustomerKessanHistory"}) {
            auto rs = db.OpenRecordset(std::string("SELECT COUNT(*) AS n FROM ") + table +
                                       " WHERE InetCheckDate IS NOT NULL");
            EXPECT_EQ(NzLong((*rs)["n"]), 0) << table;
        }
    }
    const auto size = fs::file_size(dir / "db" / "Customer.dat");
    EXPECT_EQ(RunInitDb(dir / "db", 0, out, err), 1);
    EXPECT_EQ(fs::file_size(dir / "db" / "Customer.dat"), size);
    EXPECT_EQ(RunInitDb(dir / "other", -1, out, err), 2);
    EXPECT_FALSE(fs::exists(dir / "other" / "Customer.dat"));
    fs::remove_all(dir);
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

TEST(CallProgram, KeepsEachMembersArgumentsInOrderAcrossThen) {
    std::string pattern = (fs::temp_directory_path() / "morvane-call-XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    const std::string config = "--config " + pattern + " call ";
    ProgramRun run = RunCli(config + "CustmerBackuped 1 --then LoginState 2>&1");
    EXPECT_EQ(run.exitCode, 0) << run.output;
    EXPECT_EQ(run.output, "False\n0\n");
    // A failed exchange's message box goes to stderr with its title; stdout keeps the result.
    run = RunCli(config + "CompareCustomerList " + pattern + "/none.dat 2>/dev/null");
    EXPECT_EQ(run.output, "0\n");
    run = RunCli(config + "CompareCustomerList " + pattern + "/none.dat 2>&1 >/dev/null");
    EXPECT_NE(run.output.find("[サーバー通信エラー]"), std::string::npos) << run.output;
    EXPECT_EQ(RunCli(config + "2>/dev/null").exitCode, 2);
    fs::remove_all(pattern);
}

TEST(SyncProgram, RefusesAMissingDatabaseAndAMissingLogin) {
    std::string pattern = (fs::temp_directory_path() / "morvane-sync-XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    const std::string config = "--config " + pattern + " ";
    ProgramRun run = RunCli(config + "sync --db " + pattern + "/none.dat 2>&1");
    EXPECT_EQ(run.exitCode, 2) << run.output;
    EXPECT_NE(run.output.find("no customer database"), std::string::npos) << run.output;
    EXPECT_FALSE(fs::exists(fs::path(pattern) / "none.dat")) << "nothing is created";

    std::ostringstream out, err;
    ASSERT_EQ(RunInitDb(fs::path(pattern) / "db", 1, out, err), 0);
    run = RunCli(config + "sync --db " + pattern + "/db/Customer.dat 2>&1");
    EXPECT_EQ(run.exitCode, 1) << run.output;
    EXPECT_NE(run.output.find("run `morvane login` first"), std::string::npos) << run.output;
    fs::remove_all(pattern);
}

// Usage errors end with 2 and say what was wrong; help and the version with 0; a login that
// reached no server with 1.
TEST(Program, FollowsTheUsualConventions) {
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
        {"--config /nonexistent/morvane sync --db none.dat --stall-timeout 5 --time-limit 600", 2,
         "no customer database"},
        {"--config /nonexistent/morvane login --server 127.0.0.1:1 --contract C --user U", 1,
         "nothing answered at 127.0.0.1:1"},
    };
    for (const Case& c : cases) {
        const ProgramRun run = RunCli(c.args + " 2>&1");
        EXPECT_EQ(run.exitCode, c.exitCode) << c.args << ": " << run.output;
        EXPECT_NE(run.output.find(c.says), std::string::npos) << c.args << ": " << run.output;
    }
}

// The README's main job: the real program, a real server, two offices; leaves nothing behind.
TEST(Demo, RunsToACleanEndAndStopsItsServer) {
    std::string pattern = (fs::temp_directory_path() / "morvane-demo-test-XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    const fs::path work = fs::path(pattern) / "work";
    const std::string command =
        std::string(MORVANE_CLI_BINARY) + " demo --workdir " + work.string() + " 2>&1";
    FILE* pipe = ::popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::string output;
    std::array<char, 4096> buffer{};
    while (std::fgets(buffer.data(), buffer.size(), pipe)) output += buffer.data();
    const int status = ::pclose(pipe);
    ASSERT_TRUE(WIFEXITED(status)) << output;
    EXPECT_EQ(WEXITSTATUS(status), 0) << output;
    for (const char* line :
         {"morvane-server listens on https://127.0.0.1:", "roster: server has none (result 4)",
          "roster: added customer 3 to the server", "roster after reconciliation: result 0",
          "customer 2 customer record: uploaded", "roster: took the server's roster",
          "customer 2 customer record: downloaded", "office B agrees with the server",
          "telephone): the same 3 row(s)", "customer 2 bidding agencies: uploaded",
          "customer 2 bidding participation: downloaded",
          "Bidding agencies of the two offices (filled grid rows): the same",
          "Bidding entries of the two offices: the same",
          "customer 2 file files/2/kessan-3.txt: uploaded",
          "customer 2 file files/2/kessan-3.txt: downloaded", "file(s), byte for byte",
          "The demo ran to a clean end."})
        EXPECT_NE(output.find(line), std::string::npos) << line << "\n" << output;
    // The server wrote its port file; nothing may still listen there.
    std::ifstream portFile(work / "server-data" / "port");
    int port = 0;
    portFile >> port;
    EXPECT_GT(port, 0);
    const std::string probe = "exec 3<>/dev/tcp/127.0.0.1/" + std::to_string(port) + " 2>/dev/null";
    EXPECT_NE(std::system(("bash -c '" + probe + "'").c_str()), 0) << "the server still listens";
    fs::remove_all(pattern);
}

}  // namespace
}  // namespace morvane::cli
