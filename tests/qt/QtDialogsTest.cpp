// The Qt binding with real windows: every dialog rendered to a PNG file and checked for its
// texts, its layout, placement on the work area, the login driven through its widgets, modality,
// the refused close of a forced re-login, timers on Qt's event loop, and the clipboard.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFontDatabase>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "component/ctrlMorvane.h"
#include "qt/QtToolkit.h"
#include "qt/demo/DialogCatalogue.h"
#include "session/basTextEncrypt.h"
#include "session/frmLogin.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"
#include "util/Text.h"

namespace morvane::test {
namespace {

// Answers every message box that comes up with its default button and keeps its text, and
// fails the test rather than let a dialog hang it.
class BoxAnswerer {
public:
    BoxAnswerer() {
        timer_.setInterval(10);
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                texts.push_back(box->text().toStdString());
                icons.push_back(box->icon());
                box->defaultButton() ? box->defaultButton()->click() : box->accept();
            }
            if (clock_.elapsed() > 20000) {
                ADD_FAILURE() << "a dialog stayed up";
                if (QWidget* w = QApplication::activeModalWidget()) w->hide();
            }
        });
        clock_.start();
        timer_.start();
    }
    std::vector<std::string> texts;
    std::vector<QMessageBox::Icon> icons;

private:
    QTimer timer_;
    QElapsedTimer clock_;
};

class QtDialogsTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        qt_ = std::make_shared<qt::QtToolkit>();
        State().SetToolkit(qt_);
    }

    // Renders the form to a PNG in the build folder and checks that every visible text of
    // it is on its widget and leaves ink in the picture.
    void Screenshot(forms::Form& form, const std::string& file, int minTexts) {
        auto window = qt_->BuildWindow(form);
        window->show();
        QCoreApplication::processEvents();
        const QImage image = window->grab().toImage();
        ASSERT_FALSE(image.isNull());
        ASSERT_TRUE(QDir().mkpath(MORVANE_SCREENSHOT_DIR));
        const QString path = QString(MORVANE_SCREENSHOT_DIR) + "/" + QString::fromStdString(file);
        ASSERT_TRUE(image.save(path));

        // Placed on the work area at its free space over 2.0 and 2.8.
        const forms::Rect area = qt_->WorkArea();
        EXPECT_EQ(window->x(), area.left + static_cast<int>((area.width - window->width()) / 2.0));
        EXPECT_EQ(window->y(), area.top + static_cast<int>((area.height - window->height()) / 2.8));
        EXPECT_EQ(window->windowTitle().toStdString(), form.Caption());
        EXPECT_EQ(form.Bounds().left + form.Bounds().width, window->x() + window->width());

        const QColor background = image.pixelColor(2, 2);
        int texts = 0;
        for (const auto& c : form.Controls()) {
            if (!c->Visible() || c->Text().empty()) continue;
            auto* w = window->findChild<QWidget*>(QString::fromStdString(c->Name()));
            ASSERT_NE(w, nullptr) << c->Name();
            EXPECT_TRUE(w->isVisible()) << c->Name();
            QString shown;
            if (auto* label = qobject_cast<QLabel*>(w)) shown = label->text();
            if (auto* button = qobject_cast<QAbstractButton*>(w)) shown = button->text();
            if (auto* line = qobject_cast<QLineEdit*>(w)) shown = line->text();
            if (auto* combo = qobject_cast<QComboBox*>(w)) shown = combo->currentText();
            if (auto* group = qobject_cast<QGroupBox*>(w)) shown = group->title();
            EXPECT_EQ(shown.toStdString(), ReplaceAll(c->Text(), "\r\n", "\n")) << c->Name();
            const QRect r(w->mapTo(window.get(), QPoint(0, 0)), w->size());
            // A disabled control draws its text in grey.
            const int contrast = w->isEnabled() ? 80 : 30;
            int ink = 0;
            for (int y = r.top(); y <= r.bottom() && y < image.height(); ++y)
                for (int x = r.left(); x <= r.right() && x < image.width(); ++x) {
                    const QColor p = image.pixelColor(x, y);
                    if (std::abs(p.lightness() - background.lightness()) > contrast) ++ink;
                }
            EXPECT_GT(ink, 15) << c->Name() << " shows nothing";
            ++texts;
        }
        EXPECT_GE(texts, minTexts);

        // Nothing is cut off by the window or a 1280 by 800 screen, no table hides columns
        // behind a scroll bar, and a frame holds its controls inside its box.
        EXPECT_LE(window->frameGeometry().width(), 1280);
        EXPECT_LE(window->frameGeometry().height(), 800);
        for (auto* view : window->findChildren<QAbstractScrollArea*>())
            if (qobject_cast<QTableWidget*>(view) || qobject_cast<QTreeWidget*>(view)) {
                EXPECT_EQ(view->horizontalScrollBar()->maximum(), 0)
                    << view->objectName().toStdString() << " hides columns";
            }
        const QRect whole(QPoint(0, 0), window->size());
        for (const auto& c : form.Controls()) {
            auto* w = window->findChild<QWidget*>(QString::fromStdString(c->Name()));
            if (!w || !w->isVisible()) continue;
            const QRect r(w->mapTo(window.get(), QPoint(0, 0)), w->size());
            EXPECT_TRUE(whole.contains(r)) << c->Name() << " runs out of the window";
            if (!c->Container()) continue;
            auto* frame =
                window->findChild<QWidget*>(QString::fromStdString(c->Container()->Name()));
            ASSERT_NE(frame, nullptr) << c->Container()->Name();
            EXPECT_TRUE(frame->isAncestorOf(w)) << c->Name();
            EXPECT_TRUE(QRect(frame->mapTo(window.get(), QPoint(0, 0)), frame->size()).contains(r))
                << c->Name() << " lies outside its frame " << c->Container()->Name();
        }
    }

    std::shared_ptr<qt::QtToolkit> qt_;
};

