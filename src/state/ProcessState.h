// The one process-wide state of the component: the login record, the compare stamps, the
// clock offsets, the object usage option, the lock states, the pending error, the settings
// and HTTP options, and the environment through which the component meets the outside world.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/Clock.h"
#include "platform/Dao.h"
#include "platform/Env.h"
#include "platform/FileReader.h"
#include "platform/Forms.h"
#include "platform/Http.h"
#include "platform/SettingsStore.h"
#include "util/RuntimeError.h"

namespace morvane {

// The time limit and the failures in a row of the current run of requests.
struct TransportRunState {
    std::optional<std::chrono::steady_clock::time_point> deadline;
    int failuresInARow = 0;
    std::string lastError;
    platform::HttpFailure lastFailure = platform::HttpFailure::None;  // of the last unanswered
    int cleanups = 0;  // TransportCleanup objects alive
};

struct LoginRecord {
    std::int32_t loginState = 0;
    std::string loginId;
    std::string password;
    std::string userName;
    std::string contractorName;
    std::string contractBegin;
    std::string contractEnd;
    std::int32_t sharedCount = 0;
    std::int32_t maxCustomer = 0;
};

class ProcessState {
public:
    ProcessState();
    ~ProcessState();
    ProcessState(const ProcessState&) = delete;
    ProcessState& operator=(const ProcessState&) = delete;

    LoginRecord login;
    // The form that owns the login keep-alive timer, while one runs.
    std::unique_ptr<forms::Form> loginTimer;

    // Set once by the session for the reply check, which sits below it; Reset leaves it.
    std::function<void()> loginPrompt;

    std::int32_t objectUsage = 0;

    // Local clock minus the server's, and minus the data folder host's, in days.
    double inetServerTimeOffset = 0.0;
    double inetDataFolderTimeOffset = 0.0;
    bool dataFolderOffsetMeasured = false;

    // The stamps of the last comparison that found a difference, as they were passed.
    std::string inetDateServer;
    std::string inetDateLocal;
    std::string inetDateCheck;
    // Every comparison's server and local stamps folded in, so that a host can tell which
    // stamps a member's comparison saw; the host zeroes them before it asks.
    std::uint64_t comparedServerStamps = 0;
    std::uint64_t comparedLocalStamps = 0;

    // Exchanges with the server since the start: tried, never answered (no connection or
    // no reply), and failed (unanswered, malformed, or flags other than 1). Members give 0
    // for "agree" and for a failure alike; a host tells them apart by these.
    struct ExchangeCounts {
        std::uint64_t tried = 0;
        std::uint64_t unanswered = 0;
        std::uint64_t failed = 0;
    } exchanges;

    // Read from the settings once per process.
    std::optional<std::string> serverName;
    std::optional<std::string> contractNo;

    // Server locks held by this process, and the forms that renew them.
    std::int32_t customerLockState = 0;
    std::int32_t masterLockState = 0;
    std::unique_ptr<forms::Form> customerLockTimer;
    std::unique_ptr<forms::Form> masterLockTimer;
    // Objects of ctrlMorvane alive in the process. Reset leaves it: objects outlive a reset.
    std::int32_t liveObjects = 0;

    PendingError err;
    // Errors the trap reported since the start. A member that carries on past one, as a
    // download of the kept-worker kind does, gives no sign of it in its result.
    std::uint64_t trappedErrors = 0;

    // The time limit and the failures in a row of the current run of requests.
    TransportRunState transportRun;

    // The check value of the file last sent, read on the way, for the comparison after it.
    struct FileCrc {
        std::string path;
        platform::FileVersion version;
        std::uint32_t crc = 0;
    };
    std::optional<FileCrc> lastFileSent;

    // The outside world: the system's, unless a test put another in its place (null puts
    // the system's back). Kept database connections of the other are closed.
    platform::Env& Env() { return env_ ? *env_ : *system_; }
    void SetEnv(std::shared_ptr<platform::Env> env);
    // The toolkit and clock of the environment in use; the host may choose the system's
    // before the first call (null: the defaults).
    forms::Toolkit& Toolkit() { return Env().Toolkit(); }
    void SetToolkit(std::shared_ptr<forms::Toolkit> toolkit);
    const platform::Clock& Clock() { return Env().Clock(); }
    void SetClock(std::shared_ptr<platform::Clock> clock);
    const platform::SettingsStore& Settings();
    void SetSettingsRoot(const std::filesystem::path& root);
    // Connect and stall time-outs, and the CA file: the environment variable
    // MORVANE_CA_FILE, else the setting "CAFile"; the stall time-out from the setting
    // "StallTimeout" (seconds) when it holds a positive number.
    platform::HttpOptions HttpOptions();
    void SetHttpOptions(std::optional<platform::HttpOptions> options);
    // Database connections kept open between the opens of this process.
    dao::ConnectionPool& DatabasePool();

    // Everything back to the start of a process, services included; for tests.
    void Reset();

private:
    std::shared_ptr<platform::SystemEnv> system_;
    std::shared_ptr<platform::Env> env_;
    std::optional<platform::SettingsStore> settings_;
    std::optional<platform::HttpOptions> httpOptions_;
    // Emptied by Reset, never replaced: open workspaces point at it.
    dao::ConnectionPool databasePool_;
};

ProcessState& State();

}  // namespace morvane
