// A point in time as the host counts it: days since 1899-12-30, one second being 1/86400.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace morvane {

struct CivilTime {
    int year = 1899, month = 12, day = 30;
    int hour = 0, minute = 0, second = 0;
};

class DateValue {
public:
    static constexpr double kOneSecond = 1.0 / 86400.0;

    constexpr DateValue() = default;
    constexpr explicit DateValue(double days) : days_(days) {}

    static DateValue FromCivil(const CivilTime& t);
    // Parses the stamp forms met in the system: "yyyy/MM/dd[ H:mm[:ss]]", the same with
    // "-" (the database's text), "yyyy年M月d日", and "M月d日" in the current year.
    static std::optional<DateValue> Parse(std::string_view text);
    // The same result as Parse, read without its general walk when the text is a stamp in
    // one of the two fixed forms, "yyyy/MM/dd hh:mm:ss" or "yyyy-MM-dd HH:MM:SS".
    static std::optional<DateValue> ParseStamp(std::string_view text);

    double Days() const { return days_; }
    // Rounded to the nearest second, as every text form of a date is.
    CivilTime ToCivil() const;
    bool HasTime() const;

    // "yyyy/MM/dd hh:mm:ss" with a 24-hour clock: the form in which stamps travel.
    std::string StampText() const;
    // "yyyy/MM/dd" at midnight, else "yyyy/MM/dd H:mm:ss": the text a date value reads as.
    std::string Text() const;
    // "yyyy-MM-dd HH:MM:SS": the form the local databases store.
    std::string DatabaseText() const;

    friend constexpr bool operator==(DateValue a, DateValue b) { return a.days_ == b.days_; }
    friend constexpr auto operator<=>(DateValue a, DateValue b) { return a.days_ <=> b.days_; }

private:
    double days_ = 0.0;
};

// True when the text is one of the date forms that DateValue::Parse reads.
bool IsDateText(std::string_view text);

}  // namespace morvane