// Every dialog and progress form the demo shows, rendered and checked; the least number of
// texts each shows keeps a form that lost its controls from passing. Without a Japanese font
// the texts would be boxes.
TEST_F(QtDialogsTest, EveryDialogRendersItsTextsInsideItsWindowAndFrames) {
    ASSERT_FALSE(QFontDatabase::families(QFontDatabase::Japanese).isEmpty());
    SetSetting(reg::kLoginUID, "user1");
    SetLoginState(99);
    std::map<std::string, int> leastTexts;
    for (const auto& row : Golden("qt/dialogs.txt").Table("least texts"))
        leastTexts[row.at(0)] = std::stoi(row.at(1));
    const qt::DialogCatalogue catalogue;
    for (const qt::CatalogueDialog& d : catalogue.Dialogs()) {
        SCOPED_TRACE(d.name);
        ASSERT_TRUE(leastTexts.contains(d.name)) << "a dialog with no check";
        auto form = d.make(*qt_);
        Screenshot(*form, d.name + ".png", leastTexts.at(d.name));
    }
    EXPECT_EQ(catalogue.Dialogs().size(), leastTexts.size());
}

TEST_F(QtDialogsTest, LoginThroughTheRealWidgets) {
    server_->On("login.php", LoginReply(1, "TOK"));
    BoxAnswerer boxes;
    qt_->onShown = [&](forms::Form&, QDialog& dlg) {
        EXPECT_TRUE(dlg.isVisible() && dlg.isModal());
        QTest::keyClicks(dlg.findChild<QLineEdit*>("txtUID"), "user1");
        QTest::keyClicks(dlg.findChild<QLineEdit*>("txtPWD"), "secret");
        dlg.findChild<QCheckBox*>("chkAutoLogin")->click();
        dlg.findChild<QPushButton*>("cmdLogin")->click();
    };
    EXPECT_EQ(ctrlMorvane().ShowLogin(nullptr), 1);
    EXPECT_EQ(boxes.texts, std::vector<std::string>{"ログインに成功しました。"});
    EXPECT_EQ(boxes.icons, std::vector<QMessageBox::Icon>{QMessageBox::Information});
    EXPECT_EQ(server_->RequestsTo("login.php").at(0).body, "no=C-1001&ID=user1&PW=secret&");
    EXPECT_EQ(DecryptText(Setting(reg::kLoginPWD)), "secret");
    EXPECT_EQ(qt_->WindowOf(*State().loginTimer), nullptr);
}

TEST_F(QtDialogsTest, ForcedReloginRefusesCloseAndEscape) {
    qt_->onShown = [](forms::Form&, QDialog& dlg) {
        EXPECT_FALSE(dlg.findChild<QPushButton*>("cmdCancel")->isEnabled());
        dlg.close();
        QTest::keyClick(&dlg, Qt::Key_Escape);
        QCoreApplication::processEvents();
        EXPECT_TRUE(dlg.isVisible());
        dlg.findChild<QPushButton*>("cmdNoConnect")->click();
    };
    BoxAnswerer boxes;
    EXPECT_EQ(ShowLoginDlg(nullptr, 1), 99);
    EXPECT_TRUE(boxes.texts.empty());
}

