#include "platform/FileTimes.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <ctime>
#include <optional>

namespace morvane::platform {
namespace {

DateValue LocalDate(std::time_t seconds) {
    std::tm local{};
    ::localtime_r(&seconds, &local);
    return DateValue::FromCivil({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                                 local.tm_hour, local.tm_min, local.tm_sec});
}

std::optional<timespec> FromLocalDate(DateValue date) {
    const CivilTime c = date.ToCivil();
    std::tm local{};
    local.tm_year = c.year - 1900;
    local.tm_mon = c.month - 1;
    local.tm_mday = c.day;
    local.tm_hour = c.hour;
    local.tm_min = c.minute;
    local.tm_sec = c.second;
    local.tm_isdst = -1;  // the zone's own rule for that day
    const std::time_t seconds = std::mktime(&local);
    if (seconds == static_cast<std::time_t>(-1)) return std::nullopt;
    return timespec{seconds, 0};
}

}  // namespace

std::optional<FileTimes> ReadFileTimes(const std::filesystem::path& file) {
    struct statx sx {};
    if (::statx(AT_FDCWD, file.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &sx) != 0)
        return std::nullopt;
    if (!S_ISREG(sx.stx_mode)) return std::nullopt;
    FileTimes times;
    const bool born = (sx.stx_mask & STATX_BTIME) != 0;
    times.created = LocalDate(born ? sx.stx_btime.tv_sec : sx.stx_ctime.tv_sec);
    times.accessed = LocalDate(sx.stx_atime.tv_sec);
    times.modified = LocalDate(sx.stx_mtime.tv_sec);
    return times;
}

bool WriteFileTimes(const std::filesystem::path& file, std::optional<DateValue> accessed,
                    std::optional<DateValue> modified) {
    timespec times[2] = {{0, UTIME_OMIT}, {0, UTIME_OMIT}};
    const std::optional<DateValue> given[2] = {accessed, modified};
    for (int i = 0; i < 2; ++i) {
        if (!given[i]) continue;
        const std::optional<timespec> t = FromLocalDate(*given[i]);
        if (!t) return false;
        times[i] = *t;
    }
    return ::utimensat(AT_FDCWD, file.c_str(), times, 0) == 0;
}

}  // namespace morvane::platform
