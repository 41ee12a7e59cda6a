#include "platform/Dao.h"

#include <sqlite3.h>

#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <mutex>
#include <optional>
#include <regex>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "platform/Env.h"
#include "util/Nz.h"
#include "util/RuntimeError.h"
#include "util/Text.h"

namespace morvane::dao {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Raise(std::int32_t number, const std::string& text) {
    throw RuntimeError(number, text, "DAO.Database");
}

// Maps an SQLite failure to the engine's error numbers; the message keeps SQLite's words.
[[noreturn]] void Fail(sqlite3* db, int rc, std::string_view context) {
    const std::string detail = db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
    const std::string where = context.empty() ? "" : " (" + std::string(context) + ")";
    switch (rc & 0xff) {
        case SQLITE_NOTADB:
            Raise(daoerr::kNotADatabase, "Unrecognized database format" + where);
        case SQLITE_CORRUPT:
            Raise(daoerr::kNeedsRepair, "The database needs to be repaired" + where);
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            Raise(daoerr::kLocked, "Could not update; currently locked" + where);
        case SQLITE_READONLY:
            Raise(daoerr::kReadOnly, "The database is read-only" + where);
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
        case SQLITE_IOERR:
            Raise(daoerr::kCannotOpen, "Cannot open the file: " + detail + where);
        case SQLITE_CONSTRAINT:
            Raise(daoerr::kDuplicateKey, detail + where);
        default:
            if (detail.find("no such table") != std::string::npos)
                Raise(daoerr::kNoSuchTable, detail + where);
            Raise(daoerr::kEngine, detail + where);
    }
}

// "YYYY-MM-DD HH:MM:SS" or "YYYY-MM-DD", the form this layer stores dates in. Every stamp of
// a table scan comes through here, so the fields are read at fixed places in one pass.
std::optional<DateValue> ParseStoredDate(std::string_view s) {
    const bool withTime = s.size() == 19;
    if (!withTime && s.size() != 10) return std::nullopt;
    if (s[4] != '-' || s[7] != '-') return std::nullopt;
    if (withTime && (s[10] != ' ' || s[13] != ':' || s[16] != ':')) return std::nullopt;
    unsigned bad = 0;
    auto digit = [&](size_t i) {
        const unsigned d = static_cast<unsigned char>(s[i]) - unsigned{'0'};
        bad |= d > 9;
        return static_cast<int>(d);
    };
    auto two = [&](size_t i) { return digit(i) * 10 + digit(i + 1); };
    CivilTime t;
    t.year = two(0) * 100 + two(2);
    t.month = two(5);
    t.day = two(8);
    if (withTime) {
        t.hour = two(11);
        t.minute = two(14);
        t.second = two(17);
    }
    if (bad || t.month < 1 || t.month > 12 || t.day < 1 || t.day > 31 || t.hour > 23 ||
        t.minute > 59 || t.second > 59)
        return std::nullopt;
    return DateValue::FromCivil(t);
}

enum class Affinity { Text, Date, Integer, Real };

Affinity AffinityOf(const char* decl) {
    if (!decl) return Affinity::Text;
    const std::string d = ToUpperAscii(decl);
    if (d.find("DATE") != std::string::npos || d.find("TIME") != std::string::npos)
        return Affinity::Date;
    if (d.find("INT") != std::string::npos || d.find("BIT") != std::string::npos)
        return Affinity::Integer;
    if (d.find("REAL") != std::string::npos || d.find("DOUB") != std::string::npos ||
        d.find("FLOA") != std::string::npos || d.find("NUM") != std::string::npos ||
        d.find("DEC") != std::string::npos)
        return Affinity::Real;
    return Affinity::Text;
}

Value ColumnValue(sqlite3_stmt* st, int i, bool expression, Affinity affinity) {
    switch (sqlite3_column_type(st, i)) {
        case SQLITE_NULL:
            return Value::Null();
        case SQLITE_INTEGER: {
            const sqlite3_int64 n = sqlite3_column_int64(st, i);
            if (n >= INT32_MIN && n <= INT32_MAX) return Value(static_cast<std::int32_t>(n));
            return Value(static_cast<double>(n));
        }
        case SQLITE_FLOAT:
            return Value(sqlite3_column_double(st, i));
        default: {
            const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(st, i));
            std::string_view text(p ? p : "", static_cast<size_t>(sqlite3_column_bytes(st, i)));
            // A MAX() over a date column has no declared type: its stored form tells.
            if (affinity == Affinity::Date || expression) {
                if (auto d = ParseStoredDate(text)) return Value(*d);
                if (affinity == Affinity::Date)
                    if (auto d = DateValue::Parse(text)) return Value(*d);
            }
            return Value(std::string(text));
        }
    }
}

