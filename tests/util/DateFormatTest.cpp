// Date patterns with an era given by the caller, and the small conversions they lean on.
#include <gtest/gtest.h>

#include "support/Golden.h"
#include "util/DateFormat.h"
#include "util/Text.h"
#include "util/Value.h"

namespace morvane::test {
namespace {

const DateValue kDay = DateValue::FromCivil({2024, 6, 1, 9, 5, 7});

std::optional<EraDate> FixedEra(DateValue) { return EraDate{"令和", "R", 6}; }

TEST(DateFormatTest, PatternsWithAndWithoutAnEraAndTheEraAskedOnce) {
    // pattern | with the era | without ("mm" is a month until an hour comes before it)
    for (const auto& row : Golden("util/date-format.txt").Table("patterns")) {
        EXPECT_EQ(FormatDate(kDay, row.at(0), FixedEra), row.at(1)) << row.at(0);
        EXPECT_EQ(FormatDate(kDay, row.at(0), nullptr), row.at(2) == "-" ? "" : row.at(2))
            << row.at(0);
    }
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
    EXPECT_FALSE(AsDate(Value("not a date")) || AsDate(Value::Null()) ||
                 AsDate(Value(std::int32_t{45000})));
}

}  // namespace
}  // namespace morvane::test
