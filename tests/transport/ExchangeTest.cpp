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

constexpr const char* kPage = "master/getKessanTaioh.php";

class ExchangeTest : public MorvaneTest {};

// Read once and trimmed: a new name needs a restart. An empty one fails in silence, and the
// reply check tells.
TEST_F(ExchangeTest, ServerNameIsReadOnceAndTrimmedAndAnEmptyOneFails) {
    SetSetting(reg::kServerName, "  backup.example.jp ");
    State().serverName.reset();
    EXPECT_EQ(GetServerBaseURL(), "https://backup.example.jp/");
    SetSetting(reg::kServerName, "other.example.jp");
    EXPECT_EQ(GetServerName(), "backup.example.jp");
    SetSetting(reg::kServerName, "");
    State().serverName.reset();
    EXPECT_EQ(GetServerBaseURL(), "https:///");
    EXPECT_EQ(PostToServer("login.php", "x=1&"), "");
    EXPECT_TRUE(kit_->Boxes().empty());
    EXPECT_EQ(SendRequest("login.php", "x=1&"), "");
    EXPECT_EQ(kit_->Boxes().size(), 1u);
}

// The body forms' keys are checked by the real server in the end-to-end tests.
TEST_F(ExchangeTest, BodiesCarryIdAndTheTokenReadAnew) {
    LogIn("T1");
    EXPECT_EQ(FileBody(42, "/data/決算 2024&a.pdf"),
              "ID=user1&token=T1&CustomerID=42&FileName=決算 2024&a.pdf&");
    // Another process wrote a newer token: the next body takes it.
    platform::SettingsStore other(State().Settings().Root());
    other.Write({reg::kBasePath, reg::kApplication, reg::kSection}, reg::kParam2, "T-OTHER");
    EXPECT_EQ(UpperBody(), "ID=user1&token=T-OTHER&");
}

// Other trust settings never ride on a connection verified under the old ones.
TEST_F(ExchangeTest, ConnectionsAreKeptBetweenRequestsUnderTheSameTrust) {
    LogIn("T1");
    server_->On(kPage, Envelope(1, "T2"));
    ASSERT_NE(PostToServer(kPage, UpperBody()), "");
    ASSERT_NE(PostToServer(kPage, UpperBody()), "");
    const auto requests = server_->RequestsTo(kPage);
    EXPECT_EQ(requests.at(0).remotePort, requests.at(1).remotePort);
    platform::HttpOptions http = State().HttpOptions();
    http.caFile = (temp_.Path() / "missing.pem").string();
    State().SetHttpOptions(http);
    EXPECT_EQ(PostToServer(kPage, UpperBody()), "");
    EXPECT_EQ(server_->RequestsTo(kPage).size(), 2u);
}

// Without the test's own options the store and the environment decide.
TEST_F(ExchangeTest, PrivateCertificateComesFromTheEnvironmentOrTheSetting) {
    LogIn("T1");
    server_->On(kPage, Envelope(1, "T2"));
    State().SetHttpOptions(std::nullopt);
    ::unsetenv("MORVANE_CA_FILE");
    EXPECT_EQ(PostToServer(kPage, UpperBody()), "");  // not trusted
    SetSetting(reg::kCAFile, server_->CaFile());
    EXPECT_NE(PostToServer(kPage, UpperBody()), "");
    SetSetting(reg::kCAFile, "");
    ::setenv("MORVANE_CA_FILE", server_->CaFile().c_str(), 1);
    EXPECT_NE(PostToServer(kPage, UpperBody()), "");
    ::unsetenv("MORVANE_CA_FILE");
}

TEST(EncodeURIValueTest, KeepsItsSetAndEscapesTheRestAsUtf8) {
    EXPECT_EQ(EncodeURIValue("AZaz09-_.!~*'();,/?:@&=+$#"), "AZaz09-_.!~*'();,/?:@&=+$#");
    EXPECT_EQ(EncodeURIValue("a b%\"<>\\^`{|}\r\n"), "a%20b%25%22%3C%3E%5C%5E%60%7B%7C%7D%0D%0A");
    EXPECT_EQ(EncodeURIValue("決算書.pdfｱ"), "%E6%B1%BA%E7%AE%97%E6%9B%B8.pdf%EF%BD%B1");
}

}  // namespace
}  // namespace morvane::test
