// CLong and CString: sets of customer numbers with keys, positions from 1.
#include <gtest/gtest.h>

#include "util/KeyedCollection.h"

namespace morvane::test {
namespace {

TEST(CLongTest, IsASetOfValuesUnderDefaultKeys) {
    CLong ids;
    EXPECT_FALSE(ids.FindValue(7));
    EXPECT_TRUE(ids.Add(7));
    EXPECT_FALSE(ids.Add(7));
    EXPECT_TRUE(ids.FindKey("K7"));
    EXPECT_TRUE(ids.FindKey("k7"));  // keys match without regard to case
    EXPECT_FALSE(ids.FindKey(""));
    EXPECT_EQ(ids.ItemValue(Value("K7")), 7);
    EXPECT_EQ(ids.ItemValue(Value("K8")), 0);
    EXPECT_FALSE(ids.Add(8, "K7"));  // a key taken
}

TEST(CLongTest, PlacementByKeyAndPosition) {
    CLong ids;
    ids.Add(1);
    ids.Add(3);
    EXPECT_TRUE(ids.Add(2, "", Value("K3")));              // before a key
    EXPECT_TRUE(ids.Add(4, "", Value(), Value("K3")));     // after a key
    EXPECT_TRUE(ids.Add(0, "", Value(std::int32_t{1})));   // before position 1
    EXPECT_TRUE(ids.Add(9, "", Value(std::int32_t{99})));  // out of range: the end
    EXPECT_FALSE(ids.Add(5, "", Value("nope")));           // unknown key
    EXPECT_EQ(ids.CommaText(), "0,1,2,3,4,9");
    EXPECT_EQ(ids.ItemValue(Value(std::int32_t{3})), 2);
    EXPECT_EQ(ids.ItemValue(Value(3.0)), 2);

    ids.Remove(Value("K2"));
    ids.Remove(Value(std::int32_t{1}));
    ids.Remove(Value("missing"));
    EXPECT_EQ(ids.CommaText(), "1,3,4,9");
    EXPECT_TRUE(ids.Add(2));  // a removed value can come back
    ids.Clear();
    EXPECT_EQ(ids.CommaText(), "");
}

TEST(CStringTest, KeysAndItems) {
    CString s;
    EXPECT_FALSE(s.Add(Value()));
    EXPECT_FALSE(s.Add(Value("")));
    EXPECT_TRUE(s.Add(Value("a"), std::string("アルファ")));
    EXPECT_TRUE(s.Add(Value("b")));
    EXPECT_FALSE(s.Add(Value("A")));
    EXPECT_EQ(s.Item(Value("a")), "アルファ");
    EXPECT_EQ(s.Item(Value(std::int32_t{2})), "b");
    std::vector<std::string> keys;
    for (const auto& e : s) keys.push_back(e.key);
    EXPECT_EQ(keys, (std::vector<std::string>{"a", "b"}));
}

}  // namespace
}  // namespace morvane::test
