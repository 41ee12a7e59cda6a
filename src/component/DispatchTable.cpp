#include "component/DispatchTable.h"

#include "util/Text.h"

namespace morvane {
namespace {
constexpr std::int32_t kTypeMismatch = 13;
constexpr std::int32_t kNoSuchMember = 438;
constexpr std::int32_t kWrongArgCount = 450;

DispatchTable Build() {
    DispatchTable table;
    RegisterSessionMembers(table);
    RegisterLoginMembers(table);
    RegisterStoreMembers(table);
    RegisterServerTimeMembers(table);
    RegisterLockMembers(table);
    RegisterFlagMembers(table);
    RegisterRosterMembers(table);
    RegisterRecordMembers(table);
    RegisterFileMembers(table);
    RegisterDatedMembers(table);
    RegisterListMembers(table);
    RegisterMasterMembers(table);
    RegisterPrefCustMembers(table);
    return table;
}

[[noreturn]] void Mismatch(const DispatchArg& a, const char* want) {
    throw RuntimeError(kTypeMismatch, "Type mismatch: '" + a.value.ToText() + "' is not a " + want);
}
}  // namespace

const char* ArgTypeName(ArgType type) {
    switch (type) {
        case ArgType::Long:
            return "Long";
        case ArgType::Double:
            return "Double";
        case ArgType::Bool:
            return "Boolean";
        case ArgType::Text:
            return "String";
        case ArgType::Object:
            return "Object";
        case ArgType::Variant:
            return "Variant";
    }
    return "?";
}

const DispatchTable& DispatchTable::Instance() {
    static const DispatchTable table = Build();
    return table;
}

void DispatchTable::Add(DispatchMember member) {
    const std::string key = ToUpperAscii(member.name);
    if (auto it = index_.find(key); it != index_.end()) {
        members_[it->second] = std::move(member);
        return;
    }
    index_[key] = members_.size();
    members_.push_back(std::move(member));
}

const DispatchMember* DispatchTable::Find(std::string_view name) const {
    const auto it = index_.find(ToUpperAscii(name));
    return it == index_.end() ? nullptr : &members_[it->second];
}

Value DispatchTable::Invoke(ctrlMorvane& object, std::string_view name,
                            std::vector<DispatchArg>& args) const {
    const DispatchMember* m = Find(name);
    if (!m)
        throw RuntimeError(kNoSuchMember,
                           "Object doesn't support this property or method: " + std::string(name));
    if (args.size() != m->params.size())
        throw RuntimeError(kWrongArgCount,
                           m->name + " takes " + std::to_string(m->params.size()) + " arguments");
    return m->invoke(object, args);
}

namespace dispatch {

std::int32_t ToLong(const DispatchArg& a) {
    const Value& v = a.value;
    if (v.IsEmpty()) return 0;
    if (v.IsText()) {
        if (!IsNumericText(v.AsText())) Mismatch(a, "number");
        if (auto n = RoundToLong(LeadingNumber(Trim(v.AsText())))) return *n;
        throw RuntimeError(errnum::kOverflow, "Overflow");
    }
    if (v.IsNull()) Mismatch(a, "number");
    if (v.IsDouble()) {
        if (auto n = RoundToLong(v.AsDouble())) return *n;
        throw RuntimeError(errnum::kOverflow, "Overflow");
    }
    return NzLong(v);
}

double ToDouble(const DispatchArg& a) {
    const Value& v = a.value;
    if (v.IsEmpty()) return 0.0;
    if (v.IsDouble()) return v.AsDouble();
    if (v.IsLong()) return v.AsLong();
    if (v.IsBool()) return v.AsBool() ? -1.0 : 0.0;
    if (v.IsDateValue()) return v.AsDate().Days();
    if (v.IsText() && IsNumericText(v.AsText())) return LeadingNumber(Trim(v.AsText()));
    Mismatch(a, "number");
}

bool ToBool(const DispatchArg& a) {
    const Value& v = a.value;
    if (v.IsBool()) return v.AsBool();
    if (v.IsEmpty()) return false;
    if (v.IsLong()) return v.AsLong() != 0;
    if (v.IsDouble()) return v.AsDouble() != 0.0;
    if (v.IsText()) {
        const std::string t = Trim(v.AsText());
        if (EqualsNoCase(t, "True")) return true;
        if (EqualsNoCase(t, "False")) return false;
        if (IsNumericText(t)) return LeadingNumber(t) != 0.0;
    }
    Mismatch(a, "Boolean");
}

std::string ToText(const DispatchArg& a) {
    if (a.value.IsNull()) Mismatch(a, "text");
    return a.value.ToText();
}

}  // namespace dispatch
}  // namespace morvane
