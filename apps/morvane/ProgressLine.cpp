#include "ProgressLine.h"

#include <streambuf>
#include <string_view>

namespace morvane::cli {
namespace {

// Back to the line's start and erase it.
constexpr std::string_view kEraseLine = "\r\033[K";

}  // namespace

class ProgressLine::Buffer final : public std::streambuf {
public:
    explicit Buffer(ProgressLine& owner) : owner_(owner) {}

protected:
    std::streamsize xsputn(const char* s, std::streamsize n) override {
        std::streamsize done = 0;
        while (done < n) {
            const std::string_view rest(s + done, static_cast<std::size_t>(n - done));
            const std::size_t end = rest.find('\n');
            const std::string_view piece =
                end == std::string_view::npos ? rest : rest.substr(0, end + 1);
            if (atLineStart_) owner_.Hide();
            atLineStart_ = false;
            owner_.lines_.write(piece.data(), static_cast<std::streamsize>(piece.size()));
            if (piece.back() == '\n') {
                owner_.lines_.flush();
                atLineStart_ = true;
                owner_.Redraw();
            }
            done += static_cast<std::streamsize>(piece.size());
        }
        return n;
    }
    int_type overflow(int_type ch) override {
        if (traits_type::eq_int_type(ch, traits_type::eof())) return traits_type::not_eof(ch);
        const char c = traits_type::to_char_type(ch);
        xsputn(&c, 1);
        return ch;
    }
    int sync() override {
        owner_.lines_.flush();
        return 0;
    }

private:
    ProgressLine& owner_;
    bool atLineStart_ = true;
};

ProgressLine::ProgressLine(std::ostream& lines, std::ostream& bar, bool enabled)
    : lines_(lines), bar_(bar) {
    if (!enabled) return;
    buffer_ = std::make_unique<Buffer>(*this);
    stream_ = std::make_unique<std::ostream>(buffer_.get());
}

ProgressLine::~ProgressLine() {
    if (stream_) stream_->flush();
    Clear();
}

std::ostream& ProgressLine::Lines() { return stream_ ? *stream_ : lines_; }

void ProgressLine::Show(const std::string& text) {
    if (!stream_) return;
    text_ = text;
    bar_ << kEraseLine << text_ << std::flush;
    shown_ = true;
}

void ProgressLine::Clear() {
    Hide();
    text_.clear();
}

void ProgressLine::Hide() {
    if (!shown_) return;
    bar_ << kEraseLine << std::flush;
    shown_ = false;
}

void ProgressLine::Redraw() {
    if (text_.empty()) return;
    bar_ << text_ << std::flush;
    shown_ = true;
}

}  // namespace morvane::cli
