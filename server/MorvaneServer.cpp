#include "server/MorvaneServer.h"

#include <stdexcept>

#include "server/core/Storage.h"
#include "server/net/HttpsListener.h"
#include "server/net/SelfSigned.h"
#include "server/pages/Service.h"

namespace morvane::server {

namespace fs = std::filesystem;

MorvaneServer::MorvaneServer(ServerOptions options) : options_(std::move(options)) {
    if (options_.dataDir.empty()) throw std::invalid_argument("a data folder is required");
    fs::create_directories(options_.dataDir);
    if (!options_.clock) options_.clock = std::make_shared<SystemClock>();
    if (options_.certFile.empty() != options_.keyFile.empty())
        throw std::invalid_argument("give both a certificate and a key, or neither");
    if (options_.certFile.empty()) {
        certFile_ = options_.dataDir / "cert.pem";
        keyFile_ = options_.dataDir / "key.pem";
        if (!fs::exists(certFile_) || !fs::exists(keyFile_))
            MakeSelfSignedPair(certFile_, keyFile_);
    } else {
        certFile_ = options_.certFile;
        keyFile_ = options_.keyFile;
    }
    ServiceOptions serviceOptions;
    serviceOptions.tokenIdle = options_.tokenIdle;
    serviceOptions.lockExpiry = options_.lockExpiry;
    serviceOptions.maxUploadBytes = options_.maxUploadBytes;
    service_ = std::make_unique<Service>(options_.dataDir, serviceOptions, *options_.clock);
}

MorvaneServer::~MorvaneServer() { Stop(); }

void MorvaneServer::Start() {
    if (listener_) return;
    Service* service = service_.get();
    auto listener = std::make_unique<HttpsListener>(
        certFile_, keyFile_, [service](const HttpRequest& r) { return service->Handle(r); },
        service_->MaxBodyBytes(), options_.log, options_.limits);
    port_ = listener->Bind(options_.address, options_.port);
    listener->Start();
    listener_ = std::move(listener);
}

void MorvaneServer::Stop() {
    if (listener_) listener_->Stop();
    listener_.reset();
}

std::string MorvaneServer::ServerName() const {
    return options_.address + ":" + std::to_string(port_);
}

std::string MorvaneServer::BaseUrl() const { return "https://" + ServerName() + "/"; }

std::uint64_t MorvaneServer::AcceptedConnections() const {
    return listener_ ? listener_->AcceptedConnections() : 0;
}

std::int64_t MorvaneServer::CreateAccount(const AccountFields& fields) {
    return service_->CreateAccount(fields);
}

void MorvaneServer::AddUser(const std::string& contractNo, const std::string& userId,
                            const std::string& password, const std::string& userName) {
    service_->AddUser(contractNo, userId, password, userName);
}

struct AccountAdmin::Impl {
    Storage storage;
    AccountStore accounts;
    explicit Impl(const fs::path& dir) : storage(dir), accounts(storage.Db()) {}
};

AccountAdmin::AccountAdmin(const fs::path& dataDir) {
    fs::create_directories(dataDir);
    impl_ = std::make_unique<Impl>(dataDir);
}

AccountAdmin::~AccountAdmin() = default;

std::int64_t AccountAdmin::CreateAccount(const AccountFields& fields) {
    return impl_->accounts.CreateAccount(fields);
}

void AccountAdmin::AddUser(const std::string& contractNo, const std::string& userId,
                           const std::string& password, const std::string& userName) {
    impl_->accounts.AddUser(contractNo, userId, password, userName);
}

}  // namespace morvane::server
