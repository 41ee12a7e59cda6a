#include "store/mdlMorvaneCommon.h"

#include <cmath>
#include <cstdio>

#include "platform/JapaneseEra.h"
#include "state/ProcessState.h"
#include "util/Nz.h"
#include "util/Text.h"

namespace morvane {
namespace {

constexpr double kOneMinute = 1.0 / 1440.0;
constexpr double kMovedMargin = 1.0 / 8640.0;  // ten seconds

// The condition as " WHERE ..." or "", or nullopt when the call is to do nothing.
std::optional<std::string> WhereClause(std::string_view localDb, std::string_view cond) {
    if (!EqualsNoCase(DatabaseFileName(localDb), "Master.dat") && cond.empty()) return std::nullopt;
    if (cond.empty()) return std::string();
    return " WHERE " + NormalizeWhere(cond);
}

Value NewestStamp(std::string_view localDb, std::string_view table, std::string_view cond,
                  const char* column) {
    try {
        const auto where = WhereClause(localDb, cond);
        if (!where) return Value();
        auto ws = CreateMorvaneWorkspace();
        dao::Database& db = ws->OpenDatabase(std::string(localDb));
        const std::string sql = std::string("SELECT TOP 1 ") + column + " FROM " +
                                std::string(table) + " " + *where + " ORDER BY " + column + " DESC";
        auto rs = db.OpenRecordset(sql, dao::dbOpenDynaset, dao::dbReadOnly);
        if (rs->Bof() && rs->Eof()) return Value();
        const std::string text = NzString(rs->Fields(column).GetValue());
        if (IsDateText(text)) return Value(text);
        return Value();
    } catch (...) {
        return Value();  // a missing stamp, as the callers read it
    }
}

}  // namespace

std::unique_ptr<dao::Workspace> CreateMorvaneWorkspace() {
    return dao::DBEngine::CreateWorkspace("Morvane", "admin", "", dao::dbUseJet,
                                          &State().DatabasePool());
}

std::string DatabaseFileName(std::string_view path) {
    const size_t sep = path.find_last_of("/\\");
    return std::string(sep == std::string_view::npos ? path : path.substr(sep + 1));
}

std::string SiblingPath(std::string_view path, std::string_view fileName) {
    const size_t sep = path.find_last_of("/\\");
    if (sep == std::string_view::npos) return std::string(fileName);
    return std::string(path.substr(0, sep + 1)) + std::string(fileName);
}

std::string NormalizeWhere(std::string_view cond) {
    const std::string upper = ToUpperAscii(cond);
    if (!StartsWith(upper, " WHERE ") && !StartsWith(upper, "WHERE ")) return std::string(cond);
    const size_t at = upper.find("WHERE ");
    return std::string(cond.substr(0, at)) + " " + std::string(cond.substr(at + 6));
}

Value GetRecordUpdateLocal(std::string_view localDb, std::string_view table,
                           std::string_view cond) {
    return NewestStamp(localDb, table, cond, "RecordUpdate");
}

Value GetInetCheckDateLocal(std::string_view localDb, std::string_view table,
                            std::string_view cond) {
    return NewestStamp(localDb, table, cond, "InetCheckDate");
}

void SetInetCheckDate(std::string_view localDb, std::string_view table, std::string_view cond) {
    try {
        const auto where = WhereClause(localDb, cond);
        if (!where) return;
        auto ws = CreateMorvaneWorkspace();
        dao::Database& db = ws->OpenDatabase(std::string(localDb));
        const std::string now = State().Clock().Now().Text();
        db.Execute("UPDATE " + std::string(table) + " SET InetCheckDate = #" + now + "# " + *where);
    } catch (...) {
        // Nothing written: the difference stays and is found again.
    }
}

DateValue UnstampedLocalDate() { return DateValue::FromCivil({2011, 10, 1, 12, 0, 0}); }

std::int32_t DecideInetDates(std::optional<DateValue> server, std::optional<DateValue> local,
                             std::optional<DateValue> check, double serverOffsetDays) {
    const double s = server ? server->Days() + serverOffsetDays : 0.0;
    double l = local ? local->Days() : 0.0;
    const double c = check ? check->Days() + kOneMinute : 0.0;
    if (s == 0 && l == 0 && c == 0) return 0;
    if (l == 0) l = UnstampedLocalDate().Days();
    if (s == 0) {
        if (c == 0) return 2;
        return l < c ? 3 : 2;
    }
    if (c == 0) return s > l ? 1 : 2;
    const bool serverMoved = std::fabs(c - s) >= kMovedMargin && !(c > s);
    const bool localMoved = std::fabs(c - l) >= kMovedMargin && !(c > l);
    if (!serverMoved && !localMoved) return 0;
    if (s > c && l > c) return 3;
    return s > l ? 1 : 2;
}

namespace {
// FNV-1a over the stamp text and a separator, so that "a" then "bc" differs from "ab", "c".
std::uint64_t FoldStamp(std::uint64_t fold, const std::string& stamp) {
    if (fold == 0) fold = 14695981039346656037ull;
    for (const char ch : stamp + '\n') {
        fold ^= static_cast<unsigned char>(ch);
        fold *= 1099511628211ull;
    }
    return fold;
}
}  // namespace

std::int32_t CompareInetDates(const Value& server, const Value& local, const Value& check) {
    const std::int32_t result =
        DecideInetDates(AsDate(server), AsDate(local), AsDate(check), State().inetServerTimeOffset);
    KeepComparedStamps(result, server, local, check);
    ProcessState& state = State();
    state.comparedServerStamps = FoldStamp(state.comparedServerStamps, NzString(server));
    state.comparedLocalStamps = FoldStamp(state.comparedLocalStamps, NzString(local));
    return result;
}

void KeepComparedStamps(std::int32_t result, const Value& server, const Value& local,
                        const Value& check) {
    ProcessState& state = State();
    state.inetDateServer = result ? NzString(server) : std::string();
    state.inetDateLocal = result ? NzString(local) : std::string();
    state.inetDateCheck = result ? NzString(check) : std::string();
}

std::string FormatDate(DateValue date, std::string_view pattern) {
    return FormatDate(date, pattern, platform::JapaneseEra);
}

std::int32_t DiffDateText(std::string_view a, std::string_view b, std::string_view format) {
    const auto da = DateValue::Parse(a);
    const auto db = DateValue::Parse(b);
    if (da && db) return FormatDate(*da, format) != FormatDate(*db, format) ? 1 : 0;
    return a != b ? 1 : 0;
}

}  // namespace morvane
