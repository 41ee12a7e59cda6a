// Members by name: the dispatch table against the public interface, lookup without case, typed
// arguments, and the errors of a wrong call.
#include <gtest/gtest.h>

#include "component/DispatchTable.h"
#include "state/ProcessState.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

class DispatchTableTest : public MorvaneTest {};

TEST_F(DispatchTableTest, TheTableHoldsExactlyThePublicInterface) {
    std::map<std::string, size_t> expected;
    for (const auto& row : Golden("session/public-members.txt").Table("members"))
        if (row.size() == 2) expected[row[0]] = std::stoul(row[1]);
    ASSERT_EQ(expected.size(), 132u) << "the list itself";
    const DispatchTable& table = DispatchTable::Instance();
    std::string missing, wrongArgs, extra;
    for (const auto& [name, argc] : expected) {
        const DispatchMember* m = table.Find(name);
        if (!m)
            missing += " " + name;
        else if (m->params.size() != argc)
            wrongArgs += " " + name + "(" + std::to_string(m->params.size()) + ")";
    }
    for (const DispatchMember& m : table.Members())
        if (!expected.count(m.name)) extra += " " + m.name;
    EXPECT_EQ(missing + "|" + wrongArgs + "|" + extra, "||")
        << "missing | another argument count | beside the public interface";
}

TEST_F(DispatchTableTest, InOutParametersComeBackAndWrongCallsAreNumberedErrors) {
    const DispatchTable& table = DispatchTable::Instance();
    ctrlMorvane obj;
    auto number = [&](std::string_view name, std::vector<DispatchArg> args) {
        try {
            table.Invoke(obj, name, args);
        } catch (const RuntimeError& e) {
            return e.Number();
        }
        return 0;
    };
    EXPECT_EQ(number("NoSuchMember", {}), 438);
    EXPECT_EQ(number("setObjectUsage", {}), 450);
    EXPECT_EQ(number("setObjectUsage", {{Value("abc")}}), 13);
    EXPECT_EQ(number("setObjectUsage", {{Value("99999999999")}}), 6);
    // Names are matched without case; a number in text is taken as the number.
    EXPECT_EQ(number("SETOBJECTUSAGE", {{Value(" 2 ")}}), 0);
    EXPECT_EQ(State().objectUsage, 2);
    EXPECT_EQ(table.Invoke(obj, "loginstate", {}), Value(std::int32_t{0}));

    const DispatchMember* m = table.Find("GetUploadCustomerListIDs");
    ASSERT_NE(m, nullptr);
    ASSERT_EQ(m->params.size(), 4u);
    EXPECT_FALSE(m->params[0].byRef);
    EXPECT_TRUE(m->params[1].byRef && m->params[2].byRef && m->params[3].byRef);
    // Without a roster in the slot the member gives 0 and leaves the texts as they were.
    std::vector<DispatchArg> args{
        {Value("/none/Customer.dat")}, {Value("a")}, {Value("b")}, {Value("c")}};
    EXPECT_EQ(table.Invoke(obj, "GetUploadCustomerListIDs", args), Value(std::int32_t{0}));
    EXPECT_EQ(args[1].value, Value("a"));
}

}  // namespace
}  // namespace morvane::test
