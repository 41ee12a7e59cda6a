#include "support/MorvaneTest.h"

#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"

namespace morvane::test {

std::string LoginReply(int flags, const std::string& token, bool withAccount) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><login><system><flags>" +
                      std::to_string(flags) + "</flags><token>" + token + "</token></system>";
    if (withAccount)
        xml +=
            "<account><UserName>山田 太郎</UserName><ContractorName>山田建設事務所</ContractorName>"
            "<ContractBegin>2024/04/01</ContractBegin><ContractEnd>2027/03/31</ContractEnd>"
            "<SharedCount>3</SharedCount><MaxCustomer>250</MaxCustomer></account>";
    return xml + "</login>";
}

void MorvaneTest::SetUp() {
    ProcessState& state = State();
    state.Reset();
    state.SetSettingsRoot(temp_.Path() / "config");
    kit_ = std::make_shared<ScriptedToolkit>();
    state.SetToolkit(kit_);
    server_ = std::make_unique<TestServer>();
    platform::HttpOptions http;
    http.caFile = server_->CaFile();
    http.connectTimeoutSeconds = 5;
    http.stallTimeoutSeconds = 5;
    state.SetHttpOptions(http);
    SetSetting(reg::kServerName, server_->HostName());
    SetSetting(reg::kContractNo, "C-1001");
}

void MorvaneTest::TearDown() {
    State().Reset();
    server_.reset();
}

void MorvaneTest::LogIn(const std::string& token) {
    server_->On("login.php", LoginReply(1, token));
    ASSERT_TRUE(DoLogin("user1", "pass1", "C-1001"));
    ASSERT_EQ(GetLoginState(), 1);
    server_->ClearRequests();
    kit_->ClearRecords();
}

void MorvaneTest::SetSetting(const std::string& name, const std::string& value) {
    WriteMorvaneSetting(name, value);
}

std::string MorvaneTest::Setting(const std::string& name) { return ReadMorvaneSetting(name, ""); }

}  // namespace morvane::test
