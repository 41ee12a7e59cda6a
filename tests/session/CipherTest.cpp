// The saved-password cipher: each character against the phrase, and bad text read safely.
#include <gtest/gtest.h>

#include <string>

#include "session/basTextEncrypt.h"
#include "util/Text.h"

namespace morvane::test {
namespace {

// 64 characters whose first and second halves differ, so the key's wrap point shows.
constexpr const char* kPhrase = "0123456789ABCDEF0123456789ABCDEFFEDCBA9876543210FEDCBA9876543210";

TEST(CipherTest, EachCharacterGivesItsTwoBytesAgainstThePhraseWrappingAtSixtyFour) {
    // 'a' (0x61) ^ '0' (0x30) = 0x51; U+3042: low byte 0x42 ^ '1' = 0x73, high byte 0x30 as is.
    EXPECT_EQ(EncryptText("aあ", kPhrase), "81 0 115 48");
    EXPECT_EQ(DecryptText("81 0 115 48", kPhrase), "aあ");
    EXPECT_EQ(EncryptText("", kPhrase) + DecryptText("", kPhrase), "");
    // A character beyond the 16-bit range travels as its two surrogate units.
    EXPECT_EQ(DecryptText(EncryptText("pw𠀋あ", kPhrase), kPhrase), "pw𠀋あ");
    // Byte 62 meets the 32nd character ('F'); byte 64 starts again at the first ('0').
    const auto numbers = Split(EncryptText(std::string(40, 'a'), kPhrase), " ");
    ASSERT_EQ(numbers.size(), 80u);
    EXPECT_EQ(numbers[2] + " " + numbers[62] + " " + numbers[64],
              std::to_string('a' ^ '1') + " " + std::to_string('a' ^ 'F') + " " +
                  std::to_string('a' ^ '0'));
    for (size_t i = 1; i < numbers.size(); i += 2) EXPECT_EQ(numbers[i], "0") << i;
}

TEST(CipherTest, DecipheringBadTextNeverFails) {
    // Out-of-range and non-numeric elements give zero bytes; an odd last byte is dropped. The
    // range is judged on the number as written (255.4 is outside it); a fraction inside is rounded.
    EXPECT_EQ(DecryptText("81 0 300 0", kPhrase), std::string("a") + "1");
    EXPECT_EQ(DecryptText("x y", kPhrase), "0");
    EXPECT_EQ(DecryptText("81 0 255.4 0", kPhrase), "a1");
    EXPECT_EQ(DecryptText("81 0 0.6 0", kPhrase), "a0");
    EXPECT_NO_THROW(DecryptText("81  0 -5 1e9 65535 ", kPhrase));
    EXPECT_NO_THROW(DecryptText(std::string("\xff\xfe\x00", 3), kPhrase));
    EXPECT_NO_THROW(EncryptText(std::string("\xff\xc3", 2), kPhrase));
}

}  // namespace
}  // namespace morvane::test
