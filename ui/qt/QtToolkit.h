// The Qt 6 Widgets toolkit of the forms layer: every form shown as a real dialog, modal on
// its owner and placed on the work area, with Qt's message boxes, timers and clipboard.
#pragma once

#include <QDialog>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "platform/Forms.h"

class QImage;
class QObject;
class QTimer;

namespace morvane::qt {

class FormWindow;

class QtToolkit final : public forms::Toolkit {
public:
    // A QApplication must exist for as long as the toolkit does.
    QtToolkit();
    ~QtToolkit() override;

    void RunModal(forms::Form& form, forms::Form* owner) override;
    void FormHidden(forms::Form& form) override;
    void FormUnloaded(forms::Form& form) override;
    void ControlChanged(forms::Control& control) override;
    forms::MsgResult MessageBox(const forms::MessageBoxRequest& box) override;
    void DoEvents() override;
    void TimerChanged(forms::Timer& timer) override;
    void TimerDestroyed(forms::Timer& timer) override;
    forms::Rect WorkArea() const override;
    void SetBusyPointer(bool busy) override;
    std::string ClipboardText() const override;
    void SetClipboardText(const std::string& text) override;
    int OpenUrl(const std::string& url) override;
    int MoveToTrash(const std::string& path) override;

    // Called once a modal show is up and its form active; for demos and tests that drive
    // the real widgets.
    std::function<void(forms::Form&, QDialog&)> onShown;

    // Builds the window of a loaded form without a modal show, placed and laid out, for
    // rendering; it stays bound to the form until the returned window is dropped.
    std::unique_ptr<QDialog> BuildWindow(forms::Form& form, forms::Form* owner = nullptr);
    // The window of a form while it has one.
    QDialog* WindowOf(const forms::Form& form) const;

private:
    friend class FormWindow;
    void Register(forms::Form& form, FormWindow* window);
    void Unregister(forms::Form& form, const FormWindow* window);

    std::map<const forms::Form*, FormWindow*> windows_;
    std::map<forms::Timer*, QTimer*> timers_;
    std::unique_ptr<QObject> timerParent_;  // owns the QTimers
    int busyDepth_ = 0;
};

// Creates a Qt toolkit and makes it the component's toolkit; nullptr (and nothing changed)
// when no QApplication exists.
std::shared_ptr<QtToolkit> InstallQtToolkit();

}  // namespace morvane::qt
