// What a test's user was told and shown, as plain texts, for checks of several boxes or forms at
// once.
#pragma once

#include <string>
#include <vector>

#include "support/ScriptedToolkit.h"

namespace morvane::test {

// The text of every message box so far, in order.
inline std::vector<std::string> Told(const ScriptedToolkit& kit) {
    std::vector<std::string> texts;
    for (const auto& box : kit.Boxes()) texts.push_back(box.text);
    return texts;
}

// Every form shown so far as "form" or "form<owner", in order.
inline std::vector<std::string> Shown(const ScriptedToolkit& kit) {
    std::vector<std::string> forms;
    for (const auto& s : kit.ShownForms())
        forms.push_back(s.form + (s.owner.empty() ? "" : "<" + s.owner));
    return forms;
}

}  // namespace morvane::test
