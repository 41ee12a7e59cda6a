// The percent coder: which bytes each use leaves bare, and how it writes the rest.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "platform/PercentEncoding.h"

namespace morvane::test {
namespace {

using platform::PercentEncode;

// Every one of the 256 bytes: bare when a letter, a digit or in `kept`, else "%XX" upper-case.
TEST(PercentEncode, EachUseKeepsExactlyItsSet) {
    const struct {
        std::string_view bare;
        std::string_view kept;  // written out again, so a changed set shows here
    } uses[] = {
        {platform::kUriBare, "-_.!~*'();,/?:@&=+$#"}, {platform::kPathBare, "-_.~/"}, {"", ""}};
    for (const auto& use : uses) {
        for (int b = 0; b < 256; ++b) {
            const char c = static_cast<char>(b);
            const bool alnum =
                (b >= 'a' && b <= 'z') || (b >= 'A' && b <= 'Z') || (b >= '0' && b <= '9');
            char escaped[4];
            std::snprintf(escaped, sizeof escaped, "%%%02X", b);
            const bool bare = alnum || use.kept.find(c) != std::string_view::npos;
            EXPECT_EQ(PercentEncode(std::string(1, c), use.bare),
                      bare ? std::string(1, c) : std::string(escaped))
                << "byte " << b << " with set \"" << use.kept << "\"";
        }
    }
}

TEST(PercentEncode, WholeTexts) {
    EXPECT_EQ(PercentEncode("", platform::kUriBare), "");
    EXPECT_EQ(PercentEncode("決 a+b", platform::kUriBare), "%E6%B1%BA%20a+b");
    EXPECT_EQ(PercentEncode("/home/決 a+b.pdf", platform::kPathBare),
              "/home/%E6%B1%BA%20a%2Bb.pdf");
    EXPECT_EQ(PercentEncode(std::string("a\0b", 3), platform::kPathBare), "a%00b");
}

}  // namespace
}  // namespace morvane::test
