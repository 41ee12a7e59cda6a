// Every public member of ctrlMorvane by name, with typed arguments: what a host without
// the C++ header (the command line, a script) calls the component through.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "component/ctrlMorvane.h"
#include "platform/Forms.h"
#include "util/Nz.h"
#include "util/RuntimeError.h"
#include "util/Value.h"

namespace morvane {

enum class ArgType { Long, Double, Bool, Text, Object, Variant };
const char* ArgTypeName(ArgType type);

// One argument of a call: a value, or for Object parameters a form (or none).
struct DispatchArg {
    Value value;
    forms::Form* object = nullptr;
};

struct DispatchParam {
    std::string name;
    ArgType type;
    // An in-out parameter: the call writes its new value back into the argument.
    bool byRef = false;
};

struct DispatchMember {
    std::string name;
    std::vector<DispatchParam> params;
    std::optional<ArgType> result;  // none for members without a result
    bool property = false;
    std::function<Value(ctrlMorvane&, std::vector<DispatchArg>&)> invoke;
};

class DispatchTable {
public:
    // The table of the component, built once.
    static const DispatchTable& Instance();

    void Add(DispatchMember member);
    // Names match without regard to case, as automation names do.
    const DispatchMember* Find(std::string_view name) const;
    const std::vector<DispatchMember>& Members() const { return members_; }
    // Calls a member; a wrong name, count or argument type is a RuntimeError (438, 450, 13).
    // In-out parameters leave their new values in args.
    Value Invoke(ctrlMorvane& object, std::string_view name, std::vector<DispatchArg>& args) const;
    Value Invoke(ctrlMorvane& object, std::string_view name,
                 std::vector<DispatchArg>&& args) const {
        return Invoke(object, name, args);
    }

    // Adds a member from its C++ signature: parameters of std::int32_t, double, bool,
    // std::string, forms::Form* or const Value&; a non-const reference is in-out.
    template <class R, class... A>
    void Method(std::string name, R (ctrlMorvane::*fn)(A...),
                std::vector<std::string> paramNames = {});
    template <class R, class... A>
    void Method(std::string name, R (ctrlMorvane::*fn)(A...) const,
                std::vector<std::string> paramNames = {});
    template <class R>
    void Property(std::string name, R (ctrlMorvane::*fn)() const);

private:
    template <class R, class Fn, class... A>
    void AddTyped(std::string name, Fn call, std::vector<std::string> paramNames, bool property);

