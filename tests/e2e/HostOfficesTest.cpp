#include "HostOfficesTest.h"

#include <sstream>

#include "LoginCommands.h"
#include "SyncCommand.h"
#include "platform/Checksum.h"
#include "platform/Clock.h"
#include "platform/Dao.h"
#include "state/ProcessState.h"
#include "store/StoreTestUtil.h"
#include "support/FileBytes.h"

namespace morvane::test {

namespace fs = std::filesystem;

class HostOfficesTest::ShiftedClock final : public platform::Clock {
public:
    DateValue Now() const override {
        return DateValue(platform::SystemClock().Now().Days() + shift_.count() / 86400.0);
    }
    void Advance(std::chrono::seconds by) { shift_ += by; }

private:
    std::chrono::seconds shift_{0};
};

void HostOfficesTest::SetUp() { localClock_ = std::make_shared<ShiftedClock>(); }

fs::path HostOfficesTest::Db(const std::string& name) const {
    return temp_.Path() / name / "data" / kCustomerDatabaseName;
}

fs::path HostOfficesTest::MakeOffice(const std::string& name, const SampleDataOptions& data) {
    CreateLocalDatabases(Db(name).parent_path(), data);
    return Db(name);
}

SampleDataOptions HostOfficesTest::Generated(std::int32_t customers) {
    SampleDataOptions data;
    data.customers = customers;
    data.neverSynced = true;
    data.tradeGrid = true;
    data.dataFiles = true;
    return data;
}

SampleDataOptions HostOfficesTest::FreshHost() {
    SampleDataOptions data = Generated(0);
    data.hostSampleCustomer = true;
    return data;
}

void HostOfficesTest::FirstSync(const std::string& name, const SampleDataOptions& data) {
    MakeOffice(name, data);
    ASSERT_TRUE(Login(name));
    ExpectClean(Sync(name));
}

void HostOfficesTest::BothOfficesHold(std::int32_t customers) {
    FirstSync("a", Generated(customers));
    Advance(std::chrono::minutes(2));
    FirstSync("b", FreshHost());
}

bool HostOfficesTest::Login(const std::string& name) {
    UseOffice(name);
    State().SetClock(localClock_);
    const bool first = name == "a";
    std::ostringstream out;
    return cli::RunLogin({server_->ServerName(), kContract, first ? "u1" : "u2",
                          first ? "secret-1" : "secret-2", /*savePassword=*/true},
                         out) == 1;
}

cli::SyncSummary HostOfficesTest::Sync(const std::string& name, cli::Prefer prefer, bool dryRun,
                                       const fs::path& journal) {
    UseOffice(name);
    State().SetClock(localClock_);
    cli::SyncOptions options;
    options.localDb = Db(name).string();
    options.prefer = prefer;
    options.dryRun = dryRun;
    options.journal = journal;
    std::ostringstream out;
    cli::SyncSummary summary = cli::SyncLocal(options, out, out);
    cli::PrintSummary(summary, out);
    out_ = out.str();
    return summary;
}

void HostOfficesTest::ExpectClean(const cli::SyncSummary& summary) const {
    EXPECT_TRUE(summary.loggedIn) << out_;
    EXPECT_EQ(summary.failures, 0) << out_;
    EXPECT_EQ(summary.conflicts, 0) << out_;
}

void HostOfficesTest::Advance(std::chrono::seconds by) {
    clock_->Advance(by);
    localClock_->Advance(by);
}

void HostOfficesTest::EditMemos(const std::string& name, std::int32_t custId,
                                const std::string& text) {
    dao::Workspace ws("", "");
    ws.OpenDatabase(Db(name).string())
        .Execute("UPDATE tCustomerHistory SET History = '" + text + "', RecordUpdate = #" +
                 localClock_->Now().Text() +
                 "# WHERE disabled = 0 AND CustomerID = " + std::to_string(custId));
}

std::vector<std::string> HostOfficesTest::Memos(const std::string& name, std::int32_t custId) {
    auto memos =
        Rows(Db(name), "SELECT History FROM tCustomerHistory WHERE disabled = 0 AND CustomerID = " +
                           std::to_string(custId) + " ORDER BY id");
    for (std::string& memo : memos)
        if (memo == "<null>") memo.clear();  // a download writes an empty memo as ""
    return memos;
}

std::map<std::string, std::string> HostOfficesTest::Fingerprint(
    const std::vector<fs::path>& folders) {
    std::map<std::string, std::string> prints;
    for (const fs::path& folder : folders)
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            // The run file holds the token alone, which every reply changes.
            if (!entry.is_regular_file() || entry.path().extension() == ".run") continue;
            std::string bytes = ReadBytes(entry.path());
            if (entry.path().extension() == ".conf") {
                std::istringstream lines(bytes);
                bytes.clear();
                for (std::string line; std::getline(lines, line);)
                    if (line.rfind("Param2=", 0) != 0) bytes += line + '\n';
            }
            const auto digest = platform::Sha256(bytes);
            prints[entry.path().string()] = std::string(digest.begin(), digest.end());
        }
    return prints;
}

}  // namespace morvane::test
