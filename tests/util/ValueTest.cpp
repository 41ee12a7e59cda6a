// The conversions every kind of data leans on, pinned by tables.
#include <gtest/gtest.h>

#include "util/DateValue.h"
#include "util/Nz.h"
#include "util/Value.h"

namespace morvane::test {
namespace {

TEST(NzTest, NzStringAndNzLong) {
    std::string texts;
    for (const Value& v :
         {Value(), Value::Null(), Value(std::int32_t{-12}), Value(true), Value(0.5), Value("あ")})
        texts += NzString(v) + "|";
    EXPECT_EQ(texts, "||-12|True|0.5|あ|");

    struct Case {
        Value in;
        std::int32_t out;
    };
    for (const Case& c : std::vector<Case>{
             {Value(), 0},
             {Value::Null(), 0},
             {Value(std::int32_t{7}), 7},
             {Value(2.5), 2},  // half to even
             {Value(3.5), 4},
             {Value(-2.5), -2},
             {Value("12abc"), 12},
             {Value("  -4.5"), -4},
             {Value("1e3"), 1000},
             {Value("abc"), 0},
             {Value(""), 0},
             {Value("+.5"), 0},
             {Value("1.5x"), 2},
             {Value("99999999999"), 0},  // beyond a Long
             {Value(true), -1},
         })
        EXPECT_EQ(NzLong(c.in), c.out) << c.in.ToText();
}

TEST(NzTest, NumericTest) {
    for (const char* yes : {"1", " 1 ", "-1.5", "+2", ".5", "1e5", "1.E-2"})
        EXPECT_TRUE(IsNumericText(yes)) << yes;
    for (const char* no : {"", " ", "1a", "e5", "1e", "--1", ".", "1 2"})
        EXPECT_FALSE(IsNumericText(no)) << no;
}

TEST(NzTest, DoubleTextUsesFifteenDigits) {
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
}

TEST(DateValueTest, ParsesTheStampFormsAndRefusesTheRest) {
    struct Case {
        const char* text;
        const char* stamp;  // nullptr when not a date
    };
    for (const Case& c : std::vector<Case>{
             {"2024/03/05 14:07:09", "2024/03/05 14:07:09"},
             {"2024/3/5 4:07:09", "2024/03/05 04:07:09"},
             {"2024/03/05", "2024/03/05 00:00:00"},
             {"2024-03-05 14:07:09", "2024/03/05 14:07:09"},
             {"2024-03-05 14:07:09.123", "2024/03/05 14:07:09"},
             {" 2024/03/05 14:07 ", "2024/03/05 14:07:00"},
             {"2024年3月5日", "2024/03/05 00:00:00"},
             {"2023/02/29", nullptr},
             {"2024/13/01", nullptr},
             {"2024/03/05 25:00:00", nullptr},
             {"2024/03-05", nullptr},
             {"20240305", nullptr},
             {"", nullptr},
             {"abc", nullptr},
             {"2024/03/05 x", nullptr},
         }) {
        const auto parsed = DateValue::Parse(c.text);
        if (!c.stamp) {
            EXPECT_FALSE(parsed.has_value()) << c.text;
        } else {
            ASSERT_TRUE(parsed.has_value()) << c.text;
            EXPECT_EQ(parsed->StampText(), c.stamp) << c.text;
        }
    }
    const auto monthDay = DateValue::Parse("3月31日");
    ASSERT_TRUE(monthDay.has_value());
    EXPECT_EQ(monthDay->ToCivil().month, 3);
    EXPECT_EQ(monthDay->ToCivil().day, 31);
}

TEST(DateValueTest, NzDateTextKeepsOnlyDates) {
    EXPECT_EQ(NzDateText(Value(DateValue::FromCivil({2024, 4, 1, 0, 0, 0}))), "2024/04/01");
    EXPECT_EQ(NzDateText(Value("2024/04/01 10:00:00")), "2024/04/01 10:00:00");
    EXPECT_EQ(NzDateText(Value("未定")), "");
    EXPECT_EQ(NzDateText(Value::Null()), "");
    EXPECT_EQ(NzDateText(Value(std::int32_t{45000})), "");
}

}  // namespace
}  // namespace morvane::test
