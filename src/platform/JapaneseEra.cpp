#include "platform/JapaneseEra.h"

#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <cmath>

namespace morvane::platform {
namespace {

// Days from 1899-12-30 to 1970-01-01.
constexpr double kUnixEpochDays = 25569.0;

}  // namespace

std::optional<EraDate> JapaneseEra(DateValue date) {
    // The day itself, at noon UTC, so that no zone moves it to another day.
    const double day = std::floor(date.Days() + 1e-9);
    const UDate when = (day - kUnixEpochDays + 0.5) * 86400000.0;
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale locale("ja_JP@calendar=japanese");
    auto field = [&](const char* pattern) {
        std::string out;
        if (U_FAILURE(status)) return out;
        icu::SimpleDateFormat format(icu::UnicodeString(pattern, -1, US_INV), locale, status);
        if (U_FAILURE(status)) return out;
        format.adoptTimeZone(icu::TimeZone::createTimeZone("UTC"));
        icu::UnicodeString text;
        format.format(when, text);
        text.toUTF8String(out);
        return out;
    };
    EraDate era;
    era.name = field("GGGG");
    era.letter = field("GGGGG");
    const std::string year = field("y");
    if (U_FAILURE(status) || era.name.empty() || year.empty()) return std::nullopt;
    try {
        era.year = std::stoi(year);
    } catch (...) {
        return std::nullopt;
    }
    return era;
}

}  // namespace morvane::platform
