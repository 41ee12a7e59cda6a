// The blocking HTTPS exchange with the server: one POST, its headers and body, its reply.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morvane::platform {

struct HttpOptions {
    // Extra CA certificates (PEM) for a private server, trusted beside the system's store.
    // TLS peers and host names are always verified.
    std::string caFile;
    long connectTimeoutSeconds = 20;
    // A transfer that moves no byte for this long is given up: a dead server is an empty
    // reply, not a hang.
    long stallTimeoutSeconds = 60;
};

using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

struct HttpReply {
    bool transported = false;  // a reply arrived, whatever its status
    long status = 0;
    std::string body;
    std::string error;  // why nothing arrived
};

class HttpClient {
public:
    explicit HttpClient(HttpOptions options);
    ~HttpClient();
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    HttpReply Post(const std::string& url, const HttpHeaders& headers, std::string_view body);

private:
    HttpOptions options_;
};

}  // namespace morvane::platform
