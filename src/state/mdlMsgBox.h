// Shows a message box through the process's toolkit, the one way the component speaks to
// the user outside its dialogs.
#pragma once

#include <string_view>

#include "platform/Forms.h"

namespace morvane {

forms::MsgResult MsgBox(std::string_view text, forms::MsgIcon icon, std::string_view title,
                        forms::MsgButtons buttons = forms::MsgButtons::OK);

}  // namespace morvane
