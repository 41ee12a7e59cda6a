#include "qt/QtToolkit.h"

#include <QApplication>
#include <QClipboard>
#include <QCursor>
#include <QDesktopServices>
#include <QFile>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QUrl>
#include <vector>

#include "component/ctrlMorvane.h"
#include "qt/FormWindow.h"

namespace morvane::qt {
namespace {

constexpr int kShellSuccess = 33;
constexpr int kShellNoApplication = 31;

QString Q(const std::string& s) { return QString::fromStdString(s); }

QMessageBox::Icon IconOf(forms::MsgIcon icon) {
    switch (icon) {
        case forms::MsgIcon::Critical:
            return QMessageBox::Critical;
        case forms::MsgIcon::Question:
            return QMessageBox::Question;
        case forms::MsgIcon::Exclamation:
            return QMessageBox::Warning;
        case forms::MsgIcon::Information:
            return QMessageBox::Information;
        case forms::MsgIcon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButton ButtonOf(forms::MsgResult result) {
    switch (result) {
        case forms::MsgResult::OK:
            return QMessageBox::Ok;
        case forms::MsgResult::Cancel:
            return QMessageBox::Cancel;
        case forms::MsgResult::Abort:
            return QMessageBox::Abort;
        case forms::MsgResult::Retry:
            return QMessageBox::Retry;
        case forms::MsgResult::Ignore:
            return QMessageBox::Ignore;
        case forms::MsgResult::Yes:
            return QMessageBox::Yes;
        case forms::MsgResult::No:
            return QMessageBox::No;
    }
    return QMessageBox::Ok;
}

// The window a box or an ownerless dialog belongs over: the top modal one, if any.
QWidget* TopWindow() {
    if (QWidget* modal = QApplication::activeModalWidget()) return modal;
    return QApplication::activeWindow();
}

}  // namespace

QtToolkit::QtToolkit() : timerParent_(std::make_unique<QObject>()) {}

QtToolkit::~QtToolkit() = default;

void QtToolkit::Register(forms::Form& form, FormWindow* window) { windows_[&form] = window; }

void QtToolkit::Unregister(forms::Form& form, const FormWindow* window) {
    const auto it = windows_.find(&form);
    if (it != windows_.end() && it->second == window) windows_.erase(it);
}

QDialog* QtToolkit::WindowOf(const forms::Form& form) const {
    const auto it = windows_.find(&form);
    return it == windows_.end() ? nullptr : it->second;
}

std::unique_ptr<QDialog> QtToolkit::BuildWindow(forms::Form& form, forms::Form* owner) {
    form.Load();
    auto window = std::make_unique<FormWindow>(*this, form, owner ? WindowOf(*owner) : nullptr);
    window->Place();
    return window;
}

void QtToolkit::RunModal(forms::Form& form, forms::Form* owner) {
    // Modal on its owner's window when the owner is one of ours; application modal else.
    QWidget* parent = owner ? WindowOf(*owner) : nullptr;
    FormWindow window(*this, form, parent);
    window.setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
    window.Place();
    QTimer::singleShot(0, &window, [this, &form, &window] {
        if (!form.Visible()) return;
        form.Activate();
        if (form.Visible() && onShown) onShown(form, window);
    });
    if (form.Visible()) window.exec();
}

void QtToolkit::FormHidden(forms::Form& form) {
    if (auto it = windows_.find(&form); it != windows_.end()) it->second->Finish();
}

void QtToolkit::FormUnloaded(forms::Form& form) { FormHidden(form); }

void QtToolkit::ControlChanged(forms::Control& control) {
    if (auto it = windows_.find(&control.Owner()); it != windows_.end()) it->second->Sync(control);
}

forms::MsgResult QtToolkit::MessageBox(const forms::MessageBoxRequest& request) {
    QString text = Q(request.text);
    text.replace("\r\n", "\n");
    QMessageBox box(IconOf(request.icon), Q(request.title), text, QMessageBox::NoButton,
                    TopWindow());
    const std::vector<forms::MsgResult> results = forms::ButtonResults(request.buttons);
    std::vector<QAbstractButton*> buttons;
    for (const auto r : results) buttons.push_back(box.addButton(ButtonOf(r)));
    const size_t def = static_cast<size_t>(std::max(0, request.defaultButton));
    box.setDefaultButton(static_cast<QPushButton*>(buttons[def < buttons.size() ? def : 0]));
    box.exec();
    for (size_t i = 0; i < buttons.size(); ++i)
        if (box.clickedButton() == buttons[i]) return results[i];
    // Closed without a button: the cancelling button if there is one, else the default.
    for (const auto r : results)
        if (r == forms::MsgResult::Cancel) return r;
    return forms::DefaultResult(request);
}

void QtToolkit::DoEvents() { QCoreApplication::processEvents(); }

void QtToolkit::TimerChanged(forms::Timer& timer) {
    auto it = timers_.find(&timer);
    if (!timer.Live()) {
        if (it != timers_.end()) it->second->stop();
        return;
    }
    if (it == timers_.end()) {
        auto* qtimer = new QTimer(timerParent_.get());  // owned by timerParent_
        QObject::connect(qtimer, &QTimer::timeout, [&timer] { timer.Fire(); });
        it = timers_.emplace(&timer, qtimer).first;
    }
    it->second->start(timer.Interval());
}

void QtToolkit::TimerDestroyed(forms::Timer& timer) {
    const auto it = timers_.find(&timer);
    if (it == timers_.end()) return;
    // The timer may go inside its own tick: the QTimer is let go once the tick is over.
    it->second->stop();
    it->second->disconnect();
    it->second->deleteLater();
    timers_.erase(it);
}

forms::Rect QtToolkit::WorkArea() const {
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect r = screen->availableGeometry();
        return {r.x(), r.y(), r.width(), r.height()};
    }
    return Toolkit::WorkArea();
}

void QtToolkit::SetBusyPointer(bool busy) {
    if (busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        ++busyDepth_;
        return;
    }
    while (busyDepth_ > 0) {
        QApplication::restoreOverrideCursor();
        --busyDepth_;
    }
}

std::string QtToolkit::ClipboardText() const {
    const QClipboard* clipboard = QGuiApplication::clipboard();
    const QMimeData* data = clipboard ? clipboard->mimeData() : nullptr;
    if (!data || !data->hasText()) return {};
    return data->text().toStdString();
}

void QtToolkit::SetClipboardText(const std::string& text) {
    if (QClipboard* clipboard = QGuiApplication::clipboard()) clipboard->setText(Q(text));
}

int QtToolkit::OpenUrl(const std::string& url) {
    return QDesktopServices::openUrl(QUrl(Q(url))) ? kShellSuccess : kShellNoApplication;
}

int QtToolkit::MoveToTrash(const std::string& path) { return QFile::moveToTrash(Q(path)) ? 0 : 1; }

std::shared_ptr<QtToolkit> InstallQtToolkit() {
    if (!QApplication::instance()) return nullptr;
    auto kit = std::make_shared<QtToolkit>();
    ctrlMorvane::UseToolkit(kit);
    return kit;
}

}  // namespace morvane::qt
