// The HTTPS side of the server: accepts POST requests and hands each to a request handler.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "server/net/ListenerLimits.h"
#include "server/pages/Service.h"

namespace morvane::server {

class HttpsListener {
public:
    using Handler = std::function<HttpReply(const HttpRequest&)>;
    using Log = std::function<void(const std::string&)>;

    // Throws when the certificate or key cannot be loaded.
    HttpsListener(const std::filesystem::path& certFile, const std::filesystem::path& keyFile,
                  Handler handler, std::size_t maxBodyBytes, Log log, ListenerLimits limits = {});
    ~HttpsListener();
    HttpsListener(const HttpsListener&) = delete;
    HttpsListener& operator=(const HttpsListener&) = delete;

    // Binds to the address; port 0 picks a free port. Returns the port bound.
    int Bind(const std::string& address, int port);
    // Serves on a thread of its own until stop().
    void Start();
    void Stop();
    // Connections accepted since the start.
    std::uint64_t AcceptedConnections() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace morvane::server
