// The file check value against the standard's vectors, and the SHA-256 digest with its
// code page.
#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "platform/Checksum.h"
#include "platform/SHA256String.h"
#include "state/basGetCRC.h"
#include "support/FileBytes.h"
#include "support/TempDir.h"
#include "util/RuntimeError.h"
#include "util/basByteSize.h"

namespace morvane::test {
namespace {

TEST(CrcTest, KnownValuesKeepEightUpperCaseDigitsAndContinueOverPieces) {
    const struct {
        std::string bytes;
        const char* crc;
    } cases[] = {{"", "00000000"},
                 {"a", "E8B7BE43"},
                 {"123456789", "CBF43926"},
                 {"62", "0012D20A"},  // small top part: leading zeros kept
                 {std::string("\0\xff", 2), "6CDBFD72"}};
    for (const auto& c : cases) EXPECT_EQ(GetCRC(c.bytes), c.crc) << c.bytes;
    EXPECT_EQ(platform::Crc32(platform::Crc32(0, "1234"), "56789"), 0xCBF43926u);
}

TEST(CrcTest, FileCheckValueTellsMissingFromEmptyAndReadsPastOnePiece) {
    TempDir dir;
    // Past the read piece, and not a multiple of it.
    std::string bytes((std::size_t{5} << 19) + 3, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 131 + (i >> 9));
    EXPECT_EQ(GetFileCRC((dir.Path() / "none.bin").string()), "");
    EXPECT_EQ(GetFileCRC(WriteBytes(dir.Path() / "empty.bin", "").string()), "00000000");
    EXPECT_EQ(GetFileCRC(WriteBytes(dir.Path() / "big.bin", bytes).string()), GetCRC(bytes));
    try {
        GetFileCRC(dir.Path().string());
        ADD_FAILURE() << "a folder was read";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.Number(), errnum::kPathFileAccess);
    }
}

TEST(Sha256Test, StandardVectorsAndTextInCodePage932) {
    SHA256String sha;
    const std::pair<const char*, const char*> cases[] = {
        {"abc", "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD"},
        {"", "E3B0C44298FC1C149AFBF4C8996FB92427AE41E4649B934CA495991B7852B855"},
        {"日本語のテキスト", "031D3A93DAEA54038B77AF8157401E8770A9DEEE448E3E37F647D3BB44A35A19"},
        // Half-width kana and the circled digit are code page 932 characters of their own.
        {"ｱｲ①", "21CCA8CC2AD70000E54A121A2B7463559F9654B3EF6DD16C02724C8ABAAD2FD2"},
        // A character the code page lacks is hashed as "?".
        {"a€b", "C2A7B64A2D2520047BFC9248FDDA834C9CC2C0C9E89826355C7A6AE16FE11179"}};
    for (const auto& [text, digest] : cases) EXPECT_EQ(sha.HashString(text), digest) << text;
}

TEST(ByteSizeTest, StepsUnitsAndDecimals) {
    const struct {
        double bytes;
        const char* text;
    } cases[] = {
        {0, "0 バイト"},        {999, "999 バイト"},  {1000, "0.98 KB"},
        {153600, "150 KB"},     {1023999, "0.98 MB"}, {8388608, "8.00 MB"},
        {12345678, "11.77 MB"}, {5e14, "455 TB"},     {1.5e28, "12,408 YB"},
    };
    for (const auto& c : cases) EXPECT_EQ(FormatByteSize(c.bytes), c.text) << c.bytes;
}

}  // namespace
}  // namespace morvane::test
