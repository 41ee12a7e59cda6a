#include "util/Value.h"

#include <cstdio>

namespace morvane {

std::string DoubleText(double d) {
    // Fifteen significant digits, the host's own default number form.
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.15G", d);
    return buf;
}

std::string Value::ToText() const {
    struct Visitor {
        std::string operator()(EmptyValue) const { return {}; }
        std::string operator()(NullValue) const { return {}; }
        std::string operator()(bool b) const { return b ? "True" : "False"; }
        std::string operator()(std::int32_t n) const { return std::to_string(n); }
        std::string operator()(double d) const { return DoubleText(d); }
        std::string operator()(const std::string& s) const { return s; }
        std::string operator()(DateValue d) const { return d.Text(); }
    };
    return std::visit(Visitor{}, v_);
}

std::optional<DateValue> AsDate(const Value& v) {
    if (v.IsDateValue()) return v.AsDate();
    if (v.IsText()) return DateValue::Parse(v.AsText());
    return std::nullopt;
}

}  // namespace morvane
