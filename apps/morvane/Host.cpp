#include "Host.h"

#include <termios.h>
#include <unistd.h>

#include <iostream>

#include "session/ProcessState.h"
#include "session/mdlRegConstMorvane.h"
#include "session/mdlRegControlMorvane.h"

namespace morvane::cli {

void PrepareHost(const HostOptions& options) {
    ProcessState& state = State();
    if (!options.configDir.empty()) state.SetSettingsRoot(options.configDir);
    if (!options.caFile.empty()) {
        platform::HttpOptions http = state.HttpOptions();
        http.caFile = options.caFile;
        state.SetHttpOptions(http);
    }
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
