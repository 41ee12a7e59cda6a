// The reference server in the test's own process with one account of two users, and the
// host's offices pointed at it, each with its own settings store and scripted dialogs.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "component/ctrlMorvane.h"
#include "server/MorvaneServer.h"
#include "server/core/Clock.h"
#include "session/mdlLogin.h"
#include "store/LocalDatabases.h"
#include "store/StoreTestUtil.h"
#include "support/ScopedEnv.h"
#include "support/ScriptedToolkit.h"
#include "support/TempDir.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane::test {

class OfficeServerTest : public ::testing::Test {
public:
    // The members of one kind of customer data, as the host calls them.
    using CustomerMember = std::int32_t (ctrlMorvane::*)(const std::string&, std::int32_t);
    struct CustomerKind {
        const char* name;
        CustomerMember compare, download, upload;
        // What the comparison gives before the office's first upload; -1: not looked at.
        std::int32_t beforeUpload;
    };

protected:
    static constexpr const char* kContract = "K-200";

    // Users "u1" and "u2" with the passwords "secret-1" and "secret-2"; time stands still
    // until the test moves `clock_`, which starts `clockOffset` off the system's.
    void StartServer(std::int32_t maxCustomer = 50,
                     std::chrono::seconds clockOffset = std::chrono::seconds(0));
    void SetUp() override { StartServer(); }
    void TearDown() override;
    // The process as one office of the host sees it: a fresh login state, the office's
    // settings under the work folder, the server's name, contract and certificate.
    void UseOffice(const std::string& name);
    // The same with the office's own local databases; gives the customer database's path.
    std::string UseOfficeDb(const std::string& name, const SampleDataOptions& data = {});

    // Creates the customer on the server as the roster's addition does, coded "C<id>".
    static void CreateCustomer(std::int32_t custId);
    // Office A ("a", user u1) with the sample data and the script run on its customer database
    // creates customer 2 and sends the kinds; office B ("b", user u2), fresh, takes the roster
    // and then the kinds. Gives the two customer databases.
    std::pair<std::string, std::string> RoundTrip(const std::vector<CustomerKind>& kinds,
                                                  const std::string& script,
                                                  const SampleDataOptions& data);
    // The office sends (or takes, finding the server newer) each kind of customer 2, and then
    // agrees with the server on it.
    void MoveAll(ctrlMorvane& office, const std::string& db, const std::vector<CustomerKind>& kinds,
                 bool up);
    // Every message box shown so far fails the test.
    void NoBoxes();

    TempDir temp_;
    // The trash of this test's own: what the component throws away never reaches the user's.
    ScopedEnv dataHome_{"XDG_DATA_HOME", (temp_.Path() / "data-home").string()};
    std::shared_ptr<server::ManualClock> clock_;
    std::unique_ptr<server::MorvaneServer> server_;
    std::shared_ptr<ScriptedToolkit> kit_;
};

}  // namespace morvane::test
