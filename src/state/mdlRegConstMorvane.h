// The names of the component's settings key and of its values.
#pragma once

namespace morvane::reg {

inline constexpr const char* kRootCurrentUser = "HKEY_CURRENT_USER";
inline constexpr const char* kBasePath = "SOFTWARE\\Tolmar\\";
inline constexpr const char* kApplication = "ネルダ";
inline constexpr const char* kSection = "Morvane";

inline constexpr const char* kServerName = "ServerName";
inline constexpr const char* kContractNo = "ContractNo";
inline constexpr const char* kLoginUID = "LoginUID";
inline constexpr const char* kLoginPWD = "LoginPWD";
inline constexpr const char* kSaveLoginPWD = "SaveLoginPWD";
inline constexpr const char* kEnabledMorvane = "EnabledMorvane";
inline constexpr const char* kParam1 = "Param1";
inline constexpr const char* kParam2 = "Param2";
inline constexpr const char* kParam3 = "Param3";
inline constexpr const char* kUserName = "UserName";
inline constexpr const char* kContractorName = "ContractorName";
inline constexpr const char* kContractBegin = "ContractBegin";
inline constexpr const char* kContractEnd = "ContractEnd";
inline constexpr const char* kSharedCount = "SharedCount";
inline constexpr const char* kMaxCustomer = "MaxCustomer";
// Our own addition: a PEM file of CA certificates for a private server.
inline constexpr const char* kCAFile = "CAFile";

}  // namespace morvane::reg