void BindValue(sqlite3* db, sqlite3_stmt* st, int idx, const Value& v, Affinity affinity,
               const std::string& column) {
    int rc = SQLITE_OK;
    auto bindText = [&](const std::string& s) {
        return sqlite3_bind_text(st, idx, s.data(), static_cast<int>(s.size()), SQLITE_TRANSIENT);
    };
    auto conversionError = [&]() {
        Raise(daoerr::kTypeConversion,
              "Data type conversion error: '" + v.ToText() + "' into " + column);
    };
    if (v.IsEmpty() || v.IsNull()) {
        rc = sqlite3_bind_null(st, idx);
    } else if (affinity == Affinity::Date) {
        if (v.IsDateValue()) {
            rc = bindText(v.AsDate().DatabaseText());
        } else if (v.IsText()) {
            if (v.AsText().empty()) {
                rc = sqlite3_bind_null(st, idx);
            } else if (auto d = DateValue::Parse(v.AsText())) {
                rc = bindText(d->DatabaseText());
            } else {
                rc = bindText(v.AsText());  // kept as it came; a read gives it back as text
            }
        } else if (v.IsBool()) {
            conversionError();
        } else {
            rc = bindText(DateValue(v.IsLong() ? v.AsLong() : v.AsDouble()).DatabaseText());
        }
    } else if (affinity == Affinity::Integer || affinity == Affinity::Real) {
        double number = 0;
        if (v.IsBool()) {
            number = v.AsBool() ? -1 : 0;
        } else if (v.IsLong()) {
            number = v.AsLong();
        } else if (v.IsDouble()) {
            number = v.AsDouble();
        } else if (v.IsDateValue()) {
            number = v.AsDate().Days();
        } else if (IsNumericText(v.AsText())) {
            number = LeadingNumber(Trim(v.AsText()));
        } else {
            conversionError();
        }
        if (affinity == Affinity::Integer) {
            const double r = std::nearbyint(number);  // half to even, as the host rounds
            if (!std::isfinite(r) || std::fabs(r) > 9.2e18) conversionError();
            rc = sqlite3_bind_int64(st, idx, static_cast<sqlite3_int64>(r));
        } else {
            rc = sqlite3_bind_double(st, idx, number);
        }
    } else {
        rc = bindText(v.IsDateValue() ? v.AsDate().Text() : v.ToText());
    }
    if (rc != SQLITE_OK) Fail(db, rc, column);
}

// Owns one prepared statement.
struct Statement {
    sqlite3_stmt* st = nullptr;
    Statement() = default;
    Statement(sqlite3* db, const std::string& sql) {
        const int rc =
            sqlite3_prepare_v2(db, sql.c_str(), static_cast<int>(sql.size()), &st, nullptr);
        if (rc != SQLITE_OK) {
            sqlite3_finalize(st);
            st = nullptr;
            Fail(db, rc, sql);
        }
    }
    Statement(Statement&& o) noexcept : st(std::exchange(o.st, nullptr)) {}
    Statement& operator=(Statement&& o) noexcept {
        std::swap(st, o.st);
        return *this;
    }
    ~Statement() { sqlite3_finalize(st); }
};

std::string Quoted(std::string_view name) { return "[" + std::string(name) + "]"; }

}  // namespace

// ---- The dialect -----------------------------------------------------------------------

