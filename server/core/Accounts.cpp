#include "server/core/Accounts.h"

#include "server/crypto/Secrets.h"

namespace morvane::server {

namespace {
constexpr const char* kAccountColumns =
    "id, contract_no, contractor_name, contract_begin, contract_end, shared_count, "
    "max_customer, single_login";

// The account on the statement's next row, if there is one.
std::optional<Account> ReadAccount(SQLite::Statement& st) {
    if (!st.executeStep()) return std::nullopt;
    Account a;
    a.id = st.getColumn(0).getInt64();
    a.fields.contractNo = st.getColumn(1).getString();
    a.fields.contractorName = st.getColumn(2).getString();
    a.fields.contractBegin = st.getColumn(3).getString();
    a.fields.contractEnd = st.getColumn(4).getString();
    a.fields.sharedCount = st.getColumn(5).getInt();
    a.fields.maxCustomer = st.getColumn(6).getInt();
    a.fields.singleLogin = st.getColumn(7).getInt() != 0;
    return a;
}
}  // namespace

std::int64_t AccountStore::CreateAccount(const AccountFields& f) {
    if (f.contractNo.empty()) throw AccountError("a contract number is required");
    if (FindAccount(f.contractNo)) throw AccountError("contract number already exists");
    Execute(db_,
            "INSERT INTO accounts(contract_no, contractor_name, contract_begin, contract_end, "
            "shared_count, max_customer, single_login) VALUES(?,?,?,?,?,?,?)",
            f.contractNo, f.contractorName, f.contractBegin, f.contractEnd, f.sharedCount,
            f.maxCustomer, f.singleLogin ? 1 : 0);
    return db_.getLastInsertRowid();
}

void AccountStore::AddUser(const std::string& contractNo, const std::string& userId,
                           const std::string& password, const std::string& userName) {
    auto account = FindAccount(contractNo);
    if (!account) throw AccountError("no account with that contract number");
    if (userId.empty() || password.empty()) throw AccountError("user ID and password are required");
    // Values travel unescaped in request bodies, so these characters could never log in.
    if (userId.find_first_of("&=") != std::string::npos)
        throw AccountError("a user ID may not hold '&' or '='");
    SQLite::Statement exists(db_, "SELECT 1 FROM users WHERE account_id=? AND user_id=?");
    SQLite::bind(exists, account->id, userId);
    if (exists.executeStep()) throw AccountError("user already exists");
    Execute(db_, "INSERT INTO users(account_id, user_id, user_name, password_hash) VALUES(?,?,?,?)",
            account->id, userId, userName, HashPassword(password));
}

std::optional<Account> AccountStore::FindAccount(const std::string& contractNo) {
    SQLite::Statement st(
        db_, std::string("SELECT ") + kAccountColumns + " FROM accounts WHERE contract_no=?");
    st.bind(1, contractNo);
    return ReadAccount(st);
}

std::optional<Account> AccountStore::AccountById(std::int64_t id) {
    SQLite::Statement st(db_,
                         std::string("SELECT ") + kAccountColumns + " FROM accounts WHERE id=?");
    st.bind(1, id);
    return ReadAccount(st);
}

std::optional<LoginUser> AccountStore::Authenticate(const std::string& contractNo,
                                                    const std::string& userId,
                                                    const std::string& password) {
    auto account = FindAccount(contractNo);
    if (!account) return std::nullopt;
    SQLite::Statement st(
        db_, "SELECT user_name, password_hash FROM users WHERE account_id=? AND user_id=?");
    SQLite::bind(st, account->id, userId);
    if (!st.executeStep()) return std::nullopt;
    if (!VerifyPassword(password, st.getColumn(1).getString())) return std::nullopt;
    return LoginUser{*account, userId, st.getColumn(0).getString()};
}

}  // namespace morvane::server
