// Answers every page of the server: one request in, one reply out, independent of HTTP.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "server/core/Accounts.h"
#include "server/core/Clock.h"
#include "server/core/Locks.h"
#include "server/core/Sessions.h"
#include "server/core/Storage.h"
#include "server/files/FileStore.h"
#include "server/records/Kinds.h"
#include "server/records/RecordStore.h"
#include "server/util/FormBody.h"
#include "server/xml/XmlWriter.h"

namespace morvane::server {

struct HttpRequest {
    std::string path;  // without the leading "/"
    std::string body;
    std::map<std::string, std::string> headers;  // names in lower case
    // The body was over the size limit or cut short, and is empty here.
    bool bodyRefused = false;
};

struct HttpReply {
    int status = 200;
    std::string contentType = "text/xml; charset=UTF-8";
    std::string body;
    int flags = 1;  // what the reply said, for the log
};

struct ServiceOptions {
    std::chrono::seconds tokenIdle{std::chrono::minutes(30)};
    std::chrono::seconds lockExpiry{std::chrono::minutes(15)};
    std::size_t maxUploadBytes = 32u * 1024 * 1024;
};

// A judged request ends with this `flags` value and nothing stored.
class PageFailure : public std::runtime_error {
public:
    PageFailure(int flags, const std::string& why) : std::runtime_error(why), flags_(flags) {}
    int Flags() const { return flags_; }

private:
    int flags_;
};

class Service {
public:
    Service(const std::filesystem::path& dataDir, ServiceOptions options, const Clock& clock);

    HttpReply Handle(const HttpRequest& request);
    // A request body larger than this is refused before it reaches a page.
    std::size_t MaxBodyBytes() const { return options_.maxUploadBytes + 1024 * 1024; }

    // Administration from the same process (tests, the demo).
    std::int64_t CreateAccount(const AccountFields& fields);
    void AddUser(const std::string& contractNo, const std::string& userId,
                 const std::string& password, const std::string& userName);

private:
    // One authenticated request under way.
    struct Call {
        const HttpRequest& request;
        FormBody body;
        SessionUser user;
        XmlWriter& xml;
        std::vector<std::function<void()>>& afterCommit;
    };
    using Handler = std::function<void(Call&)>;
    struct Route {
        std::vector<std::string> keys;
        Handler handler;
    };

    void AddRoutes();
    void AddRecordRoutes();
    void AddRosterRoutes();
    void AddLockRoutes();
    void AddFileRoutes();

    HttpReply Judged(const HttpRequest& request, const Route& route);
    // Runs `handler` after the user checked out, inside one transaction.
    HttpReply RunJudged(const HttpRequest& request, FormBody body, const std::string& userId,
                        const std::string& token, const Handler& handler);
    HttpReply Login(const HttpRequest& request);
    HttpReply GetTime();
    HttpReply FileDownload(const HttpRequest& request, const std::string& kind);
    HttpReply FileUpload(const HttpRequest& request, const std::string& kind);

    // Helpers for page handlers.
    std::int64_t CustomerOf(Call& call, bool mustExist = true);
    std::string ScopeOf(Call& call, Scope scope);
    void RefuseIfLocked(Call& call, Scope scope, std::int64_t customer);
    void WriteFileItem(XmlWriter& xml, const std::string& kind, std::int64_t customer,
                       const std::optional<FileInfo>& info);
    std::string Now() const;

    void GetRecordPage(Call& call, const GetPageDecl& page);
    void SetRecordPage(Call& call, const SetPageDecl& page);

    ServiceOptions options_;
    const Clock& clock_;
    std::mutex mutex_;
    Storage storage_;
    AccountStore accounts_;
    RecordStore records_;
    FileStore files_;
    SessionStore sessions_;
    LockTable locks_;
    std::map<std::string, Route> routes_;
};

std::string EnvelopeReply(int flags, const std::string& token);

}  // namespace morvane::server
