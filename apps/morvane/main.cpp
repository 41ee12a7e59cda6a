// morvane: runs the component from the command line: log in, call members, run the demo.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <iostream>

#include "CallCommand.h"
#include "DemoCommand.h"
#include "Host.h"
#include "InitDbCommand.h"
#include "LoginCommands.h"
#include "RunReport.h"
#include "SyncCommand.h"

using namespace morvane::cli;

int main(int argc, char** argv) {
    CLI::App app{"Morvane: online backup of the office's databases and data files"};
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", MORVANE_VERSION);
    app.footer(
        "Exit codes: 0 success; 1 failures or conflicts left; 2 usage or local setup errors; "
        "3 differences no worker can move, or a dry run with moves left.");
    HostOptions host;
    app.add_option("--config", host.configDir,
                   "Settings folder (default: $XDG_CONFIG_HOME or ~/.config)");
    app.add_option("--ca-file", host.caFile,
                   "PEM file of CA certificates for a private server (also MORVANE_CA_FILE)");

    std::string initDir;
    std::int32_t sample = 0;
    auto* initCmd = app.add_subcommand("init-db", "Create the host's three local databases");
    initCmd->add_option("dir", initDir, "Folder for the databases")->required();
    initCmd->add_option("--sample", sample, "Generated sample customers (default: none)");

    LoginRequest login;
    auto* loginCmd = app.add_subcommand("login", "Log in and save the connection settings");
    loginCmd->add_option("--server", login.server, "Server name, host[:port]")->required();
    loginCmd->add_option("--contract", login.contractNo, "Contract number")->required();
    loginCmd->add_option("--user", login.userId, "User ID")->required();
    loginCmd->add_flag("--save-password", login.savePassword,
                       "Keep the password (enciphered) for the login dialog");

    auto* statusCmd = app.add_subcommand("status", "Show the login state and the account");

    bool listMembers = false;
    auto* callCmd =
        app.add_subcommand("call", "Call members by name: MEMBER ARGS... [--then MEMBER ARGS...]");
    callCmd->add_flag("--list", listMembers, "List the members and their parameters");
    callCmd->prefix_command();

    SyncOptions sync;
    std::string prefer = "ask";
    auto* syncCmd = app.add_subcommand(
        "sync",
        "Synchronise a local database with the server (exit 0: all agreed or moved; "
        "1: failures or conflicts left; 2: no database or settings to work with; "
        "3: differences no worker can move yet, or a dry run with moves left)");
    syncCmd->add_option("--db", sync.localDb, "The customer database (Customer.dat)")->required();
    syncCmd->add_option("--prefer", prefer, "When both sides moved: ask, server, local or skip")
        ->check(CLI::IsMember({"ask", "server", "local", "skip"}));
    syncCmd->add_flag("--dry-run", sync.dryRun, "Compare only; move nothing");
    syncCmd->add_flag("--full", sync.full,
                      "Walk every customer, also those unchanged on both sides since they last "
                      "agreed");
    syncCmd->add_flag("--verbose", sync.verbose, "Name every table that differs");
    syncCmd->add_flag("--json", sync.json,
                      "Print the outcome as JSON on stdout, customer by customer and kind by "
                      "kind; status lines go to stderr");
    syncCmd->add_option("--log", sync.runLog,
                        "Append each write of the run to this file, one JSON line each "
                        "(default: $XDG_STATE_HOME/morvane/sync-log.jsonl)");
    syncCmd
        ->add_option("--stall-timeout", host.stallTimeout,
                     "Give up a request after this many seconds with no byte moving (default 60)")
        ->check(CLI::PositiveNumber);
    syncCmd
        ->add_option("--time-limit", host.timeLimit,
                     "Send no request after this many seconds of the run (default: no limit)")
        ->check(CLI::PositiveNumber);

    DemoOptions demo;
    auto* demoCmd = app.add_subcommand("demo", "Run the whole system against a local server");
    demoCmd->add_option("--workdir", demo.workDir, "Work folder to use and keep");
    demoCmd->add_flag("--keep", demo.keep, "Keep the temporary work folder");

    // Only here, so that the commands added above keep refusing words they do not know: an
    // unknown command is then told as such below, not as a missing one.
    app.allow_extras();
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        // Help and version end with 0; every usage error with 2.
        return app.exit(e) == 0 ? 0 : 2;
    }
    if (!app.remaining().empty()) {
        std::cerr << "morvane: unknown " << (app.get_subcommands().empty() ? "command" : "argument")
                  << " '" << app.remaining().front() << "' (see morvane --help)\n";
        return 2;
    }
    if (app.get_subcommands().empty()) {
        std::cerr << "morvane: a command is required: init-db, login, status, call, sync or demo "
                     "(see morvane --help)\n";
        return 2;
    }
    try {
        if (*demoCmd) return RunDemo(demo, std::cout);
        if (*initCmd) return RunInitDb(initDir, sample, std::cout, std::cerr);
        PrepareHost(host);
        // Dialogs and message boxes go to stderr so results on stdout stay readable.
        UseTerminal(std::cerr, ::isatty(STDERR_FILENO));
        if (*loginCmd) {
            login.password = ReadPassword("Password: ");
            return RunLogin(login, std::cout) == 1 ? 0 : 1;
        }
        if (*statusCmd) return RunStatus(std::cout);
        if (*syncCmd) {
            sync.prefer = ParsePrefer(prefer).value_or(Prefer::Ask);
            sync.progress = ::isatty(STDERR_FILENO);
            if (sync.runLog.empty()) sync.runLog = RunLog::DefaultPath();
            return RunSync(sync, std::cout, std::cerr);
        }
        if (*callCmd) {
            if (listMembers) {
                ListMembers(std::cout);
                return 0;
            }
            // prefix_command leaves every word from the member on to us, in order, "--then"
            // included; a positional option would take words out of that order.
            const std::vector<std::string> words = callCmd->remaining();
            if (words.empty()) {
                std::cerr << "morvane: call needs a member name (see call --list)\n";
                return 2;
            }
            return RunCalls(SplitCalls(words), std::cout, std::cerr);
        }
    } catch (const std::exception& e) {
        std::cerr << "morvane: " << e.what() << '\n';
        return 1;
    }
    return 0;
}
