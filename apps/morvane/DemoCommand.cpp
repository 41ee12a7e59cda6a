#include "DemoCommand.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <thread>

#include "ChildProcess.h"
#include "Host.h"
#include "LoginCommands.h"
#include "session/ProcessState.h"

namespace morvane::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kContract = "DEMO-0001";

// The work folder: the one given, or a temporary one that goes at the end unless kept.
class WorkDir {
public:
    WorkDir(const fs::path& given, bool keep) : keep_(keep || !given.empty()) {
        if (!given.empty()) {
            path_ = given;
            fs::create_directories(path_);
            return;
        }
        std::string pattern = (fs::temp_directory_path() / "morvane-demo-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) throw std::runtime_error("cannot make a work folder");
        path_ = pattern;
    }
    ~WorkDir() {
        std::error_code ec;
        if (!keep_) fs::remove_all(path_, ec);
    }
    WorkDir(const WorkDir&) = delete;
    WorkDir& operator=(const WorkDir&) = delete;
    const fs::path& Path() const { return path_; }

private:
    fs::path path_;
    bool keep_;
};

// The reference server as a child process, stopped when this goes.
class DemoServer {
public:
    DemoServer(const fs::path& program, const fs::path& dataDir)
        : portFile_(dataDir / "port"),
          process_(program,
                   {"serve", "--data", dataDir.string(), "--address", "127.0.0.1", "--port", "0",
                    "--port-file", portFile_.string()},
                   dataDir.parent_path() / "server.log") {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (port_ == 0) {
            std::ifstream in(portFile_);
            in >> port_;
            if (port_ > 0) break;
            if (!process_.Running()) throw std::runtime_error("morvane-server ended at start");
            if (std::chrono::steady_clock::now() > deadline)
                throw std::runtime_error("morvane-server did not start");
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        certFile_ = dataDir / "cert.pem";
    }
    std::string ServerName() const { return "127.0.0.1:" + std::to_string(port_); }
    const fs::path& CertFile() const { return certFile_; }
    int Stop() { return process_.Stop(); }

private:
    fs::path portFile_;
    ChildProcess process_;
    int port_ = 0;
    fs::path certFile_;
};

void Step(std::ostream& out, const std::string& text) { out << "\n== " << text << '\n'; }

// One office: its own settings (token included) and its own databases.
void UseOffice(const fs::path& officeDir, const DemoServer& server) {
    State().Reset();
    fs::create_directories(officeDir / "config");
    PrepareHost({officeDir / "config", server.CertFile().string()});
}

}  // namespace

int RunDemo(const DemoOptions& options, std::ostream& out) {
    WorkDir work(options.workDir, options.keep);
    const fs::path serverProgram = ExecutableDir() / "morvane-server";
    const fs::path dataDir = work.Path() / "server-data";
    const fs::path log = work.Path() / "server.log";
    fs::create_directories(dataDir);
    out << "Morvane demo in " << work.Path().string() << '\n';

    Step(out, "Reference server: an account with one user per office");
    if (RunProgram(serverProgram,
                   {"add-account", "--data", dataDir.string(), "--contract", kContract,
                    "--contractor-name", "デモ行政書士事務所", "--contract-begin", "2026/04/01",
                    "--contract-end", "2027/03/31", "--shared-count", "2", "--max-customer", "100"},
                   log) != 0 ||
        RunProgram(serverProgram,
                   {"add-user", "--data", dataDir.string(), "--contract", kContract, "--user",
                    "office-a", "--user-name", "事務所A", "--password-stdin"},
                   log, "demo-password-a\n") != 0) {
        out << "could not set up the server's account; see " << log.string() << '\n';
        return 1;
    }
    DemoServer server(serverProgram, dataDir);
    out << "morvane-server listens on https://" << server.ServerName() << "/\n";

    Step(out, "Office A logs in");
    UseOffice(work.Path() / "office-a", server);
    const int state = RunLogin({server.ServerName(), kContract, "office-a", "demo-password-a",
                                /*savePassword=*/true},
                               out);

    Step(out, "Office A continues the login in a second step, as a second process would");
    UseOffice(work.Path() / "office-a", server);
    const int status = RunStatus(out);

    Step(out, "Done");
    State().Reset();
    server.Stop();
    const bool ok = state == 1 && status == 0;
    out << (ok ? "The demo ran to a clean end.\n" : "The demo did not reach its end.\n");
    return ok ? 0 : 1;
}

}  // namespace morvane::cli
