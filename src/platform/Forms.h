// The toolkit-neutral forms layer: dialogs declare their controls by name and handle their
// events here, and a Toolkit (Qt, the terminal, or the tests' scripted one) renders them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::forms {

class Form;
class Toolkit;

enum class ControlKind {
    Label,
    TextBox,
    CheckBox,
    Button,
    ComboBox,
    Panel,
    Frame,
    ListView,
    Grid,
    Timer
};

// Message box icons and buttons, with the host's own numbers.
enum class MsgIcon { None = 0, Critical = 16, Question = 32, Exclamation = 48, Information = 64 };
enum class MsgButtons {
    OK = 0,
    OKCancel = 1,
    AbortRetryIgnore = 2,
    YesNoCancel = 3,
    YesNo = 4,
    RetryCancel = 5
};
enum class MsgResult { OK = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };

struct MessageBoxRequest {
    std::string text;
    std::string title;
    MsgIcon icon = MsgIcon::None;
    MsgButtons buttons = MsgButtons::OK;
    int defaultButton = 0;  // 0 for the first button, 1 for the second, ...
    std::string helpFile;
    std::int32_t helpContext = 0;
};
// The result of pressing the default button of a box.
MsgResult DefaultResult(const MessageBoxRequest& box);
// The results of a box's buttons, left to right.
std::vector<MsgResult> ButtonResults(MsgButtons buttons);

// Why a form is asked to close, with the host's numbers.
enum class CloseReason { ControlMenu = 0, Code = 1, AppWindows = 2, TaskManager = 3 };

struct Rect {
    int left = 0, top = 0, width = 0, height = 0;
};

class Control {
public:
    Control(Form& form, std::string name, ControlKind kind);
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    const std::string& Name() const { return name_; }
    ControlKind Kind() const { return kind_; }
    Form& Owner() const { return form_; }

    const std::string& Text() const { return text_; }
    // Fires the change event when the text really changes.
    void SetText(std::string text);
    bool Enabled() const { return enabled_; }
    void SetEnabled(bool on);
    bool Visible() const { return visible_; }
    void SetVisible(bool on);
    int TabIndex() const { return tabIndex_; }
    void SetTabIndex(int index) { tabIndex_ = index; }
    // Layout hint for toolkits: the row of the form this control sits in (0 based).
    int Row() const { return row_; }
    void SetRow(int row) { row_ = row; }
    // The frame that holds the control, none when the form itself does.
    const Control* Container() const { return container_; }
    void SetContainer(const Control* frame) { container_ = frame; }

    // Event handlers, set by the form that declares the control.
    std::function<void()> onClick;
    std::function<void()> onChange;
    std::function<void()> onEnter;  // the control receives the focus

    // What a toolkit calls when the user acts. A disabled or hidden control ignores it.
    void Click();
    void Enter();

protected:
    void Changed();

private:
    Form& form_;
    std::string name_;
    ControlKind kind_;
    std::string text_;
    bool enabled_ = true;
    bool visible_ = true;
    int tabIndex_ = 0;
    int row_ = -1;
    const Control* container_ = nullptr;
};

class Label final : public Control {
public:
    Label(Form& f, std::string name) : Control(f, std::move(name), ControlKind::Label) {}
};

class TextBox final : public Control {
public:
    TextBox(Form& f, std::string name) : Control(f, std::move(name), ControlKind::TextBox) {}
    bool Password() const { return password_; }
    void SetPassword(bool on) { password_ = on; }
    bool Multiline() const { return multiline_; }
    void SetMultiline(bool on) { multiline_ = on; }
    bool ReadOnly() const { return readOnly_; }
    void SetReadOnly(bool on) { readOnly_ = on; }
    int SelStart() const { return selStart_; }
    int SelLength() const { return selLength_; }
    void Select(int start, int length);
    void SelectAll();

private:
    bool password_ = false, multiline_ = false, readOnly_ = false;
    int selStart_ = 0, selLength_ = 0;
};

class CheckBox final : public Control {
public:
    CheckBox(Form& f, std::string name) : Control(f, std::move(name), ControlKind::CheckBox) {}
    bool Checked() const { return checked_; }
    // Fires the click event when the state changes, as the host's check boxes do.
    void SetChecked(bool on);

private:
    bool checked_ = false;
};

class Button final : public Control {
public:
    Button(Form& f, std::string name) : Control(f, std::move(name), ControlKind::Button) {}
    bool IsDefault() const { return default_; }
    void SetDefault(bool on) { default_ = on; }
    bool IsCancel() const { return cancel_; }
    void SetCancel(bool on) { cancel_ = on; }

private:
    bool default_ = false, cancel_ = false;
};

