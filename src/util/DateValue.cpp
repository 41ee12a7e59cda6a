#include "util/DateValue.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

#include "util/Text.h"

namespace morvane {
namespace {

namespace chr = std::chrono;

// Days from 1970-01-01 to a civil date (proleptic Gregorian).
long DaysFromCivil(int y, int m, int d) {
    const chr::year_month_day date{chr::year{y}, chr::month{static_cast<unsigned>(m)},
                                   chr::day{static_cast<unsigned>(d)}};
    return static_cast<long>(chr::sys_days{date}.time_since_epoch().count());
}

void CivilFromDays(long z, int& y, int& m, int& d) {
    const chr::year_month_day date{chr::sys_days{chr::days{z}}};
    y = static_cast<int>(date.year());
    m = static_cast<int>(static_cast<unsigned>(date.month()));
    d = static_cast<int>(static_cast<unsigned>(date.day()));
}

constexpr long kEpochOffset = 25569;  // 1899-12-30 to 1970-01-01

bool Valid(const CivilTime& t) {
    const chr::year_month_day date{chr::year{t.year}, chr::month{static_cast<unsigned>(t.month)},
                                   chr::day{static_cast<unsigned>(t.day)}};
    return t.year >= 100 && t.year <= 9999 && t.month >= 1 && t.day >= 1 && date.ok() &&
           t.hour >= 0 && t.hour <= 23 && t.minute >= 0 && t.minute <= 59 && t.second >= 0 &&
           t.second <= 59;
}

// Reads an unsigned decimal number of 1 to maxDigits digits at pos.
bool ReadNumber(std::string_view s, size_t& pos, int maxDigits, int& out) {
    size_t start = pos;
    out = 0;
    while (pos < s.size() && pos - start < static_cast<size_t>(maxDigits) && s[pos] >= '0' &&
           s[pos] <= '9') {
        out = out * 10 + (s[pos] - '0');
        ++pos;
    }
    return pos > start && (pos >= s.size() || s[pos] < '0' || s[pos] > '9');
}

bool Consume(std::string_view s, size_t& pos, std::string_view what) {
    if (s.substr(pos, what.size()) != what) return false;
    pos += what.size();
    return true;
}

int CurrentYear() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return local.tm_year + 1900;
}

bool ParseTime(std::string_view s, size_t& pos, CivilTime& t) {
    if (!ReadNumber(s, pos, 2, t.hour) || !Consume(s, pos, ":") || !ReadNumber(s, pos, 2, t.minute))
        return false;
    if (Consume(s, pos, ":") && !ReadNumber(s, pos, 2, t.second)) return false;
    return true;
}

}  // namespace

DateValue DateValue::FromCivil(const CivilTime& t) {
    const double day = static_cast<double>(DaysFromCivil(t.year, t.month, t.day) + kEpochOffset);
    const double secs = t.hour * 3600.0 + t.minute * 60.0 + t.second;
    return DateValue(day + secs / 86400.0);
}

CivilTime DateValue::ToCivil() const {
    // Work in whole seconds so that 23:59:59.9999 does not print as 24:00:00.
    const double total = std::round(days_ * 86400.0);
    long long secs = static_cast<long long>(total);
    long long day = secs >= 0 ? secs / 86400 : -((-secs + 86399) / 86400);
    long long rem = secs - day * 86400;
    CivilTime t;
    CivilFromDays(static_cast<long>(day - kEpochOffset), t.year, t.month, t.day);
    t.hour = static_cast<int>(rem / 3600);
    t.minute = static_cast<int>(rem / 60 % 60);
    t.second = static_cast<int>(rem % 60);
    return t;
}

bool DateValue::HasTime() const {
    const CivilTime t = ToCivil();
    return t.hour != 0 || t.minute != 0 || t.second != 0;
}

