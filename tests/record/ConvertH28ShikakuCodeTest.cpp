// The qualification code conversion, one case a row.
#include <gtest/gtest.h>

#include "record/mdlConvertH28ShikakuCode.h"

namespace morvane {
namespace {

TEST(ConvertH28ShikakuCodeTest, CodesAndWhatTheyGive) {
    const struct {
        const char* code;
        int expected;
    } cases[] = {
        // Plain numbers stand as they are.
        {"", 0},
        {"00", 0},
        {"17", 17},
        {"07", 7},
        {" 5", 5},
        // A trailing letter adds its thousands; the letter is a zero units digit.
        {"5A", 1050},
        {"5a", 1050},
        {"9Z", 26090},
        {"1b", 2010},
        {"A", 1000},
        {"z", 26000},
        // A letter in front is no code; nor is what stays numeric in neither form.
        {"Z1", 0},
        {"AA", 0},
        {"-", 0},
        {"5ｱ", 50},
        {"ｱ", 0},
        {"x5A", 0},
        // Numbers as the host's numeric test reads them.
        {"-3", -3},
        {"1e2", 100},
        {"99999", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ConvertH28ShikakuCode(c.code), c.expected) << '"' << c.code << '"';
}

}  // namespace
}  // namespace morvane
