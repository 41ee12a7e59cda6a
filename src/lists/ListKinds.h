// The field kinds of the dated lists (integer, text, number text, date, stamp, check, link),
// each a field row with its rules for the reply, the download, the local read and the compare.
#pragma once

#include <string_view>

#include "lists/FieldRow.h"

namespace morvane::record {

inline constexpr std::string_view kStampFormat = "yyyy/MM/dd hh:mm:ss";
inline constexpr std::string_view kDayFormat = "yyyy/MM/dd";

// A field row under one name as tag, key and column, with setters for the names that differ.
template <class Item>
struct ListField {
    FieldRow<Item> row;

    ListField(std::string_view name, Slot<Item> slot) {
        row.tag = row.key = row.column = name;
        row.slot = std::move(slot);
    }
    ListField& Tag(std::string_view tag) {
        row.tag = tag;
        return *this;
    }
    ListField& Key(std::string_view key) {
        row.key = key;
        return *this;
    }
    ListField& Column(std::string_view column) {
        row.column = column;
        return *this;
    }
    // Held and sent, but never written into a row nor read from one.
    ListField& NotStored() {
        row.guard = Guard::Never;
        row.load = Load::Skip;
        return *this;
    }
    // Compared and loaded, but written and sent by the list itself (its position).
    ListField& ByList() {
        row.guard = Guard::Never;
        row.key = {};
        return *this;
    }
    operator FieldRow<Item>() const { return row; }

    // A text held as it came and compared as a number through NzLong; an empty text is
    // written as Null, since a number column takes no text.
    static ListField Numeric(std::string_view name, Slot<Item> slot) {
        ListField f(name, std::move(slot));
        f.row.cmp = Cmp::Long;
        f.row.guard = Guard::EmptyIsNull;
        return f;
    }

    // A 32-bit number through NzLong, compared as a number.
    static ListField Integer(std::string_view name, Slot<Item> slot) {
        ListField f(name, std::move(slot));
        f.row.conv = Conv::NzLong;
        f.row.cmp = Cmp::Long;
        return f;
    }
    // A text, compared exactly.
    static ListField Text(std::string_view name, Slot<Item> slot) {
        return ListField(name, std::move(slot));
    }
    // A text that the rows keep only when it is numeric.
    static ListField NumberText(std::string_view name, Slot<Item> slot) {
        ListField f(name, std::move(slot));
        f.row.guard = Guard::NumericOrEmpty;
        f.row.load = Load::NumericOrEmpty;
        return f;
    }
    // A date held as text in the format, Null in the row unless it is a date; compared as
    // dates under the compare format.
    static ListField Date(std::string_view name, Slot<Item> slot,
                          std::string_view compareFormat = kStampFormat,
                          std::string_view format = kDayFormat) {
        ListField f(name, std::move(slot));
        f.row.cmp = Cmp::DateFormat;
        f.row.format = compareFormat;
        f.row.guard = Guard::NullUnlessDate;
        f.row.writeFormat = format;
        f.row.load = Load::DateOrEmpty;
        f.row.loadFormat = format;
        return f;
    }
    // A moment as it stands; one that is no date becomes the present time.
    static ListField Stamp(std::string_view name, Slot<Item> slot) {
        ListField f(name, std::move(slot));
        f.row.cmp = Cmp::DateFormat;
        f.row.format = kStampFormat;
        f.row.guard = Guard::StampOrNow;
        f.row.load = Load::StampOrNow;
        return f;
    }
    // A number whose empty column reads as 1.
    static ListField Check(std::string_view name, Slot<Item> slot) {
        ListField f = Integer(name, std::move(slot));
        f.row.load = Load::EmptyIsOne;
        return f;
    }
    // A data file's number: 0 never overwrites the row's link, so a reused row keeps its own.
    static ListField Link(std::string_view name, Slot<Item> slot) {
        ListField f = Integer(name, std::move(slot));
        f.row.guard = Guard::Positive;
        f.row.load = Load::PositiveOrZero;
        return f;
    }
};

}  // namespace morvane::record
