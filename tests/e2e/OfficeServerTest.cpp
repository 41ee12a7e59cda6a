#include "OfficeServerTest.h"

#include "platform/Dao.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"

namespace morvane::test {

void OfficeServerTest::StartServer(std::int32_t maxCustomer, std::chrono::seconds clockOffset) {
    clock_ = std::make_shared<server::ManualClock>(std::chrono::system_clock::now() + clockOffset);
    server::ServerOptions options;
    options.dataDir = temp_.Path() / "server";
    options.clock = clock_;
    server_ = std::make_unique<server::MorvaneServer>(options);
    server::AccountFields account;
    account.contractNo = kContract;
    account.contractorName = "テスト建設事務所";
    account.contractBegin = "2026/04/01";
    account.contractEnd = "2027/03/31";
    account.sharedCount = 2;
    account.maxCustomer = maxCustomer;
    server_->CreateAccount(account);
    server_->AddUser(kContract, "u1", "secret-1", "事務員一");
    server_->AddUser(kContract, "u2", "secret-2", "事務員二");
    server_->Start();
}

void OfficeServerTest::TearDown() {
    State().Reset();
    if (server_) server_->Stop();
}

void OfficeServerTest::UseOffice(const std::string& name) {
    State().Reset();
    State().SetSettingsRoot(temp_.Path() / name / "config");
    kit_ = std::make_shared<ScriptedToolkit>();
    State().SetToolkit(kit_);
    platform::HttpOptions http;
    http.caFile = server_->CertFile().string();
    State().SetHttpOptions(http);
    WriteMorvaneSetting(reg::kServerName, server_->ServerName());
    WriteMorvaneSetting(reg::kContractNo, kContract);
}

std::string OfficeServerTest::UseOfficeDb(const std::string& name, const SampleDataOptions& data) {
    UseOffice(name);
    return CreateLocalDatabases(temp_.Path() / name / "db", data).customer.string();
}

void OfficeServerTest::CreateCustomer(std::int32_t custId) {
    std::string body = LowerCustomerBody(custId);
    AppendField(body, "Code", "C" + std::to_string(custId));
    AppendField(body, "CorpName0", "株式会社" + std::to_string(custId));
    AppendField(body, "CorpKanaS", "ｶﾌﾞ");
    AppendField(body, "CorpKana0", "ｶﾌﾞ");
    ASSERT_NE(SendRequest(page::kCreateCompKihon, body), "") << custId;
}

std::pair<std::string, std::string> OfficeServerTest::RoundTrip(
    const std::vector<CustomerKind>& kinds, const std::string& script,
    const SampleDataOptions& data) {
    const std::string dbA = UseOfficeDb("a", data);
    if (!script.empty()) dao::RunScript(dbA, script);
    ctrlMorvane a;  // a new object resets the login: it comes first
    EXPECT_TRUE(DoLogin("u1", "secret-1", kContract));
    CreateCustomer(2);
    MoveAll(a, dbA, kinds, true);

    const std::string dbB = UseOfficeDb("b");
    ctrlMorvane b;
    EXPECT_TRUE(DoLogin("u2", "secret-2", kContract));
    EXPECT_EQ(b.SyncDownloadCustomerList(dbB), 1);
    MoveAll(b, dbB, kinds, false);
    return {dbA, dbB};
}

void OfficeServerTest::MoveAll(ctrlMorvane& office, const std::string& db,
                               const std::vector<CustomerKind>& kinds, bool up) {
    for (const CustomerKind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        const std::int32_t before = up ? kind.beforeUpload : 1;
        if (before >= 0) {
            EXPECT_EQ((office.*kind.compare)(db, 2), before);
        }
        EXPECT_EQ((office.*(up ? kind.upload : kind.download))(db, 2), 1);
        EXPECT_EQ((office.*kind.compare)(db, 2), 0);
    }
    NoBoxes();
}

void OfficeServerTest::NoBoxes() {
    for (const auto& box : kit_->Boxes()) ADD_FAILURE() << box.title << ": " << box.text;
}

}  // namespace morvane::test
