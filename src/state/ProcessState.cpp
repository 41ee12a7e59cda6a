#include "state/ProcessState.h"

#include <cstdlib>

#include "state/mdlRegControlMorvane.h"

namespace morvane {

ProcessState::ProcessState() : system_(std::make_shared<platform::SystemEnv>()) {
    databasePool_.SetEnv(system_.get());
}

// Forms go before the services they were built on.
ProcessState::~ProcessState() {
    loginTimer.reset();
    customerLockTimer.reset();
    masterLockTimer.reset();
}

ProcessState& State() {
    static ProcessState state;
    return state;
}

void ProcessState::SetEnv(std::shared_ptr<platform::Env> env) {
    env_ = std::move(env);
    databasePool_.SetEnv(&Env());
    if (settings_) settings_->SetEnv(&Env());
}

void ProcessState::SetToolkit(std::shared_ptr<forms::Toolkit> toolkit) {
    system_->SetToolkit(std::move(toolkit));
}

const platform::SettingsStore& ProcessState::Settings() {
    if (!settings_) SetSettingsRoot(platform::SettingsStore::DefaultRoot());
    return *settings_;
}

void ProcessState::SetSettingsRoot(const std::filesystem::path& root) {
    settings_.emplace(root);
    settings_->SetEnv(&Env());
}

void ProcessState::SetClock(std::shared_ptr<platform::Clock> clock) {
    system_->SetClock(std::move(clock));
}

platform::HttpOptions ProcessState::HttpOptions() {
    if (httpOptions_) return *httpOptions_;
    platform::HttpOptions options;
    if (const char* ca = std::getenv("MORVANE_CA_FILE"); ca && *ca)
        options.caFile = ca;
    else
        options.caFile = ReadMorvaneSetting("CAFile", "");
    if (const long stall = std::atol(ReadMorvaneSetting("StallTimeout", "").c_str()); stall > 0)
        options.stallTimeoutSeconds = stall;
    return options;
}

void ProcessState::SetHttpOptions(std::optional<platform::HttpOptions> options) {
    httpOptions_ = std::move(options);
}

dao::ConnectionPool& ProcessState::DatabasePool() { return databasePool_; }

void ProcessState::Reset() {
    loginTimer.reset();
    customerLockTimer.reset();
    masterLockTimer.reset();
    login = LoginRecord{};
    objectUsage = 0;
    inetServerTimeOffset = 0.0;
    inetDataFolderTimeOffset = 0.0;
    dataFolderOffsetMeasured = false;
    inetDateServer.clear();
    inetDateLocal.clear();
    inetDateCheck.clear();
    comparedServerStamps = 0;
    comparedLocalStamps = 0;
    exchanges = {};
    serverName.reset();
    contractNo.reset();
    customerLockState = 0;
    masterLockState = 0;
    err.Clear();
    transportRun = TransportRunState{};
    lastFileSent.reset();
    settings_.reset();
    httpOptions_.reset();
    env_.reset();
    system_ = std::make_shared<platform::SystemEnv>();
    databasePool_.SetEnv(system_.get());
    databasePool_.SetCapacity(dao::ConnectionPool::kDefaultCapacity);
}

}  // namespace morvane
