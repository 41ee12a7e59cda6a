#include "Host.h"

#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>

#ifdef MORVANE_HAVE_TTY
#include "tty/TtyToolkit.h"
#endif
#include "component/ctrlMorvane.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "transport/TransportRun.h"

namespace morvane::cli {

void PrepareHost(const HostOptions& options) {
    ProcessState& state = State();
    if (!options.configDir.empty()) state.SetSettingsRoot(options.configDir);
    if (!options.caFile.empty() || options.stallTimeout > 0) {
        platform::HttpOptions http = state.HttpOptions();
        if (!options.caFile.empty()) http.caFile = options.caFile;
        if (options.stallTimeout > 0) http.stallTimeoutSeconds = options.stallTimeout;
        state.SetHttpOptions(http);
    }
    long timeLimit = options.timeLimit;
    if (timeLimit <= 0) timeLimit = std::atol(ReadMorvaneSetting("TimeLimit", "").c_str());
    BeginTransportRun(timeLimit > 0 ? std::optional(std::chrono::seconds(timeLimit))
                                    : std::nullopt);
}

void UseTerminal(std::ostream& out, bool outIsTerminal) {
#ifdef MORVANE_HAVE_TTY
    tty::TtyOptions options;
    options.interactive = ::isatty(STDIN_FILENO) && outIsTerminal;
    options.inputFd = STDIN_FILENO;
    ctrlMorvane::UseToolkit(std::make_shared<tty::TtyToolkit>(std::cin, out, options));
#else
    (void)out;
    (void)outIsTerminal;
#endif
}

std::string ReadPassword(const std::string& prompt) {
    std::string password;
    if (!::isatty(STDIN_FILENO)) {
        std::getline(std::cin, password);
        return password;
    }
    std::cerr << prompt << std::flush;
    termios old{};
    const bool haveTerm = ::tcgetattr(STDIN_FILENO, &old) == 0;
    if (haveTerm) {
        termios quiet = old;
        quiet.c_lflag &= static_cast<tcflag_t>(~ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
    }
    std::getline(std::cin, password);
    if (haveTerm) ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &old);
    std::cerr << '\n';
    return password;
}

}  // namespace morvane::cli
