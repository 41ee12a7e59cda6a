// The hand-over of a login between processes of the host through the settings key: one
// process writes its login ID, token, state and account fields, another takes them over.
#pragma once

#include <string_view>

namespace morvane {

// Writes Param1..Param3, then the account fields of the session (or empties them when all
// three are empty). Failures are lost, as registry failures were.
void SaveLoginInfo(std::string_view param1, std::string_view param2, std::string_view param3);
// Takes login ID, token, state and account fields from the settings; starts no timer.
void LoadLoginInfo();

}  // namespace morvane
