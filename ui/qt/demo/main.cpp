// morvane-qt-demo: opens each dialog of the component as a real Qt window, or with
// --screenshot DIR renders them to PNG files without a person at the screen.
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
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
#include "roster/cCustList.h"
#include "roster/cCustListSync.h"
#include "roster/frmSelectCompareCustList.h"
#include "roster/frmSelectCompareCustListAll.h"
#include "roster/frmSelectEnabledCustList.h"
#include "roster/frmSelectEnabledCustListMsg.h"
#include "session/frmLogin.h"
#include "session/frmMorvaneSetting.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "store/LocalDatabases.h"
#include "store/frmSelectCompareMsg.h"

namespace {

using morvane::ctrlMorvane;

struct Dialog {
    const char* name;
    const char* title;
    std::function<std::unique_ptr<morvane::forms::Form>(morvane::forms::Toolkit&)> make;
    std::function<void(ctrlMorvane&)> open;
};

// An office of three customers and a server that holds two of them and a third of its own,
// for the roster and backup-target dialogs to show.
struct SampleOffice {
    SampleOffice() {
        db =
            morvane::CreateLocalDatabases(dir.path().toStdString(), SampleData()).customer.string();
        for (int id : {1, 2, 7}) {
            morvane::cCustListItem& item = server.Add(id);
            item.Code = "C" + std::to_string(id);
            item.CorpName0 = "モルヴェイン建設" + std::to_string(id) + "株式会社";
            item.CorpKanaS = "ﾓﾙｳﾞｪｲﾝｹﾝｾﾂ";
            morvane::cCustListSyncItem& flags = targets.Add("K" + std::to_string(id), id);
            flags.Code = item.Code;
            flags.CorpName0 = item.CorpName0;
            flags.InetEnableFlag = id == 7 ? 0 : 1;
        }
    }
    static morvane::SampleDataOptions SampleData() {
        morvane::SampleDataOptions data;
        data.customers = 3;
        return data;
    }
    QTemporaryDir dir;
    std::string db;
    morvane::cCustList server;
    morvane::cCustListSync targets;
};

SampleOffice& Office() {
    static SampleOffice office;
    return office;
}

std::vector<Dialog> Dialogs() {
    return {
        {"login", "ログイン", [](auto& kit) { return std::make_unique<morvane::frmLogin>(kit); },
         [](ctrlMorvane& obj) { std::printf("ShowLogin -> %d\n", obj.ShowLogin(nullptr)); }},
        {"relogin", "ログイン (再ログイン)",
         [](auto& kit) {
             auto form = std::make_unique<morvane::frmLogin>(kit);
             form->SetShowtype(1);
             return form;
         },
         [](ctrlMorvane&) {
             std::printf("ShowLoginDlg(1) -> %d\n", morvane::ShowLoginDlg(nullptr, 1));
         }},
        {"setting", "モルヴェインの設定",
         [](auto& kit) { return std::make_unique<morvane::frmMorvaneSetting>(kit); },
         [](ctrlMorvane& obj) { obj.ShowSetting(nullptr); }},
        {"compare", "使用するデータの確認",
         [](auto& kit) {
             auto form = std::make_unique<morvane::frmSelectCompareMsg>(kit);
             form->SetData("基本情報", "2024/05/01 10:00:00", "2024/04/01 09:00:00", "");
             return form;
         },
         [](ctrlMorvane&) {
             morvane::ProcessState& state = morvane::State();
             state.inetDateServer = "2024/05/01 10:00:00";
             state.inetDateLocal = "2024/04/01 09:00:00";
             std::printf("ShowCompareMsgDlg -> %d\n",
                         morvane::ShowCompareMsgDlg(nullptr, "基本情報"));
         }},
        {"roster-all",
         "顧客一覧の確認 (全体)",
         [](auto& kit) {
             auto form = std::make_unique<morvane::frmSelectCompareCustListAll>(kit);
             form->SetLocalDB(Office().db);
             form->SetServerData(&Office().server);
             return form;
         },
         {}},
        {"roster-each",
         "顧客一覧の確認 (顧客ごと)",
         [](auto& kit) {
             auto form = std::make_unique<morvane::frmSelectCompareCustList>(kit);
             form->SetLocalDB(Office().db);
             form->SetServerData(&Office().server);
             form->SetOnlyLc_IDs("3");
             form->SetOnlySv_IDs("7");
             return form;
         },
         {}},
        {"targets",
         "バックアップ対象の選択",
         [](auto& kit) {
             auto form = std::make_unique<morvane::frmSelectEnabledCustList>(kit);
             form->LocalDB = Office().db;
             form->ServerData = &Office().targets;
             form->Showtype = "1";
             return form;
         },
         {}},
        {"targets-confirm",
         "バックアップ対象の確定",
         [](auto& kit) { return std::make_unique<morvane::frmSelectEnabledCustListMsg>(kit); },
         {}},
    };
}

bool HaveDisplay() {
    for (const char* var : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (const char* v = std::getenv(var); v && *v) return true;
    return false;
}

int Screenshots(morvane::qt::QtToolkit& kit, const QString& dir) {
    QDir().mkpath(dir);
    int failures = 0;
    for (const auto& d : Dialogs()) {
        auto form = d.make(kit);
        auto window = kit.BuildWindow(*form);
        window->show();
        QCoreApplication::processEvents();
        const QString path = dir + "/" + d.name + ".png";
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
    if (!screenshotDir.isEmpty()) return Screenshots(*kit, screenshotDir);

    QWidget launcher;
    launcher.setWindowTitle("morvane-qt-demo");
    auto* layout = new QVBoxLayout(&launcher);  // owned by the launcher
    layout->addWidget(new QLabel("開くダイアログを選んでください", &launcher));
    for (const auto& d : Dialogs()) {
        auto* button = new QPushButton(QString::fromUtf8(d.title), &launcher);
        QObject::connect(button, &QPushButton::clicked, [&obj, &kit, d] {
            if (d.open) return d.open(obj);
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
    morvane::State().SetToolkit(nullptr);  // the Qt toolkit goes before the application
    return rc;
}
