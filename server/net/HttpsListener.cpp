#include "server/net/HttpsListener.h"

#include <httplib.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <thread>

#include "server/net/ConnectionThreads.h"
#include "server/util/Text.h"

namespace morvane::server {

namespace {

// The library listens with a backlog of 5: a burst of connections would wait for SYN
// retransmits, seconds each, before the accept loop saw them.
class SSLServerWithBacklog : public httplib::SSLServer {
public:
    using SSLServer::SSLServer;
    void WidenBacklog() { ::listen(svr_sock_, SOMAXCONN); }
};

// Counts the connections as they are accepted, for the server's figures and tests.
class CountingConnectionThreads : public ConnectionThreads {
public:
    CountingConnectionThreads(std::size_t maxThreads, std::atomic<std::uint64_t>& accepted)
        : ConnectionThreads(maxThreads), accepted_(accepted) {}
    void enqueue(std::function<void()> fn) override {
        ++accepted_;
        ConnectionThreads::enqueue(std::move(fn));
    }

private:
    std::atomic<std::uint64_t>& accepted_;
};

}  // namespace

struct HttpsListener::Impl {
    SSLServerWithBacklog server;
    Handler handler;
    Log log;
    std::thread thread;
    std::atomic<bool> finished{false};
    std::atomic<std::uint64_t> accepted{0};
    bool stopped = false;

    Impl(const std::filesystem::path& cert, const std::filesystem::path& key, Handler h, Log l)
        : server(cert.c_str(), key.c_str()), handler(std::move(h)), log(std::move(l)) {}

    void LogLine(const httplib::Request& req, int status, std::size_t in, std::size_t out,
                 int flags, std::chrono::steady_clock::time_point started) {
        if (!log) return;
        const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
                            std::chrono::steady_clock::now() - started)
                            .count();
        log(StampText(std::chrono::system_clock::now()) + " " + req.remote_addr + " " + req.method +
            " " + req.path + " " + std::to_string(status) + " flags=" + std::to_string(flags) +
            " in=" + std::to_string(in) + " out=" + std::to_string(out) + " " + std::to_string(ms) +
            "ms");
    }

    // Hands the request to the pages and writes their reply.
    void Serve(const httplib::Request& req, httplib::Response& res, HttpRequest request,
               std::chrono::steady_clock::time_point started);
    // A body refused before it is read: the pages judge it as one over the limit, and the
    // connection, with the body still on it, is closed after the reply.
    httplib::Server::HandlerResponse Refuse(const httplib::Request& req, httplib::Response& res);
};

namespace {

std::string PagePath(const std::string& path) {
    std::string page = path;
    while (!page.empty() && page.front() == '/') page.erase(0, 1);
    return page;
}

}  // namespace

void HttpsListener::Impl::Serve(const httplib::Request& req, httplib::Response& res,
                                HttpRequest request,
                                std::chrono::steady_clock::time_point started) {
    for (const auto& [name, value] : req.headers) {
        std::string lower = name;
        for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        request.headers[lower] = value;
    }
    const HttpReply reply = handler(request);
    res.status = reply.status;
    res.set_content(reply.body, reply.contentType.c_str());
    LogLine(req, reply.status, request.body.size(), reply.body.size(), reply.flags, started);
}

httplib::Server::HandlerResponse HttpsListener::Impl::Refuse(const httplib::Request& req,
                                                             httplib::Response& res) {
    HttpRequest request;
    request.path = PagePath(req.path);
    request.bodyRefused = true;
    Serve(req, res, std::move(request), std::chrono::steady_clock::now());
    res.set_header("Connection", "close");
    return httplib::Server::HandlerResponse::Handled;
}

