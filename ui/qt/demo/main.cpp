// morvane-qt-demo: opens each dialog of the component as a real Qt window, or with
// --screenshot DIR renders them to PNG files without a person at the screen.
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "component/ctrlMorvane.h"
#include "qt/QtToolkit.h"
#include "qt/demo/DialogCatalogue.h"
#include "state/ProcessState.h"

namespace {

using morvane::ctrlMorvane;
using morvane::qt::DialogCatalogue;

bool HaveDisplay() {
    for (const char* var : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (const char* v = std::getenv(var); v && *v) return true;
    return false;
}

int Screenshots(morvane::qt::QtToolkit& kit, const DialogCatalogue& catalogue, const QString& dir) {
    QDir().mkpath(dir);
    int failures = 0;
    for (const auto& d : catalogue.Dialogs()) {
        auto form = d.make(kit);
        auto window = kit.BuildWindow(*form);
        window->show();
        QCoreApplication::processEvents();
        const QString path = dir + "/" + QString::fromStdString(d.name) + ".png";
        if (window->grab().save(path)) {
            std::printf("%s\n", path.toLocal8Bit().constData());
        } else {
            std::fprintf(stderr, "could not write %s\n", path.toLocal8Bit().constData());
            ++failures;
        }
        window->hide();
    }
    return failures == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    // Parsed before the application exists: the platform depends on the options.
    constexpr const char* kUsage =
        "usage: morvane-qt-demo [--screenshot DIR]\n"
        "  without arguments: a window with one button per dialog\n"
        "  --screenshot DIR: every dialog rendered to a PNG file in DIR, no display needed\n";
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
    QCommandLineParser parser;
    const QCommandLineOption help({"h", "help"}, "Show this help.");
    const QCommandLineOption screenshot("screenshot", "Render every dialog into DIR.", "DIR");
    parser.addOption(help);
    parser.addOption(screenshot);
    if (!parser.parse(arguments) || !parser.positionalArguments().isEmpty()) {
        const QString why = parser.errorText().isEmpty()
                                ? "unexpected argument " + parser.positionalArguments().first()
                                : parser.errorText();
        std::fprintf(stderr, "morvane-qt-demo: %s\n%s", qPrintable(why), kUsage);
        return 2;
    }
    if (parser.isSet(help)) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    const QString screenshotDir = parser.value(screenshot);
    if (!screenshotDir.isEmpty() && !HaveDisplay()) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (screenshotDir.isEmpty() && !HaveDisplay()) {
        std::fprintf(stderr, "morvane-qt-demo: no display; use --screenshot DIR\n");
        return 2;
    }

    QApplication app(argc, argv);
    auto kit = morvane::qt::InstallQtToolkit();
    ctrlMorvane obj;
    const DialogCatalogue catalogue;
    if (!screenshotDir.isEmpty()) return Screenshots(*kit, catalogue, screenshotDir);

    QWidget launcher;
    launcher.setWindowTitle("morvane-qt-demo");
    auto* layout = new QVBoxLayout(&launcher);  // owned by the launcher
    layout->addWidget(new QLabel("開くダイアログを選んでください", &launcher));
    std::unique_ptr<morvane::forms::Form> progressForm;
    std::unique_ptr<QDialog> progressWindow;
    for (const auto& d : catalogue.Dialogs()) {
        auto* button = new QPushButton(QString::fromStdString(d.title), &launcher);
        QObject::connect(button, &QPushButton::clicked, [&, d] {
            if (d.open) return d.open(obj);
            if (d.progress) {
                // Shown modally it would start its transfer at once: its look for a moment.
                progressWindow.reset();
                progressForm = d.make(*kit);
                progressWindow = kit->BuildWindow(*progressForm);
                progressWindow->show();
                QTimer::singleShot(3000, progressWindow.get(), &QDialog::hide);
                return;
            }
            // Dialogs that a member opens only halfway through a synchronisation.
            auto form = d.make(*kit);
            form->ShowModal(nullptr);
        });
        layout->addWidget(button);
    }
    auto* quit = new QPushButton("終了", &launcher);
    QObject::connect(quit, &QPushButton::clicked, &app, &QApplication::quit);
    layout->addWidget(quit);
    launcher.show();
    const int rc = app.exec();
    progressWindow.reset();
    morvane::State().SetToolkit(nullptr);  // the Qt toolkit goes before the application
    return rc;
}
