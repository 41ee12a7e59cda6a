// The saved-password cipher and the login hand-over between processes through the settings.
#include <gtest/gtest.h>

#include <string>

#include "component/ctrlMorvane.h"
#include "session/basTextEncrypt.h"
#include "session/mdlLogin.h"
#include "session/mdlLoginInfo.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "support/MorvaneTest.h"
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

class LoginInfoTest : public MorvaneTest {};

TEST_F(LoginInfoTest, SecondProcessTakesOverTheLoginAndClearLeavesNothing) {
    ctrlMorvane first;
    LogIn("TOK-1");
    first.RegLoginInfoToPrefCustom();
    EXPECT_EQ(Setting(reg::kParam1) + Setting(reg::kParam3) + Setting(reg::kMaxCustomer),
              "user11250");
    // A second process starts with an empty record and a token rotated meanwhile.
    ctrlMorvane second;
    SetSetting(reg::kParam2, "TOK-2");
    EXPECT_EQ(second.LoginState(), 0);
    second.GetLoginInfoFromPrefCustom();
    EXPECT_EQ(second.LoginState(), 1);
    EXPECT_EQ(GetLoginID() + GetLoginToken(), "user1TOK-2");
    EXPECT_EQ(second.LoginAccountUserName() + second.LoginAccountSharedCount() +
                  second.LoginAccountMaxCustomer(),
              "山田 太郎3250");
    // Taking over starts no keep-alive: the host asks for one.
    EXPECT_EQ(State().loginTimer, nullptr);

    second.ClearLoginInfoToPrefCustom();
    for (const char* name : {reg::kParam1, reg::kParam2, reg::kParam3, reg::kUserName,
                             reg::kContractEnd, reg::kSharedCount, reg::kMaxCustomer})
        EXPECT_EQ(Setting(name), "") << name;
    second.GetLoginInfoFromPrefCustom();
    EXPECT_EQ(second.LoginState(), 0);
    EXPECT_EQ(second.LoginAccountSharedCount() + second.LoginAccountMaxCustomer(), "00");
}

TEST_F(LoginInfoTest, OneNonEmptyParamStillWritesTheAccount) {
    LogIn();
    SaveLoginInfo("", "", "7");
    EXPECT_EQ(Setting(reg::kParam1) + Setting(reg::kContractorName) + Setting(reg::kSharedCount),
              "山田建設事務所3");
    // A state text is read for its leading number.
    SetSetting(reg::kParam3, "12abc");
    LoadLoginInfo();
    EXPECT_EQ(GetLoginState(), 12);
}

}  // namespace
}  // namespace morvane::test
