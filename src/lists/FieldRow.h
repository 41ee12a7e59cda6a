// One declared field of a customer record or list item: where it lives in memory, its XML
// tag, POST key and column, and the rules by which it is read, compared, written and sent.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "util/Value.h"

namespace morvane::record {

// A text or 32-bit member of a record, or one element of such an array member.
template <class Record>
class Slot {
public:
    Slot() = default;
    Slot(std::string Record::*m)
        : text_([m](Record& r) -> std::string& { return r.*m; }),
          get_([m](const Record& r) { return Value(r.*m); }) {}
    Slot(std::int32_t Record::*m)
        : number_([m](Record& r) -> std::int32_t& { return r.*m; }),
          get_([m](const Record& r) { return Value(r.*m); }) {}
    template <std::size_t N>
    Slot(std::array<std::string, N> Record::*m, std::size_t i)
        : text_([m, i](Record& r) -> std::string& { return (r.*m).at(i); }),
          get_([m, i](const Record& r) { return Value((r.*m).at(i)); }) {}
    template <std::size_t N>
    Slot(std::array<std::int32_t, N> Record::*m, std::size_t i)
        : number_([m, i](Record& r) -> std::int32_t& { return (r.*m).at(i); }),
          get_([m, i](const Record& r) { return Value((r.*m).at(i)); }) {}

    // A text member that every stored value passes through (a fixed width, a default).
    Slot(std::string Record::*m, std::function<std::string(std::string)> normalize)
        : text_([m](Record& r) -> std::string& { return r.*m; }),
          get_([m](const Record& r) { return Value(r.*m); }),
          normalize_(std::move(normalize)) {}
    // A number member that travels and is stored as its label: labels[n - 1] for n, and ""
    // for 0; a text that is no label stores 0.
    Slot(std::int32_t Record::*m, std::vector<std::string_view> labels)
        : get_([m, labels](const Record& r) {
              const std::int32_t n = r.*m;
              return Value(n >= 1 && n <= static_cast<std::int32_t>(labels.size())
                               ? std::string(labels[n - 1])
                               : std::string());
          }),
          labelled_([m](Record& r) -> std::int32_t& { return r.*m; }),
          labels_(std::move(labels)) {}

    explicit operator bool() const { return static_cast<bool>(get_); }
    bool IsNumber() const { return static_cast<bool>(number_); }

    // The member as a value: its text, or its number.
    Value Get(const Record& r) const { return get_(r); }
    // Stores a text into a text member, a number into a number member.
    void Set(Record& r, const Value& v) const {
        if (normalize_) {
            text_(r) = normalize_(v.IsText() ? v.AsText() : v.ToText());
            return;
        }
        if (labelled_) {
            const std::string text = v.IsText() ? v.AsText() : v.ToText();
            labelled_(r) = 0;
            for (size_t i = 0; i < labels_.size(); ++i)
                if (text == labels_[i]) labelled_(r) = static_cast<std::int32_t>(i + 1);
            return;
        }
        if (IsNumber())
            number_(r) = v.IsLong() ? v.AsLong() : 0;
        else
            text_(r) = v.IsText() ? v.AsText() : v.ToText();
    }

private:
    std::function<std::string&(Record&)> text_;
    std::function<std::int32_t&(Record&)> number_;
    std::function<Value(const Record&)> get_;
    std::function<std::string(std::string)> normalize_;
    std::function<std::int32_t&(Record&)> labelled_;
    std::vector<std::string_view> labels_;
};

// How a value comes in from the XML and goes out in a body.
enum class Conv {
    Text,          // as it stands
    NumericText,   // a text kept from the XML only when it is numeric, else ""
    Long,          // 32-bit; a text that is no number leaves the member as it was
    NzLong,        // 32-bit through NzLong
    Date,          // date text: sent only when it reads as a date
    NonZeroIsOne,  // 1 for any number but 0, 0 for 0; a text that is no number leaves it
    FormatIfDate,  // a date in the row's loadFormat, any other text as it stands
};

// How the server's value is held against the column.
enum class Cmp {
    None,
    Text,           // exact text against NzString of the column
    TextNoTabs,     // the same with tabs removed on both sides
    TextIfNonZero,  // compared only when the server's value is not empty and not 0
    Long,           // NzLong on both sides
    Float,          // as floating numbers
    DateFormat,     // DiffDateText under the row's format
    Widened,        // texts widened to full width on both sides
};

// When and how a download writes the column.
enum class Guard {
    Always,
    Never,           // read from the database only
    NonEmpty,        // only when the value is not empty
    NonZero,         // only when the value is not empty and not 0
    NullUnlessDate,  // Null when the value is no date, else the value (in the write format if set)
    NumericOrEmpty,  // the value when it is numeric, else ""
    StampOrNow,      // the value when it is a date, else the present time
    Positive,        // only when the number is above 0
    EmptyIsNull,     // Null for an empty text (a number column takes no text), else the value
};

// How a local read turns the column into the member. Every rule but AsIs also rules a Null.
enum class Load {
    AsIs,            // NzString or NzLong; a Null leaves the member as it was
    Skip,            // not read: the member keeps its cleared value
    NumericOrEmpty,  // the text when it is numeric, else ""
    DateOrEmpty,     // a date in the load format, else ""
    StampOrNow,      // a date as it stands, else the present time
    EmptyIsOne,      // 1 when the column's text is empty, else its number
    PositiveOrZero,  // the number when the column is not Null and above 0, else 0
    OnlyOneIsOne,    // 1 when the column holds 1, else 0: a mark set only by 1
    FormatIfDate,    // a date in the load format, any other text as it stands, Null ""
};

template <class Record>
struct FieldRow {
    std::string_view tag;     // XML child tag; empty: not in the XML
    std::string_view key;     // POST key; empty: not sent
    std::string_view column;  // column name
    std::string_view table;   // empty: the record's own table
    Slot<Record> slot;
    Conv conv = Conv::Text;
    Cmp cmp = Cmp::Text;
    Guard guard = Guard::Always;
    std::string_view format;       // of a DateFormat compare
    std::string_view writeFormat;  // of a NullUnlessDate write; empty: the value as it is
    bool required = false;         // one of the tags a section must see
    bool flagged = true;           // sets a field flag when seen
    // A tag whose flag this row shares: either of the two satisfies both.
    std::string_view sharesFlagWith;
    bool nullFailsLoad = false;
    // How a local read of a list turns the column into the member.
    Load load = Load::AsIs;
    std::string_view loadFormat;  // of a DateOrEmpty read
    // Where the loader puts the column, when not in slot.
    Slot<Record> dbSlot;
    // A text split at "#": the piece after it goes here.
    Slot<Record> splitTail;

