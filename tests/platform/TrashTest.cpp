// Deleting with undo: the file goes into the user's trash with a note of where it was.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <vector>

#include "platform/AtomicFile.h"
#include "platform/Forms.h"
#include "platform/Trash.h"
#include "support/FileBytes.h"
#include "support/ScopedEnv.h"
#include "support/TempDir.h"

namespace morvane::test {
namespace {

namespace fs = std::filesystem;

class TrashTest : public ::testing::Test {
protected:
    fs::path Write(const std::string& name, const std::string& text) {
        return WriteBytes(dir_.Path() / "work" / name, text);
    }

    TempDir dir_;
    ScopedEnv dataHome_{"XDG_DATA_HOME", (dir_.Path() / "data").string()};
};

// The path percent-encoded, '+' too, with the folders' slashes bare. A second file of the same
// name keeps the first one in the trash. A missing file is an error and writes nothing.
TEST_F(TrashTest, FileMovesWithItsNoteAndNamesNeverCollide) {
    const fs::path trash = dir_.Path() / "data" / "Trash";
    EXPECT_EQ(platform::TrashFolder(), trash);
    const fs::path first = Write("決算 2024+.pdf", "one");
    ASSERT_EQ(platform::MoveToTrash(first), 0);
    EXPECT_FALSE(fs::exists(first));
    const std::string note = ReadBytes(trash / "info" / "決算 2024+.pdf.trashinfo");
    EXPECT_EQ(note.rfind("[Trash Info]\nPath=" + (dir_.Path() / "work").string() +
                             "/%E6%B1%BA%E7%AE%97%202024%2B.pdf\nDeletionDate=",
                         0),
              0u)
        << note;
    forms::HeadlessToolkit kit;
    ASSERT_EQ(kit.MoveToTrash(Write("決算 2024+.pdf", "two").string()), 0);
    EXPECT_EQ(ReadBytes(trash / "files" / "決算 2024+.pdf") +
                  ReadBytes(trash / "files" / "決算 2024+.pdf.2"),
              "onetwo");
    EXPECT_NE(platform::MoveToTrash(dir_.Path() / "work" / "none.pdf"), 0);
    EXPECT_FALSE(fs::exists(trash / "info" / "none.pdf.trashinfo"));
}

// The trash beside the file takes a link; one on another file system a copy.
TEST_F(TrashTest, ACopyStaysWholeInTheTrashWhenTheFileIsThenReplaced) {
    std::vector<fs::path> trashes{dir_.Path() / "data"};
    std::string shm = "/dev/shm/morvane-trash-XXXXXX";
    struct stat here {
    }, there{};
    const bool otherFs = ::stat("/dev/shm", &there) == 0 &&
                         ::stat(dir_.Path().c_str(), &here) == 0 && here.st_dev != there.st_dev &&
                         ::mkdtemp(shm.data()) != nullptr;
    if (otherFs) trashes.push_back(shm);
    for (const fs::path& data : trashes) {
        SCOPED_TRACE(data.string());
        ::setenv("XDG_DATA_HOME", data.c_str(), 1);
        const fs::path file = Write("a.pdf", "old copy");
        ASSERT_EQ(platform::CopyToTrash(file), 0);
        ASSERT_EQ(platform::WriteFileAtomically(file, "new copy"), 0);
        EXPECT_EQ(ReadBytes(file) + "|" + ReadBytes(data / "Trash" / "files" / "a.pdf"),
                  "new copy|old copy");
        EXPECT_TRUE(fs::exists(data / "Trash" / "info" / "a.pdf.trashinfo"));
    }
    if (otherFs) fs::remove_all(shm);
}

}  // namespace
}  // namespace morvane::test
