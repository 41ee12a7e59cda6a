#include "OfficeServerTest.h"

#include "component/ctrlMorvane.h"
#include "platform/Dao.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "store/LocalDatabases.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

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

std::string OfficeServerTest::UseOfficeDb(const std::string& name) {
    return UseOfficeDb(name, SampleDataOptions{});
}

void OfficeServerTest::LogInAndCreate(const std::string& user, const std::string& password,
                                      std::int32_t custId, const std::string& code) {
    ASSERT_TRUE(DoLogin(user, password, kContract));
    std::string create = LowerCustomerBody(custId);
    AppendField(create, "Code", code);
    ASSERT_NE(SendRequest(page::kCreateCompKihon, create), "");
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
    LogInAndCreate("u1", "secret-1", 2, "C2");
    SendAll(a, dbA, 2, kinds);

    const std::string dbB = UseOfficeDb("b");
    ctrlMorvane b;
    EXPECT_TRUE(DoLogin("u2", "secret-2", kContract));
    EXPECT_EQ(b.SyncDownloadCustomerList(dbB), 1);
    TakeAll(b, dbB, 2, kinds);
    return {dbA, dbB};
}

void OfficeServerTest::SendAll(ctrlMorvane& office, const std::string& db, std::int32_t custId,
                               const std::vector<CustomerKind>& kinds) {
    for (const CustomerKind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        if (kind.beforeUpload >= 0) {
            EXPECT_EQ((office.*kind.compare)(db, custId), kind.beforeUpload);
        }
        EXPECT_EQ((office.*kind.upload)(db, custId), 1);
        EXPECT_EQ((office.*kind.compare)(db, custId), 0);
    }
    NoBoxes();
}

void OfficeServerTest::TakeAll(ctrlMorvane& office, const std::string& db, std::int32_t custId,
                               const std::vector<CustomerKind>& kinds) {
    for (const CustomerKind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        EXPECT_EQ((office.*kind.compare)(db, custId), 1);
        EXPECT_EQ((office.*kind.download)(db, custId), 1);
        EXPECT_EQ((office.*kind.compare)(db, custId), 0);
    }
    NoBoxes();
}

void OfficeServerTest::NoBoxes() {
    for (const auto& box : kit_->Boxes()) ADD_FAILURE() << box.title << ": " << box.text;
}

}  // namespace morvane::test
