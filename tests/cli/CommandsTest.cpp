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
#include <vector>

#include "InitDbCommand.h"
#include "store/StoreTestUtil.h"
#include "support/Golden.h"
#include "support/TempDir.h"
#include "util/Text.h"

namespace morvane::cli {
namespace {

namespace fs = std::filesystem;

TEST(InitDb, CreatesTheThreeFilesAndNeverOverwritesThem) {
    test::TempDir dir;
    std::ostringstream out, err;
    ASSERT_EQ(RunInitDb(dir.Path() / "db", 2, out, err), 0) << err.str();
    for (const char* name : {"Customer.dat", "Master.dat", "prefcustom.dat"})
        EXPECT_GT(fs::file_size(dir.Path() / "db" / name), 0u) << name;
    // Two live customers; a new office has never agreed anything with a server.
    EXPECT_EQ(test::Rows(dir.Path() / "db" / "Customer.dat",
                         "SELECT SUM(disabled = 0), COUNT(InetCheckDate) FROM tCustomer"),
              std::vector<std::string>{"2|0"});
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

// The rows of a table of the data file, "-" made empty and {dir} the folder.
std::vector<std::vector<std::string>> Cases(std::string_view table, const fs::path& dir) {
    auto rows = test::Golden("cli/commands.txt").Table(table);
    for (auto& row : rows)
        for (std::string& cell : row) {
            if (cell == "-") cell.clear();
            for (size_t at; (at = cell.find("{dir}")) != std::string::npos;)
                cell.replace(at, 5, dir.string());
        }
    return rows;
}

// Calls print one result a line and stop at the first bad one; what went wrong, and the
// component's message boxes, go to stderr.
TEST(CallProgram, PrintsEachResultAndStopsAtTheFirstBadCall) {
    test::TempDir dir;
    const std::string call = "--config " + dir.Path().string() + " call ";
    for (const auto& c : Cases("call", dir.Path())) {
        const ProgramRun run = RunCli(call + c[0] + " 2>/dev/null");
        std::string out;
        for (const std::string& line : Split(c[2], "; "))
            if (!line.empty()) out += line + "\n";
        EXPECT_EQ(run.exitCode, std::stoi(c[1])) << c[0];
        EXPECT_EQ(run.output, out) << c[0];
        const std::string err = RunCli(call + c[0] + " 2>&1 >/dev/null").output;
        EXPECT_NE(err.find(c[3]), std::string::npos) << c[0] << ": " << err;
    }
}

// Usage errors end with 2 and say what was wrong; help and the version with 0; a login that
// reached no server, or a sync without a login, with 1.
TEST(Program, FollowsTheUsualConventions) {
    test::TempDir dir;
    std::ostringstream out, err;
    ASSERT_EQ(RunInitDb(dir.Path() / "db", 1, out, err), 0);
    for (const auto& c : Cases("program", dir.Path())) {
        const ProgramRun run = RunCli(c[0] + " 2>&1");
        EXPECT_EQ(run.exitCode, std::stoi(c[1])) << c[0] << ": " << run.output;
        EXPECT_NE(run.output.find(c[2]), std::string::npos) << c[0] << ": " << run.output;
    }
    EXPECT_FALSE(fs::exists(dir.Path() / "db" / "none.dat")) << "nothing is created";
}

// The README's main job: the real program, a real server, two offices; leaves nothing behind.
TEST(Demo, RunsToACleanEndAndStopsItsServer) {
    test::TempDir dir;
    const fs::path work = dir.Path() / "work";
    const ProgramRun run = RunCli("demo --workdir " + work.string() + " 2>&1");
    EXPECT_EQ(run.exitCode, 0) << run.output;
    for (const std::string& line : test::Golden("cli/commands.txt").Lines("demo"))
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
