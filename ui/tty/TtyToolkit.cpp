#include "tty/TtyToolkit.h"

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iostream>

#include "component/ctrlMorvane.h"
#include "util/Text.h"

extern char** environ;

namespace morvane::tty {
namespace {

constexpr int kShellSuccess = 33;
constexpr int kShellNotFound = 2;
constexpr int kShellNoApplication = 31;

// Runs a program with one more argument, without a shell, and waits for it: its exit
// status, or -1 when it could not be started.
int Spawn(const std::vector<std::string>& command, const std::string& argument) {
    if (command.empty()) return -1;
    std::vector<std::string> args = command;
    args.push_back(argument);
    std::vector<char*> argv;
    for (auto& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    if (posix_spawnp(&pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) return -1;
    int status = 0;
    while (waitpid(pid, &status, 0) < 0)
        if (errno != EINTR) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Switches the terminal's echo off while a password is typed.
class EchoOff {
public:
    explicit EchoOff(int fd) : fd_(fd) {
        if (fd_ < 0 || !isatty(fd_) || tcgetattr(fd_, &saved_) != 0) {
            fd_ = -1;
            return;
        }
        termios quiet = saved_;
        quiet.c_lflag &= static_cast<tcflag_t>(~ECHO);
        tcsetattr(fd_, TCSANOW, &quiet);
    }
    ~EchoOff() {
        if (fd_ >= 0) tcsetattr(fd_, TCSANOW, &saved_);
    }
    EchoOff(const EchoOff&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;

private:
    int fd_;
    termios saved_{};
};

const char* IconMark(forms::MsgIcon icon) {
    switch (icon) {
        case forms::MsgIcon::Critical:
            return "(x) ";
        case forms::MsgIcon::Question:
            return "(?) ";
        case forms::MsgIcon::Exclamation:
            return "(!) ";
        case forms::MsgIcon::Information:
            return "(i) ";
        case forms::MsgIcon::None:
            break;
    }
    return "";
}

const char* ResultName(forms::MsgResult r) {
    switch (r) {
        case forms::MsgResult::OK:
            return "OK";
        case forms::MsgResult::Cancel:
            return "Cancel";
        case forms::MsgResult::Abort:
            return "Abort";
        case forms::MsgResult::Retry:
            return "Retry";
        case forms::MsgResult::Ignore:
            return "Ignore";
        case forms::MsgResult::Yes:
            return "Yes";
        case forms::MsgResult::No:
            return "No";
    }
    return "?";
}

// A 1-based choice among count, or 0 when the text is no such number.
size_t ChoiceOf(const std::string& text, size_t count) {
    if (text.empty() || text.size() > 6 ||
        !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return 0;
    const size_t n = std::stoul(text);
    return n >= 1 && n <= count ? n : 0;
}

// A caption without its access-key marks: "&T" shows as "T", "&&" as "&".
std::string Caption(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && i + 1 < text.size()) ++i;
        out += text[i];
    }
    return out;
}

std::string Rendered(const forms::Control& c) {
    using forms::ControlKind;
    switch (c.Kind()) {
        case ControlKind::Label:
        case ControlKind::Panel:
            return c.Text();
        case ControlKind::TextBox: {
            const auto& box = static_cast<const forms::TextBox&>(c);
            if (box.Password() && !box.Text().empty()) return "[********]";
            return "[" + box.Text() + "]";
        }
        case ControlKind::ComboBox:
            return "[" + c.Text() + " v]";
        case ControlKind::CheckBox:
            return std::string(static_cast<const forms::CheckBox&>(c).Checked() ? "[x] " : "[ ] ") +
                   c.Text();
        case ControlKind::Button:
            return "<" + Caption(c.Text()) + (c.Enabled() ? ">" : "> (-)");
        case ControlKind::Frame:
            return "-- " + c.Text() + " --";
        case ControlKind::ListView:
        case ControlKind::Grid:
        case ControlKind::Timer:
            break;
    }
    return {};
}

}  // namespace

TtyToolkit::TtyToolkit(std::istream& in, std::ostream& out, TtyOptions options)
    : in_(in), out_(out), options_(std::move(options)) {}

std::shared_ptr<TtyToolkit> TtyToolkit::ForStdio() {
    TtyOptions options;
    options.interactive = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
    options.inputFd = STDIN_FILENO;
    return std::make_shared<TtyToolkit>(std::cin, std::cout, options);
}

std::string TtyToolkit::FieldLabel(const forms::Control& control) const {
    // The label in front of a field in its row names it.
    const forms::Control* label = nullptr;
    for (const auto& c : control.Owner().Controls()) {
        if (c.get() == &control) break;
        if (c->Kind() == forms::ControlKind::Label && c->Row() >= 0 && c->Row() == control.Row())
            label = c.get();
    }
    return label ? Trim(ReplaceAll(label->Text(), ":", "")) : control.Name();
}

void TtyToolkit::Print(const forms::Form& form) {
    out_ << "\n=== " << form.Caption() << " ===\n";
    for (const auto& controls : forms::LayoutRows(form)) {
        std::string line;
        for (const auto* c : controls) {
            if (!c->Visible()) continue;
            if (c->Kind() == forms::ControlKind::ListView) {
                const auto& list = static_cast<const forms::ListView&>(*c);
                out_ << "  " << Join(list.columns, " | ") << "\n";
                for (size_t i = 0; i < list.items.size(); ++i)
                    out_ << "  " << (i + 1) << ". "
                         << (list.checkboxes ? (list.items[i].checked ? "[x] " : "[ ] ") : "")
                         << Join(list.items[i].texts, " | ") << "\n";
                continue;
            }
            if (c->Kind() == forms::ControlKind::Grid) {
                const auto& grid = static_cast<const forms::Grid&>(*c);
                if (!grid.headers.empty()) out_ << "  " << Join(grid.headers, " | ") << "\n";
                for (int r = 0; r < grid.Rows(); ++r) {
                    std::vector<std::string> cells;
                    for (int col = 0; col < grid.Cols(); ++col)
                        cells.push_back(grid.At(r, col).text);
                    out_ << "  " << (r + 1) << ". " << Join(cells, " | ") << "\n";
                }
                continue;
            }
            const std::string text = Rendered(*c);
            if (text.empty()) continue;
            if (!line.empty()) line += "  ";
            line += text;
        }
        if (!line.empty()) out_ << line << "\n";
    }
}

std::vector<TtyToolkit::Action> TtyToolkit::Actions(const forms::Form& form) const {
    using forms::ControlKind;
    std::vector<Action> actions;
    for (const auto& c : form.Controls()) {
        if (!c->Visible() || !c->Enabled()) continue;
        switch (c->Kind()) {
            case ControlKind::Button:
            case ControlKind::Panel:
                actions.push_back({Caption(c->Text()), c.get()});
                break;
            case ControlKind::Label:
                if (c->onClick) actions.push_back({c->Text(), c.get()});
                break;
            case ControlKind::TextBox:
                if (!static_cast<const forms::TextBox&>(*c).ReadOnly())
                    actions.push_back({"edit " + FieldLabel(*c), c.get()});
                break;
            case ControlKind::ComboBox:
                actions.push_back({"edit " + FieldLabel(*c), c.get()});
                break;
            case ControlKind::CheckBox:
                actions.push_back({"toggle " + c->Text(), c.get()});
                break;
            case ControlKind::ListView:
                actions.push_back({"check an item of the list", c.get()});
                break;
            case ControlKind::Grid:
                actions.push_back({"choose in a cell of the table", c.get()});
                break;
            case ControlKind::Frame:
            case ControlKind::Timer:
                break;
        }
    }
    return actions;
}

void TtyToolkit::Act(forms::Form& form, forms::Control& control) {
    using forms::ControlKind;
    std::string line;
    switch (control.Kind()) {
        case ControlKind::TextBox:
        case ControlKind::ComboBox: {
            form.SetFocus(control);
            const bool secret = control.Kind() == ControlKind::TextBox &&
                                static_cast<forms::TextBox&>(control).Password();
            if (control.Kind() == ControlKind::ComboBox) {
                const auto& items = static_cast<forms::ComboBox&>(control).Items();
                for (size_t i = 0; i < items.size(); ++i)
                    out_ << "  #" << (i + 1) << " " << items[i] << "\n";
            }
            out_ << FieldLabel(control) << " (Enter keeps, - clears): " << std::flush;
            if (!ReadLine(line, secret)) return;
            if (secret) out_ << "\n";
            if (line.empty()) return;
            if (line == "-") line.clear();
            if (control.Kind() == ControlKind::ComboBox && line.size() > 1 && line[0] == '#') {
                auto& combo = static_cast<forms::ComboBox&>(control);
                if (const size_t n = ChoiceOf(line.substr(1), combo.Items().size())) {
                    combo.SetListIndex(static_cast<int>(n) - 1);
                    return;
                }
            }
            control.SetText(line);
            return;
        }
        case ControlKind::CheckBox: {
            auto& check = static_cast<forms::CheckBox&>(control);
            check.SetChecked(!check.Checked());
            return;
        }
        case ControlKind::ListView: {
            auto& list = static_cast<forms::ListView&>(control);
            out_ << "item number: " << std::flush;
            if (!ReadLine(line)) return;
            if (const size_t n = ChoiceOf(Trim(line), list.items.size())) {
                auto& item = list.items[n - 1];
                item.checked = !item.checked;
                item.selected = true;
                list.Click();
            }
            return;
        }
        case ControlKind::Grid: {
            auto& grid = static_cast<forms::Grid&>(control);
            out_ << "row and column (1 1): " << std::flush;
            if (!ReadLine(line)) return;
            const auto parts = Split(Trim(line), " ");
            if (parts.size() != 2) return;
            const size_t r = ChoiceOf(parts[0], static_cast<size_t>(grid.Rows()));
            const size_t col = ChoiceOf(parts[1], static_cast<size_t>(grid.Cols()));
            if (!r || !col) return;
            const int row = static_cast<int>(r) - 1, column = static_cast<int>(col) - 1;
            grid.ClickCell(row, column);
            const auto choices = grid.At(row, column).choices;
            if (choices.empty()) return;
            for (size_t i = 0; i < choices.size(); ++i)
                out_ << "  " << (i + 1) << ") " << choices[i] << "\n";
            out_ << "choice: " << std::flush;
            if (!ReadLine(line)) return;
            if (const size_t n = ChoiceOf(Trim(line), choices.size()))
                grid.ChooseInCell(row, column, choices[n - 1]);
            return;
        }
        default:
            control.Click();
            return;
    }
}

void TtyToolkit::RunModal(forms::Form& form, forms::Form* /*owner*/) {
    form.Activate();
    while (form.Visible()) {
        Print(form);
        if (!options_.interactive) {
            out_ << "(no terminal: dialog cancelled)\n";
            if (form.Visible() && !form.RequestClose()) form.Hide();
            break;
        }
        const auto actions = Actions(form);
        for (size_t i = 0; i < actions.size(); ++i)
            out_ << "  " << (i + 1) << ") " << actions[i].label << "\n";
        out_ << "  0) close window\n> " << std::flush;
        std::string line;
        if (!ReadLine(line)) {
            // The input has ended: nobody can answer any more.
            out_ << "\n";
            if (form.Visible() && !form.RequestClose()) form.Hide();
            break;
        }
        line = Trim(line);
        if (line == "0") {
            if (!form.RequestClose() && form.Visible()) out_ << "(this dialog cannot be closed)\n";
            continue;
        }
        forms::Control* chosen = nullptr;
        if (const size_t n = ChoiceOf(line, actions.size())) chosen = actions[n - 1].control;
        for (const auto& a : actions)
            if (!chosen && a.control->Name() == line) chosen = a.control;
        if (!chosen) {
            out_ << "?\n";
            continue;
        }
        Act(form, *chosen);
    }
}

forms::MsgResult TtyToolkit::MessageBox(const forms::MessageBoxRequest& box) {
    out_ << "\n[" << box.title << "] " << IconMark(box.icon) << ReplaceAll(box.text, "\r\n", "\n")
         << "\n";
    const auto results = forms::ButtonResults(box.buttons);
    const forms::MsgResult fallback = forms::DefaultResult(box);
    if (results.size() == 1) return fallback;
    if (!options_.interactive) {
        out_ << "(no terminal: " << ResultName(fallback) << ")\n";
        return fallback;
    }
    while (true) {
        for (size_t i = 0; i < results.size(); ++i)
            out_ << "  " << (i + 1) << ") " << ResultName(results[i])
                 << (results[i] == fallback ? " *" : "") << "\n";
        out_ << "> " << std::flush;
        std::string line;
        if (!ReadLine(line)) return fallback;
        line = Trim(line);
        if (line.empty()) return fallback;
        if (const size_t n = ChoiceOf(line, results.size())) return results[n - 1];
        out_ << "?\n";
    }
}

bool TtyToolkit::ReadLine(std::string& line, bool secret) {
    PumpTimers();
    if (options_.interactive && options_.inputFd >= 0) {
        // Wait for the line with the timers ticking, unless it is already buffered.
        while (in_.rdbuf()->in_avail() <= 0) {
            int timeout = -1;
            if (!due_.empty()) {
                auto next = std::min_element(due_.begin(), due_.end(), [](auto& a, auto& b) {
                                return a.second < b.second;
                            })->second;
                const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(
                    next - std::chrono::steady_clock::now());
                timeout = static_cast<int>(std::clamp<long long>(wait.count(), 0, 60000));
            }
            pollfd p{options_.inputFd, POLLIN, 0};
            const int ready = poll(&p, 1, timeout);
            if (ready > 0 || (ready < 0 && errno != EINTR)) break;
            PumpTimers();
        }
    }
    const EchoOff quiet(secret && options_.interactive ? options_.inputFd : -1);
    if (!std::getline(in_, line)) return false;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
}

void TtyToolkit::TimerChanged(forms::Timer& timer) {
    if (!timer.Live()) {
        due_.erase(&timer);
        return;
    }
    due_[&timer] = std::chrono::steady_clock::now() + std::chrono::milliseconds(timer.Interval());
}

void TtyToolkit::TimerDestroyed(forms::Timer& timer) { due_.erase(&timer); }

void TtyToolkit::PumpTimers() {
    const auto now = std::chrono::steady_clock::now();
    std::vector<forms::Timer*> ready;
    for (const auto& [timer, when] : due_)
        if (when <= now) ready.push_back(timer);
    for (forms::Timer* timer : ready) {
        // An earlier tick may have stopped or destroyed this timer.
        const auto it = due_.find(timer);
        if (it == due_.end() || !timer->Live()) continue;
        it->second = now + std::chrono::milliseconds(timer->Interval());
        timer->Fire();
    }
}

int TtyToolkit::OpenUrl(const std::string& url) {
    out_ << "-> " << url << "\n" << std::flush;
    const int status = Spawn(options_.openCommand, url);
    if (status == 0) return kShellSuccess;
    // xdg-open's 2 is a file that does not exist; anything else means no usable application.
    return status == 2 ? kShellNotFound : kShellNoApplication;
}

int TtyToolkit::MoveToTrash(const std::string& path) {
    return Spawn(options_.trashCommand, path) == 0 ? 0 : 1;
}

std::shared_ptr<TtyToolkit> InstallTtyToolkit() {
    auto kit = TtyToolkit::ForStdio();
    ctrlMorvane::UseToolkit(kit);
    return kit;
}

}  // namespace morvane::tty
