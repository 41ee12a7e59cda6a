// What a member leaves behind when the outside world breaks half way: a write that fails, a
// disk that fills up, a rename refused, a request never sent or its answer lost. The good
// copy stays whole every time, and the same call does its work once the fault is gone.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>

#include "component/ctrlMorvane.h"
#include "platform/AtomicFile.h"
#include "record/KihonTestUtil.h"
#include "state/ProcessState.h"
#include "support/FaultEnv.h"
#include "support/FileBytes.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

namespace fs = std::filesystem;

struct Fault {
    const char* name;
    std::function<void(FaultEnv&)> set;
};

class FaultsTest : public RecordDbTest {
protected:
    void SetUp() override {
        RecordDbTest::SetUp();
        faults_ = std::make_shared<FaultEnv>(State().Env());
        State().SetEnv(faults_);
    }
    void TearDown() override {
        State().SetEnv(nullptr);
        RecordDbTest::TearDown();
    }
    std::shared_ptr<FaultEnv> faults_;
    const Golden data_{"faults/faults.txt"};
};

TEST_F(FaultsTest, ADataFileDownloadThatBreaksAnywhereLeavesTheLocalFileWhole) {
    const std::string incoming(200000, 'n');
    server_->On("customer/getKessanFileHash.php", Envelope(1, "T2", data_.Joined("description")));
    server_->On("customer/getKessanFile.php", incoming);
    const std::vector<Fault> faults{
        {"the first write fails", [](FaultEnv& f) { f.FailWriteAt(1); }},
        {"a later write fails", [](FaultEnv& f) { f.FailWriteAt(3); }},
        {"the disk fills half way", [](FaultEnv& f) { f.FillDiskAfter(100000); }},
        {"the rename is refused", [](FaultEnv& f) { f.FailRenameAt(1); }},
        {"the request never goes",
         [](FaultEnv& f) { f.DropExchangeAt(1, FaultEnv::Drop::BeforeSending); }},
        {"the answer is lost",
         [](FaultEnv& f) { f.DropExchangeAt(1, FaultEnv::Drop::AfterAnswer); }},
    };
    const fs::path local = temp_.Path() / "a.pdf";
    ctrlMorvane m;
    LogIn();
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.name);
        WriteBytes(local, "old content");
        fs::last_write_time(local, fs::last_write_time(local) - std::chrono::days(3650));
        ASSERT_EQ(m.CompareCustomerKessanFile(7, local.string()), 1);
        fault.set(*faults_);
        m.SyncDownloadCustomerKessanFile(7, local.string(), nullptr);
        faults_->Heal();
        EXPECT_EQ(ReadBytes(local), "old content");
        EXPECT_TRUE(platform::LeftoverVersions(local).empty());
        // The difference is still there for the next run to take.
        ASSERT_EQ(m.CompareCustomerKessanFile(7, local.string()), 1);
        EXPECT_EQ(m.SyncDownloadCustomerKessanFile(7, local.string(), nullptr), 1);
        EXPECT_EQ(ReadBytes(local), incoming) << "taken once the fault is gone";
    }
}

TEST_F(FaultsTest, ARecordDownloadThatBreaksInTheDatabaseLeavesTheRowAsItWas) {
    Sql(db_, data_["customer 7"]);
    Tags tags = RequiredTags();
    tags.push_back({"TAddr0", "new"});
    server_->On("customer/getCompKihon.php",
                Envelope(1, "T2", KihonPayload(tags, "2024/05/01 09:05:00")));
    const std::vector<Fault> faults{
        {"the first write fails", [](FaultEnv& f) { f.FailWriteAt(1); }},
        {"the disk is full", [](FaultEnv& f) { f.FillDiskAfter(0); }},
        {"the disk fills half way", [](FaultEnv& f) { f.FillDiskAfter(3000); }},
        {"the answer is lost",
         [](FaultEnv& f) { f.DropExchangeAt(1, FaultEnv::Drop::AfterAnswer); }},
    };
    const auto row = [&] { return Rows(db_, "SELECT ZipCode0, TAddr0 FROM tCustomer"); };
    ctrlMorvane m;
    LogIn();
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.name);
        ASSERT_EQ(m.CompareCustomerKihon(db_, 7), 1);
        fault.set(*faults_);
        const std::size_t told = kit_->Boxes().size();
        m.SyncDownloadCustomerKihon(db_, 7);
        faults_->Heal();
        EXPECT_GT(kit_->Boxes().size(), told) << "the user is told";
        EXPECT_EQ(row(), std::vector<std::string>{"999|old"});
        EXPECT_EQ(One(db_, "PRAGMA integrity_check"), "ok");
    }
    ASSERT_EQ(m.CompareCustomerKihon(db_, 7), 1);
    EXPECT_EQ(m.SyncDownloadCustomerKihon(db_, 7), 1);
    EXPECT_EQ(row(), std::vector<std::string>{"100|new"});
    EXPECT_EQ(m.CompareCustomerKihon(db_, 7), 0);
}

}  // namespace
}  // namespace morvane::test
