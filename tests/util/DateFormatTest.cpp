// Date patterns with an era given by the caller, and the small conversions they lean on.
#include <gtest/gtest.h>

#include "util/DateFormat.h"
#include "util/Text.h"
#include "util/Value.h"

namespace morvane::test {
namespace {

const DateValue kDay = DateValue::FromCivil({2024, 6, 1, 9, 5, 7});

std::optional<EraDate> FixedEra(DateValue) { return EraDate{"令和", "R", 6}; }

TEST(DateFormatTest, PatternsWithAndWithoutAnEra) {
    struct Case {
        const char* pattern;
        const char* withEra;
        const char* withoutEra;
    };
    for (const Case& c : std::vector<Case>{
             {"yyyy/MM/dd hh:mm:ss", "2024/06/01 09:05:07", "2024/06/01 09:05:07"},
             {"yy/M/d h:n:s", "24/6/1 9:5:7", "24/6/1 9:5:7"},
             {"mm", "06", "06"},  // a month until an hour comes before it
             {"g", "R", ""},
             {"gg", "令", ""},
             {"ggg", "令和", ""},
             {"gggee年", "令和06年", "2024年"},
             {"e", "6", "2024"},
         }) {
        EXPECT_EQ(FormatDate(kDay, c.pattern, FixedEra), c.withEra) << c.pattern;
        EXPECT_EQ(FormatDate(kDay, c.pattern, nullptr), c.withoutEra) << c.pattern;
    }
    // The calendar is asked once however many era letters the pattern holds.
    int asked = 0;
    const EraOf counting = [&](DateValue d) {
        ++asked;
        return FixedEra(d);
    };
    EXPECT_EQ(FormatDate(kDay, "ggg e g", counting), "令和 6 R");
    EXPECT_EQ(asked, 1);
}

// The era's first letter for "gg" is a whole character, of whichever width.
TEST(DateFormatTest, FirstCharacterAndAsDate) {
    EXPECT_EQ(FirstCharacter(""), "");
    EXPECT_EQ(FirstCharacter("\xF0\x9F\x98\x80x"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(AsDate(Value(kDay)), kDay);
    EXPECT_EQ(AsDate(Value("2024/06/01 09:05:07")), kDay);
    EXPECT_FALSE(AsDate(Value("not a date")));
    EXPECT_FALSE(AsDate(Value::Null()));
    EXPECT_FALSE(AsDate(Value(std::int32_t{45000})));
}

}  // namespace
}  // namespace morvane::test
