#include "CallCommand.h"

#include <ostream>

#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "util/RuntimeError.h"
#include "util/Text.h"

namespace morvane::cli {

std::vector<MemberCall> SplitCalls(const std::vector<std::string>& words) {
    std::vector<MemberCall> calls;
    bool startNew = true;
    for (const std::string& w : words) {
        if (w == "--then") {
            startNew = true;
            continue;
        }
        if (startNew) {
            calls.push_back({w, {}});
            startNew = false;
        } else {
            calls.back().args.push_back(w);
        }
    }
    return calls;
}

int RunCalls(const std::vector<MemberCall>& calls, std::ostream& out, std::ostream& err) {
    const DispatchTable& table = DispatchTable::Instance();
    ctrlMorvane obj;
    for (const MemberCall& call : calls) {
        const DispatchMember* member = table.Find(call.member);
        if (!member) {
            err << "morvane: no member named " << call.member << '\n';
            return 2;
        }
        std::vector<DispatchArg> args;
        for (size_t i = 0; i < call.args.size() && i < member->params.size(); ++i) {
            DispatchArg a;
            // An object argument from the command line can only be "no owner".
            if (member->params[i].type != ArgType::Object) a.value = Value(call.args[i]);
            args.push_back(a);
        }
        if (call.args.size() != member->params.size()) {
            err << "morvane: " << member->name << " takes " << member->params.size()
                << " argument(s), " << call.args.size() << " given\n";
            return 2;
        }
        try {
            const Value result = table.Invoke(obj, member->name, args);
            if (member->result) out << result.ToText() << '\n';
            for (size_t i = 0; i < member->params.size(); ++i)
                if (member->params[i].byRef)
                    out << member->params[i].name << '=' << args[i].value.ToText() << '\n';
        } catch (const RuntimeError& e) {
            err << "morvane: " << member->name << ": error " << e.Number() << ": " << e.what()
                << '\n';
            return 2;
        }
    }
    return 0;
}

void ListMembers(std::ostream& out) {
    for (const DispatchMember& m : DispatchTable::Instance().Members()) {
        out << m.name;
        std::vector<std::string> params;
        for (const DispatchParam& p : m.params)
            params.push_back((p.byRef ? "ByRef " : "") + p.name + " " + ArgTypeName(p.type));
        if (!m.property) out << '(' << Join(params, ", ") << ')';
        if (m.result) out << " -> " << ArgTypeName(*m.result);
        out << '\n';
    }
}

}  // namespace morvane::cli
