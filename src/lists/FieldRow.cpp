#include "lists/FieldRow.h"

#include "state/ProcessState.h"
#include "store/mdlMorvaneCommon.h"
#include "util/Nz.h"
#include "util/Text.h"
#include "util/WideText.h"

namespace morvane::record {
namespace {

std::string WithoutTabs(std::string s) { return ReplaceAll(std::move(s), "\t", ""); }

double AsFloat(const Value& v) {
    if (v.IsLong()) return v.AsLong();
    if (v.IsDouble()) return v.AsDouble();
    if (v.IsBool()) return v.AsBool() ? -1 : 0;
    if (v.IsText()) return LeadingNumber(v.AsText());
    return 0;
}

bool NonZeroText(const std::string& text) { return !text.empty() && LeadingNumber(text) != 0; }

}  // namespace

std::optional<Value> FromXmlText(Conv conv, bool number, std::string_view text) {
    switch (conv) {
        case Conv::NumericText:
            return Value(IsNumericText(text) ? std::string(text) : std::string());
        case Conv::Long: {
            // A text that will not convert is skipped, as a failing statement is.
            if (!IsNumericText(text)) return std::nullopt;
            const auto n = RoundToLong(LeadingNumber(Trim(text)));
            if (!n) return std::nullopt;
            return Value(*n);
        }
        case Conv::NzLong:
            return Value(NzLong(text));
        case Conv::NonZeroIsOne:
            if (!IsNumericText(text)) return std::nullopt;
            return Value(std::int32_t{LeadingNumber(Trim(text)) != 0 ? 1 : 0});
        case Conv::Text:
        case Conv::Date:
        case Conv::FormatIfDate:  // needs the row's format: StoreXml does it
            break;
    }
    if (number) return Value(NzLong(text));
    return Value(std::string(text));
}

Value FromColumn(bool number, const Value& column) {
    if (number) return Value(NzLong(column));
    return Value(NzString(column));
}

bool Differs(Cmp cmp, std::string_view format, const Value& member, const Value& column) {
    switch (cmp) {
        case Cmp::None:
            return false;
        case Cmp::Text:
            return NzString(member) != NzString(column);
        case Cmp::TextNoTabs:
            return WithoutTabs(NzString(member)) != WithoutTabs(NzString(column));
        case Cmp::TextIfNonZero: {
            const std::string server = NzString(member);
            return NonZeroText(server) && server != NzString(column);
        }
        case Cmp::Long:
            return NzLong(member) != NzLong(column);
        case Cmp::Float:
            return AsFloat(member) != AsFloat(column);
        case Cmp::DateFormat:
            return DiffDateText(NzString(member), NzString(column), format) != 0;
        case Cmp::Widened:
            return WidenText(NzString(member)) != WidenText(NzString(column));
    }
    return false;
}

std::optional<Value> ToColumn(Guard guard, std::string_view format, const Value& member) {
    switch (guard) {
        case Guard::Never:
            return std::nullopt;
        case Guard::NonEmpty:
            if (NzString(member).empty()) return std::nullopt;
            break;
        case Guard::NonZero:
            if (!NonZeroText(NzString(member))) return std::nullopt;
            break;
        case Guard::NullUnlessDate: {
            const auto date = DateValue::Parse(NzString(member));
            if (!date) return Value::Null();
            if (!format.empty()) return Value(FormatDate(*date, format));
            break;
        }
        case Guard::NumericOrEmpty:
            return IsNumeric(member) ? member : Value(std::string());
        case Guard::StampOrNow:
            if (!AsDate(member)) return Value(State().Clock().Now());
            break;
        case Guard::Positive:
            if (NzLong(member) <= 0) return std::nullopt;
            break;
        case Guard::EmptyIsNull:
            if (NzString(member).empty()) return Value::Null();
            break;
        case Guard::Always:
            break;
    }
    return member;
}

std::optional<Value> FromColumnBy(Load load, std::string_view format, bool number,
                                  const Value& column) {
    switch (load) {
        case Load::AsIs:
            return FromColumn(number, column);
        case Load::Skip:
            return std::nullopt;
        case Load::NumericOrEmpty:
            return IsNumeric(column) ? Value(NzString(column)) : Value(std::string());
        case Load::DateOrEmpty: {
            const auto date = AsDate(column);
            return Value(date ? FormatDate(*date, format) : std::string());
        }
        case Load::StampOrNow:
            return AsDate(column) ? Value(NzString(column)) : Value(State().Clock().Now());
        case Load::EmptyIsOne:
            return Value(NzString(column).empty() ? std::int32_t{1} : NzLong(column));
        case Load::PositiveOrZero:
            return Value(column.IsNull() || NzLong(column) <= 0 ? std::int32_t{0} : NzLong(column));
        case Load::FormatIfDate: {
            const auto date = AsDate(column);
            return Value(date ? FormatDate(*date, format) : NzString(column));
        }
        case Load::OnlyOneIsOne:
            return Value(std::int32_t{IsNumeric(column) && AsFloat(column) == 1 ? 1 : 0});
    }
    return std::nullopt;
}

std::string ToBody(Conv conv, const Value& member) {
    if (conv == Conv::Date) return NzDateText(member);
    return NzString(member);
}

std::pair<std::string, std::optional<std::string>> SplitAtHash(const std::string& text) {
    const size_t at = text.find('#');
    if (at == std::string::npos) return {text, std::nullopt};
    const size_t next = text.find('#', at + 1);
    return {text.substr(0, at),
            text.substr(at + 1, next == std::string::npos ? std::string::npos : next - at - 1)};
}

}  // namespace morvane::record
