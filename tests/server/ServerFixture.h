// Runs a real server on 127.0.0.1 over HTTPS in a temporary data folder, with a clock the test
// moves, and posts to it the way the client does.
#pragma once

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "server/MorvaneServer.h"
#include "support/TempDir.h"

namespace morvane::server::testing {

// A parsed reply with the few look-ups the tests need.
struct Reply {
    std::string text;
    pugi::xml_document doc;

    explicit Reply(std::string body);
    int Flags() const;
    std::string Token() const;
    // The first element of the root with this name (exact case).
    pugi::xml_node Payload(const char* name) const;
    // The text at a path below the root ("compList/CompCount"), "" when it is not there.
    std::string At(const std::string& path) const;
};

// One user's login, carrying the token from reply to reply as the client does.
struct Login {
    std::string userId;
    std::string token;
};

class ServerTest : public ::testing::Test {
protected:
    void SetUp() override;

    std::string RawPost(const std::string& path, const std::string& body,
                        const std::multimap<std::string, std::string>& headers = {});
    Reply Post(const std::string& path, const std::string& body) {
        return Reply(RawPost(path, body));
    }
    // Logs in; fails the test when the login is refused.
    Login LogIn(const std::string& userId = "u1", const std::string& password = "secret");
    // Posts "ID=<id>&token=<token>&" + rest with the login's token and keeps the new token
    // (the server takes its keys in any case, so the pages the client posts "id=" to as well).
    Reply Call(Login& login, const std::string& path, const std::string& rest);
    Reply UploadFile(Login& login, const std::string& kind, int customer,
                     const std::string& encodedName, const std::string& bytes);
    void CreateCustomer(Login& login, int customer, const std::string& code = "C");
    // The flags of a call, for the many checks that look at nothing else.
    int Flags(Login& login, const std::string& path, const std::string& rest) {
        return Call(login, path, rest).Flags();
    }

    // Declared first, so that the server is gone before its folder.
    morvane::test::TempDir dir_;
    std::shared_ptr<ManualClock> clock_;
    ServerOptions options_;
    std::unique_ptr<MorvaneServer> server_;
};

}  // namespace morvane::server::testing