std::string DateValue::StampText() const {
    const CivilTime t = ToCivil();
    char buf[32];
    std::snprintf(buf, sizeof buf, "%04d/%02d/%02d %02d:%02d:%02d", t.year, t.month, t.day, t.hour,
                  t.minute, t.second);
    return buf;
}

std::string DateValue::Text() const {
    const CivilTime t = ToCivil();
    char buf[32];
    if (!HasTime())
        std::snprintf(buf, sizeof buf, "%04d/%02d/%02d", t.year, t.month, t.day);
    else
        std::snprintf(buf, sizeof buf, "%04d/%02d/%02d %d:%02d:%02d", t.year, t.month, t.day,
                      t.hour, t.minute, t.second);
    return buf;
}

std::string DateValue::DatabaseText() const {
    const CivilTime t = ToCivil();
    char buf[32];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", t.year, t.month, t.day, t.hour,
                  t.minute, t.second);
    return buf;
}

std::optional<DateValue> DateValue::Parse(std::string_view text) {
    const std::string_view s = TrimView(text);
    if (s.empty()) return std::nullopt;
    CivilTime t;
    size_t pos = 0;
    int first = 0;
    if (!ReadNumber(s, pos, 4, first)) return std::nullopt;

    if (Consume(s, pos, "月")) {  // "M月d日"
        t.year = CurrentYear();
        t.month = first;
        if (!ReadNumber(s, pos, 2, t.day) || !Consume(s, pos, "日")) return std::nullopt;
    } else if (Consume(s, pos, "年")) {  // "yyyy年M月d日"
        t.year = first;
        if (!ReadNumber(s, pos, 2, t.month) || !Consume(s, pos, "月") ||
            !ReadNumber(s, pos, 2, t.day) || !Consume(s, pos, "日"))
            return std::nullopt;
    } else {
        if (pos != 4 || pos >= s.size() || (s[pos] != '/' && s[pos] != '-')) return std::nullopt;
        const char sep = s[pos++];
        t.year = first;
        if (!ReadNumber(s, pos, 2, t.month) || pos >= s.size() || s[pos++] != sep ||
            !ReadNumber(s, pos, 2, t.day))
            return std::nullopt;
    }
    if (pos < s.size()) {
        while (pos < s.size() && (s[pos] == ' ' || s[pos] == 'T')) ++pos;
        if (!ParseTime(s, pos, t)) return std::nullopt;
        if (pos < s.size()) {
            // A fraction of a second in the database's text is passed over.
            if (s[pos] != '.') return std::nullopt;
            ++pos;
            while (pos < s.size() && s[pos] >= '0' && s[pos] <= '9') ++pos;
            if (pos != s.size()) return std::nullopt;
        }
    }
    if (!Valid(t)) return std::nullopt;
    return FromCivil(t);
}

std::optional<DateValue> DateValue::ParseStamp(std::string_view s) {
    auto two = [&](size_t at) {
        const unsigned hi = static_cast<unsigned char>(s[at]) - '0';
        const unsigned lo = static_cast<unsigned char>(s[at + 1]) - '0';
        return hi < 10 && lo < 10 ? static_cast<int>(hi * 10 + lo) : -1;
    };
    if (s.size() == 19 && (s[4] == '/' || s[4] == '-') && s[7] == s[4] && s[10] == ' ' &&
        s[13] == ':' && s[16] == ':') {
        CivilTime t;
        const int century = two(0), year = two(2);
        t.month = two(5);
        t.day = two(8);
        t.hour = two(11);
        t.minute = two(14);
        t.second = two(17);
        if (century >= 0 && year >= 0 && t.month >= 0 && t.day >= 0 && t.hour >= 0 &&
            t.minute >= 0 && t.second >= 0) {
            t.year = century * 100 + year;
            if (!Valid(t)) return std::nullopt;
            return FromCivil(t);
        }
    }
    return Parse(s);
}

bool IsDateText(std::string_view text) { return DateValue::Parse(text).has_value(); }

}  // namespace morvane
