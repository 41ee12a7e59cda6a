// What a run keeps on disk for the next one (the settings, the journal of agreements) when
// its write breaks half way: the saved copy stays as it was, and the next write goes through.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "SyncJournal.h"
#include "platform/AtomicFile.h"
#include "platform/SettingsStore.h"
#include "state/ProcessState.h"
#include "support/FaultEnv.h"
#include "support/TempDir.h"

namespace morvane::cli {
namespace {

using test::FaultEnv;

struct Saver {
    const char* name;
    std::function<bool(std::uint64_t)> save;
    std::function<std::string()> reread;  // what a new reader finds on disk
    std::filesystem::path file;
};

TEST(SavedFilesFault, AWriteThatBreaksKeepsTheSavedCopyAndTheNextOneGoesThrough) {
    test::TempDir dir;
    const auto config = dir.Path() / "config";
    State().SetSettingsRoot(config);
    const auto faults = std::make_shared<FaultEnv>(State().Env());
    State().SetEnv(faults);
    const platform::SettingsKey key{"SOFTWARE\\Tolmar\\", "Morvane", "Setting"};
    const auto journalFile = dir.Path() / "state" / "journal";
    SyncJournal journal(journalFile);
    const Saver savers[] = {
        {"settings",
         [&](std::uint64_t n) {
             return State().Settings().Write(key, "ServerName", std::to_string(n));
         },
         [&] { return platform::SettingsStore(config).Read(key, "ServerName").value_or(""); },
         State().Settings().FileFor(key)},
        {"journal",
         [&](std::uint64_t n) {
             journal.Agreed(1, "memos", {n, n});
             return journal.Save();
         },
         [&] {
             const auto seen = SyncJournal(journalFile).Find(1, "memos");
             return seen ? std::to_string(seen->server) : std::string();
         },
         journalFile},
    };
    const std::function<void(FaultEnv&)> breaks[] = {
        [](FaultEnv& f) { f.FailWriteAt(1); },
        [](FaultEnv& f) { f.FillDiskAfter(0); },
        [](FaultEnv& f) { f.FailRenameAt(1); },
    };
    for (const Saver& saver : savers) {
        SCOPED_TRACE(saver.name);
        ASSERT_TRUE(saver.save(1));
        for (const auto& fault : breaks) {
            fault(*faults);
            EXPECT_FALSE(saver.save(2));
            faults->Heal();
            EXPECT_EQ(saver.reread(), "1");
            EXPECT_TRUE(platform::LeftoverVersions(saver.file).empty());
        }
        EXPECT_TRUE(saver.save(2));
        EXPECT_EQ(saver.reread(), "2");
    }
    State().Reset();
}

}  // namespace
}  // namespace morvane::cli