// A panel or label that reacts to a click, such as a link.
class Panel final : public Control {
public:
    Panel(Form& f, std::string name) : Control(f, std::move(name), ControlKind::Panel) {}
};

class Frame final : public Control {
public:
    Frame(Form& f, std::string name) : Control(f, std::move(name), ControlKind::Frame) {}
};

class ComboBox final : public Control {
public:
    ComboBox(Form& f, std::string name) : Control(f, std::move(name), ControlKind::ComboBox) {}
    const std::vector<std::string>& Items() const { return items_; }
    void AddItem(std::string item) { items_.push_back(std::move(item)); }
    void Clear();
    int ListIndex() const { return listIndex_; }
    // Selects an item (or -1 for none) and shows its text.
    void SetListIndex(int index);

private:
    std::vector<std::string> items_;
    int listIndex_ = -1;
};

class ListView final : public Control {
public:
    ListView(Form& f, std::string name) : Control(f, std::move(name), ControlKind::ListView) {}
    struct Item {
        std::vector<std::string> texts;  // one per column
        std::string key;
        bool checked = false;
        bool selected = false;
    };
    std::vector<std::string> columns;
    std::vector<Item> items;
    bool checkboxes = false;
};

// A cell's back colour: an RGB value written 0xBBGGRR, as the host writes colours, or one of
// the system colours.
inline constexpr std::int32_t kColorDefault = -1;
inline constexpr std::int32_t kColorButtonFace = -2;
inline constexpr std::int32_t kColorButtonShadow = -3;

class Grid final : public Control {
public:
    Grid(Form& f, std::string name) : Control(f, std::move(name), ControlKind::Grid) {}
    struct Cell {
        std::string text;
        std::string data;                  // a value kept with the cell, not shown
        std::vector<std::string> choices;  // a drop-down list for this cell, if any
        bool locked = false;
        std::int32_t backColor = kColorDefault;
    };

    void Resize(int rows, int cols);
    int Rows() const { return static_cast<int>(cells_.size()); }
    int Cols() const { return cols_; }
    Cell& At(int row, int col);
    const Cell& At(int row, int col) const;
    std::vector<std::string> headers;
    int fixedRows = 0;

    // What a toolkit calls when the user clicks a cell or picks from its list.
    std::function<void(int row, int col)> onCellClick;
    std::function<void(int row, int col, const std::string& choice)> onCellChoice;
    void ClickCell(int row, int col);
    void ChooseInCell(int row, int col, const std::string& choice);

private:
    std::vector<std::vector<Cell>> cells_;
    int cols_ = 0;
};

// A timer of the message loop. It ticks only while its form is loaded, it is enabled and
// its interval is above 0.
class Timer final : public Control {
public:
    Timer(Form& f, std::string name) : Control(f, std::move(name), ControlKind::Timer) {
        SetVisible(false);
    }
    int Interval() const { return interval_; }
    void SetInterval(int milliseconds);
    bool TimerEnabled() const { return timerEnabled_; }
    void SetTimerEnabled(bool on);
    bool Live() const;

    std::function<void()> onTimer;
    // What a toolkit calls on every tick.
    void Fire();

private:
    friend class Form;
    void Rearm();
    int interval_ = 0;
    bool timerEnabled_ = false;
};

class Form {
public:
    Form(Toolkit& toolkit, std::string name, std::string caption);
    virtual ~Form();
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    const std::string& Name() const { return name_; }
    const std::string& Caption() const { return caption_; }
    void SetCaption(std::string caption) { caption_ = std::move(caption); }
    Toolkit& Kit() const { return toolkit_; }

    const std::vector<std::unique_ptr<Control>>& Controls() const { return controls_; }
    Control* Find(std::string_view name) const;
    template <class T>
    T& Get(std::string_view name) const {
        return dynamic_cast<T&>(Require(name));
    }

    bool Loaded() const { return loaded_; }
    bool Visible() const { return visible_; }
    // Loads once: fires the load event and lets the form's timers tick.
    void Load();
    // Shows the form modally over owner (or none) and returns when it is hidden.
    void ShowModal(Form* owner);
    // Ends a modal show; the form stays loaded.
    void Hide();
    // Closes for good: stops the timers and, when shown, ends the show. Returns false if the
    // form refused (only a user's close can be refused).
    bool Unload(CloseReason reason = CloseReason::Code);
    // What a toolkit calls when the form becomes the active window.
    void Activate();
    // What a toolkit calls when the user closes the window or a toolkit cancels a dialog
    // it cannot show. Returns whether the form closed.
    bool RequestClose();

