#include "support/ScriptedToolkit.h"

#include <filesystem>

namespace morvane::test {

void ScriptedToolkit::OnShow(const std::string& formName, Script script) {
    scripts_[formName].push_back(std::move(script));
}

void ScriptedToolkit::ClearRecords() {
    boxes_.clear();
    shown_.clear();
    unanswered_.clear();
    urls_.clear();
    pointerResets_ = 0;
}

void ScriptedToolkit::RunModal(forms::Form& form, forms::Form* owner) {
    shown_.push_back({form.Name(), owner ? owner->Name() : std::string()});
    form.Activate();
    if (!form.Visible()) return;
    auto& queue = scripts_[form.Name()];
    if (!queue.empty()) {
        Script script = std::move(queue.front());
        queue.pop_front();
        script(form);
    } else {
        unanswered_.push_back(form.Name());
    }
    if (form.Visible() && !form.RequestClose()) form.Hide();
}

forms::MsgResult ScriptedToolkit::MessageBox(const forms::MessageBoxRequest& box) {
    forms::MsgResult answer = forms::DefaultResult(box);
    if (!answers_.empty()) {
        answer = answers_.front();
        answers_.pop_front();
    }
    boxes_.push_back({box.text, box.title, box.icon, box.buttons, answer});
    return answer;
}

void ScriptedToolkit::TimerChanged(forms::Timer& timer) {
    if (timer.Live())
        live_.insert(&timer);
    else
        live_.erase(&timer);
}

forms::Timer* ScriptedToolkit::FindLive(const std::string& formName,
                                        const std::string& timerName) const {
    for (forms::Timer* t : live_)
        if (t->Owner().Name() == formName && t->Name() == timerName) return t;
    return nullptr;
}

bool ScriptedToolkit::FireTimer(const std::string& formName, const std::string& timerName) {
    forms::Timer* t = FindLive(formName, timerName);
    if (!t) return false;
    t->Fire();
    return true;
}

bool ScriptedToolkit::TimerLive(const std::string& formName, const std::string& timerName) const {
    return FindLive(formName, timerName) != nullptr;
}

int ScriptedToolkit::OpenUrl(const std::string& url) {
    urls_.push_back(url);
    return openUrlResult_;
}

int ScriptedToolkit::MoveToTrash(const std::string& path) {
    std::error_code ec;
    return std::filesystem::remove(path, ec) ? 0 : 1;
}

}  // namespace morvane::test
