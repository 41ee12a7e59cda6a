// morvane-server: serve a data folder over HTTPS, or manage its accounts and users.
#include <signal.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <string>

#include "platform/AtomicFile.h"
#include "server/MorvaneServer.h"
#include "server/core/Clock.h"

namespace {

using morvane::server::AccountAdmin;
using morvane::server::AccountFields;
using morvane::server::MorvaneServer;
using morvane::server::ServerOptions;

int Serve(ServerOptions options, const std::string& portFile, bool quiet) {
    // Signals are taken by sigwait below, never by a handler.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    auto logMutex = std::make_shared<std::mutex>();
    if (!quiet)
        options.log = [logMutex](const std::string& line) {
            std::lock_guard lock(*logMutex);
            std::cerr << line << '\n';
        };
    MorvaneServer server(std::move(options));
    server.Start();
    if (!portFile.empty()) {
        // Written whole under another name first, so a script never reads half of it.
        morvane::platform::WriteFileAtomically(portFile, std::to_string(server.Port()) + "\n");
    }
    std::cout << "morvane-server listening on " << server.BaseUrl() << " certificate "
              << server.CertFile().string() << std::endl;
    int signal = 0;
    sigwait(&stopSignals, &signal);
    std::cout << "morvane-server stopping" << std::endl;
    server.Stop();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Reference server of Morvane: keeps office data and files over HTTPS"};
    app.require_subcommand(1);

    ServerOptions options;
    std::string dataDir, certFile, keyFile, portFile;
    long tokenIdle = 1800, lockExpiry = 900;
    std::size_t maxUpload = options.maxUploadBytes;
    bool quiet = false;
    auto* serveCmd = app.add_subcommand("serve", "Serve a data folder in the foreground");
    serveCmd->add_option("--data", dataDir, "Data folder (created if missing)")->required();
    serveCmd->add_option("--address", options.address, "Address to listen on")
        ->capture_default_str();
    serveCmd->add_option("--port", options.port, "Port; 0 picks a free one")->capture_default_str();
    serveCmd->add_option("--cert", certFile, "Certificate file (PEM)");
    serveCmd->add_option("--key", keyFile, "Private key file (PEM)");
    serveCmd->add_option("--token-idle", tokenIdle, "Seconds after which an idle login lapses")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    serveCmd->add_option("--lock-expiry", lockExpiry, "Seconds a lock lasts without renewal")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    serveCmd->add_option("--max-upload", maxUpload, "Largest data file accepted, in bytes")
        ->capture_default_str();
    serveCmd->add_option("--port-file", portFile, "Write the port bound to this file");
    serveCmd->add_flag("--quiet", quiet, "No request log");
    long clockOffset = 0;
    serveCmd
        ->add_option("--clock-offset", clockOffset,
                     "Seconds added to the system's clock, to try clients against a wrong one")
        ->capture_default_str();

    AccountFields account;
    std::string accountData;
    account.maxCustomer = 100;
    auto* accountCmd = app.add_subcommand("add-account", "Create an account");
    accountCmd->add_option("--data", accountData, "Data folder")->required();
    accountCmd->add_option("--contract", account.contractNo, "Contract number")->required();
    accountCmd->add_option("--contractor-name", account.contractorName, "Contractor's name");
    accountCmd->add_option("--contract-begin", account.contractBegin, "Start of the contract");
    accountCmd->add_option("--contract-end", account.contractEnd, "End of the contract");
    accountCmd->add_option("--shared-count", account.sharedCount, "Users sharing the account")
        ->capture_default_str();
    accountCmd
        ->add_option("--max-customer", account.maxCustomer, "Customers the account may back up")
        ->capture_default_str();
    accountCmd->add_flag("--single-login", account.singleLogin,
                         "Refuse a second login of a user whose login is live");

    std::string userData, userContract, userId, password, userName;
    bool passwordStdin = false;
    auto* userCmd = app.add_subcommand("add-user", "Add a user to an account");
    userCmd->add_option("--data", userData, "Data folder")->required();
    userCmd->add_option("--contract", userContract, "Contract number")->required();
    userCmd->add_option("--user", userId, "User ID")->required();
    auto* pw = userCmd->add_option("--password", password, "Password");
    auto* pwStdin = userCmd->add_flag("--password-stdin", passwordStdin,
                                      "Read the password from the first line of standard input");
    pw->excludes(pwStdin);
    userCmd->add_option("--user-name", userName, "User's display name");

    CLI11_PARSE(app, argc, argv);

    try {
        if (*serveCmd) {
            options.dataDir = dataDir;
            options.certFile = certFile;
            options.keyFile = keyFile;
            options.tokenIdle = std::chrono::seconds(tokenIdle);
            options.lockExpiry = std::chrono::seconds(lockExpiry);
            options.maxUploadBytes = maxUpload;
            if (clockOffset != 0)
                options.clock = std::make_shared<morvane::server::OffsetClock>(
                    std::chrono::seconds(clockOffset));
            return Serve(std::move(options), portFile, quiet);
        }
        if (*accountCmd) {
            AccountAdmin admin(accountData);
            admin.CreateAccount(account);
            std::cout << "account " << account.contractNo << " created" << std::endl;
            return 0;
        }
        if (*userCmd) {
            if (passwordStdin) std::getline(std::cin, password);
            if (password.empty()) {
                std::cerr << "a password is required (--password or --password-stdin)\n";
                return 2;
            }
            AccountAdmin admin(userData);
            admin.AddUser(userContract, userId, password, userName);
            std::cout << "user " << userId << " added to " << userContract << std::endl;
            return 0;
        }
    } catch (const std::exception& e) {
        std::cerr << "morvane-server: " << e.what() << '\n';
        return 1;
    }
    return 0;
}
