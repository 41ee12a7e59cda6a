// The dispatch table against the public interface: every member by name and argument count,
// from the one list in PublicMembers.txt, and nothing beside them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "component/DispatchTable.h"

namespace morvane::test {
namespace {

// Name and argument count of each public member, in the list's order.
std::map<std::string, size_t> PublicMembers() {
    std::ifstream in(std::filesystem::path(__FILE__).parent_path() / "PublicMembers.txt");
    std::map<std::string, size_t> members;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream fields(line);
        std::string name;
        size_t argc = 0;
        if (fields >> name >> argc) members[name] = argc;
    }
    return members;
}

TEST(PublicMembers, TheDispatchTableHoldsExactlyThePublicInterface) {
    const auto expected = PublicMembers();
    ASSERT_EQ(expected.size(), 132u) << "the list itself";
    const DispatchTable& table = DispatchTable::Instance();
    std::string missing, wrongArgs, extra;
    for (const auto& [name, argc] : expected) {
        const DispatchMember* m = table.Find(name);
        if (!m)
            missing += " " + name;
        else if (m->params.size() != argc)
            wrongArgs += " " + name + "(" + std::to_string(m->params.size()) + " for " +
                         std::to_string(argc) + ")";
    }
    for (const DispatchMember& m : table.Members())
        if (!expected.count(m.name)) extra += " " + m.name;
    EXPECT_EQ(missing, "") << "members not in the table";
    EXPECT_EQ(wrongArgs, "") << "members with another argument count";
    EXPECT_EQ(extra, "") << "members beside the public interface";
}

}  // namespace
}  // namespace morvane::test
