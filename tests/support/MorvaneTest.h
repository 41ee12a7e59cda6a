// The fixture of tests that run the component: a fresh process state, a settings store and a
// trash in a temporary folder, the scripted toolkit, and an HTTPS test server that the settings
// name as the server.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/ScopedEnv.h"
#include "support/ScriptedToolkit.h"
#include "support/TempDir.h"
#include "support/TestServer.h"

namespace morvane::test {

class MorvaneTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Logs in against the test server with a scripted login reply and clears the records.
    void LogIn(const std::string& token = "T1");
    // Writes a value of the component's settings key.
    void SetSetting(const std::string& name, const std::string& value);
    std::string Setting(const std::string& name);

    TempDir temp_;
    // The trash of this test's own: what the component throws away never reaches the user's.
    ScopedEnv dataHome_{"XDG_DATA_HOME", (temp_.Path() / "data-home").string()};
    std::unique_ptr<TestServer> server_;
    std::shared_ptr<ScriptedToolkit> kit_;
};

// The login reply of a well-known account.
std::string LoginReply(int flags, const std::string& token, bool withAccount = true);

}  // namespace morvane::test
