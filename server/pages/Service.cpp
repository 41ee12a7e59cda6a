#include "server/pages/Service.h"

#include "server/util/Text.h"

namespace morvane::server {

std::string envelopeReply(int flags, const std::string& token) {
    XmlWriter xml("root");
    xml.open("system").leaf("flags", std::to_string(flags)).leaf("token", token).close();
    return xml.finish();
}

namespace {

HttpReply xmlReply(std::string body, int flags, int status = 200) {
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
      accounts_(storage_.db()),
      records_(storage_.db()),
      files_(dataDir / "files"),
      sessions_(clock, options.tokenIdle),
      locks_(clock, options.lockExpiry) {
    addRoutes();
}

void Service::addRoutes() {
    addRecordRoutes();
    addRosterRoutes();
    addLockRoutes();
    addFileRoutes();
}

std::int64_t Service::createAccount(const AccountFields& fields) {
    std::lock_guard guard(mutex_);
    return accounts_.createAccount(fields);
}

void Service::addUser(const std::string& contractNo, const std::string& userId,
                      const std::string& password, const std::string& userName) {
    std::lock_guard guard(mutex_);
    accounts_.addUser(contractNo, userId, password, userName);
}

std::string Service::now() const {
    return stampText(clock_.now());
}

HttpReply Service::handle(const HttpRequest& request) {
    std::lock_guard guard(mutex_);
    try {
        const std::string& path = request.path;
        if (request.bodyRefused) {
            for (const std::string kind : {"Kessan", "Kyoka", "Other"})
                if (path == "customer/set" + kind + "File.php") return fileUpload(request, kind);
            return xmlReply(envelopeReply(-1, ""), -1, 413);
        }
        if (path == "gettime.php") return getTime();
        if (path == "login.php") return login(request);
        for (const std::string kind : {"Kessan", "Kyoka", "Other"}) {
            if (path == "customer/get" + kind + "File.php") return fileDownload(request, kind);
            if (path == "customer/set" + kind + "File.php") return fileUpload(request, kind);
        }
        auto it = routes_.find(path);
        if (it == routes_.end()) return xmlReply(envelopeReply(-1, ""), -1, 404);
        return judged(request, it->second);
    } catch (const std::exception&) {
        // Nothing a page does may take the server down; the transaction has rolled back.
        return xmlReply(envelopeReply(-1, ""), -1, 500);
    }
}

HttpReply Service::getTime() {
    XmlWriter xml("root");
    xml.leaf("datetime", now());
    return xmlReply(xml.finish(), 1);
}

HttpReply Service::login(const HttpRequest& request) {
    const auto body = FormBody::parse(request.body, {"no", "ID", "PW"});
    const auto refused = [] { return xmlReply(envelopeReply(-1, ""), -1); };
    if (body.malformed() || !body.has("no") || !body.has("ID") || !body.has("PW")) return refused();
    auto user = accounts_.authenticate(body.getOr("no"), body.getOr("ID"), body.getOr("PW"));
    if (!user) return refused();
    const auto& account = user->account;
    if (account.fields.singleLogin && sessions_.hasLiveSession(user->userId, account.id))
        return xmlReply(envelopeReply(2, ""), 2);
    const auto token = sessions_.open({account.id, user->userId});
    XmlWriter xml("root");
    xml.open("system").leaf("flags", "1").leaf("token", token).close();
    xml.open("account")
        .leaf("UserName", user->userName)
        .leaf("ContractorName", account.fields.contractorName)
        .leaf("ContractBegin", account.fields.contractBegin)
        .leaf("ContractEnd", account.fields.contractEnd)
        .leaf("SharedCount", std::to_string(account.fields.sharedCount))
        .leaf("MaxCustomer", std::to_string(account.fields.maxCustomer))
        .close();
    return xmlReply(xml.finish(), 1);
}

HttpReply Service::judged(const HttpRequest& request, const Route& route) {
    auto body = FormBody::parse(request.body, route.keys);
    const auto userId = body.getOr("ID");
    const auto token = body.getOr("token");
    return runJudged(request, std::move(body), userId, token, route.handler);
}

HttpReply Service::runJudged(const HttpRequest& request, FormBody body, const std::string& userId,
                             const std::string& token, const Handler& handler) {
    auto session = sessions_.use(userId, token);
    if (!session) return xmlReply(envelopeReply(0, ""), 0);
    const auto& [user, newToken] = *session;
    try {
        if (body.malformed()) throw PageFailure(-1, "malformed body");
        std::vector<std::function<void()>> afterCommit;
        std::string out;
        {
            Transaction tx(storage_.db());
            XmlWriter xml("root");
            xml.open("system").leaf("flags", "1").leaf("token", newToken).close();
            Call call{request, std::move(body), user, xml, afterCommit};
            handler(call);
            out = xml.finish();
            tx.commit();
        }
        for (auto& action : afterCommit) {
            try {
                action();
            } catch (const std::exception&) {
            }
        }
        return xmlReply(std::move(out), 1);
    } catch (const PageFailure& failure) {
        return xmlReply(envelopeReply(failure.flags(), newToken), failure.flags());
    } catch (const std::exception&) {
        return xmlReply(envelopeReply(-1, newToken), -1);
    }
}

std::int64_t Service::customerOf(Call& call, bool mustExist) {
    const auto id = parseInt32(call.body.getOr("CustomerID"));
    if (!id) throw PageFailure(-1, "no customer number");
    if (mustExist && !records_.customerExists(call.user.accountId, *id))
        throw PageFailure(-1, "unknown customer");
    return *id;
}

std::string Service::scopeOf(Call& call, Scope scope) {
    if (scope != Scope::CustomerDataFile) return {};
    const auto type = call.body.getOr("DataFileType");
    const auto id = call.body.getOr("DataFileID");
    if ((type != "1" && type != "2") || id.empty() || id.size() > 64 || !isXmlSafe(id))
        throw PageFailure(-1, "bad data file");
    return type + ":" + id;
}

void Service::refuseIfLocked(Call& call, Scope scope, std::int64_t customer) {
    const bool locked = scope == Scope::Office
                            ? locks_.anyMasterHeldByOther(call.user.accountId, call.user.userId)
                            : locks_.heldByOther(call.user.accountId, LockKind::Customer, customer,
                                                 call.user.userId);
    if (locked) throw PageFailure(-2, "locked by another user");
}

}  // namespace morvane::server
