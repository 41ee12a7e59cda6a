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

#include "server/MorvaneServer.h"
#include "server/core/Clock.h"
#include "support/ScopedEnv.h"
#include "support/ScriptedToolkit.h"
#include "support/TempDir.h"

namespace morvane {
class ctrlMorvane;
struct SampleDataOptions;
}  // namespace morvane

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
    void TearDown() override;
    // The process as one office of the host sees it: a fresh login state, the office's
    // settings under the work folder, the server's name, contract and certificate.
    void UseOffice(const std::string& name);
    // The same with the office's own local databases; gives the customer database's path.
    std::string UseOfficeDb(const std::string& name, const SampleDataOptions& data);
    std::string UseOfficeDb(const std::string& name);

    // Logs the office's user in and creates the customer on the server under the code.
    void LogInAndCreate(const std::string& user, const std::string& password, std::int32_t custId,
                        const std::string& code);
    // Creates the customer on the server as the roster's addition does, coded "C<id>".
    static void CreateCustomer(std::int32_t custId);
    // Office A ("a", user u1) with the sample data and the script run on its customer database
    // creates customer 2 and sends the kinds; office B ("b", user u2), fresh, takes the roster
    // and then the kinds. Gives the two customer databases.
    std::pair<std::string, std::string> RoundTrip(const std::vector<CustomerKind>& kinds,
                                                  const std::string& script,
                                                  const SampleDataOptions& data);
    // The office sends each kind, and then agrees with the server on it.
    void SendAll(ctrlMorvane& office, const std::string& db, std::int32_t custId,
                 const std::vector<CustomerKind>& kinds);
    // The office finds each kind newer on the server, takes it, and then agrees.
    void TakeAll(ctrlMorvane& office, const std::string& db, std::int32_t custId,
                 const std::vector<CustomerKind>& kinds);
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
