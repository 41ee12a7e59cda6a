// The qualification code conversion, one case a row of tests/data/record/convert-h28.txt.
#include <gtest/gtest.h>

#include "record/mdlConvertH28ShikakuCode.h"
#include "support/Golden.h"

namespace morvane {
namespace {

TEST(ConvertH28ShikakuCodeTest, CodesAndWhatTheyGive) {
    for (const auto& row : test::Golden("record/convert-h28.txt").Table("cases"))
        EXPECT_EQ(ConvertH28ShikakuCode(row[0]), std::stoi(row[1])) << '"' << row[0] << '"';
}

}  // namespace
}  // namespace morvane
