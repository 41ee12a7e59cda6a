#include "qt/FormWindow.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>
#include <algorithm>
#include <vector>

#include "qt/QtToolkit.h"

namespace morvane::qt {
namespace {

bool IsField(forms::ControlKind kind) {
    return kind == forms::ControlKind::TextBox || kind == forms::ControlKind::ComboBox;
}

}  // namespace

FormWindow::FormWindow(QtToolkit& kit, forms::Form& form, QWidget* parent)
    : QDialog(parent), kit_(kit), form_(form), nominalWidth_(form.Width()) {
    setWindowTitle(QString::fromStdString(form.Caption()));
    setObjectName(QString::fromStdString(form.Name()));
    // Only the form's own rules close it; the help button has no meaning here.
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    Build();
    kit_.Register(form_, this);
    SyncAll();
}

FormWindow::~FormWindow() { kit_.Unregister(form_, this); }

// Rows of the form's row hints, in order; a row of a label and a field becomes a line of a
// two-column grid, any other row a line of its own, buttons set to the right.
void FormWindow::Build() {
    auto* outer = new QVBoxLayout(this);  // owned by the window
    auto* grid = new QGridLayout();       // owned by outer once added
    outer->addLayout(grid);
    Fill(grid, this, nullptr);
    for (const auto& [control, binding] : bindings_) {
        const auto* button = dynamic_cast<const forms::Button*>(control);
        if (button && button->IsDefault())
            static_cast<QPushButton*>(binding.widget)->setDefault(true);
    }
}

// The lines of the controls `container` holds, into `grid` on `parent`; a frame takes the
// lines of its own controls in a grid of its own.
void FormWindow::Fill(QGridLayout* grid, QWidget* parent, const forms::Control* container) {
    grid->setColumnStretch(1, 1);
    int line = 0;
    for (const auto& controls : forms::LayoutRowsIn(form_, container)) {
        std::vector<QWidget*> widgets;
        for (forms::Control* c : controls) {
            ControlBinding binding = BuildWidget(*c, parent);
            if (!binding.widget) continue;
            widgets.push_back(binding.widget);
            QWidget* widget = binding.widget;
            bindings_[c] = std::move(binding);
            if (c->Kind() == forms::ControlKind::Frame)
                Fill(new QGridLayout(widget), widget, c);  // owned by the frame's widget
        }
        if (widgets.empty()) continue;
        if (controls.size() == 2 && controls[0]->Kind() == forms::ControlKind::Label &&
            IsField(controls[1]->Kind())) {
            grid->addWidget(widgets[0], line, 0);
            grid->addWidget(widgets[1], line, 1);
        } else {
            auto* box = new QHBoxLayout();  // owned by grid once added
            const bool buttons = std::all_of(controls.begin(), controls.end(), [](auto* c) {
                return c->Kind() == forms::ControlKind::Button;
            });
            if (buttons) box->addStretch(1);
            for (QWidget* w : widgets) box->addWidget(w, buttons ? 0 : 1);
            grid->addLayout(box, line, 0, 1, 2);
        }
        ++line;
    }
}

void FormWindow::Sync(forms::Control& control) {
    const auto it = bindings_.find(&control);
    if (it == bindings_.end() || !it->second.sync) return;
    it->second.sync();
    if (form_.Focused() == &control && it->second.widget->isVisible() &&
        !it->second.widget->hasFocus())
        it->second.widget->setFocus(Qt::OtherFocusReason);
}

void FormWindow::SyncAll() {
    for (auto& [control, binding] : bindings_)
        if (binding.sync) binding.sync();
}

QWidget* FormWindow::WidgetOf(const forms::Control& control) const {
    const auto it = bindings_.find(&control);
    return it == bindings_.end() ? nullptr : it->second.widget;
}

void FormWindow::Place() {
    // The form's own width is the least the window takes, so long texts wrap less.
    setMinimumWidth(std::min(nominalWidth_, kit_.WorkArea().width));
    adjustSize();
    resize(sizeHint().expandedTo(minimumSize()));
    form_.SetSize(width(), height());
    form_.PlaceOnWorkArea();
    move(form_.Bounds().left, form_.Bounds().top);
}

void FormWindow::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    // The layout is final only now; the dialog is placed again on its real size.
    Place();
}

void FormWindow::Finish() {
    closing_ = true;
    done(QDialog::Accepted);
}

// Escape presses the form's cancel button, if it has one that can be pressed.
void FormWindow::reject() {
    for (const auto& c : form_.Controls()) {
        const auto* button = dynamic_cast<const forms::Button*>(c.get());
        if (button && button->IsCancel()) {
            c->Click();
            return;
        }
    }
}

// The close box asks the form, which may refuse or turn it into its cancel button.
void FormWindow::closeEvent(QCloseEvent* event) {
    if (closing_) {
        event->accept();
        return;
    }
    event->ignore();
    form_.RequestClose();
}

}  // namespace morvane::qt
