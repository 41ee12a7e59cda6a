#include "roster/StripCorpWords.h"

#include <gtest/gtest.h>

#include "support/Golden.h"

namespace morvane {
namespace {

TEST(StripCorpWords, RemovesEveryCompanyFormWordWhereverItStandsInTheirFixedOrder) {
    for (const auto& row : test::Golden("roster/strip-corp-words.txt").Table("names"))
        EXPECT_EQ(StripCorpWords(row[0]), row[1]) << row[0];
}

}  // namespace
}  // namespace morvane
