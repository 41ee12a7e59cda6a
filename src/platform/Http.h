// The blocking HTTPS exchange with the server: one POST, its headers and body, its reply.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
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
    // A reply past this size is cut off and counts as no reply: it cannot be a real one,
    // and must not take the process's memory.
    std::size_t maxReplyBytes = std::size_t{64} << 20;
    // No exchange goes on past this instant; none: no overall limit.
    std::optional<std::chrono::steady_clock::time_point> deadline;
};

using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

// A request body read as it is sent, its length known before the first byte goes, so a
// large file is sent from disk and never held in memory.
struct HttpBodySource {
    std::uint64_t size = 0;
    // Fills up to max bytes and gives the count; -1 stops the exchange, which then fails:
    // the body could not be sent whole.
    std::function<std::ptrdiff_t(char* into, std::size_t max)> read;
};

// Takes a reply body piece by piece as it arrives; false stops the exchange, which fails.
using HttpBodySink = std::function<bool(std::string_view piece)>;

// Why no reply arrived, as far as the user can do something about it.
enum class HttpFailure {
    None,
    NameNotFound,          // the server's name does not resolve
    Refused,               // nothing listens there, or the host cannot be reached
    TimedOut,              // connected, or trying to, and nothing came in time
    CertificateUntrusted,  // signed by no authority the client trusts
    CertificateExpired,    // out of its validity
    CertificateOtherName,  // made out for another name than the one asked for
    Other,
};

struct HttpReply {
    bool transported = false;  // a reply arrived, whatever its status
    long status = 0;
    std::string body;
    std::string error;  // why nothing arrived
    HttpFailure failure = HttpFailure::None;
    bool bodyFailed = false;  // the body's source failed: nothing is known of the server
};

// One POST: its headers, and a body given whole or read from a source as it is sent.
struct HttpRequest {
    std::string url;
    HttpHeaders headers;
    std::string_view body;
    const HttpBodySource* source = nullptr;
    // Headers go exactly as given: no Content-Type is added, so raw bytes can go without
    // one, and a Content-Length given stands for the computed one.
    bool exactHeaders = false;
    // Where the reply body goes instead of the reply, when set.
    const HttpBodySink* sink = nullptr;
};

// Open connections and TLS sessions kept between POSTs, so that a synchronisation of many
// small requests does not pay a TLS handshake for each. A connection is reused only for the
// same server under the same TLS settings.
class HttpConnectionPool {
public:
    HttpConnectionPool();
    ~HttpConnectionPool();
    HttpConnectionPool(const HttpConnectionPool&) = delete;
    HttpConnectionPool& operator=(const HttpConnectionPool&) = delete;

private:
    friend class HttpClient;
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

class HttpClient {
public:
    // Without a pool every POST opens its own connection.
    explicit HttpClient(HttpOptions options, HttpConnectionPool* pool = nullptr);
    ~HttpClient();
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    HttpReply Post(const std::string& url, const HttpHeaders& headers, std::string_view body);
    // The same, sending the headers exactly as given: no Content-Type is added for the body,
    // so raw bytes can go without one. A Content-Length given stands for the computed one.
    HttpReply PostRaw(const std::string& url, const HttpHeaders& headers, std::string_view body);
    // PostRaw with the body read from the source as it is sent.
    HttpReply PostRawFrom(const std::string& url, const HttpHeaders& headers,
                          const HttpBodySource& body);
    // Post whose reply body goes to the sink instead of the reply; the size limit holds
    // as for a reply kept.
    HttpReply PostInto(const std::string& url, const HttpHeaders& headers, std::string_view body,
                       const HttpBodySink& sink);
    // The one exchange each of the above makes.
    HttpReply Send(const HttpRequest& request);

private:
    HttpOptions options_;
    HttpConnectionPool* pool_;
};

}  // namespace morvane::platform