std::string TranslateJetSql(std::string_view jet) {
    std::string out;
    std::string mask;  // the same text with every literal blanked, for the keyword rules
    out.reserve(jet.size() + 16);
    size_t i = 0;
    while (i < jet.size()) {
        const char c = jet[i];
        if (c == '"' || c == '\'') {
            std::string literal;
            size_t j = i + 1;
            for (;; ++j) {
                if (j >= jet.size())
                    Raise(daoerr::kSyntax,
                          "Syntax error in string in query expression '" + std::string(jet) + "'");
                if (jet[j] == c) {
                    if (j + 1 < jet.size() && jet[j + 1] == c) {
                        literal += c;
                        ++j;
                        continue;
                    }
                    break;
                }
                literal += jet[j];
            }
            const std::string piece = "'" + ReplaceAll(literal, "'", "''") + "'";
            out += piece;
            mask += std::string(piece.size(), '_');
            i = j + 1;
        } else if (c == '#') {
            const size_t end = jet.find('#', i + 1);
            if (end == std::string_view::npos)
                Raise(daoerr::kSyntax,
                      "Syntax error in date in query expression '" + std::string(jet) + "'");
            const auto date = DateValue::Parse(Trim(jet.substr(i + 1, end - i - 1)));
            if (!date)
                Raise(daoerr::kSyntax,
                      "Syntax error in date in query expression '" + std::string(jet) + "'");
            const std::string piece = "'" + date->DatabaseText() + "'";
            out += piece;
            mask += std::string(piece.size(), '_');
            i = end + 1;
        } else if (c == '[') {
            const size_t end = jet.find(']', i + 1);
            const size_t stop = end == std::string_view::npos ? jet.size() : end + 1;
            out.append(jet.substr(i, stop - i));
            mask += std::string(stop - i, '_');
            i = stop;
        } else {
            out += c;
            mask += c;
            ++i;
        }
    }
    static const std::regex top(R"(^\s*SELECT\s+TOP\s+(\d+)\s+)", std::regex::icase);
    static const std::regex deleteAll(R"(^\s*DELETE\s+\*\s+FROM\s)", std::regex::icase);
    std::smatch m;
    if (std::regex_search(mask, m, top)) {
        const std::string count = m[1].str();
        const size_t from = static_cast<size_t>(m.position(0));
        const size_t len = static_cast<size_t>(m.length(0));
        out = out.substr(0, from) + "SELECT " + out.substr(from + len);
        size_t end = out.size();
        while (end > 0 &&
               (out[end - 1] == ';' || std::isspace(static_cast<unsigned char>(out[end - 1]))))
            --end;
        out = out.substr(0, end) + " LIMIT " + count;
    } else if (std::regex_search(mask, m, deleteAll)) {
        const size_t from = static_cast<size_t>(m.position(0));
        const size_t len = static_cast<size_t>(m.length(0));
        out = out.substr(0, from) + "DELETE FROM " + out.substr(from + len);
    }
    return out;
}

// ---- Recordset -------------------------------------------------------------------------

struct Recordset::Impl {
    Database* database = nullptr;
    sqlite3* db = nullptr;
    std::string sql;
    bool readOnly = true;
    Statement stmt;
    int first = 0;  // 1 when column 0 is the hidden row id
    std::vector<std::string> names;
    std::vector<Affinity> affinities;
    std::vector<bool> expressions;
    std::unordered_map<std::string, int> byName;

    // Read-only: a forward cursor over the live statement.
    bool bof = true, eof = true;
    bool atFirst = true;

    // Updatable: the rows are held, as a dynaset holds its keys.
    std::string table;
    std::vector<sqlite3_int64> rowids;
    std::vector<std::vector<Value>> rows;
    size_t pos = 0;

    enum class Mode { None, Edit, Add } mode = Mode::None;
    std::vector<std::optional<Value>> pending;

    int Columns() const { return static_cast<int>(names.size()); }

    void Step() {
        const int rc = sqlite3_step(stmt.st);
        if (rc == SQLITE_ROW) return;
        eof = true;
        if (rc != SQLITE_DONE) Fail(db, rc, sql);
    }
    void Run() {
        sqlite3_reset(stmt.st);
        eof = false;
        Step();
        bof = eof;
        atFirst = true;
    }
    void RequireRow() const {
        if (readOnly ? eof : pos >= rows.size())
            Raise(daoerr::kNoCurrentRecord, "No current record.");
    }
};

