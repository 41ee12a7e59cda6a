// An HTTPS server on 127.0.0.1 whose pages a test scripts and whose requests it records,
// with a certificate made at test time.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "server/net/SelfSigned.h"

namespace morvane::test {

struct RecordedRequest {
    std::string path;                            // without the leading "/"
    std::map<std::string, std::string> headers;  // names in lower case
    std::string body;
    int remotePort = 0;  // the client's end of the connection: equal ports, one connection
    std::string Header(const std::string& lowerName) const;
};

struct PageReply {
    std::string body;
    int status = 200;
    std::string contentType = "text/xml; charset=UTF-8";
    std::chrono::milliseconds delay{0};
    // This many bytes of 'x' follow the body, made as they are sent.
    std::size_t padding = 0;
    // The length is not announced: the reply goes in chunks.
    bool chunked = false;
    // The connection is dropped once this many bytes of the body went out.
    std::optional<std::size_t> dropAfter{};
};

// The certificate a server shows, made for it alone; without one it shows a shared one for
// 127.0.0.1 and localhost, valid now.
using CertificateOptions = server::SelfSignedSubject;

class TestServer {
public:
    using Handler = std::function<PageReply(const RecordedRequest&)>;

    TestServer();
    explicit TestServer(const std::optional<CertificateOptions>& options);
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    // "127.0.0.1:<port>", the server name a client is configured with.
    std::string HostName() const;
    int Port() const { return port_; }
    // The PEM certificate a client trusts to reach this server.
    std::string CaFile() const;

    // Every request to path gets this reply (path without the leading "/").
    void On(const std::string& path, std::string body);
    void On(const std::string& path, Handler handler);
    // Replies in turn; the last one repeats.
    void OnSequence(const std::string& path, std::vector<std::string> bodies);

    std::vector<RecordedRequest> Requests() const;
    std::vector<RecordedRequest> RequestsTo(const std::string& path) const;
    // The bodies of the requests to path, in order.
    std::vector<std::string> BodiesTo(const std::string& path) const;
    void ClearRequests();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
    int port_ = 0;
};

// A reply envelope: <root><system><flags>f</flags><token>t</token></system>payload</root>.
std::string Envelope(int flags, const std::string& token, const std::string& payload = {});

}  // namespace morvane::test
