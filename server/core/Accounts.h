// Accounts (one per contract number) and their users, with salted password hashes.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "server/core/Storage.h"

namespace morvane::server {

struct AccountFields {
    std::string contractNo;
    std::string contractorName;
    std::string contractBegin;
    std::string contractEnd;
    std::int32_t sharedCount = 1;
    std::int32_t maxCustomer = 0;
    // A second login of a user whose session is still live is answered "logged in elsewhere".
    bool singleLogin = false;
};

struct Account {
    std::int64_t id = 0;
    AccountFields fields;
};

struct LoginUser {
    Account account;
    std::string userId;
    std::string userName;
};

class AccountError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class AccountStore {
public:
    explicit AccountStore(SQLite::Database& db) : db_(db) {}

    // Creates the account, or fails when the contract number is taken.
    std::int64_t CreateAccount(const AccountFields& fields);
    void AddUser(const std::string& contractNo, const std::string& userId,
                 const std::string& password, const std::string& userName);
    std::optional<Account> FindAccount(const std::string& contractNo);
    std::optional<Account> AccountById(std::int64_t id);
    // The user when contract number, user ID and password all match.
    std::optional<LoginUser> Authenticate(const std::string& contractNo, const std::string& userId,
                                          const std::string& password);

private:
    SQLite::Database& db_;
};

}  // namespace morvane::server
