// The Qt dialog of one form: its controls' widgets laid out by their row hints, kept in
// step with the form, and its closing routed through the form's own rules.
#pragma once

#include <QDialog>
#include <map>

#include "platform/Forms.h"
#include "qt/WidgetBuilders.h"

class QGridLayout;

namespace morvane::qt {

class QtToolkit;

class FormWindow final : public QDialog {
public:
    FormWindow(QtToolkit& kit, forms::Form& form, QWidget* parent);
    ~FormWindow() override;

    forms::Form& Model() const { return form_; }
    // Copies a control's state, or every control's, onto the widgets.
    void Sync(forms::Control& control);
    void SyncAll();
    QWidget* WidgetOf(const forms::Control& control) const;
    // Takes the laid-out size into the form and sets the window where the form placed it.
    void Place();
    // Ends a running modal show.
    void Finish();

protected:
    void reject() override;
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void Build();
    void Fill(QGridLayout* grid, QWidget* parent, const forms::Control* container);

    QtToolkit& kit_;
    forms::Form& form_;
    std::map<const forms::Control*, ControlBinding> bindings_;
    int nominalWidth_;
    bool closing_ = false;
};

}  // namespace morvane::qt
