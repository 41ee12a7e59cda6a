// The conversions every kind of data leans on, pinned by tables.
#include <gtest/gtest.h>

#include "support/Golden.h"
#include "util/DateValue.h"
#include "util/Nz.h"
#include "util/Value.h"

namespace morvane::test {
namespace {

TEST(NzTest, NzStringNzLongNumericAndDoubleText) {
    std::string texts;
    for (const Value& v :
         {Value(), Value::Null(), Value(std::int32_t{-12}), Value(true), Value(0.5), Value("あ")})
        texts += NzString(v) + "|";
    EXPECT_EQ(texts, "||-12|True|0.5|あ|");
    // Halves to even; a text's leading number, if any; nothing beyond a Long; True is -1.
    std::string longs;
    for (const Value& v : {Value::Null(), Value(2.5), Value(3.5), Value(-2.5), Value("12abc"),
                           Value("  -4.5"), Value("1e3"), Value("abc"), Value("+.5"), Value("1.5x"),
                           Value("99999999999"), Value(true)})
        longs += std::to_string(NzLong(v)) + "|";
    EXPECT_EQ(longs, "0|2|4|-2|12|-4|1000|0|0|2|0|-1|");
    std::string numeric;
    for (const char* text : {"1", " 1 ", "-1.5", "+2", ".5", "1e5", "1.E-2", "", " ", "1a", "e5",
                             "1e", "--1", ".", "1 2"})
        numeric += IsNumericText(text) ? "y" : "n";
    EXPECT_EQ(numeric, "yyyyyyynnnnnnnn");
    EXPECT_EQ(DoubleText(-1.0 / 86400.0) + " " + DoubleText(0.0) + " " + DoubleText(1.25) + " " +
                  DoubleText(1.0 / 3.0),
              "-1.15740740740741E-05 0 1.25 0.333333333333333");
}

TEST(DateValueTest, EpochAndTextForms) {
    EXPECT_EQ(DateValue(0).StampText(), "1899/12/30 00:00:00");
    const DateValue d = DateValue::FromCivil({2011, 10, 1, 12, 0, 0});
    EXPECT_DOUBLE_EQ(d.Days(), 40817.5);
    EXPECT_EQ(d.StampText() + "|" + d.Text() + "|" + d.DatabaseText(),
              "2011/10/01 12:00:00|2011/10/01 12:00:00|2011-10-01 12:00:00");
    EXPECT_EQ(DateValue::FromCivil({2024, 2, 29, 0, 0, 0}).Text(), "2024/02/29");
    EXPECT_EQ(DateValue::FromCivil({2024, 2, 29, 9, 5, 7}).Text(), "2024/02/29 9:05:07");
    // A value a hair below the next second still reads as that second.
    EXPECT_EQ(DateValue(d.Days() + 86399.9999 / 86400.0 - 0.5).StampText(), "2011/10/02 00:00:00");
    std::string dateTexts;
    for (const Value& v :
         {Value(DateValue::FromCivil({2024, 4, 1, 0, 0, 0})), Value("2024/04/01 10:00:00"),
          Value("未定"), Value::Null(), Value(std::int32_t{45000})})
        dateTexts += NzDateText(v) + "|";
    EXPECT_EQ(dateTexts, "2024/04/01|2024/04/01 10:00:00||||");
}

// The general reading and the fast one for stamps read every text alike.
TEST(DateValueTest, ParsesTheStampFormsAndRefusesTheRest) {
    for (const auto& row : Golden("util/value.txt").Table("stamps")) {
        const std::string& text = row.at(0);
        const auto parsed = DateValue::Parse(text);
        const auto fast = DateValue::ParseStamp(text);
        EXPECT_EQ(parsed ? parsed->StampText() : "-", row.at(1)) << text;
        ASSERT_EQ(fast.has_value(), parsed.has_value()) << text;
        if (fast) {
            EXPECT_EQ(fast->Days(), parsed->Days()) << text;
        }
    }
    const auto monthDay = DateValue::Parse("3月31日");
    ASSERT_TRUE(monthDay.has_value());
    EXPECT_EQ(monthDay->ToCivil().month * 100 + monthDay->ToCivil().day, 331);
}

}  // namespace
}  // namespace morvane::test
