#include "platform/Forms.h"

#include "platform/Trash.h"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace morvane::forms {

std::vector<MsgResult> ButtonResults(MsgButtons buttons) {
    switch (buttons) {
        case MsgButtons::OK:
            return {MsgResult::OK};
        case MsgButtons::OKCancel:
            return {MsgResult::OK, MsgResult::Cancel};
        case MsgButtons::AbortRetryIgnore:
            return {MsgResult::Abort, MsgResult::Retry, MsgResult::Ignore};
        case MsgButtons::YesNoCancel:
            return {MsgResult::Yes, MsgResult::No, MsgResult::Cancel};
        case MsgButtons::YesNo:
            return {MsgResult::Yes, MsgResult::No};
        case MsgButtons::RetryCancel:
            return {MsgResult::Retry, MsgResult::Cancel};
    }
    return {MsgResult::OK};
}

MsgResult DefaultResult(const MessageBoxRequest& box) {
    const auto results = ButtonResults(box.buttons);
    const size_t index = static_cast<size_t>(std::max(0, box.defaultButton));
    return index < results.size() ? results[index] : results.front();
}

// ---- Control

Control::Control(Form& form, std::string name, ControlKind kind)
    : form_(form), name_(std::move(name)), kind_(kind) {}

void Control::Changed() { form_.Kit().ControlChanged(*this); }

void Control::SetText(std::string text) {
    if (text == text_) return;
    text_ = std::move(text);
    Changed();
    if (onChange) onChange();
}

void Control::SetEnabled(bool on) {
    if (enabled_ == on) return;
    enabled_ = on;
    Changed();
}

void Control::SetVisible(bool on) {
    if (visible_ == on) return;
    visible_ = on;
    Changed();
}

void Control::Click() {
    if (!enabled_ || (!visible_ && kind_ != ControlKind::Timer)) return;
    if (onClick) onClick();
}

void Control::Enter() {
    if (onEnter) onEnter();
}

void TextBox::Select(int start, int length) {
    const int size = static_cast<int>(Text().size());
    selStart_ = std::clamp(start, 0, size);
    selLength_ = std::clamp(length, 0, size - selStart_);
    Changed();
}

void TextBox::SelectAll() { Select(0, static_cast<int>(Text().size())); }

void CheckBox::SetChecked(bool on) {
    if (checked_ == on) return;
    checked_ = on;
    Changed();
    if (onClick) onClick();
}

void ComboBox::Clear() {
    items_.clear();
    listIndex_ = -1;
    SetText({});
}

void ComboBox::SetListIndex(int index) {
    if (index < -1 || index >= static_cast<int>(items_.size())) index = -1;
    listIndex_ = index;
    SetText(index >= 0 ? items_[static_cast<size_t>(index)] : std::string());
}

void Grid::Resize(int rows, int cols) {
    cols_ = std::max(0, cols);
    cells_.resize(static_cast<size_t>(std::max(0, rows)));
    for (auto& row : cells_) row.resize(static_cast<size_t>(cols_));
    Changed();
}

Grid::Cell& Grid::At(int row, int col) {
    return cells_.at(static_cast<size_t>(row)).at(static_cast<size_t>(col));
}

const Grid::Cell& Grid::At(int row, int col) const {
    return cells_.at(static_cast<size_t>(row)).at(static_cast<size_t>(col));
}

void Grid::ClickCell(int row, int col) {
    if (!Enabled() || row < 0 || row >= Rows() || col < 0 || col >= cols_) return;
    if (onCellClick) onCellClick(row, col);
}

void Grid::ChooseInCell(int row, int col, const std::string& choice) {
    if (!Enabled() || row < 0 || row >= Rows() || col < 0 || col >= cols_) return;
    if (onCellChoice) onCellChoice(row, col, choice);
}

void Timer::SetInterval(int milliseconds) {
    interval_ = std::max(0, milliseconds);
    Rearm();
}

void Timer::SetTimerEnabled(bool on) {
    timerEnabled_ = on;
    Rearm();
}

bool Timer::Live() const { return Owner().Loaded() && timerEnabled_ && interval_ > 0; }

void Timer::Rearm() { Owner().Kit().TimerChanged(*this); }

void Timer::Fire() {
    if (Live() && onTimer) onTimer();
}

// ---- Form

Form::Form(Toolkit& toolkit, std::string name, std::string caption)
    : toolkit_(toolkit), name_(std::move(name)), caption_(std::move(caption)) {}

