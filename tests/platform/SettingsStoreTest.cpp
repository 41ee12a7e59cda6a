// The settings key on disk: text values, sharing between store instances (and so between
// processes), the file's mode, and writes that never leave a torn file.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "platform/AtomicFile.h"
#include "platform/SettingsStore.h"
#include "support/FileBytes.h"
#include "support/TempDir.h"

namespace morvane::test {
namespace {

using platform::SettingsKey;
using platform::SettingsStore;

const SettingsKey kKey{"SOFTWARE\\Tolmar\\", "ネルダ", "Morvane"};
constexpr auto kReplaceable = SettingsStore::Durability::Replaceable;

struct stat StatOf(const std::filesystem::path& file) {
    struct stat st {};
    EXPECT_EQ(::stat(file.c_str(), &st), 0) << file;
    return st;
}

// Runs `child` in a process of its own; EndedWell is true when it ran to its end and returned
// true.
pid_t Spawn(const std::function<bool()>& child) {
    const pid_t pid = ::fork();
    if (pid == 0) ::_exit(child() ? 0 : 1);
    EXPECT_GE(pid, 0);
    return pid;
}
bool EndedWell(pid_t pid) {
    int status = 0;
    return ::waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// A file where the folder should be is a failure, quietly.
TEST(SettingsStoreTest, ValuesRoundTripInOneFileOnlyTheUserReads) {
    TempDir dir;
    SettingsStore store(dir.Path());
    EXPECT_EQ(store.FileFor(kKey), dir.Path() / "Tolmar" / "ネルダ" / "Morvane.conf");
    EXPECT_FALSE(store.Read(kKey, "Param2").has_value());
    const std::string odd = "line1\nline2\\x = y\r 日本語 ";
    EXPECT_TRUE(store.Write(kKey, "Odd", odd));
    EXPECT_TRUE(store.Write(kKey, "Empty", ""));
    EXPECT_FALSE(store.Write(kKey, "bad=name", "x"));
    EXPECT_EQ(SettingsStore(dir.Path()).ReadAll(kKey),
              (std::map<std::string, std::string>{{"Empty", ""}, {"Odd", odd}}));
    EXPECT_EQ(StatOf(store.FileFor(kKey)).st_mode & 0777, 0600u);
    TempDir blocked;
    WriteBytes(blocked.Path() / "Tolmar", "a file where a folder should be");
    SettingsStore nowhere(blocked.Path());
    EXPECT_FALSE(nowhere.Write(kKey, "ServerName", "x"));
    EXPECT_FALSE(nowhere.Read(kKey, "ServerName").has_value());
}

// Tokens of one length written back to back, many within one tick of the file system's clock:
// a store that reads only what changed must still see each of them, and no torn file. Its
// own writes are never read back; a synced write of the name takes its place in the key's file.
TEST(SettingsStoreTest, SecondStoreSeesEveryTokenAndParsesOnlyChanges) {
    TempDir dir;
    SettingsStore writer(dir.Path());
    SettingsStore reader(dir.Path());
    ASSERT_TRUE(writer.Write(kKey, "ServerName", "backup.example.jp"));
    ASSERT_EQ(reader.Read(kKey, "ServerName"), "backup.example.jp");
    constexpr int kTokens = 300;
    for (int i = 0; i < kTokens; ++i) {
        const std::string token = "TOKEN-" + std::to_string(1000 + i);
        ASSERT_TRUE(writer.Write(kKey, "Param2", token, kReplaceable));
        ASSERT_EQ(reader.Read(kKey, "Param2"), token);
    }
    EXPECT_EQ(reader.Counts().parses, 1u + kTokens);
    EXPECT_EQ(writer.Counts().parses, 0u);
    EXPECT_EQ(writer.Counts().syncs, 1u);
    EXPECT_EQ(StatOf(writer.RunFileFor(kKey)).st_mode & 0777, 0600u);
    EXPECT_TRUE(platform::LeftoverVersions(writer.FileFor(kKey)).empty());
    ASSERT_TRUE(reader.Write(kKey, "Param2", ""));
    EXPECT_EQ(writer.ReadAll(kKey), (std::map<std::string, std::string>{
                                        {"Param2", ""}, {"ServerName", "backup.example.jp"}}));
}

// A run file caught by a power cut, or by hand, half written: the token is lost, never the
// synced values, and the tail of an older, longer version after a whole one does no harm.
// The next token makes the file whole again.
TEST(SettingsStoreTest, RunFileThatFailsItsChecksumCountsAsEmpty) {
    TempDir dir;
    SettingsStore store(dir.Path());
    ASSERT_TRUE(store.Write(kKey, "ServerName", "backup.example.jp"));
    ASSERT_TRUE(store.Write(kKey, "Param2", "T1", kReplaceable));
    const auto run = store.RunFileFor(kKey);
    const std::string whole = ReadBytes(run);
    ASSERT_NE(whole.find("Param2=T1\n#crc32 "), std::string::npos) << whole;
    std::string changed = whole;
    changed[changed.find("T1") + 1] = '9';
    const std::vector<std::pair<std::string, std::optional<std::string>>> cases = {
        {whole, "T1"},
        {whole + "Param2=TOKEN-LONGER\n#crc32 0badf00d\n", "T1"},
        {whole.substr(0, whole.size() / 2), std::nullopt},
        {"Param2=T1\n", std::nullopt},
        {changed, std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [bytes, token] : cases) {
        SCOPED_TRACE(bytes);
        WriteBytes(run, bytes);
        SettingsStore fresh(dir.Path());
        EXPECT_EQ(fresh.Read(kKey, "Param2"), token);
        EXPECT_EQ(fresh.Read(kKey, "ServerName"), "backup.example.jp");
    }
    ASSERT_TRUE(store.Write(kKey, "Param2", "T2", kReplaceable));
    EXPECT_EQ(SettingsStore(dir.Path()).Read(kKey, "Param2"), "T2");
}

// Tokens of changing lengths, so that a rewrite both grows and shrinks the run file.
std::string TokenNo(int n) {
    return "T" + std::string(static_cast<size_t>(n % 7) * 3, 'x') + "-" + std::to_string(n);
}

// One process rotates the token while another reads it: every read is a whole token, never
// an older one than the read before.
TEST(SettingsStoreTest, ReaderInAnotherProcessSeesWholeTokensInOrder) {
    TempDir dir;
    ASSERT_TRUE(SettingsStore(dir.Path()).Write(kKey, "Param2", TokenNo(0), kReplaceable));
    constexpr int kTokens = 2000;
    const pid_t pid = Spawn([&] {
        SettingsStore writer(dir.Path());
        bool ok = true;
        for (int i = 1; i <= kTokens; ++i)
            ok = writer.Write(kKey, "Param2", TokenNo(i), kReplaceable) && ok;
        return ok;
    });
    SettingsStore reader(dir.Path());
    int last = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (last < kTokens && std::chrono::steady_clock::now() < deadline) {
        const std::string token = reader.Read(kKey, "Param2").value_or("(none)");
        const size_t dash = token.rfind('-');
        const int n = dash == std::string::npos ? -1 : std::atoi(token.c_str() + dash + 1);
        if (n < last || token != TokenNo(n)) {
            ADD_FAILURE() << "read " << token << " after " << TokenNo(last);
            break;
        }
        last = n;
    }
    EXPECT_TRUE(EndedWell(pid));
    EXPECT_EQ(reader.Read(kKey, "Param2"), TokenNo(kTokens));
}

TEST(SettingsStoreTest, ConcurrentProcessesLoseNoValue) {
    TempDir dir;
    constexpr int kChildren = 4, kWrites = 25;
    std::vector<pid_t> children;
    for (int c = 0; c < kChildren; ++c)
        children.push_back(Spawn([&] {
            SettingsStore store(dir.Path());
            bool ok = true;
            for (int i = 0; i < kWrites; ++i)
                ok =
                    store.Write(kKey, "V" + std::to_string(c) + "_" + std::to_string(i), "x") && ok;
            return ok;
        }));
    for (pid_t pid : children) EXPECT_TRUE(EndedWell(pid));
    EXPECT_EQ(SettingsStore(dir.Path()).ReadAll(kKey).size(), size_t{kChildren * kWrites});
}

}  // namespace
}  // namespace morvane::test
