#include "server/core/Accounts.h"

#include "server/crypto/Secrets.h"

namespace morvane::server {

namespace {
constexpr const char* kAccountColumns =
    "id, contract_no, contractor_name, contract_begin, contract_end, shared_count, "
    "max_customer, single_login";

Account readAccount(const Statement& st) {
    Account a;
    a.id = st.integer(0);
    a.fields.contractNo = st.text(1);
    a.fields.contractorName = st.text(2);
    a.fields.contractBegin = st.text(3);
    a.fields.contractEnd = st.text(4);
    a.fields.sharedCount = static_cast<std::int32_t>(st.integer(5));
    a.fields.maxCustomer = static_cast<std::int32_t>(st.integer(6));
    a.fields.singleLogin = st.integer(7) != 0;
    return a;
}
}  // namespace

std::int64_t AccountStore::createAccount(const AccountFields& f) {
    if (f.contractNo.empty()) throw AccountError("a contract number is required");
    if (findAccount(f.contractNo)) throw AccountError("contract number already exists");
    db_.prepare(
           "INSERT INTO accounts(contract_no, contractor_name, contract_begin, contract_end, "
           "shared_count, max_customer, single_login) VALUES(?,?,?,?,?,?,?)")
        .bind(1, f.contractNo)
        .bind(2, f.contractorName)
        .bind(3, f.contractBegin)
        .bind(4, f.contractEnd)
        .bind(5, f.sharedCount)
        .bind(6, f.maxCustomer)
        .bind(7, f.singleLogin ? 1 : 0)
        .run();
    return db_.lastInsertId();
}

void AccountStore::addUser(const std::string& contractNo, const std::string& userId,
                           const std::string& password, const std::string& userName) {
    auto account = findAccount(contractNo);
    if (!account) throw AccountError("no account with that contract number");
    if (userId.empty() || password.empty()) throw AccountError("user ID and password are required");
    // Values travel unescaped in request bodies, so these characters could never log in.
    if (userId.find_first_of("&=") != std::string::npos)
        throw AccountError("a user ID may not hold '&' or '='");
    auto exists = db_.prepare("SELECT 1 FROM users WHERE account_id=? AND user_id=?");
    exists.bind(1, account->id).bind(2, userId);
    if (exists.step()) throw AccountError("user already exists");
    db_.prepare("INSERT INTO users(account_id, user_id, user_name, password_hash) VALUES(?,?,?,?)")
        .bind(1, account->id)
        .bind(2, userId)
        .bind(3, userName)
        .bind(4, hashPassword(password))
        .run();
}

std::optional<Account> AccountStore::findAccount(const std::string& contractNo) {
    auto st = db_.prepare(std::string("SELECT ") + kAccountColumns +
                          " FROM accounts WHERE contract_no=?");
    st.bind(1, contractNo);
    if (!st.step()) return std::nullopt;
    return readAccount(st);
}

std::optional<Account> AccountStore::accountById(std::int64_t id) {
    auto st = db_.prepare(std::string("SELECT ") + kAccountColumns + " FROM accounts WHERE id=?");
    st.bind(1, id);
    if (!st.step()) return std::nullopt;
    return readAccount(st);
}

std::optional<LoginUser> AccountStore::authenticate(const std::string& contractNo,
                                                    const std::string& userId,
                                                    const std::string& password) {
    auto account = findAccount(contractNo);
    if (!account) return std::nullopt;
    auto st =
        db_.prepare("SELECT user_name, password_hash FROM users WHERE account_id=? AND user_id=?");
    st.bind(1, account->id).bind(2, userId);
    if (!st.step()) return std::nullopt;
    if (!verifyPassword(password, st.text(1))) return std::nullopt;
    return LoginUser{*account, userId, st.text(0)};
}

}  // namespace morvane::server
