// Files replaced whole or not at all: the new version, its mode and time, a failed write, and
// names that only look like a version left behind.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <set>
#include <string>

#include "platform/AtomicFile.h"
#include "support/FileBytes.h"
#include "support/TempDir.h"

namespace morvane::test {
namespace {

namespace fs = std::filesystem;

class AtomicFileTest : public ::testing::Test {
protected:
    fs::path Write(const std::string& name, const std::string& bytes) {
        return WriteBytes(dir_.Path() / name, bytes);
    }
    static mode_t ModeOf(const fs::path& p) {
        struct stat st {};
        EXPECT_EQ(::lstat(p.c_str(), &st), 0);
        return st.st_mode & 07777;
    }
    // Every name in the folder.
    std::set<std::string> Names() const {
        std::set<std::string> names;
        for (const auto& e : fs::directory_iterator(dir_.Path()))
            names.insert(e.path().filename().string());
        return names;
    }

    TempDir dir_;
};

TEST_F(AtomicFileTest, ReplacementKeepsTheOldModeAndANewFileTakesTheGivenOne) {
    const fs::path old = Write("決算.pdf", "old");
    fs::permissions(old, static_cast<fs::perms>(0640));
    ASSERT_EQ(platform::WriteFileAtomically(old, "new bytes", 0600), 0);
    EXPECT_EQ(ReadBytes(old), "new bytes");
    EXPECT_EQ(ModeOf(old), 0640u);
    const mode_t mask = ::umask(022);
    const fs::path fresh = dir_.Path() / "fresh.conf";
    ASSERT_EQ(platform::WriteFileAtomically(fresh, "", 0666), 0);
    EXPECT_EQ(ModeOf(fresh), 0644u);
    auto exact = platform::AtomicFile::Create(fresh);
    ASSERT_TRUE(exact && exact->SetMode(0600));
    ASSERT_EQ(exact->Commit(), 0);
    ::umask(mask);
    EXPECT_EQ(ModeOf(fresh), 0600u);
    EXPECT_EQ(Names(), (std::set<std::string>{"決算.pdf", "fresh.conf"}));
}

TEST_F(AtomicFileTest, TheNewVersionIsUnseenUntilCommittedAndCarriesItsTime) {
    const fs::path file = Write("a.pdf", "old");
    auto next = platform::AtomicFile::Create(file);
    ASSERT_TRUE(next);
    EXPECT_EQ(next->TempPath().parent_path(), file.parent_path());
    ASSERT_TRUE(next->Write("new "));
    ASSERT_TRUE(next->CopyFrom(Write("source", "and more")));
    ASSERT_TRUE(next->SetModified(timespec{1700000000, 0}));
    EXPECT_EQ(ReadBytes(file), "old");
    EXPECT_EQ(platform::LeftoverVersions(file), std::vector<fs::path>{next->TempPath()});
    ASSERT_EQ(next->Commit(), 0);
    EXPECT_EQ(ReadBytes(file), "new and more");
    struct stat st {};
    ASSERT_EQ(::stat(file.c_str(), &st), 0);
    EXPECT_EQ(st.st_mtim.tv_sec, 1700000000);
    EXPECT_TRUE(platform::LeftoverVersions(file).empty());
}

// Refused at the last step, an unreadable or linked source, a missing
// folder. A version dropped uncommitted is held by the faults and dated tests, a disk that
// fills up half way by the saved files' fault test (tests/cli).
TEST_F(AtomicFileTest, AnythingThatFailsLeavesTheOldFileAndNoLeftover) {
    const fs::path file = Write("a.pdf", "old");
    {
        auto refused = platform::AtomicFile::Create(file);
        ASSERT_TRUE(refused && refused->Write("refused at the last step"));
        EXPECT_EQ(refused->Commit([] { return EACCES; }), EACCES);
    }
    {
        auto unreadable = platform::AtomicFile::Create(file);
        ASSERT_TRUE(unreadable);
        EXPECT_FALSE(unreadable->CopyFrom(dir_.Path() / "missing"));
        fs::create_symlink(file, dir_.Path() / "link");
        EXPECT_FALSE(unreadable->CopyFrom(dir_.Path() / "link"));
        fs::remove(dir_.Path() / "link");
    }
    EXPECT_EQ(platform::WriteFileAtomically(dir_.Path() / "no such folder" / "a.pdf", "x"), ENOENT);
    EXPECT_EQ(ReadBytes(file), "old");
    EXPECT_EQ(Names(), std::set<std::string>{"a.pdf"});
}

// Names that merely look alike are not taken for a version left behind. A real one left by a
// killed writer, found and removed, is held by dated DataFileTest.AFileWhoseDownloadWasCutShort....
TEST_F(AtomicFileTest, NamesThatMerelyLookLikeALeftoverVersionAreNotTakenForOne) {
    const fs::path file = Write("a.pdf", "old");
    for (const char* name : {".a.pdf.0123.new", "a.pdf.0123456789abcdef.new",
                             ".a.pdf.0123456789abcdeg.new", ".b.pdf.0123456789abcdef.new"})
        Write(name, "x");
    EXPECT_TRUE(platform::LeftoverVersions(file).empty());
}

}  // namespace
}  // namespace morvane::test
