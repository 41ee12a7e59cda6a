// The login record of the process as every layer reads it: state, user ID, account fields,
// the token (kept only in the settings value Param2), and its reset.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace morvane {

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
// Stops and drops the keep-alive timer, if one runs.
void StopLoginTimer();

}  // namespace morvane
