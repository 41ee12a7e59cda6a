// What the host itself tells and keeps beside a run: whether a login reached the server,
// and the scratch copies a dry run compares against.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "LoginCommands.h"
#include "ProgressLine.h"
#include "RunReport.h"
#include "ScratchDatabases.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "support/FileBytes.h"
#include "support/MorvaneTest.h"
#include "support/TempDir.h"
#include "transport/TransportRun.h"

namespace morvane::cli {
namespace {

namespace fs = std::filesystem;

class LoginReportTest : public test::MorvaneTest {};

// Each way of not reaching the server is told with what to do about it, and a login that
// was not verified keeps the settings of the last one that was.
TEST_F(LoginReportTest, SaysWhyTheServerCouldNotBeReachedAndSavesNothingUnverified) {
    server_->On("login.php", test::LoginReply(1, "T1"));
    test::TestServer untrusted{test::CertificateOptions{}};
    test::TestServer expired{test::CertificateOptions{"IP:127.0.0.1", -7200, -3600}};
    test::TestServer otherName{test::CertificateOptions{"DNS:other.example", -3600, 3600}};
    test::TestServer slow{std::nullopt};
    slow.On("login.php", [](const test::RecordedRequest&) {
        test::PageReply reply{test::LoginReply(1, "T1")};
        reply.delay = std::chrono::milliseconds(2500);
        return reply;
    });
    const std::string ca = server_->CaFile();
    const auto check = [&](const std::string& server, const std::string& caFile, int state,
                           const std::vector<std::string>& says) {
        platform::HttpOptions http = State().HttpOptions();
        http.caFile = caFile;
        http.stallTimeoutSeconds = 1;
        State().SetHttpOptions(http);
        BeginTransportRun();
        std::ostringstream out;
        EXPECT_EQ(RunLogin({server, "C-1001", "user1", "pass1", false}, out), state) << server;
        for (const std::string& text : says)
            EXPECT_NE(out.str().find(text), std::string::npos) << server << ": " << out.str();
        EXPECT_EQ(ReadMorvaneSetting(reg::kServerName), server_->HostName()) << server;
    };
    check(server_->HostName(), ca, 1, {"login: logged in (state 1); the server answered"});
    check("127.0.0.1:1", ca, 0, {"nothing answered at 127.0.0.1:1", "nothing was saved"});
    check("no-such-server.invalid:443", ca, 0, {"\"no-such-server.invalid\" was not found"});
    check(untrusted.HostName(), ca, 0,
          {"certificate is not trusted", "--ca-file FILE or MORVANE_CA_FILE"});
    check(expired.HostName(), expired.CaFile(), 0, {"certificate has expired"});
    check(otherName.HostName(), otherName.CaFile(), 0,
          {"certificate is made out for another name than \"127.0.0.1\""});
    check(slow.HostName(), slow.CaFile(), 0, {"did not answer in time", "--stall-timeout"});
    // status asks the server's clock, with the same words when it cannot.
    platform::HttpOptions http = State().HttpOptions();
    http.caFile = ca;
    State().SetHttpOptions(http);
    server_->On("gettime.php", "<root><datetime>2026/11/24 09:00:00</datetime></root>");
    for (const auto& [where, says] :
         {std::pair{server_->HostName(), "reachable:   yes"},
          std::pair{std::string("127.0.0.1:1"), "reachable:   no: nothing answered at"}}) {
        State().serverName = where;
        BeginTransportRun();
        std::ostringstream out;
        RunStatus(out);
        EXPECT_NE(out.str().find(says), std::string::npos) << out.str();
    }
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
        EXPECT_EQ(test::ReadBytes(copy), "Customer.dat");
        EXPECT_EQ(test::ReadBytes(copy.parent_path() / "Customer.dat-wal"), "Customer.dat-wal");
        EXPECT_EQ(test::ReadBytes(copy.parent_path() / "prefcustom.dat"), "prefcustom.dat");
        EXPECT_FALSE(fs::exists(copy.parent_path() / "Master.dat")) << "none to copy";
        EXPECT_FALSE(fs::exists(copy.parent_path() / "other.txt"));
        EXPECT_FALSE(fs::exists(copy.parent_path() / "files"));
        std::ofstream(copy) << "stamped";
        EXPECT_EQ(test::ReadBytes(data / "Customer.dat"), "Customer.dat") << "the original stays";
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

// Each run appends its writes; a run that finds the log past its size starts a new one and
// keeps a few old ones, the oldest dropped.
TEST(RunLog, AppendsOneLinePerWriteAndRotatesBetweenRuns) {
    test::TempDir dir;
    const fs::path file = dir.Path() / "state" / "sync-log.jsonl";
    RunEvent e;
    e.customer = 7;
    e.kind = "memos";
    e.outcome = "uploaded";
    e.tables = {"tCustomerHistory"};
    e.rows = 2;
    e.time = "2026-11-24T09:00:00";
    for (int run = 0; run < 5; ++run) {
        RunLog log(file, 300, 2);
        for (int i = 0; i < 3; ++i) ASSERT_TRUE(log.Append(e, "/office/Customer.dat"));
    }
    const std::string last = test::ReadBytes(file);
    EXPECT_EQ(std::count(last.begin(), last.end(), '\n'), 3) << "one run, never split";
    EXPECT_NE(last.find(R"({"customer":7,"database":"/office/Customer.dat","direction":"up",)"
                        R"("kind":"memos","outcome":"uploaded","rows":2,)"),
              std::string::npos)
        << last;
    EXPECT_TRUE(fs::exists(file.string() + ".1"));
    EXPECT_TRUE(fs::exists(file.string() + ".2"));
    EXPECT_FALSE(fs::exists(file.string() + ".3"));
}

}  // namespace morvane::cli
