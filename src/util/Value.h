// A loosely typed value, as database fields and dispatch arguments carry them:
// Empty, Null, a Boolean, a Long, a Double, a text or a date.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "util/DateValue.h"

namespace morvane {

struct EmptyValue {
    friend bool operator==(EmptyValue, EmptyValue) { return true; }
};
struct NullValue {
    friend bool operator==(NullValue, NullValue) { return true; }
};

class Value {
public:
    using Storage =
        std::variant<EmptyValue, NullValue, bool, std::int32_t, double, std::string, DateValue>;

    Value() = default;
    Value(EmptyValue) {}
    Value(NullValue v) : v_(v) {}
    Value(bool b) : v_(b) {}
    Value(std::int32_t n) : v_(n) {}
    Value(double d) : v_(d) {}
    Value(std::string s) : v_(std::move(s)) {}
    Value(const char* s) : v_(std::string(s)) {}
    Value(DateValue d) : v_(d) {}

    static Value Null() { return Value(NullValue{}); }

    bool IsEmpty() const { return std::holds_alternative<EmptyValue>(v_); }
    bool IsNull() const { return std::holds_alternative<NullValue>(v_); }
    bool IsBool() const { return std::holds_alternative<bool>(v_); }
    bool IsLong() const { return std::holds_alternative<std::int32_t>(v_); }
    bool IsDouble() const { return std::holds_alternative<double>(v_); }
    bool IsText() const { return std::holds_alternative<std::string>(v_); }
    bool IsDateValue() const { return std::holds_alternative<DateValue>(v_); }
    bool IsNumber() const { return IsBool() || IsLong() || IsDouble(); }

    bool AsBool() const { return std::get<bool>(v_); }
    std::int32_t AsLong() const { return std::get<std::int32_t>(v_); }
    double AsDouble() const { return std::get<double>(v_); }
    const std::string& AsText() const { return std::get<std::string>(v_); }
    DateValue AsDate() const { return std::get<DateValue>(v_); }

    // The value as text: "" for Empty and Null, "True"/"False", decimal numbers,
    // and the date's own text form.
    std::string ToText() const;

    const Storage& Raw() const { return v_; }
    friend bool operator==(const Value& a, const Value& b) { return a.v_ == b.v_; }

private:
    Storage v_;
};

// Shortest decimal text that reads back as the same double ("0.5", "-1.15740740740741E-05"
// style exponents are not used: the text is plain decimal or scientific as needed).
std::string DoubleText(double d);

// A value as a date when it is one or a text that reads as one.
std::optional<DateValue> AsDate(const Value& v);

}  // namespace morvane
