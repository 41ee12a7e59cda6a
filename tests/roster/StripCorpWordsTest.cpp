#include "roster/StripCorpWords.h"

#include <gtest/gtest.h>

namespace morvane {
namespace {

TEST(StripCorpWords, RemovesEveryCompanyFormWordWhereverItStands) {
    EXPECT_EQ(StripCorpWords("株式会社"), "");
    EXPECT_EQ(StripCorpWords("トルマー建設株式会社"), "トルマー建設");
    EXPECT_EQ(StripCorpWords("㈱ネルダ工業（有）"), "ネルダ工業");
    EXPECT_EQ(StripCorpWords("協同組合A株式会社B株式会社"), "AB");
    EXPECT_EQ(StripCorpWords("（企）（業）（同）（名）（資）組"), "組");
    EXPECT_EQ(StripCorpWords("山田工務店"), "山田工務店");
}

TEST(StripCorpWords, WordsAreRemovedInTheirFixedOrder) {
    // "有限会社" goes before "（有）" is looked for, so what it leaves can form a later word.
    EXPECT_EQ(StripCorpWords("（有限会社有）"), "");
    // A word joined by an earlier removal is removed too when it comes later in the order.
    EXPECT_EQ(StripCorpWords("（株株式会社）"), "");
    // ... but not when it came earlier: "株式会社" is done before "㈱" and stays joined.
    EXPECT_EQ(StripCorpWords("株式㈱会社"), "株式会社");
}

}  // namespace
}  // namespace morvane