    const Slot<Record>& LoadSlot() const { return dbSlot ? dbSlot : slot; }
};

// The value an XML text gives under the conversion; nullopt when the conversion fails.
std::optional<Value> FromXmlText(Conv conv, bool number, std::string_view text);
// The member value a non-Null column gives.
Value FromColumn(bool number, const Value& column);
// 1 when the server's value (member) differs from the column under the rule.
bool Differs(Cmp cmp, std::string_view format, const Value& member, const Value& column);
// What a download writes into the column; nullopt when the column is left as it is.
std::optional<Value> ToColumn(Guard guard, std::string_view format, const Value& member);
// The member value a column gives under a load rule other than AsIs; nullopt for Skip.
std::optional<Value> FromColumnBy(Load load, std::string_view format, bool number,
                                  const Value& column);
// The text a body carries for the member.
std::string ToBody(Conv conv, const Value& member);
// The piece before the first "#", and the piece after it when there is one.
std::pair<std::string, std::optional<std::string>> SplitAtHash(const std::string& text);

// Stores an XML text into the row's member (and the split tail); false when it failed.
template <class Record>
bool StoreXml(const FieldRow<Record>& row, Record& r, std::string_view text) {
    if (row.conv == Conv::FormatIfDate) {
        if (auto v =
                FromColumnBy(Load::FormatIfDate, row.loadFormat, false, Value(std::string(text))))
            row.slot.Set(r, *v);
        return true;
    }
    auto v = FromXmlText(row.conv, row.slot.IsNumber(), text);
    if (!v) return false;
    if (row.splitTail && v->IsText()) {
        auto [head, tail] = SplitAtHash(v->AsText());
        row.slot.Set(r, Value(head));
        if (tail) row.splitTail.Set(r, Value(*tail));
        return true;
    }
    row.slot.Set(r, *v);
    return true;
}

// Fills the member from a column; under AsIs a Null leaves it as it was.
template <class Record>
void LoadColumn(const FieldRow<Record>& row, Record& r, const Value& column) {
    if (row.load != Load::AsIs) {
        if (auto v = FromColumnBy(row.load, row.loadFormat, row.LoadSlot().IsNumber(), column))
            row.LoadSlot().Set(r, *v);
        return;
    }
    if (column.IsNull() || column.IsEmpty()) return;
    const Slot<Record>& slot = row.LoadSlot();
    const Value v = FromColumn(slot.IsNumber(), column);
    if (row.splitTail && v.IsText()) {
        auto [head, tail] = SplitAtHash(v.AsText());
        slot.Set(r, Value(head));
        if (tail) row.splitTail.Set(r, Value(*tail));
        return;
    }
    slot.Set(r, v);
}

}  // namespace morvane::record
