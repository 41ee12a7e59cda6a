#include "state/ProcessState.h"

#include <cstdlib>

#include "state/mdlRegControlMorvane.h"

namespace morvane {

ProcessState::ProcessState() = default;

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

forms::Toolkit& ProcessState::Toolkit() {
    if (!toolkit_) toolkit_ = std::make_shared<forms::HeadlessToolkit>();
    return *toolkit_;
}

void ProcessState::SetToolkit(std::shared_ptr<forms::Toolkit> toolkit) {
    toolkit_ = std::move(toolkit);
}

const platform::SettingsStore& ProcessState::Settings() {
    if (!settings_) settings_.emplace(platform::SettingsStore::DefaultRoot());
    return *settings_;
}

void ProcessState::SetSettingsRoot(const std::filesystem::path& root) { settings_.emplace(root); }

const platform::Clock& ProcessState::Clock() {
    if (!clock_) clock_ = std::make_shared<platform::SystemClock>();
    return *clock_;
}

void ProcessState::SetClock(std::shared_ptr<platform::Clock> clock) { clock_ = std::move(clock); }

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

platform::HttpConnectionPool& ProcessState::HttpPool() {
    if (!httpPool_) httpPool_ = std::make_unique<platform::HttpConnectionPool>();
    return *httpPool_;
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
    toolkit_.reset();
    settings_.reset();
    clock_.reset();
    httpOptions_.reset();
    httpPool_.reset();
    databasePool_.Clear();
    databasePool_.SetCapacity(dao::ConnectionPool::kDefaultCapacity);
}

}  // namespace morvane