Recordset::Recordset(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Recordset::~Recordset() = default;

bool Recordset::Bof() const {
    if (!impl_) return true;
    return impl_->readOnly ? impl_->bof : impl_->rows.empty();
}
bool Recordset::Eof() const {
    if (!impl_) return true;
    return impl_->readOnly ? impl_->eof : impl_->pos >= impl_->rows.size();
}

void Recordset::MoveFirst() {
    if (!impl_) Raise(daoerr::kNoCurrentRecord, "The recordset is closed.");
    impl_->mode = Impl::Mode::None;
    if (impl_->readOnly) {
        if (impl_->bof) Raise(daoerr::kNoCurrentRecord, "No current record.");
        if (!impl_->atFirst) impl_->Run();
    } else {
        if (impl_->rows.empty()) Raise(daoerr::kNoCurrentRecord, "No current record.");
        impl_->pos = 0;
    }
}

void Recordset::MoveNext() {
    if (!impl_) Raise(daoerr::kNoCurrentRecord, "The recordset is closed.");
    impl_->RequireRow();
    impl_->mode = Impl::Mode::None;
    if (impl_->readOnly) {
        impl_->atFirst = false;
        impl_->Step();
    } else {
        ++impl_->pos;
    }
}

Field Recordset::Fields(std::string_view name) {
    if (!impl_) Raise(daoerr::kNoCurrentRecord, "The recordset is closed.");
    const auto it = impl_->byName.find(ToUpperAscii(name));
    if (it == impl_->byName.end())
        Raise(daoerr::kItemNotFound, "Item not found in this collection: " + std::string(name));
    return Field(*this, it->second);
}

int Recordset::FieldCount() const { return impl_ ? impl_->Columns() : 0; }

Field Recordset::FieldAt(int index) {
    if (!impl_ || index < 0 || index >= impl_->Columns())
        Raise(daoerr::kItemNotFound, "Item not found in this collection.");
    return Field(*this, index);
}

const std::string& Field::Name() const { return rs_->impl_->names[column_]; }

Value Field::GetValue() const {
    auto& r = *rs_->impl_;
    if (r.mode != Recordset::Impl::Mode::None && r.pending[column_]) return *r.pending[column_];
    if (r.mode == Recordset::Impl::Mode::Add) return Value::Null();
    r.RequireRow();
    if (r.readOnly)
        return ColumnValue(r.stmt.st, column_ + r.first, r.expressions[column_],
                           r.affinities[column_]);
    return r.rows[r.pos][column_];
}

std::optional<std::int32_t> Field::GetLong() const {
    const auto& r = *rs_->impl_;
    if (!r.readOnly || r.eof || r.mode != Recordset::Impl::Mode::None) return std::nullopt;
    // One fetch of the column, then reads of the value: each column call checks the
    // statement anew, which a scan of half a million rows feels.
    sqlite3_value* v = sqlite3_column_value(r.stmt.st, column_ + r.first);
    if (sqlite3_value_type(v) != SQLITE_INTEGER) return std::nullopt;
    const sqlite3_int64 n = sqlite3_value_int64(v);
    if (n < INT32_MIN || n > INT32_MAX) return std::nullopt;
    return static_cast<std::int32_t>(n);
}

Field::StampKind Field::GetStamp(DateValue& date) const {
    const auto& r = *rs_->impl_;
    if (!r.readOnly || r.eof || r.mode != Recordset::Impl::Mode::None) return StampKind::Other;
    sqlite3_value* v = sqlite3_column_value(r.stmt.st, column_ + r.first);
    switch (sqlite3_value_type(v)) {
        case SQLITE_NULL:
            return StampKind::Null;
        case SQLITE_TEXT: {
            if (r.affinities[column_] != Affinity::Date && !r.expressions[column_])
                return StampKind::Other;
            const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(v));
            const auto d = ParseStoredDate(
                std::string_view(p ? p : "", static_cast<size_t>(sqlite3_value_bytes(v))));
            if (!d) return StampKind::Other;
            date = *d;
            return StampKind::Date;
        }
        default:
            return StampKind::Other;
    }
}

