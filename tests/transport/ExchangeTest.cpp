// The raw exchange: URL composition, the cached server name, request body starts, the
// token shared through the settings store, and the one escaping routine.
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/SettingsStore.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "support/MorvaneTest.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerCommon.h"
#include "transport/mdlServerReply.h"

namespace morvane::test {
namespace {

class ExchangeTest : public MorvaneTest {};

TEST_F(ExchangeTest, ServerNameIsReadOnceAndTrimmed) {
    SetSetting(reg::kServerName, "  backup.example.jp ");
    State().serverName.reset();
    EXPECT_EQ(GetServerBaseURL(), "https://backup.example.jp/");
    SetSetting(reg::kServerName, "other.example.jp");
    EXPECT_EQ(GetServerName(), "backup.example.jp");  // a restart is needed
}

TEST_F(ExchangeTest, EmptyServerNameFailsInSilenceAndTheCheckTells) {
    SetSetting(reg::kServerName, "");
    State().serverName.reset();
    EXPECT_EQ(GetServerBaseURL(), "https:///");
    EXPECT_EQ(PostToServer("login.php", "x=1&"), "");
    EXPECT_TRUE(kit_->Boxes().empty());
    EXPECT_EQ(SendRequest("login.php", "x=1&"), "");
    EXPECT_EQ(kit_->Boxes().size(), 1u);
}

TEST_F(ExchangeTest, BodiesCarryIdAndTheTokenReadAnew) {
    LogIn("T1");
    // The body forms' keys are checked by the real server in the end-to-end tests.
    EXPECT_EQ(FileBody(42, "/data/決算 2024&a.pdf"),
              "ID=user1&token=T1&CustomerID=42&FileName=決算 2024&a.pdf&");
    // Another process wrote a newer token: the next body takes it.
    platform::SettingsStore other(State().Settings().Root());
    other.Write({reg::kBasePath, reg::kApplication, reg::kSection}, reg::kParam2, "T-OTHER");
    EXPECT_EQ(UpperBody(), "ID=user1&token=T-OTHER&");
}

TEST_F(ExchangeTest, ConnectionsAreKeptBetweenRequestsUnderTheSameTrust) {
    LogIn("T1");
    server_->On("master/getKessanTaioh.php", Envelope(1, "T2"));
    ASSERT_NE(PostToServer("master/getKessanTaioh.php", UpperBody()), "");
    ASSERT_NE(PostToServer("master/getKessanTaioh.php", UpperBody()), "");
    auto requests = server_->RequestsTo("master/getKessanTaioh.php");
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].remotePort, requests[1].remotePort);

    // Other trust settings never ride on a connection verified under the old ones.
    platform::HttpOptions http = State().HttpOptions();
    http.caFile = (temp_.Path() / "missing.pem").string();
    State().SetHttpOptions(http);
    EXPECT_EQ(PostToServer("master/getKessanTaioh.php", UpperBody()), "");
    EXPECT_EQ(server_->RequestsTo("master/getKessanTaioh.php").size(), 2u);
}

TEST_F(ExchangeTest, PrivateCertificateComesFromTheEnvironmentOrTheSetting) {
    LogIn("T1");
    server_->On("master/getKessanTaioh.php", Envelope(1, "T2"));
    // Without the test's own options the store and the environment decide.
    State().SetHttpOptions(std::nullopt);
    ::unsetenv("MORVANE_CA_FILE");
    EXPECT_EQ(PostToServer("master/getKessanTaioh.php", UpperBody()), "");  // not trusted

    SetSetting(reg::kCAFile, server_->CaFile());
    EXPECT_NE(PostToServer("master/getKessanTaioh.php", UpperBody()), "");

    SetSetting(reg::kCAFile, "");
    ::setenv("MORVANE_CA_FILE", server_->CaFile().c_str(), 1);
    EXPECT_NE(PostToServer("master/getKessanTaioh.php", UpperBody()), "");
    ::unsetenv("MORVANE_CA_FILE");
}

TEST(EncodeURIValueTest, KeepsItsSetAndEscapesTheRestAsUtf8) {
    EXPECT_EQ(EncodeURIValue(""), "");
    EXPECT_EQ(EncodeURIValue("AZaz09-_.!~*'();,/?:@&=+$#"), "AZaz09-_.!~*'();,/?:@&=+$#");
    EXPECT_EQ(EncodeURIValue("a b%\"<>\\^`{|}"), "a%20b%25%22%3C%3E%5C%5E%60%7B%7C%7D");
    EXPECT_EQ(EncodeURIValue("決算書.pdf"), "%E6%B1%BA%E7%AE%97%E6%9B%B8.pdf");
    EXPECT_EQ(EncodeURIValue("ｱ"), "%EF%BD%B1");
    EXPECT_EQ(EncodeURIValue("\r\n"), "%0D%0A");
}

}  // namespace
}  // namespace morvane::test