// A host form, itself shown by the toolkit, opens the settings over it.
TEST_F(QtDialogsTest, DialogIsModalOnItsOwnersWindow) {
    forms::Form host(*qt_, "frmHost", "host");
    host.Add<forms::Button>("cmdOpen", "open").onClick = [&host] {
        ShowSettingDlg(&host);
        host.Unload();
    };
    std::vector<std::string> shown;
    qt_->onShown = [&](forms::Form& f, QDialog& dlg) {
        shown.push_back(f.Name());
        if (f.Name() == "frmHost") return dlg.findChild<QPushButton*>("cmdOpen")->click();
        EXPECT_EQ(dlg.parentWidget(), qt_->WindowOf(host));
        EXPECT_EQ(dlg.windowModality(), Qt::WindowModal);
        dlg.findChild<QPushButton*>("cmdCancel")->click();
    };
    host.ShowModal(nullptr);
    EXPECT_EQ(shown, (std::vector<std::string>{"frmHost", "frmMorvaneSetting"}));
    EXPECT_FALSE(host.Loaded());
}

TEST_F(QtDialogsTest, ClipboardTextRoundTrips) {
    qt_->SetClipboardText("ServerName: mail.example.jp, ContractNo: C-55, UserID: u55");
    EXPECT_EQ(qt_->ClipboardText(), "ServerName: mail.example.jp, ContractNo: C-55, UserID: u55");
}

// A choice handler may rebuild the table it was called from.
TEST_F(QtDialogsTest, ListAndGridFeedTheUsersChoicesBack) {
    forms::Form form(*qt_, "frmLists", "lists");
    auto& list = form.Add<forms::ListView>("lvw");
    list.columns = {"番号", "名前"};
    list.checkboxes = true;
    list.items = {{{"1", "山田建設"}, "K1", false, false}, {{"2", "佐藤工業"}, "K2", true, false}};
    auto& grid = form.Add<forms::Grid>("grd");
    grid.headers = {"顧客", "処理"};
    grid.Resize(1, 2);
    grid.At(0, 0).text = "山田建設";
    grid.At(0, 1).text = "追加";
    grid.At(0, 1).choices = {"追加", "削除"};
    std::vector<std::string> chosen;
    grid.onCellChoice = [&](int row, int col, const std::string& choice) {
        chosen.push_back(std::to_string(row) + "," + std::to_string(col) + "=" + choice);
        grid.At(row, col).text = choice;
        grid.Resize(1, 2);
    };
    auto window = qt_->BuildWindow(form);
    window->show();
    QCoreApplication::processEvents();
    auto* tree = window->findChild<QTreeWidget*>("lvw");
    ASSERT_TRUE(tree && tree->topLevelItemCount() == 2);
    EXPECT_EQ(tree->topLevelItem(1)->text(1).toStdString(), "佐藤工業");
    EXPECT_EQ(tree->topLevelItem(1)->checkState(0), Qt::Checked);
    tree->topLevelItem(0)->setCheckState(0, Qt::Checked);
    EXPECT_TRUE(list.items[0].checked);
    auto* table = window->findChild<QTableWidget*>("grd");
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->item(0, 0)->text().toStdString(), "山田建設");
    auto* box = qobject_cast<QComboBox*>(table->cellWidget(0, 1));
    ASSERT_NE(box, nullptr);
    box->setCurrentIndex(1);
    emit box->activated(1);
    QTest::qWait(20);
    EXPECT_EQ(chosen, std::vector<std::string>{"0,1=削除"});
    auto* rebuilt = qobject_cast<QComboBox*>(table->cellWidget(0, 1));
    ASSERT_NE(rebuilt, nullptr);
    EXPECT_EQ(rebuilt->currentText().toStdString(), "削除");
}

// Not before the form is loaded, nor after it is unloaded.
TEST_F(QtDialogsTest, TimersTickOnQtsEventLoopWhileTheirFormIsLoaded) {
    forms::Form form(*qt_, "frmTicker", "ticker");
    auto& timer = form.Add<forms::Timer>("tmr");
    int ticks = 0;
    timer.onTimer = [&] { ++ticks; };
    timer.SetInterval(5);
    timer.SetTimerEnabled(true);
    QTest::qWait(30);
    EXPECT_EQ(ticks, 0);
    form.Load();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks >= 3; }, 5000));
    form.Unload();
    const int atUnload = ticks;
    QTest::qWait(30);
    EXPECT_EQ(ticks, atUnload);
}

}  // namespace
}  // namespace morvane::test
