// Offices of the command-line host against the reference server: each with its own
// databases, settings and journal, logged in with a saved password and synchronised as
// `morvane sync` does, with one clock for the offices that the test moves with the server's.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OfficeServerTest.h"
#include "SyncRun.h"
#include "store/LocalDatabases.h"

namespace morvane::test {

class HostOfficesTest : public OfficeServerTest {
protected:
    class ShiftedClock;

    void SetUp() override;

    // Databases for an office ("a" logs in as u1, "b" as u2) under its own folder; the
    // customer database's path.
    std::filesystem::path MakeOffice(const std::string& name, const SampleDataOptions& data);
    // Generated customers never synchronised, with trade grids and data files.
    static SampleDataOptions Generated(std::int32_t customers);
    // A fresh host's databases: its sample customer alone.
    static SampleDataOptions FreshHost();
    // The office made, logged in, and its first run clean.
    void FirstSync(const std::string& name, const SampleDataOptions& data);
    // Office a's customers sent up, and office b, fresh, taking them two minutes later.
    void BothOfficesHold(std::int32_t customers);
    // The office's login, its password saved; true when logged in.
    bool Login(const std::string& name);
    // A run of the office as a new process of the host runs it; its output in `out_`.
    cli::SyncSummary Sync(const std::string& name, cli::Prefer prefer = cli::Prefer::Skip,
                          bool dryRun = false, const std::filesystem::path& journal = {});
    // The last run's output holds the text.
    void ExpectTold(const std::string& text) const {
        EXPECT_NE(out_.find(text), std::string::npos) << out_;
    }
    // Logged in, and nothing failed or was left unresolved.
    void ExpectClean(const cli::SyncSummary& summary) const;
    // The server's clock and the offices' move on together.
    void Advance(std::chrono::seconds by);
    // Sets the text of a customer's live memos, stamped now by the office's clock.
    void EditMemos(const std::string& name, std::int32_t custId, const std::string& text);
    std::vector<std::string> Memos(const std::string& name, std::int32_t custId);
    // Every file under the folders by its path, with a digest of its bytes; the login token
    // the server rotates with every reply is left out of the settings.
    static std::map<std::string, std::string> Fingerprint(
        const std::vector<std::filesystem::path>& folders);

    std::filesystem::path Db(const std::string& name) const;
    std::filesystem::path Folder(const std::string& name) const { return temp_.Path() / name; }

    std::string out_;
    std::shared_ptr<ShiftedClock> localClock_;
};

}  // namespace morvane::test
