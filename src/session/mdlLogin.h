// The one login session of the process: the login exchange, its dialogs and its keep-alive
// timer, over the login record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "state/LoginState.h"

namespace morvane {

namespace forms {
class Form;
}

// Posts login.php; true when both the system and the account part of the reply were taken.
bool DoLogin(std::string_view id, std::string_view password, std::string_view contractNo);
// Take flags and token from the reply's one system element; false changes nothing.
bool ParseLoginSystem(std::string_view reply);
// Take the six account fields from the reply's one account element, all or nothing.
bool ParseLoginAccount(std::string_view reply);

// Shows the login dialog and gives the login state after it closed.
std::int32_t ShowLoginDlg(forms::Form* owner, std::int32_t showtype);
// Shows the settings dialog and unloads it; always 0.
std::int32_t ShowSettingDlg(forms::Form* owner);
// Creates and loads the keep-alive timer if none runs (refreshing at once only when must is
// set); refreshes at once on a running one.
void RunLoginTimer(bool must);

}  // namespace morvane