    std::vector<DispatchMember> members_;
    std::map<std::string, size_t> index_;  // upper-case name -> position
};

// Conversions of an argument to a parameter type; a mismatch is error 13.
namespace dispatch {
std::int32_t ToLong(const DispatchArg& a);
double ToDouble(const DispatchArg& a);
bool ToBool(const DispatchArg& a);
std::string ToText(const DispatchArg& a);

template <class T>
struct Param;
template <>
struct Param<std::int32_t> {
    static constexpr ArgType kType = ArgType::Long;
    static std::int32_t From(const DispatchArg& a) { return ToLong(a); }
};
template <>
struct Param<double> {
    static constexpr ArgType kType = ArgType::Double;
    static double From(const DispatchArg& a) { return ToDouble(a); }
};
template <>
struct Param<bool> {
    static constexpr ArgType kType = ArgType::Bool;
    static bool From(const DispatchArg& a) { return ToBool(a); }
};
template <>
struct Param<std::string> {
    static constexpr ArgType kType = ArgType::Text;
    static std::string From(const DispatchArg& a) { return ToText(a); }
};
template <>
struct Param<forms::Form*> {
    static constexpr ArgType kType = ArgType::Object;
    static forms::Form* From(const DispatchArg& a) { return a.object; }
};
template <>
struct Param<Value> {
    static constexpr ArgType kType = ArgType::Variant;
    static Value From(const DispatchArg& a) { return a.value; }
};

// A non-const lvalue reference parameter is written back after the call.
template <class A>
inline constexpr bool kByRef =
    std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>>;

template <class R>
struct Result {
    static constexpr std::optional<ArgType> kType = Param<R>::kType;
    static Value To(R r) {
        if constexpr (std::is_same_v<R, forms::Form*>)
            return Value();
        else
            return Value(std::move(r));
    }
};
template <>
struct Result<void> {
    static constexpr std::optional<ArgType> kType = std::nullopt;
};
}  // namespace dispatch

template <class R, class Fn, class... A>
void DispatchTable::AddTyped(std::string name, Fn call, std::vector<std::string> paramNames,
                             bool property) {
    DispatchMember m;
    m.name = std::move(name);
    m.property = property;
    m.result = dispatch::Result<R>::kType;
    constexpr ArgType types[] = {dispatch::Param<std::decay_t<A>>::kType..., ArgType::Variant};
    constexpr bool byRef[] = {dispatch::kByRef<A>..., false};
    for (size_t i = 0; i < sizeof...(A); ++i)
        m.params.push_back({i < paramNames.size() ? paramNames[i] : "arg" + std::to_string(i + 1),
                            types[i], byRef[i]});
    m.invoke = [call](ctrlMorvane& obj, std::vector<DispatchArg>& args) -> Value {
        return [&]<size_t... I>(std::index_sequence<I...>)->Value {
            auto converted =
                std::tuple<std::decay_t<A>...>(dispatch::Param<std::decay_t<A>>::From(args[I])...);
            Value result;
            if constexpr (std::is_void_v<R>)
                std::apply([&](auto&&... v) { call(obj, v...); }, converted);
            else
                result = dispatch::Result<R>::To(
                    std::apply([&](auto&&... v) { return call(obj, v...); }, converted));
            (
                [&] {
                    if constexpr (dispatch::kByRef<A>)
                        args[I].value = Value(std::get<I>(converted));
                }(),
                ...);
            return result;
        }
        (std::index_sequence_for<A...>{});
    };
    Add(std::move(m));
}

template <class R, class... A>
void DispatchTable::Method(std::string name, R (ctrlMorvane::*fn)(A...),
                           std::vector<std::string> paramNames) {
    auto call = [fn](ctrlMorvane& o, auto&&... a) { return (o.*fn)(a...); };
    AddTyped<R, decltype(call), A...>(std::move(name), call, std::move(paramNames), false);
}

template <class R, class... A>
void DispatchTable::Method(std::string name, R (ctrlMorvane::*fn)(A...) const,
                           std::vector<std::string> paramNames) {
    auto call = [fn](ctrlMorvane& o, auto&&... a) { return (o.*fn)(a...); };
    AddTyped<R, decltype(call), A...>(std::move(name), call, std::move(paramNames), false);
}

template <class R>
void DispatchTable::Property(std::string name, R (ctrlMorvane::*fn)() const) {
    auto call = [fn](ctrlMorvane& o) { return (o.*fn)(); };
    AddTyped<R, decltype(call)>(std::move(name), call, {}, true);
}

// Each family of members registers itself here; the table calls them all once.
void RegisterSessionMembers(DispatchTable& table);
void RegisterLoginMembers(DispatchTable& table);
void RegisterStoreMembers(DispatchTable& table);
void RegisterServerTimeMembers(DispatchTable& table);
void RegisterLockMembers(DispatchTable& table);
void RegisterFlagMembers(DispatchTable& table);
void RegisterRosterMembers(DispatchTable& table);
void RegisterRecordMembers(DispatchTable& table);
void RegisterFileMembers(DispatchTable& table);
void RegisterDatedMembers(DispatchTable& table);
void RegisterListMembers(DispatchTable& table);
void RegisterMasterMembers(DispatchTable& table);
void RegisterPrefCustMembers(DispatchTable& table);

}  // namespace morvane
