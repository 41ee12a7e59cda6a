#include "qt/WidgetBuilders.h"

#include <QBrush>
#include <QCheckBox>
#include <QColor>
#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <utility>

namespace morvane::qt {
namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }
std::string S(const QString& s) { return s.toStdString(); }
// A text as shown: the host's CR LF line breaks as Qt's.
QString Shown(const std::string& s) { return Q(s).replace("\r\n", "\n"); }

// Every widget here is owned by its Qt parent, which deletes it with the window.
template <class W, class... A>
W* Child(QWidget* parent, A&&... args) {
    return new W(std::forward<A>(args)..., parent);
}

// Feeds clicks and focus of a widget to its control. Owned by the widget it watches.
class ControlEvents final : public QObject {
public:
    ControlEvents(forms::Control& control, QWidget* widget, bool clicks)
        : QObject(widget), control_(control), clicks_(clicks) {
        widget->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusIn && control_.Owner().Focused() != &control_)
            control_.Owner().SetFocus(control_);
        if (clicks_ && event->type() == QEvent::MouseButtonRelease) control_.Click();
        return QObject::eventFilter(watched, event);
    }

private:
    forms::Control& control_;
    bool clicks_;
};

// Starts feeding a widget's clicks and focus to its control.
void Watch(forms::Control& control, QWidget* widget, bool clicks) {
    new ControlEvents(control, widget, clicks);  // owned by the widget
}

// Byte offsets of the control's UTF-8 text as character positions of the widget's text.
int Position(const std::string& text, int byteOffset) {
    return static_cast<int>(
        QString::fromUtf8(text.data(), std::min<qsizetype>(byteOffset, text.size())).size());
}

ControlBinding BuildLabel(forms::Control& c, QWidget* parent) {
    auto* w = Child<QLabel>(parent);
    w->setWordWrap(true);
    w->setTextFormat(Qt::PlainText);
    w->setObjectName(Q(c.Name()));
    Watch(c, w, true);
    return {w, [&c, w] { w->setText(Shown(c.Text())); }};
}

ControlBinding BuildPanel(forms::Control& c, QWidget* parent) {
    auto* w = Child<QLabel>(parent);
    w->setTextFormat(Qt::PlainText);
    w->setObjectName(Q(c.Name()));
    w->setCursor(Qt::PointingHandCursor);
    w->setStyleSheet("QLabel { color: #1a55b0; text-decoration: underline; }");
    Watch(c, w, true);
    return {w, [&c, w] { w->setText(Shown(c.Text())); }};
}

ControlBinding BuildTextBox(forms::Control& c, QWidget* parent) {
    auto& box = static_cast<forms::TextBox&>(c);
    if (box.Multiline()) {
        auto* w = Child<QPlainTextEdit>(parent);
        w->setObjectName(Q(c.Name()));
        Watch(c, w, false);
        QObject::connect(w, &QPlainTextEdit::textChanged,
                         [&box, w] { box.SetText(S(w->toPlainText())); });
        return {w, [&box, w] {
                    if (S(w->toPlainText()) != box.Text()) w->setPlainText(Q(box.Text()));
                    w->setReadOnly(box.ReadOnly());
                }};
    }
    auto* w = Child<QLineEdit>(parent);
    w->setObjectName(Q(c.Name()));
    w->setMinimumWidth(220);
    Watch(c, w, false);
    QObject::connect(w, &QLineEdit::textEdited, [&box](const QString& t) { box.SetText(S(t)); });
    auto applied = std::make_shared<std::pair<int, int>>(-1, -1);
    return {w, [&box, w, applied] {
                if (S(w->text()) != box.Text()) w->setText(Q(box.Text()));
                w->setEchoMode(box.Password() ? QLineEdit::Password : QLineEdit::Normal);
                w->setReadOnly(box.ReadOnly());
                const std::pair<int, int> sel{box.SelStart(), box.SelLength()};
                if (sel != *applied) {
                    *applied = sel;
                    const int start = Position(box.Text(), sel.first);
                    w->setSelection(start, Position(box.Text(), sel.first + sel.second) - start);
                }
            }};
}

