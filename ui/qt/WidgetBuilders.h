// One widget builder per control kind of the forms layer: each makes the Qt widget of a
// control, feeds the user's actions back to the control, and knows how to repaint it.
#pragma once

#include <functional>

#include "platform/Forms.h"

class QWidget;

namespace morvane::qt {

struct ControlBinding {
    QWidget* widget = nullptr;   // owned by its parent widget; null for timers
    std::function<void()> sync;  // copies the control's state onto the widget
};

// The widget of a control, parented to parent.
ControlBinding BuildWidget(forms::Control& control, QWidget* parent);

}  // namespace morvane::qt
