// The file check value against the standard's vectors, the SHA-256 digest with its code page,
// and byte sizes as the user reads them.
#include <gtest/gtest.h>

#include <string>

#include "platform/Checksum.h"
#include "platform/SHA256String.h"
#include "state/basGetCRC.h"
#include "support/FileBytes.h"
#include "support/Golden.h"
#include "support/TempDir.h"
#include "util/RuntimeError.h"
#include "util/basByteSize.h"

namespace morvane::test {
namespace {

// "62" has a small top part: its leading zeros are kept. Half-width kana and the circled digit
// are code page 932 characters of their own; "€" is not one and is hashed as "?".
TEST(DigestTest, KnownVectorsOfTheCheckValueTheDigestAndTheByteSize) {
    const Golden g("util/digest.txt");
    for (const auto& row : g.Table("crc")) EXPECT_EQ(GetCRC(row.at(0)), row.at(1)) << row.at(0);
    EXPECT_EQ(GetCRC(std::string("\0\xff", 2)), "6CDBFD72");
    EXPECT_EQ(platform::Crc32(platform::Crc32(0, "1234"), "56789"), 0xCBF43926u);
    SHA256String sha;
    for (const auto& row : g.Table("sha256"))
        EXPECT_EQ(sha.HashString(row.at(0)), row.at(1)) << row.at(0);
    for (const auto& row : g.Table("byte sizes"))
        EXPECT_EQ(FormatByteSize(std::stod(row.at(0))), row.at(1)) << row.at(0);
}

TEST(DigestTest, FileCheckValueTellsMissingFromEmptyAndAFolderIsAnError) {
    TempDir dir;
    EXPECT_EQ(GetFileCRC((dir.Path() / "none.bin").string()), "");
    EXPECT_EQ(GetFileCRC(WriteBytes(dir.Path() / "empty.bin", "").string()), "00000000");
    try {
        GetFileCRC(dir.Path().string());
        ADD_FAILURE() << "a folder was read";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.Number(), errnum::kPathFileAccess);
    }
}

}  // namespace
}  // namespace morvane::test
