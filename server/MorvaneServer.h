// The reference server as an object: give it a data folder, start it, read its port, stop it.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "server/core/Accounts.h"
#include "server/core/Clock.h"
#include "server/net/ListenerLimits.h"

namespace morvane::server {

struct ServerOptions {
    std::filesystem::path dataDir;
    std::string address = "127.0.0.1";
    int port = 0;  // 0: pick a free port
    // Both empty: a self-signed pair for 127.0.0.1 and localhost is made in the data folder
    // (cert.pem, key.pem), or reused when it is already there.
    std::filesystem::path certFile;
    std::filesystem::path keyFile;
    std::chrono::seconds tokenIdle{std::chrono::minutes(30)};
    std::chrono::seconds lockExpiry{std::chrono::minutes(15)};
    std::size_t maxUploadBytes = 32u * 1024 * 1024;
    ListenerLimits limits;
    // Default: the system clock. Tests pass a ManualClock to move time.
    std::shared_ptr<const Clock> clock;
    // One line per request; empty: no log.
    std::function<void(const std::string&)> log;
};

class Service;
class HttpsListener;

class MorvaneServer {
public:
    // Opens (or creates) the data folder and its database; does not listen yet.
    explicit MorvaneServer(ServerOptions options);
    ~MorvaneServer();
    MorvaneServer(const MorvaneServer&) = delete;
    MorvaneServer& operator=(const MorvaneServer&) = delete;

    // Binds and serves on a thread of its own; throws when it cannot.
    void Start();
    // Stops serving and waits for requests under way; safe to call twice.
    void Stop();

    int Port() const { return port_; }
    std::string BaseUrl() const;     // "https://127.0.0.1:<port>/"
    std::string ServerName() const;  // "127.0.0.1:<port>", as a client's settings hold it
    const std::filesystem::path& CertFile() const { return certFile_; }
    // TCP connections accepted while it serves; 0 when it does not.
    std::uint64_t AcceptedConnections() const;

    std::int64_t CreateAccount(const AccountFields& fields);
    void AddUser(const std::string& contractNo, const std::string& userId,
                 const std::string& password, const std::string& userName = {});

private:
    ServerOptions options_;
    std::filesystem::path certFile_;
    std::filesystem::path keyFile_;
    std::unique_ptr<Service> service_;
    std::unique_ptr<HttpsListener> listener_;
    int port_ = 0;
};

// Administration of a data folder without serving it (the command line's account commands).
class AccountAdmin {
public:
    explicit AccountAdmin(const std::filesystem::path& dataDir);
    ~AccountAdmin();
    std::int64_t CreateAccount(const AccountFields& fields);
    void AddUser(const std::string& contractNo, const std::string& userId,
                 const std::string& password, const std::string& userName = {});

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace morvane::server
