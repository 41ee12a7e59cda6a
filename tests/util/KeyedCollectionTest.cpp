// CLong and CString: sets of customer numbers and texts with keys, positions from 1.
#include <gtest/gtest.h>

#include "util/KeyedCollection.h"

namespace morvane::test {
namespace {

TEST(KeyedCollectionTest, CLongIsASetUnderCaseBlindDefaultKeysPlacedByKeyOrPosition) {
    CLong ids;
    EXPECT_TRUE(ids.Add(1));
    EXPECT_FALSE(ids.Add(1));
    EXPECT_TRUE(ids.FindKey("k1"));
    EXPECT_FALSE(ids.FindKey("") || ids.FindValue(7));
    EXPECT_EQ(ids.ItemValue(Value("K8")), 0);
    EXPECT_FALSE(ids.Add(8, "K1"));  // a key taken
    ids.Add(3);
    EXPECT_TRUE(ids.Add(2, "", Value("K3")));              // before a key
    EXPECT_TRUE(ids.Add(4, "", Value(), Value("K3")));     // after a key
    EXPECT_TRUE(ids.Add(0, "", Value(std::int32_t{1})));   // before position 1
    EXPECT_TRUE(ids.Add(9, "", Value(std::int32_t{99})));  // out of range: the end
    EXPECT_FALSE(ids.Add(5, "", Value("nope")));           // unknown key
    EXPECT_EQ(ids.CommaText(), "0,1,2,3,4,9");
    EXPECT_EQ(ids.ItemValue(Value(3.0)), 2);
    ids.Remove(Value("K2"));
    ids.Remove(Value(std::int32_t{1}));
    ids.Remove(Value("missing"));
    EXPECT_TRUE(ids.Add(2));  // a removed value can come back
    EXPECT_EQ(ids.CommaText(), "1,3,4,9,2");
    ids.Clear();
    EXPECT_EQ(ids.CommaText(), "");
}

// A host's own use: nothing in the component passes a CString around.
TEST(KeyedCollectionTest, CStringRefusesEmptyKeysAndTakesItsKeyAsTheItemByDefault) {
    CString texts;
    EXPECT_FALSE(texts.Add(Value()) || texts.Add(Value("")));
    EXPECT_TRUE(texts.Add(Value("a"), std::string("アルファ")));
    EXPECT_TRUE(texts.Add(Value("b")));
    EXPECT_FALSE(texts.Add(Value("A")));  // keys are case-blind
    EXPECT_EQ(texts.Item(Value("a")) + texts.Item(Value(std::int32_t{2})), "アルファb");
}

}  // namespace
}  // namespace morvane::test
