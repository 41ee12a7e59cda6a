#include "server/core/Accounts.h"

#include "server/crypto/Secrets.h"

namespace morvane::server {

namespace {
constexpr const char* kAccountColumns =
    "id, contract_no, contractor_name, contract_begin, contract_end, shared_count, "
    "max_customer, single_login";

Account ReadAccount(const Statement& st) {
    Account a;
    a.id = st.Integer(0);
    a.fields.contractNo = st.Text(1);
    a.fields.contractorName = st.Text(2);
    a.fields.contractBegin = st.Text(3);
    a.fields.contractEnd = st.Text(4);
    a.fields.sharedCount = static_cast<std::int32_t>(st.Integer(5));
    a.fields.maxCustomer = static_cast<std::int32_t>(st.Integer(6));
    a.fields.singleLogin = st.Integer(7) != 0;
    return a;
}
}  // namespace

std::int64_t AccountStore::CreateAccount(const AccountFields& f) {
    if (f.contractNo.empty()) throw AccountError("a contract number is required");
    if (FindAccount(f.contractNo)) throw AccountError("contract number already exists");
    db_.Prepare(
           "INSERT INTO accounts(contract_no, contractor_name, contract_begin, contract_end, "
           "shared_count, max_customer, single_login) VALUES(?,?,?,?,?,?,?)")
        .Bind(1, f.contractNo)
        .Bind(2, f.contractorName)
        .Bind(3, f.contractBegin)
        .Bind(4, f.contractEnd)
        .Bind(5, f.sharedCount)
        .Bind(6, f.maxCustomer)
        .Bind(7, f.singleLogin ? 1 : 0)
        .Run();
    return db_.LastInsertId();
}

void AccountStore::AddUser(const std::string& contractNo, const std::string& userId,
                           const std::string& password, const std::string& userName) {
    auto account = FindAccount(contractNo);
    if (!account) throw AccountError("no account with that contract number");
    if (userId.empty() || password.empty()) throw AccountError("user ID and password are required");
    // Values travel unescaped in request bodies, so these characters could never log in.
    if (userId.find_first_of("&=") != std::string::npos)
        throw AccountError("a user ID may not hold '&' or '='");
    auto exists = db_.Prepare("SELECT 1 FROM users WHERE account_id=? AND user_id=?");
    exists.Bind(1, account->id).Bind(2, userId);
    if (exists.Step()) throw AccountError("user already exists");
    db_.Prepare("INSERT INTO users(account_id, user_id, user_name, password_hash) VALUES(?,?,?,?)")
        .Bind(1, account->id)
        .Bind(2, userId)
        .Bind(3, userName)
        .Bind(4, HashPassword(password))
        .Run();
}

std::optional<Account> AccountStore::FindAccount(const std::string& contractNo) {
    auto st = db_.Prepare(std::string("SELECT ") + kAccountColumns +
                          " FROM accounts WHERE contract_no=?");
    st.Bind(1, contractNo);
    if (!st.Step()) return std::nullopt;
    return ReadAccount(st);
}

std::optional<Account> AccountStore::AccountById(std::int64_t id) {
    auto st = db_.Prepare(std::string("SELECT ") + kAccountColumns + " FROM accounts WHERE id=?");
    st.Bind(1, id);
    if (!st.Step()) return std::nullopt;
    return ReadAccount(st);
}

std::optional<LoginUser> AccountStore::Authenticate(const std::string& contractNo,
                                                    const std::string& userId,
                                                    const std::string& password) {
    auto account = FindAccount(contractNo);
    if (!account) return std::nullopt;
    auto st =
        db_.Prepare("SELECT user_name, password_hash FROM users WHERE account_id=? AND user_id=?");
    st.Bind(1, account->id).Bind(2, userId);
    if (!st.Step()) return std::nullopt;
    if (!VerifyPassword(password, st.Text(1))) return std::nullopt;
    return LoginUser{*account, userId, st.Text(0)};
}

}  // namespace morvane::server
