#include "util/DateFormat.h"

#include <cstdio>

#include "util/Text.h"

namespace morvane {

std::string FormatDate(DateValue date, std::string_view p, const EraOf& eraOf) {
    const CivilTime t = date.ToCivil();
    std::string out;
    std::optional<std::optional<EraDate>> era;
    bool afterHour = false;
    auto run = [&](size_t i, char c) {
        size_t n = 0;
        while (i + n < p.size() && p[i + n] == c) ++n;
        return n;
    };
    auto num = [&](int value, size_t width) {
        char buf[16];
        std::snprintf(buf, sizeof buf, width >= 2 ? "%02d" : "%d", value);
        out += buf;
    };
    for (size_t i = 0; i < p.size();) {
        const char c = p[i];
        const size_t n = run(i, c);
        switch (c) {
            case 'y':
                if (n >= 3) {
                    char buf[8];
                    std::snprintf(buf, sizeof buf, "%04d", t.year);
                    out += buf;
                } else {
                    num(t.year % 100, 2);
                }
                break;
            case 'M':
                num(t.month, n);
                break;
            case 'm':
                if (afterHour)
                    num(t.minute, n);
                else
                    num(t.month, n);
                break;
            case 'd':
                num(t.day, n);
                break;
            case 'h':
            case 'H':
                num(t.hour, n);
                afterHour = true;
                break;
            case 'n':
                num(t.minute, n);
                break;
            case 's':
                num(t.second, n);
                break;
            case 'g':
            case 'e': {
                // Era patterns: g the era's letter, gg its first character, ggg its name;
                // e and ee the year within the era.
                if (!era) era = eraOf ? eraOf(date) : std::nullopt;
                if (!*era) {
                    if (c == 'e') num(t.year, 1);
                } else if (c == 'e') {
                    num((*era)->year, n);
                } else if (n == 1) {
                    out += (*era)->letter;
                } else if (n == 2) {
                    out += FirstCharacter((*era)->name);
                } else {
                    out += (*era)->name;
                }
                break;
            }
            default:
                out.append(p.substr(i, n));
                break;
        }
        if (c == 'y' || c == 'M' || c == 'd') afterHour = false;
        i += n;
    }
    return out;
}

}  // namespace morvane