Form::~Form() {
    // The toolkit must forget the form's timers and windows before they go.
    const bool wasLoaded = loaded_;
    loaded_ = false;
    visible_ = false;
    for (const auto& c : controls_)
        if (c->Kind() == ControlKind::Timer) toolkit_.TimerDestroyed(static_cast<Timer&>(*c));
    if (wasLoaded) toolkit_.FormUnloaded(*this);
}

Control* Form::Find(std::string_view name) const {
    for (const auto& c : controls_)
        if (c->Name() == name) return c.get();
    return nullptr;
}

Control& Form::Require(std::string_view name) const {
    if (Control* c = Find(name)) return *c;
    throw std::logic_error("form " + name_ + " has no control " + std::string(name));
}

void Form::Load() {
    if (loaded_) return;
    loaded_ = true;
    OnLoad();
    for (const auto& c : controls_)
        if (c->Kind() == ControlKind::Timer) static_cast<Timer&>(*c).Rearm();
}

void Form::ShowModal(Form* owner) {
    Load();
    if (!loaded_) return;
    visible_ = true;
    toolkit_.RunModal(*this, owner);
    visible_ = false;
}

void Form::Hide() {
    if (!visible_) return;
    visible_ = false;
    toolkit_.FormHidden(*this);
}

bool Form::Unload(CloseReason reason) {
    if (!loaded_ || unloading_) return true;
    bool cancel = false;
    OnQueryUnload(reason, cancel);
    if (cancel) return false;
    unloading_ = true;
    OnUnload();
    loaded_ = false;
    for (const auto& c : controls_)
        if (c->Kind() == ControlKind::Timer) static_cast<Timer&>(*c).Rearm();
    Hide();
    toolkit_.FormUnloaded(*this);
    unloading_ = false;
    return true;
}

void Form::Activate() { OnActivate(); }

bool Form::RequestClose() { return Unload(CloseReason::ControlMenu); }

void Form::SetFocus(Control& control) {
    focused_ = &control;
    toolkit_.ControlChanged(control);
    control.Enter();
}

void Form::SetSize(int width, int height) {
    bounds_.width = width;
    bounds_.height = height;
}

void Form::SetPosition(int left, int top) {
    bounds_.left = left;
    bounds_.top = top;
}

void Form::PlaceOnWorkArea() {
    const Rect area = toolkit_.WorkArea();
    int left = area.left + static_cast<int>((area.width - bounds_.width) / 2.0);
    int top = area.top + static_cast<int>((area.height - bounds_.height) / 2.8);
    left = std::max(area.left, std::min(left, area.left + area.width - bounds_.width));
    top = std::max(area.top, std::min(top, area.top + area.height - bounds_.height));
    SetPosition(left, top);
}

std::vector<std::vector<Control*>> LayoutRows(const Form& form) {
    std::map<int, std::vector<Control*>> rows;
    int next = 0;
    for (const auto& c : form.Controls()) next = std::max(next, c->Row() + 1);
    const Control* previous = nullptr;
    for (const auto& c : form.Controls()) {
        if (c->Kind() == ControlKind::Timer) continue;
        if (c->Row() >= 0) {
            rows[c->Row()].push_back(c.get());
            previous = nullptr;
            continue;
        }
        const bool shareLine =
            previous && previous->Kind() == ControlKind::Button && c->Kind() == ControlKind::Button;
        rows[shareLine ? next - 1 : next++].push_back(c.get());
        previous = c.get();
    }
    std::vector<std::vector<Control*>> lines;
    for (auto& [row, controls] : rows) lines.push_back(std::move(controls));
    return lines;
}

std::vector<std::vector<Control*>> LayoutRowsIn(const Form& form, const Control* container) {
    std::vector<std::vector<Control*>> lines;
    for (auto& line : LayoutRows(form)) {
        std::erase_if(line, [container](const Control* c) { return c->Container() != container; });
        if (!line.empty()) lines.push_back(std::move(line));
    }
    return lines;
}

// ---- HeadlessToolkit

void HeadlessToolkit::RunModal(Form& form, Form* /*owner*/) {
    form.Activate();
    // Nobody can answer a dialog that is still up: cancel it as a closed window would.
    if (form.Visible() && !form.RequestClose()) form.Hide();
}

MsgResult HeadlessToolkit::MessageBox(const MessageBoxRequest& box) { return DefaultResult(box); }

int HeadlessToolkit::MoveToTrash(const std::string& path) { return platform::MoveToTrash(path); }

}  // namespace morvane::forms