    Control* Focused() const { return focused_; }
    // Moves the focus and fires the control's enter event.
    void SetFocus(Control& control);

    // Size in pixels, set by the form or by the toolkit after layout.
    int Width() const { return bounds_.width; }
    int Height() const { return bounds_.height; }
    const Rect& Bounds() const { return bounds_; }
    void SetSize(int width, int height);
    // Sets the form on the work area at (free width / 2.0, free height / 2.8), inside it.
    void PlaceOnWorkArea();
    void SetPosition(int left, int top);

    // The same, on a given row of the layout.
    template <class T>
    T& AddAt(int row, std::string name, std::string text = {}) {
        T& ref = Add<T>(std::move(name), std::move(text));
        ref.SetRow(row);
        return ref;
    }

    // Controls are declared by the form class, in tab order.
    template <class T>
    T& Add(std::string name, std::string text = {}) {
        auto control = std::make_unique<T>(*this, std::move(name));
        T& ref = *control;
        ref.SetText(std::move(text));
        ref.SetTabIndex(static_cast<int>(controls_.size()));
        controls_.push_back(std::move(control));
        return ref;
    }

protected:
    virtual void OnLoad() {}
    virtual void OnActivate() {}
    virtual void OnQueryUnload(CloseReason /*reason*/, bool& /*cancel*/) {}
    virtual void OnUnload() {}

private:
    Control& Require(std::string_view name) const;

    Toolkit& toolkit_;
    std::string name_;
    std::string caption_;
    std::vector<std::unique_ptr<Control>> controls_;
    Control* focused_ = nullptr;
    Rect bounds_{0, 0, 400, 200};
    bool loaded_ = false;
    bool visible_ = false;
    bool unloading_ = false;
};

// The form's controls (timers aside) in lines for a toolkit to lay out: the lines of the row
// hints in row order, then one line per control without a hint, neighbouring buttons sharing.
std::vector<std::vector<Control*>> LayoutRows(const Form& form);
// The same lines, with only the controls that `container` holds (nullptr: the form itself).
std::vector<std::vector<Control*>> LayoutRowsIn(const Form& form, const Control* container);

// What renders forms and runs the message loop. One per process, chosen by the host.
class Toolkit {
public:
    virtual ~Toolkit() = default;

    // Runs a modal show of a form that Form::ShowModal has made visible; returns when the
    // form is no longer visible. It calls form.Activate() when the form becomes active.
    virtual void RunModal(Form& form, Form* owner) = 0;
    // The form was hidden or unloaded: a running modal show of it is to end.
    virtual void FormHidden(Form& /*form*/) {}
    virtual void FormUnloaded(Form& /*form*/) {}
    // A control's text, state or focus changed and may need repainting.
    virtual void ControlChanged(Control& /*control*/) {}

    virtual MsgResult MessageBox(const MessageBoxRequest& box) = 0;
    // Lets pending window messages be handled once.
    virtual void DoEvents() {}

    // A timer's state changed: arm it when timer.Live(), else disarm it.
    virtual void TimerChanged(Timer& timer) = 0;
    virtual void TimerDestroyed(Timer& timer) = 0;

    // The part of the screen not taken by task bars.
    virtual Rect WorkArea() const { return {0, 0, 1280, 800}; }
    // The mouse pointer: busy or the default.
    virtual void SetBusyPointer(bool /*busy*/) {}

    virtual std::string ClipboardText() const { return clipboard_; }
    virtual void SetClipboardText(const std::string& text) { clipboard_ = text; }

    // Opens an address (https:, mailto:) with the user's application. Returns a code as the
    // shell gives one: above 32 on success, else 2 (not found), 5 (access denied), 31 (no
    // application) and the like.
    virtual int OpenUrl(const std::string& url) = 0;
    // Moves a file to the trash. Returns 0 on success.
    virtual int MoveToTrash(const std::string& path) = 0;

private:
    std::string clipboard_;
};

// A toolkit for a process with nobody at the screen: boxes take their default button,
// dialogs that wait for a person are cancelled, timers never tick.
class HeadlessToolkit : public Toolkit {
public:
    void RunModal(Form& form, Form* owner) override;
    MsgResult MessageBox(const MessageBoxRequest& box) override;
    void TimerChanged(Timer&) override {}
    void TimerDestroyed(Timer&) override {}
    int OpenUrl(const std::string&) override { return 31; }
    int MoveToTrash(const std::string& path) override;
};

}  // namespace morvane::forms
