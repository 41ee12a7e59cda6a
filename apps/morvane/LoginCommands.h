// `morvane login` and `morvane status`: the login from the command line, saved as the
// settings dialog saves it, and handed over to later processes.
#pragma once

#include <iosfwd>
#include <string>

namespace morvane::cli {

struct LoginRequest {
    std::string server;
    std::string contractNo;
    std::string userId;
    std::string password;
    bool savePassword = false;
};

// Saves the connection settings, logs in, and hands the login over to later processes.
// Returns the login state.
int RunLogin(const LoginRequest& request, std::ostream& out);
// Shows the handed-over login and the account fields; 0 when logged in.
int RunStatus(std::ostream& out);

}  // namespace morvane::cli
