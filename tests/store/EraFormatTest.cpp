// Japanese era date patterns, across the changes of era.
#include <gtest/gtest.h>

#include "store/mdlMorvaneCommon.h"

namespace morvane {
namespace {

std::string Era(int y, int m, int d, const char* pattern, int hour = 0) {
    return FormatDate(DateValue::FromCivil({y, m, d, hour, 0, 0}), pattern);
}

TEST(EraFormatTest, TheEraAndItsYearChangeOnTheFirstDayOfTheEra) {
    EXPECT_EQ(Era(2019, 4, 30, "gggee年mm月dd日"), "平成31年04月30日");
    EXPECT_EQ(Era(2019, 5, 1, "gggee年mm月dd日"), "令和01年05月01日");
    EXPECT_EQ(Era(1989, 1, 7, "gee/MM/dd"), "S64/01/07");
    EXPECT_EQ(Era(1989, 1, 8, "gee/mm/dd"), "H01/01/08");
    EXPECT_EQ(Era(2024, 6, 1, "gge年"), "令6年");
    // The time of day plays no part, late evening included.
    EXPECT_EQ(Era(2024, 6, 1, "gggee年mm月dd日", 23), "令和06年06月01日");
}

}  // namespace
}  // namespace morvane
