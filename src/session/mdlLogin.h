// The one login session of the process: its state, user ID and account fields, the token
// (kept only in the settings value Param2), and the login exchange.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace morvane {

namespace forms {
class Form;
}

std::int32_t GetLoginState();
void SetLoginState(std::int32_t state);
std::string GetLoginID();
std::string GetLoginToken();
void SetLoginToken(std::string_view token);

std::string GetLoginUserName();
std::string GetLoginContractorName();
std::string GetLoginContractBegin();
std::string GetLoginContractEnd();
std::int32_t GetLoginSharedCount();
std::int32_t GetLoginMaxCustomer();

// Empties the record and stops the keep-alive timer; the token in the settings stays.
void ResetLogin();

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
// Stops and drops the keep-alive timer, if one runs.
void StopLoginTimer();

}  // namespace morvane