void Field::PutValue(const Value& value) {
    auto& r = *rs_->impl_;
    if (r.readOnly) Raise(daoerr::kReadOnly, "The recordset is not updatable.");
    if (r.mode == Recordset::Impl::Mode::None)
        Raise(daoerr::kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
    r.pending[column_] = value;
}

void Recordset::AddNew() {
    if (!impl_ || impl_->readOnly) Raise(daoerr::kReadOnly, "The recordset is not updatable.");
    impl_->mode = Impl::Mode::Add;
    impl_->pending.assign(impl_->names.size(), std::nullopt);
}

void Recordset::Edit() {
    if (!impl_ || impl_->readOnly) Raise(daoerr::kReadOnly, "The recordset is not updatable.");
    impl_->RequireRow();
    impl_->mode = Impl::Mode::Edit;
    impl_->pending.assign(impl_->names.size(), std::nullopt);
}

void Recordset::Update() {
    if (!impl_ || impl_->readOnly) Raise(daoerr::kReadOnly, "The recordset is not updatable.");
    auto& r = *impl_;
    if (r.mode == Impl::Mode::None)
        Raise(daoerr::kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
    if (!r.database->IsOpen()) Raise(daoerr::kCannotOpen, "The database is closed.");
    std::vector<int> changed;
    for (int c = 0; c < r.Columns(); ++c)
        if (r.pending[c]) changed.push_back(c);
    std::string sql;
    if (r.mode == Impl::Mode::Add) {
        if (changed.empty()) {
            sql = "INSERT INTO " + Quoted(r.table) + " DEFAULT VALUES";
        } else {
            std::string cols, marks;
            for (int c : changed) {
                cols += (cols.empty() ? "" : ",") + Quoted(r.names[c]);
                marks += marks.empty() ? "?" : ",?";
            }
            sql = "INSERT INTO " + Quoted(r.table) + " (" + cols + ") VALUES (" + marks + ")";
        }
    } else {
        if (changed.empty()) {
            r.mode = Impl::Mode::None;
            return;
        }
        std::string sets;
        for (int c : changed) sets += (sets.empty() ? "" : ",") + Quoted(r.names[c]) + "=?";
        sql = "UPDATE " + Quoted(r.table) + " SET " + sets + " WHERE rowid=?";
    }
    Statement st(r.db, sql);
    int idx = 1;
    for (int c : changed) BindValue(r.db, st.st, idx++, *r.pending[c], r.affinities[c], r.names[c]);
    if (r.mode == Impl::Mode::Edit) sqlite3_bind_int64(st.st, idx, r.rowids[r.pos]);
    const int rc = sqlite3_step(st.st);
    if (rc != SQLITE_DONE) Fail(r.db, rc, sql);
    if (r.mode == Impl::Mode::Edit)
        for (int c : changed) r.rows[r.pos][c] = *r.pending[c];
    // An added row joins no traversal: the current row stays where it was.
    r.mode = Impl::Mode::None;
    r.pending.clear();
}

void Recordset::Close() { impl_.reset(); }

// ---- Kept connections ------------------------------------------------------------------

void ConnectionCloser::operator()(sqlite3* db) const { sqlite3_close_v2(db); }

namespace {

// What tells one file from another under the same name, and a file written since.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec modified{};
    timespec changed{};

    bool operator==(const FileIdentity& o) const {
        return device == o.device && inode == o.inode && size == o.size &&
               modified.tv_sec == o.modified.tv_sec && modified.tv_nsec == o.modified.tv_nsec &&
               changed.tv_sec == o.changed.tv_sec && changed.tv_nsec == o.changed.tv_nsec;
    }
};

std::optional<FileIdentity> IdentityOf(const std::string& path) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) return std::nullopt;
    return FileIdentity{st.st_dev, st.st_ino, st.st_size, st.st_mtim, st.st_ctim};
}

// The key names the mode first, then the canonical path, which is what is stat'ed.
std::string PathOfKey(const std::string& key) { return key.substr(2); }

}  // namespace

