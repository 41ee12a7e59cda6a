#include "OfficeServerTest.h"

#include "session/ProcessState.h"
#include "session/mdlRegConstMorvane.h"
#include "session/mdlRegControlMorvane.h"

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

}  // namespace morvane::test
