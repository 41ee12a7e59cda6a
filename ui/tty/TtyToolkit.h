// The terminal toolkit of the forms layer: forms are printed, text boxes prompted, buttons
// offered as a numbered choice, message boxes printed with their title. Without a person
// at the terminal every box takes its default button and every dialog is cancelled.
#pragma once

#include <chrono>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/Forms.h"

namespace morvane::tty {

struct TtyOptions {
    // Whether a person answers; ForStdio sets it when stdin and stdout are terminals.
    bool interactive = false;
    // The descriptor behind the input stream, if any: waited on with the timers ticking,
    // and its echo switched off for passwords.
    int inputFd = -1;
    // Programs that open an address and move a file to the trash; the argument is appended.
    std::vector<std::string> openCommand = {"xdg-open"};
    std::vector<std::string> trashCommand = {"gio", "trash"};
};

class TtyToolkit final : public forms::Toolkit {
public:
    TtyToolkit(std::istream& in, std::ostream& out, TtyOptions options);
    // On std::cin and std::cout, interactive when both are terminals.
    static std::shared_ptr<TtyToolkit> ForStdio();

    void RunModal(forms::Form& form, forms::Form* owner) override;
    forms::MsgResult MessageBox(const forms::MessageBoxRequest& box) override;
    void DoEvents() override { PumpTimers(); }
    void TimerChanged(forms::Timer& timer) override;
    void TimerDestroyed(forms::Timer& timer) override;
    int OpenUrl(const std::string& url) override;
    int MoveToTrash(const std::string& path) override;

    // Fires every live timer that is due; the host's loop may call it between steps.
    void PumpTimers();
    bool Interactive() const { return options_.interactive; }

private:
    struct Action {
        std::string label;
        forms::Control* control;
    };
    void Print(const forms::Form& form);
    std::vector<Action> Actions(const forms::Form& form) const;
    void Act(forms::Form& form, forms::Control& control);
    // A line of input, with the timers ticking while it is awaited; none at the end of input.
    bool ReadLine(std::string& line, bool secret = false);
    std::string FieldLabel(const forms::Control& control) const;

    std::istream& in_;
    std::ostream& out_;
    TtyOptions options_;
    std::map<forms::Timer*, std::chrono::steady_clock::time_point> due_;
};

// Creates the terminal toolkit on stdin and stdout and makes it the component's toolkit.
std::shared_ptr<TtyToolkit> InstallTtyToolkit();

}  // namespace morvane::tty