struct ConnectionPool::Impl {
    struct Kept {
        std::string key;
        FileIdentity identity;
        Connection db;
    };
    mutable std::mutex mutex;
    size_t capacity;
    std::deque<Kept> kept;  // the longest kept first
    Counts counts;
};

ConnectionPool::ConnectionPool(size_t capacity) : impl_(std::make_unique<Impl>()) {
    impl_->capacity = capacity;
}

ConnectionPool::~ConnectionPool() = default;

ConnectionPool::Counts ConnectionPool::Tally() const {
    std::lock_guard lock(impl_->mutex);
    return impl_->counts;
}

void ConnectionPool::SetCapacity(size_t capacity) {
    std::deque<Impl::Kept> closing;  // closed outside the lock
    std::lock_guard lock(impl_->mutex);
    impl_->capacity = capacity;
    while (impl_->kept.size() > capacity) {
        closing.push_back(std::move(impl_->kept.front()));
        impl_->kept.pop_front();
    }
}

void ConnectionPool::Clear() {
    std::deque<Impl::Kept> closing;
    std::lock_guard lock(impl_->mutex);
    closing.swap(impl_->kept);
    impl_->counts = {};
}

void ConnectionPool::SetEnv(platform::Env* env) {
    Clear();
    env_ = env;
}

void ConnectionPool::CountOpened() {
    std::lock_guard lock(impl_->mutex);
    ++impl_->counts.opened;
}

Connection ConnectionPool::Take(const std::string& key) {
    const auto now = IdentityOf(PathOfKey(key));
    std::deque<Impl::Kept> stale;
    std::lock_guard lock(impl_->mutex);
    Connection found;
    auto& kept = impl_->kept;
    for (auto it = kept.begin(); it != kept.end();) {
        if (it->key != key) {
            ++it;
        } else if (!found && now && it->identity == *now) {
            found = std::move(it->db);
            it = kept.erase(it);
        } else if (!(now && it->identity == *now)) {
            stale.push_back(std::move(*it));
            it = kept.erase(it);
        } else {
            ++it;
        }
    }
    if (found) ++impl_->counts.reused;
    return found;
}

void ConnectionPool::Keep(const std::string& key, Connection db) noexcept {
    try {
        const auto identity = IdentityOf(PathOfKey(key));
        if (!identity) return;
        std::deque<Impl::Kept> closing;
        std::lock_guard lock(impl_->mutex);
        if (impl_->capacity == 0) return;
        impl_->kept.push_back({key, *identity, std::move(db)});
        while (impl_->kept.size() > impl_->capacity) {
            closing.push_back(std::move(impl_->kept.front()));
            impl_->kept.pop_front();
        }
    } catch (...) {
        // Not kept: the connection closes as it would without a pool.
    }
}

// ---- Database --------------------------------------------------------------------------