ControlBinding BuildCheckBox(forms::Control& c, QWidget* parent) {
    auto& check = static_cast<forms::CheckBox&>(c);
    auto* w = Child<QCheckBox>(parent);
    w->setObjectName(Q(c.Name()));
    Watch(c, w, false);
    QObject::connect(w, &QCheckBox::clicked, [&check](bool on) { check.SetChecked(on); });
    return {w, [&check, w] {
                w->setText(Q(check.Text()));
                w->setChecked(check.Checked());
            }};
}

ControlBinding BuildButton(forms::Control& c, QWidget* parent) {
    auto& button = static_cast<forms::Button&>(c);
    auto* w = Child<QPushButton>(parent);
    w->setObjectName(Q(c.Name()));
    w->setAutoDefault(false);
    Watch(c, w, false);
    QObject::connect(w, &QPushButton::clicked, [&button] { button.Click(); });
    return {w, [&button, w] {
                w->setText(Q(button.Text()));
                w->setDefault(button.IsDefault());
            }};
}

ControlBinding BuildFrame(forms::Control& c, QWidget* parent) {
    auto* w = Child<QGroupBox>(parent);
    w->setObjectName(Q(c.Name()));
    return {w, [&c, w] { w->setTitle(Q(c.Text())); }};
}

ControlBinding BuildComboBox(forms::Control& c, QWidget* parent) {
    auto& combo = static_cast<forms::ComboBox&>(c);
    auto* w = Child<QComboBox>(parent);
    w->setObjectName(Q(c.Name()));
    w->setEditable(true);
    w->setMinimumWidth(220);
    Watch(c, w, false);
    QObject::connect(w, &QComboBox::editTextChanged,
                     [&combo](const QString& t) { combo.SetText(S(t)); });
    QObject::connect(w, &QComboBox::activated, [&combo](int i) { combo.SetListIndex(i); });
    return {w, [&combo, w] {
                QStringList items;
                for (const auto& item : combo.Items()) items << Q(item);
                QStringList shown;
                for (int i = 0; i < w->count(); ++i) shown << w->itemText(i);
                if (items != shown) {
                    w->clear();
                    w->addItems(items);
                }
                if (S(w->currentText()) != combo.Text()) w->setEditText(Q(combo.Text()));
            }};
}

// A table asks for the width of its columns, so that none is cut off behind a scroll bar,
// up to what a 1280-pixel screen leaves beside the window's margins.
template <typename View>
void WidenToColumns(View* w, int header) {
    constexpr int kLeast = 420, kMost = 1200;
    int width = header + 2 * w->frameWidth() + w->verticalScrollBar()->sizeHint().width();
    for (int col = 0; col < w->columnCount(); ++col) width += w->columnWidth(col);
    w->setMinimumWidth(std::clamp(width, kLeast, kMost));
}

ControlBinding BuildListView(forms::Control& c, QWidget* parent) {
    auto& list = static_cast<forms::ListView&>(c);
    auto* w = Child<QTreeWidget>(parent);
    w->setObjectName(Q(c.Name()));
    w->setRootIsDecorated(false);
    w->setSelectionMode(QAbstractItemView::ExtendedSelection);
    w->setMinimumSize(420, 160);
    Watch(c, w, false);
    QObject::connect(w, &QTreeWidget::itemChanged, [&list, w](QTreeWidgetItem* item, int) {
        const int row = w->indexOfTopLevelItem(item);
        if (row >= 0 && row < static_cast<int>(list.items.size()))
            list.items[static_cast<size_t>(row)].checked = item->checkState(0) == Qt::Checked;
    });
    QObject::connect(w, &QTreeWidget::itemSelectionChanged, [&list, w] {
        for (int row = 0; row < w->topLevelItemCount() && row < static_cast<int>(list.items.size());
             ++row)
            list.items[static_cast<size_t>(row)].selected = w->topLevelItem(row)->isSelected();
    });
    QObject::connect(w, &QTreeWidget::itemClicked, [&list] { list.Click(); });
    return {w, [&list, w] {
                QStringList headers;
                for (const auto& col : list.columns) headers << Q(col);
                w->setColumnCount(std::max<int>(1, static_cast<int>(headers.size())));
                w->setHeaderLabels(headers);
                w->setHeaderHidden(headers.isEmpty());
                w->clear();
                for (const auto& item : list.items) {
                    QStringList texts;
                    for (const auto& t : item.texts) texts << Q(t);
                    auto* row = new QTreeWidgetItem(w, texts);  // owned by the tree
                    if (list.checkboxes)
                        row->setCheckState(0, item.checked ? Qt::Checked : Qt::Unchecked);
                    row->setSelected(item.selected);
                }
                for (int col = 0; col < w->columnCount(); ++col) w->resizeColumnToContents(col);
                WidenToColumns(w, 0);
            }};
}

