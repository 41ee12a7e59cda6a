// Paths and their parts, the making of folders, the temporary folder and file times.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/FileBytes.h"
#include "support/ScopedEnv.h"
#include "support/TempDir.h"
#include "util/basTempPath.h"
#include "util/mdlFileExist1.h"

namespace morvane::test {
namespace {

TEST(FileHelpersTest, PathPartsWithABackslashInsideAName) {
    EXPECT_EQ(GetFileNamePart("/data/a/決算書.2024.pdf") + "|" +
                  GetFileNamePart("/data/a/決算書.2024.pdf", true) + "|" +
                  GetFileNamePart("/data/noext", true) + "|" + GetFileNamePart("/data/") + "|" +
                  GetFileNamePart("/data/a\\b.txt"),
              "決算書.2024.pdf|決算書.2024|noext||a\\b.txt");
    EXPECT_EQ(GetParentPath("/data/a/b.txt") + "|" + GetParentPath("b.txt") + "|" +
                  StripTrailingBackslash("/data/a/"),
              "/data/a|b.txt|/data/a");
}

TEST(FileHelpersTest, ExistenceFoldersMadeAndTheTemporaryFolder) {
    TempDir dir;
    const std::string file = WriteBytes(dir.Path() / "f.txt", "x").string();
    EXPECT_TRUE(FileExists("  " + file + " "));
    EXPECT_TRUE(FileExists(dir.Path().string()));  // a folder counts
    EXPECT_FALSE(FileExists("   ") || FileExists((dir.Path() / "none").string()));
    EXPECT_TRUE(FolderExists(dir.Path().string()));
    EXPECT_FALSE(FolderExists(file) || FolderExists(""));

    const std::string deep = (dir.Path() / "a" / "b" / "c").string();
    EXPECT_TRUE(MakePath(deep) && FolderExists(deep));
    EXPECT_TRUE(MakePath(deep + "/"));  // already there, trailing separator
    EXPECT_FALSE(MakePath(""));
    EXPECT_FALSE(MakePath(file + "/sub"));  // a file in the way

    const ScopedEnv tmp("TMPDIR", dir.Path().string());
    const std::string folder = GetTempFolder(1024);
    EXPECT_EQ(folder, dir.Path().string() + "/");
    EXPECT_EQ(GetTempFolder(static_cast<std::int32_t>(folder.size())), "");
}

}  // namespace
}  // namespace morvane::test
