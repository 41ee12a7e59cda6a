#include "server/pages/Service.h"

#include <SQLiteCpp/Transaction.h>

#include "server/util/Text.h"

namespace morvane::server {

std::string EnvelopeReply(int flags, const std::string& token) {
    XmlWriter xml("root");
    xml.Open("system").Leaf("flags", std::to_string(flags)).Leaf("token", token).Close();
    return xml.Finish();
}

namespace {

HttpReply XmlReply(std::string body, int flags, int status = 200) {
    HttpReply reply;
    reply.status = status;
    reply.body = std::move(body);
    reply.flags = flags;
    return reply;
}

}  // namespace

Service::Service(const std::filesystem::path& dataDir, ServiceOptions options, const Clock& clock)
    : options_(options),
      clock_(clock),
      storage_(dataDir),
      accounts_(storage_.Db()),
      records_(storage_.Db()),
      files_(dataDir / "files"),
      sessions_(clock, options.tokenIdle),
      locks_(clock, options.lockExpiry) {
    AddRoutes();
}

void Service::AddRoutes() {
    AddRecordRoutes();
    AddRosterRoutes();
    AddLockRoutes();
    AddFileRoutes();
}

std::int64_t Service::CreateAccount(const AccountFields& fields) {
    std::lock_guard guard(mutex_);
    return accounts_.CreateAccount(fields);
}

void Service::AddUser(const std::string& contractNo, const std::string& userId,
                      const std::string& password, const std::string& userName) {
    std::lock_guard guard(mutex_);
    accounts_.AddUser(contractNo, userId, password, userName);
}

std::string Service::Now() const { return StampText(clock_.Now()); }

HttpReply Service::Handle(const HttpRequest& request) {
    std::lock_guard guard(mutex_);
    try {
        const std::string& path = request.path;
        if (request.bodyRefused) {
            for (const std::string kind : {"Kessan", "Kyoka", "Other"})
                if (path == "customer/set" + kind + "File.php") return FileUpload(request, kind);
            return XmlReply(EnvelopeReply(-1, ""), -1, 413);
        }
        if (path == "gettime.php") return GetTime();
        if (path == "login.php") return Login(request);
        for (const std::string kind : {"Kessan", "Kyoka", "Other"}) {
            if (path == "customer/get" + kind + "File.php") return FileDownload(request, kind);
            if (path == "customer/set" + kind + "File.php") return FileUpload(request, kind);
        }
        auto it = routes_.find(path);
        if (it == routes_.end()) return XmlReply(EnvelopeReply(-1, ""), -1, 404);
        return Judged(request, it->second);
    } catch (const std::exception&) {
        // Nothing a page does may take the server down; the transaction has rolled back.
        return XmlReply(EnvelopeReply(-1, ""), -1, 500);
    }
}

HttpReply Service::GetTime() {
    XmlWriter xml("root");
    xml.Leaf("datetime", Now());
    return XmlReply(xml.Finish(), 1);
}

HttpReply Service::Login(const HttpRequest& request) {
    const auto body = FormBody::Parse(request.body, {"no", "ID", "PW"});
    const auto refused = [] { return XmlReply(EnvelopeReply(-1, ""), -1); };
    if (body.Malformed() || !body.Has("no") || !body.Has("ID") || !body.Has("PW")) return refused();
    auto user = accounts_.Authenticate(body.GetOr("no"), body.GetOr("ID"), body.GetOr("PW"));
    if (!user) return refused();
    const auto& account = user->account;
    if (account.fields.singleLogin && sessions_.HasLiveSession(user->userId, account.id))
        return XmlReply(EnvelopeReply(2, ""), 2);
    const auto token = sessions_.Open({account.id, user->userId});
    XmlWriter xml("root");
    xml.Open("system").Leaf("flags", "1").Leaf("token", token).Close();
    xml.Open("account")
        .Leaf("UserName", user->userName)
        .Leaf("ContractorName", account.fields.contractorName)
        .Leaf("ContractBegin", account.fields.contractBegin)
        .Leaf("ContractEnd", account.fields.contractEnd)
        .Leaf("SharedCount", std::to_string(account.fields.sharedCount))
        .Leaf("MaxCustomer", std::to_string(account.fields.maxCustomer))
        .Close();
    return XmlReply(xml.Finish(), 1);
}

HttpReply Service::Judged(const HttpRequest& request, const Route& route) {
    auto body = FormBody::Parse(request.body, route.keys);
    const auto userId = body.GetOr("ID");
    const auto token = body.GetOr("token");
    return RunJudged(request, std::move(body), userId, token, route.handler);
}

HttpReply Service::RunJudged(const HttpRequest& request, FormBody body, const std::string& userId,
                             const std::string& token, const Handler& handler) {
    auto session = sessions_.Use(userId, token);
    if (!session) return XmlReply(EnvelopeReply(0, ""), 0);
    const auto& [user, newToken] = *session;
    try {
        if (body.Malformed()) throw PageFailure(-1, "malformed body");
        std::vector<std::function<void()>> afterCommit;
        std::string out;
        {
            SQLite::Transaction tx(storage_.Db(), SQLite::TransactionBehavior::IMMEDIATE);
            XmlWriter xml("root");
            xml.Open("system").Leaf("flags", "1").Leaf("token", newToken).Close();
            Call call{request, std::move(body), user, xml, afterCommit};
            handler(call);
            out = xml.Finish();
            tx.commit();
        }
        for (auto& action : afterCommit) {
            try {
                action();
            } catch (const std::exception&) {
            }
        }
        return XmlReply(std::move(out), 1);
    } catch (const PageFailure& failure) {
        return XmlReply(EnvelopeReply(failure.Flags(), newToken), failure.Flags());
    } catch (const std::exception&) {
        return XmlReply(EnvelopeReply(-1, newToken), -1);
    }
}

std::int64_t Service::CustomerOf(Call& call, bool mustExist) {
    const auto id = ParseInt32(call.body.GetOr("CustomerID"));
    if (!id) throw PageFailure(-1, "no customer number");
    if (mustExist && !records_.CustomerExists(call.user.accountId, *id))
        throw PageFailure(-1, "unknown customer");
    return *id;
}

std::string Service::ScopeOf(Call& call, Scope scope) {
    if (scope != Scope::CustomerDataFile) return {};
    const auto type = call.body.GetOr("DataFileType");
    const auto id = call.body.GetOr("DataFileID");
    if ((type != "1" && type != "2") || id.empty() || id.size() > 64 || !IsXmlSafe(id))
        throw PageFailure(-1, "bad data file");
    return type + ":" + id;
}

void Service::RefuseIfLocked(Call& call, Scope scope, std::int64_t customer) {
    const bool locked = scope == Scope::Office
                            ? locks_.AnyMasterHeldByOther(call.user.accountId, call.user.userId)
                            : locks_.HeldByOther(call.user.accountId, LockKind::Customer, customer,
                                                 call.user.userId);
    if (locked) throw PageFailure(-2, "locked by another user");
}

}  // namespace morvane::server
