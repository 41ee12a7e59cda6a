// A progress bar kept on the terminal's last line, above which the run's status lines scroll
// instead of running into it.
#pragma once

#include <memory>
#include <ostream>
#include <string>

namespace morvane::cli {

class ProgressLine {
public:
    // `lines` takes the status lines, `bar` the bar; both are one terminal. Disabled, the
    // lines pass straight through and nothing is drawn.
    ProgressLine(std::ostream& lines, std::ostream& bar, bool enabled);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Where status lines go: each one clears the bar first and draws it again after.
    std::ostream& Lines();
    void Show(const std::string& text);
    void Clear();

private:
    class Buffer;
    void Hide();
    void Redraw();

    std::ostream& lines_;
    std::ostream& bar_;
    std::string text_;
    bool shown_ = false;
    std::unique_ptr<Buffer> buffer_;
    std::unique_ptr<std::ostream> stream_;
};

}  // namespace morvane::cli