Database::Database(std::string path, bool exclusive, bool readOnly, ConnectionPool* pool)
    : path_(std::move(path)), pool_(pool) {
    std::error_code ec;
    if (path_.empty() || !fs::exists(path_, ec))
        Raise(daoerr::kFileNotFound, "Could not find file '" + path_ + "'.");
    if (fs::is_directory(path_, ec))
        Raise(daoerr::kCannotOpen, "Cannot open the file '" + path_ + "': it is a folder.");
    // An exclusive connection keeps its lock until it closes: it is never kept.
    if (pool_ && !exclusive) {
        const fs::path canonical = fs::canonical(path_, ec);
        if (!ec) poolKey_ = std::string(readOnly ? "r:" : "w:") + canonical.string();
        if (!poolKey_.empty()) db_ = pool_->Take(poolKey_);
        // File times are coarse: a file copied over in place at once may look the same.
        // Its pages are read anew; the schema is kept, SQLite checks its cookie.
        if (db_) sqlite3_db_release_memory(db_.get());
    }
    if (!db_) {
        // One connection is used by one thread only: no locking inside SQLite is needed.
        sqlite3* opened = nullptr;
        const int flags =
            (readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX;
        platform::Env* env = pool_ ? pool_->env_ : nullptr;
        const int rc = env ? env->OpenDatabase(path_, flags, &opened)
                           : sqlite3_open_v2(path_.c_str(), &opened, flags, nullptr);
        db_.reset(opened);
        if (rc != SQLITE_OK) {
            db_.reset();
            Fail(nullptr, rc, path_);
        }
        if (pool_) pool_->CountOpened();
        sqlite3_busy_timeout(db_.get(), 5000);
    }
    try {
        // A file that is no database shows itself only on the first read.
        Exec("SELECT count(*) FROM sqlite_master");
        if (exclusive) Exec("PRAGMA locking_mode=EXCLUSIVE");
    } catch (...) {
        poolKey_.clear();
        Close();
        throw;
    }
}

Database::~Database() { Close(); }

void Database::Close() {
    if (!db_) return;
    // Kept only when nothing of this use is left on it: no transaction, no statement.
    if (pool_ && !poolKey_.empty() && sqlite3_get_autocommit(db_.get()) &&
        !sqlite3_next_stmt(db_.get(), nullptr))
        pool_->Keep(poolKey_, std::move(db_));
    db_.reset();
}

void Database::Exec(const char* nativeSql) {
    char* err = nullptr;
    const int rc = sqlite3_exec(db_.get(), nativeSql, nullptr, nullptr, &err);
    sqlite3_free(err);
    if (rc != SQLITE_OK) Fail(db_.get(), rc, path_);
}

void Database::Execute(std::string_view sql) {
    if (!db_) Raise(daoerr::kCannotOpen, "The database is closed.");
    const std::string native = TranslateJetSql(sql);
    Statement st(db_.get(), native);
    const int rc = sqlite3_step(st.st);
    if (rc != SQLITE_DONE && rc != SQLITE_ROW) Fail(db_.get(), rc, native);
}

std::unique_ptr<Recordset> Database::OpenRecordset(std::string_view sql, std::int32_t /*type*/,
                                                   std::int32_t options) {
    if (!db_) Raise(daoerr::kCannotOpen, "The database is closed.");
    auto impl = std::make_unique<Recordset::Impl>();
    impl->database = this;
    impl->db = db_.get();
    impl->readOnly = (options & dbReadOnly) != 0;
    std::string native = TranslateJetSql(sql);
    if (!impl->readOnly) {
        // Writing needs the table and the row of each record: one table, its row id first.
        static const std::regex head(R"(^\s*SELECT\s+)", std::regex::icase);
        static const std::regex from(R"(\bFROM\s+(\[[^\]]+\]|[A-Za-z_][A-Za-z0-9_]*))",
                                     std::regex::icase);
        std::smatch m;
        if (!std::regex_search(native, m, head) ||
            ToUpperAscii(native).find(" DISTINCT ") != std::string::npos)
            Raise(daoerr::kNotUpdatable, "Operation must use an updatable query: " + native);
        native = "SELECT rowid, " + native.substr(static_cast<size_t>(m.length(0)));
        if (!std::regex_search(native, m, from))
            Raise(daoerr::kNotUpdatable, "Operation must use an updatable query: " + native);
        std::string table = m[1].str();
        if (table.front() == '[') table = table.substr(1, table.size() - 2);
        impl->table = table;
        impl->first = 1;
    }
    impl->sql = native;
    impl->stmt = Statement(db_.get(), native);
    sqlite3_stmt* st = impl->stmt.st;
    const int count = sqlite3_column_count(st);
    for (int c = impl->first; c < count; ++c) {
        impl->names.emplace_back(sqlite3_column_name(st, c));
        const char* decl = sqlite3_column_decltype(st, c);
        impl->affinities.push_back(AffinityOf(decl));
        impl->expressions.push_back(decl == nullptr);
        impl->byName.emplace(ToUpperAscii(impl->names.back()), c - impl->first);
    }
    if (impl->readOnly) {
        impl->Run();
    } else {
        for (;;) {
            const int rc = sqlite3_step(st);
            if (rc == SQLITE_DONE) break;
            if (rc != SQLITE_ROW) Fail(db_.get(), rc, native);
            impl->rowids.push_back(sqlite3_column_int64(st, 0));
            std::vector<Value> row;
            row.reserve(impl->names.size());
            for (int c = 0; c < impl->Columns(); ++c)
                row.push_back(ColumnValue(st, c + 1, impl->expressions[c], impl->affinities[c]));
            impl->rows.push_back(std::move(row));
        }
        impl->stmt = Statement();
    }
    return std::unique_ptr<Recordset>(new Recordset(std::move(impl)));
}

// ---- Workspace -------------------------------------------------------------------------

Workspace::Workspace(std::string name, std::string userName, ConnectionPool* pool)
    : name_(std::move(name)), userName_(std::move(userName)), pool_(pool) {}

Workspace::~Workspace() {
    try {
        Close();
    } catch (...) {
        // A failing rollback at the end leaves the file as SQLite's journal restores it.
    }
}

Database& Workspace::OpenDatabase(const std::string& path, bool exclusive, bool readOnly) {
    auto db = std::unique_ptr<Database>(new Database(path, exclusive, readOnly, pool_));
    if (inTrans_) db->Exec("BEGIN");
    databases_.push_back(std::move(db));
    return *databases_.back();
}

void Workspace::BeginTrans() {
    if (inTrans_) Raise(daoerr::kEngine, "A transaction is already open.");
    for (auto& db : databases_)
        if (db->IsOpen()) db->Exec("BEGIN");
    inTrans_ = true;
}

void Workspace::CommitTrans() {
    if (!inTrans_) Raise(daoerr::kEngine, "Commit or Rollback without BeginTrans.");
    for (auto& db : databases_)
        if (db->IsOpen()) db->Exec("COMMIT");
    inTrans_ = false;
}

void Workspace::Rollback() {
    if (!inTrans_) Raise(daoerr::kEngine, "Commit or Rollback without BeginTrans.");
    inTrans_ = false;
    for (auto& db : databases_)
        if (db->IsOpen() && !sqlite3_get_autocommit(db->db_.get())) db->Exec("ROLLBACK");
}

void Workspace::Close() {
    if (inTrans_) Rollback();
    databases_.clear();
}

std::unique_ptr<Workspace> DBEngine::CreateWorkspace(const std::string& name,
                                                     const std::string& userName,
                                                     const std::string& /*password*/,
                                                     std::int32_t /*useType*/,
                                                     ConnectionPool* pool) {
    return std::make_unique<Workspace>(name, userName, pool);
}

// ---- Building files --------------------------------------------------------------------

namespace {
void RunIn(sqlite3* db, std::string_view script, const std::string& path) {
    const std::string text = "BEGIN;\n" + std::string(script) + "\nCOMMIT;";
    char* err = nullptr;
    const int rc = sqlite3_exec(db, text.c_str(), nullptr, nullptr, &err);
    const std::string message = err ? err : "";
    sqlite3_free(err);
    if (rc != SQLITE_OK) {
        sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
        Raise(daoerr::kEngine, message + " (" + path + ")");
    }
}
}  // namespace

void CreateDatabaseFile(const fs::path& path, std::string_view script) {
    std::error_code ec;
    if (fs::exists(path, ec)) Raise(3204, "Database already exists: " + path.string());
    sqlite3* db = nullptr;
    const int rc =
        sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (rc != SQLITE_OK) {
        sqlite3_close_v2(db);
        Fail(nullptr, rc, path.string());
    }
    try {
        RunIn(db, script, path.string());
    } catch (...) {
        sqlite3_close_v2(db);
        fs::remove(path, ec);
        throw;
    }
    sqlite3_close_v2(db);
}

void RunScript(const fs::path& path, std::string_view script) {
    std::error_code ec;
    if (!fs::exists(path, ec))
        Raise(daoerr::kFileNotFound, "Could not find file '" + path.string() + "'.");
    sqlite3* db = nullptr;
    const int rc = sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr);
    if (rc != SQLITE_OK) {
        sqlite3_close_v2(db);
        Fail(nullptr, rc, path.string());
    }
    sqlite3_busy_timeout(db, 5000);
    try {
        RunIn(db, script, path.string());
    } catch (...) {
        sqlite3_close_v2(db);
        throw;
    }
    sqlite3_close_v2(db);
}

}  // namespace morvane::dao
