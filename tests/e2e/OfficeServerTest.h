// The reference server in the test's own process with one account of two users, and the
// host's offices pointed at it, each with its own settings store and scripted dialogs.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "server/MorvaneServer.h"
#include "server/core/Clock.h"
#include "support/ScopedEnv.h"
#include "support/ScriptedToolkit.h"
#include "support/TempDir.h"

namespace morvane::test {

class OfficeServerTest : public ::testing::Test {
protected:
    static constexpr const char* kContract = "K-200";

    // Users "u1" and "u2" with the passwords "secret-1" and "secret-2"; time stands still
    // until the test moves `clock_`, which starts `clockOffset` off the system's.
    void StartServer(std::int32_t maxCustomer = 50,
                     std::chrono::seconds clockOffset = std::chrono::seconds(0));
    void TearDown() override;
    // The process as one office of the host sees it: a fresh login state, the office's
    // settings under the work folder, the server's name, contract and certificate.
    void UseOffice(const std::string& name);

    TempDir temp_;
    // The trash of this test's own: what the component throws away never reaches the user's.
    ScopedEnv dataHome_{"XDG_DATA_HOME", (temp_.Path() / "data-home").string()};
    std::shared_ptr<server::ManualClock> clock_;
    std::unique_ptr<server::MorvaneServer> server_;
    std::shared_ptr<ScriptedToolkit> kit_;
};

}  // namespace morvane::test
