// The tests' toolkit: records every message box and modal show, answers them from a script,
// and fires timers by hand.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/Forms.h"

namespace morvane::test {

class ScriptedToolkit : public forms::Toolkit {
public:
    struct Box {
        std::string text;
        std::string title;
        forms::MsgIcon icon;
        forms::MsgButtons buttons;
        forms::MsgResult answer;
    };
    struct Shown {
        std::string form;
        std::string owner;  // "" when shown without an owner
    };
    using Script = std::function<void(forms::Form&)>;

    // The next box is answered so; without an answer a box takes its default button.
    void AnswerNextBox(forms::MsgResult answer) { answers_.push_back(answer); }
    // The next modal show of this form runs the script once the form is active. A dialog
    // still up after its script, or without one, is closed as by its window's close button.
    void OnShow(const std::string& formName, Script script);

    const std::vector<Box>& Boxes() const { return boxes_; }
    const std::vector<Shown>& ShownForms() const { return shown_; }
    // Forms that stayed up with no script to answer them.
    const std::vector<std::string>& Unanswered() const { return unanswered_; }
    const std::vector<std::string>& OpenedUrls() const { return urls_; }
    int PointerResets() const { return pointerResets_; }
    void ClearRecords();

    // Fires a live timer of a loaded form; false when there is none.
    bool FireTimer(const std::string& formName, const std::string& timerName);
    bool TimerLive(const std::string& formName, const std::string& timerName) const;

    void SetOpenUrlResult(int code) { openUrlResult_ = code; }

    void RunModal(forms::Form& form, forms::Form* owner) override;
    forms::MsgResult MessageBox(const forms::MessageBoxRequest& box) override;
    void TimerChanged(forms::Timer& timer) override;
    void TimerDestroyed(forms::Timer& timer) override { live_.erase(&timer); }
    void SetBusyPointer(bool busy) override {
        if (!busy) ++pointerResets_;
    }
    int OpenUrl(const std::string& url) override;
    int MoveToTrash(const std::string& path) override;

private:
    forms::Timer* FindLive(const std::string& formName, const std::string& timerName) const;

    std::deque<forms::MsgResult> answers_;
    std::map<std::string, std::deque<Script>> scripts_;
    std::vector<Box> boxes_;
    std::vector<Shown> shown_;
    std::vector<std::string> unanswered_;
    std::vector<std::string> urls_;
    std::set<forms::Timer*> live_;
    int pointerResets_ = 0;
    int openUrlResult_ = 33;
};

}  // namespace morvane::test
