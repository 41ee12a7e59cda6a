#include "state/mdlMsgBox.h"

#include "state/ProcessState.h"

namespace morvane {

forms::MsgResult MsgBox(std::string_view text, forms::MsgIcon icon, std::string_view title,
                        forms::MsgButtons buttons) {
    forms::MessageBoxRequest box;
    box.text = std::string(text);
    box.title = std::string(title);
    box.icon = icon;
    box.buttons = buttons;
    return State().Toolkit().MessageBox(box);
}

}  // namespace morvane