HttpsListener::HttpsListener(const std::filesystem::path& certFile,
                             const std::filesystem::path& keyFile, Handler handler,
                             std::size_t maxBodyBytes, Log log, ListenerLimits limits)
    : impl_(std::make_unique<Impl>(certFile, keyFile, std::move(handler), std::move(log))) {
    if (!impl_->server.is_valid())
        throw std::runtime_error("cannot load certificate " + certFile.string() + " and key " +
                                 keyFile.string());
    auto& server = impl_->server;
    server.set_payload_max_length(maxBodyBytes);
    server.set_read_timeout(limits.clientTimeout);
    server.set_write_timeout(limits.writeTimeout);
    server.set_keep_alive_timeout(limits.keepAlive.count());
    // A busy client keeps its connection: only the idle time-out ends it.
    server.set_keep_alive_max_count(std::numeric_limits<std::size_t>::max());
    // Accepted sockets inherit it: a reply's last segment goes out at once instead of
    // waiting for the client's delayed acknowledgement.
    server.set_tcp_nodelay(true);
    Impl* impl = impl_.get();
    // The library takes ownership of the queue it is given.
    server.new_task_queue = [impl, max = limits.maxConnections]() -> httplib::TaskQueue* {
        return std::make_unique<CountingConnectionThreads>(max, impl->accepted).release();
    };
    // A body with no length at all, or announced far past the limit, is refused before a byte
    // of it is read, so that no client holds a thread by sending it slowly or never. A body
    // a little past the limit is still read and dropped, as a client that sends it whole
    // before it reads would otherwise lose the judged reply to a reset connection.
    const std::size_t readAndDropped = std::max<std::size_t>(4 * maxBodyBytes, 16u << 20);
    server.set_pre_routing_handler(
        [impl, readAndDropped](const httplib::Request& req, httplib::Response& res) {
            if (req.method != "POST") return httplib::Server::HandlerResponse::Unhandled;
            const bool chunked =
                req.get_header_value("Transfer-Encoding").find("chunked") != std::string::npos;
            if (chunked) return httplib::Server::HandlerResponse::Unhandled;
            if (!req.has_header("Content-Length") ||
                req.get_header_value<std::uint64_t>("Content-Length") > readAndDropped)
                return impl->Refuse(req, res);
            return httplib::Server::HandlerResponse::Unhandled;
        });
    // The body is taken through a content reader: the plain handler would refuse any
    // form-encoded body over 8 KiB, and client bodies of large records are longer than that.
    server.Post(R"(/.*)", [impl, maxBodyBytes](const httplib::Request& req, httplib::Response& res,
                                               const httplib::ContentReader& reader) {
        const auto started = std::chrono::steady_clock::now();
        HttpRequest request;
        request.path = PagePath(req.path);
        bool tooLarge = false;
        const bool complete = reader([&](const char* data, std::size_t length) {
            if (request.body.size() + length > maxBodyBytes) {
                tooLarge = true;
                return false;
            }
            request.body.append(data, length);
            return true;
        });
        if (tooLarge || !complete) {
            // A body cut short or over the limit is never handed to a page as it is.
            request.body.clear();
            request.bodyRefused = true;
        }
        impl->Serve(req, res, std::move(request), started);
    });
    server.set_error_handler(httplib::Server::HandlerWithResponse(
        [impl](const httplib::Request& req, httplib::Response& res) {
            if (!res.body.empty()) return httplib::Server::HandlerResponse::Unhandled;
            // An oversized or unreadable request still gets a reply that the client can judge.
            res.set_content(EnvelopeReply(-1, ""), "text/xml; charset=UTF-8");
            impl->LogLine(req, res.status, req.body.size(), res.body.size(), -1,
                          std::chrono::steady_clock::now());
            return httplib::Server::HandlerResponse::Handled;
        }));
}

HttpsListener::~HttpsListener() { Stop(); }

std::uint64_t HttpsListener::AcceptedConnections() const { return impl_->accepted; }

int HttpsListener::Bind(const std::string& address, int port) {
    int bound = port == 0 ? impl_->server.bind_to_any_port(address)
                          : (impl_->server.bind_to_port(address, port) ? port : -1);
    if (bound < 0)
        throw std::runtime_error("cannot listen on " + address + ":" + std::to_string(port));
    impl_->server.WidenBacklog();
    return bound;
}

void HttpsListener::Start() {
    if (impl_->stopped || impl_->thread.joinable()) return;
    Impl* impl = impl_.get();
    impl->thread = std::thread([impl] {
        impl->server.listen_after_bind();
        impl->finished = true;
    });
    // httplib's stop() does nothing until the loop runs, and the join would then wait for
    // ever; so return only once the loop runs, or has already given up. No deadline: a slow
    // start is waited for rather than raced.
    while (!impl->server.is_running() && !impl->finished)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void HttpsListener::Stop() {
    if (!impl_) return;
    impl_->stopped = true;
    impl_->server.stop();
    if (impl_->thread.joinable()) impl_->thread.join();
}

}  // namespace morvane::server