// A host colour (0xBBGGRR or a system colour) as a brush; none for the default.
std::optional<QBrush> CellBack(std::int32_t color, const QPalette& palette) {
    switch (color) {
        case forms::kColorDefault:
            return std::nullopt;
        case forms::kColorButtonFace:
            return palette.button();
        case forms::kColorButtonShadow:
            return palette.dark();
        default:
            return QBrush(QColor(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF));
    }
}

ControlBinding BuildGrid(forms::Control& c, QWidget* parent) {
    auto& grid = static_cast<forms::Grid&>(c);
    auto* w = Child<QTableWidget>(parent);
    w->setObjectName(Q(c.Name()));
    w->setEditTriggers(QAbstractItemView::NoEditTriggers);
    w->setMinimumSize(420, 160);
    Watch(c, w, false);
    QObject::connect(w, &QTableWidget::cellClicked,
                     [&grid](int row, int col) { grid.ClickCell(row, col); });
    return {w, [&grid, w] {
                w->setRowCount(grid.Rows());
                w->setColumnCount(grid.Cols());
                QStringList headers;
                for (const auto& h : grid.headers) headers << Shown(h);
                if (!headers.isEmpty()) w->setHorizontalHeaderLabels(headers);
                for (int r = 0; r < grid.Rows(); ++r) {
                    for (int col = 0; col < grid.Cols(); ++col) {
                        const auto& cell = grid.At(r, col);
                        if (cell.choices.empty()) {
                            w->removeCellWidget(r, col);
                            auto* item = new QTableWidgetItem(Q(cell.text));  // owned by the table
                            if (const auto back = CellBack(cell.backColor, w->palette()))
                                item->setBackground(*back);
                            w->setItem(r, col, item);
                            continue;
                        }
                        auto* box = new QComboBox();  // owned by the table once set
                        for (const auto& choice : cell.choices) box->addItem(Q(choice));
                        box->setCurrentText(Q(cell.text));
                        box->setEnabled(!cell.locked);
                        // The choice may rebuild the grid, and with it this box: deliver it
                        // after the box's own signal is over.
                        QObject::connect(box, &QComboBox::activated, w, [&grid, w, r, col, box] {
                            const std::string choice = S(box->currentText());
                            QTimer::singleShot(0, w, [&grid, r, col, choice] {
                                grid.ChooseInCell(r, col, choice);
                            });
                        });
                        w->setCellWidget(r, col, box);
                    }
                }
                w->resizeColumnsToContents();
                WidenToColumns(w, w->verticalHeader()->sizeHint().width());
            }};
}

ControlBinding BuildTimer(forms::Control&, QWidget*) { return {}; }

using Builder = ControlBinding (*)(forms::Control&, QWidget*);

// Indexed by forms::ControlKind.
static_assert(static_cast<size_t>(forms::ControlKind::Timer) == 9);
constexpr std::array<Builder, 10> kBuilders = {
    BuildLabel, BuildTextBox, BuildCheckBox, BuildButton, BuildComboBox,
    BuildPanel, BuildFrame,   BuildListView, BuildGrid,   BuildTimer};

}  // namespace

ControlBinding BuildWidget(forms::Control& control, QWidget* parent) {
    const auto kind = static_cast<size_t>(control.Kind());
    if (kind >= kBuilders.size()) return {};
    ControlBinding binding = kBuilders[kind](control, parent);
    if (binding.widget && binding.sync) {
        QWidget* w = binding.widget;
        auto sync = binding.sync;
        binding.sync = [&control, w, sync] {
            const QSignalBlocker block(w);
            sync();
            w->setEnabled(control.Enabled());
            w->setVisible(control.Visible());
        };
    }
    return binding;
}

}  // namespace morvane::qt
