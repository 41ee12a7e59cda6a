// What every worker shares about the local databases: the one way to open them, the newest
// stamps of a table, the agree-stamp, and the rule that decides which side has moved.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Dao.h"
#include "util/DateFormat.h"
#include "util/DateValue.h"
#include "util/Value.h"

namespace morvane {

// The workspace every worker opens its databases in.
std::unique_ptr<dao::Workspace> CreateMorvaneWorkspace();

// The file name part of a path, after the last separator ("/" or "\").
std::string DatabaseFileName(std::string_view path);
// The folder of a path with its separator, and the path of a file beside it.
std::string SiblingPath(std::string_view path, std::string_view fileName);

// The condition without a leading "Where" (one replacement, any case).
std::string NormalizeWhere(std::string_view cond);
// The newest RecordUpdate (InetCheckDate) of the rows that match, as text, or Empty. Without
// a condition only "Master.dat" is read. Never raises: a failure gives Empty.
Value GetRecordUpdateLocal(std::string_view localDb, std::string_view table, std::string_view cond);
Value GetInetCheckDateLocal(std::string_view localDb, std::string_view table,
                            std::string_view cond);
// Stamps the rows that match as agreed now, by the local clock. Never raises.
void SetInetCheckDate(std::string_view localDb, std::string_view table, std::string_view cond);

// The fixed stamp a local side without a stamp counts as.
DateValue UnstampedLocalDate();
// The decision on three stamps (missing ones as nullopt), before the server offset is added:
// 0 no difference, 1 server newer, 2 local newer, 3 ask the user.
std::int32_t DecideInetDates(std::optional<DateValue> server, std::optional<DateValue> local,
                             std::optional<DateValue> check, double serverOffsetDays);
// The same on the values as the callers hold them (date texts, dates, "", Empty or Null);
// keeps the three stamps process-wide when the result is not 0, clears them otherwise.
std::int32_t CompareInetDates(const Value& server, const Value& local, const Value& check);
// What CompareInetDates leaves process-wide after a decision: the stamps when it is not 0.
void KeepComparedStamps(std::int32_t result, const Value& server, const Value& local,
                        const Value& check);

// A date in a pattern of the host's Format, the era from the platform's Japanese calendar.
std::string FormatDate(DateValue date, std::string_view pattern);
// 1 when the two texts differ: as dates under the format when both are dates, else as texts.
std::int32_t DiffDateText(std::string_view a, std::string_view b, std::string_view format);

}  // namespace morvane
