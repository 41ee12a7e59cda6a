// What the host itself tells and keeps beside a run: whether a login reached the server,
// and the scratch copies a dry run compares against.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "LoginCommands.h"
#include "ProgressLine.h"
#include "ScratchDatabases.h"
#include "support/MorvaneTest.h"

namespace morvane::cli {
namespace {

namespace fs = std::filesystem;

class LoginReportTest : public test::MorvaneTest {};

TEST_F(LoginReportTest, SaysWhetherTheServerAnswered) {
    server_->On("login.php", test::LoginReply(1, "T1"));
    struct Case {
        std::string server;
        int state;
        const char* says;
    };
    const Case cases[] = {
        {server_->HostName(), 1, "login: logged in (state 1); the server answered"},
        // Nothing listens on port 1.
        {"127.0.0.1:1", 0, "login: the server did not answer (state 0)"},
    };
    for (const Case& c : cases) {
        std::ostringstream out;
        EXPECT_EQ(RunLogin({c.server, "C-1001", "user1", "pass1", false}, out), c.state);
        EXPECT_NE(out.str().find(c.says), std::string::npos) << out.str();
    }
}

std::string Read(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

TEST(ScratchDatabases, CopiesTheThreeDatabasesOnlyAndRemovesThemAtTheEnd) {
    test::TempDir dir;
    const fs::path data = dir.Path() / "data";
    fs::create_directories(data / "files");
    for (const char* name : {"Customer.dat", "Customer.dat-wal", "prefcustom.dat", "other.txt"})
        std::ofstream(data / name) << name;
    std::ofstream(data / "files" / "a.pdf") << "pdf";
    fs::path copy;
    {
        ScratchDatabases scratch(data / "Customer.dat");
        copy = scratch.CustomerDb();
        ASSERT_NE(copy.parent_path(), data);
        EXPECT_EQ(Read(copy), "Customer.dat");
        EXPECT_EQ(Read(copy.parent_path() / "Customer.dat-wal"), "Customer.dat-wal");
        EXPECT_EQ(Read(copy.parent_path() / "prefcustom.dat"), "prefcustom.dat");
        EXPECT_FALSE(fs::exists(copy.parent_path() / "Master.dat")) << "none to copy";
        EXPECT_FALSE(fs::exists(copy.parent_path() / "other.txt"));
        EXPECT_FALSE(fs::exists(copy.parent_path() / "files"));
        std::ofstream(copy) << "stamped";
        EXPECT_EQ(Read(data / "Customer.dat"), "Customer.dat") << "the original stays";
    }
    EXPECT_FALSE(fs::exists(copy.parent_path()));
    EXPECT_THROW({ ScratchDatabases none(dir.Path() / "none" / "Customer.dat"); },
                 fs::filesystem_error);
}

}  // namespace
// Status lines scroll above the bar: each clears it first and draws it again after, and the
// bar is gone at the end.
TEST(ProgressLine, KeepsTheBarOffTheStatusLines) {
    std::ostringstream lines, bar;
    {
        cli::ProgressLine line(lines, bar, true);
        line.Show("[#..] 1/3");
        line.Lines() << "customer 1 memos: "
                     << "downloaded\n"
                     << "customer 2";
        line.Lines() << " memos: uploaded\n";
        line.Show("[##.] 2/3");
    }
    EXPECT_EQ(lines.str(), "customer 1 memos: downloaded\ncustomer 2 memos: uploaded\n");
    const std::string erase = "\r\033[K";
    EXPECT_EQ(bar.str(), erase + "[#..] 1/3" + erase + "[#..] 1/3" + erase + "[#..] 1/3" + erase +
                             "[##.] 2/3" + erase);
    std::ostringstream plain, none;
    {
        cli::ProgressLine off(plain, none, false);
        off.Show("[#..] 1/3");
        off.Lines() << "a line\n";
    }
    EXPECT_EQ(plain.str(), "a line\n");
    EXPECT_EQ(none.str(), "");
}

}  // namespace morvane::cli
