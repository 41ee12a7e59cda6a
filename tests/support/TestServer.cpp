#include "support/TestServer.h"

#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "support/TempDir.h"

namespace morvane::test {
namespace {

struct Certificate {
    TempDir dir;
    std::string certFile;
    std::string keyFile;
};

std::shared_ptr<const Certificate> MakeCertificate(const CertificateOptions& options) {
    auto made = std::make_shared<Certificate>();
    made->certFile = (made->dir.Path() / "cert.pem").string();
    made->keyFile = (made->dir.Path() / "key.pem").string();
    server::MakeSelfSignedPair(made->certFile, made->keyFile, options);
    return made;
}

// The usual certificate, made once per test program.
std::shared_ptr<const Certificate> SharedCertificate() {
    static const std::shared_ptr<const Certificate> cert = MakeCertificate({});
    return cert;
}

}  // namespace

std::string RecordedRequest::Header(const std::string& lowerName) const {
    const auto it = headers.find(lowerName);
    return it == headers.end() ? std::string() : it->second;
}

struct TestServer::Impl {
    explicit Impl(std::shared_ptr<const Certificate> certificate)
        : cert(std::move(certificate)),
          server(cert->certFile.c_str(), cert->keyFile.c_str()),
          caFile(cert->certFile) {}

    std::shared_ptr<const Certificate> cert;
    httplib::SSLServer server;
    std::string caFile;
    std::thread thread;
    std::atomic<bool> ended{false};
    mutable std::mutex mutex;
    std::map<std::string, Handler> handlers;
    std::vector<RecordedRequest> requests;
};

TestServer::TestServer() : TestServer(std::nullopt) {}

TestServer::TestServer(const std::optional<CertificateOptions>& options)
    : impl_(std::make_unique<Impl>(options ? MakeCertificate(*options) : SharedCertificate())) {
    if (!impl_->server.is_valid()) throw std::runtime_error("test server: bad certificate");
    impl_->server.Post(R"(/(.*))", [this](const httplib::Request& req, httplib::Response& res) {
        RecordedRequest rec;
        rec.path = req.path.substr(1);
        for (const auto& [name, value] : req.headers) {
            std::string lower = name;
            for (char& c : lower)
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            rec.headers[lower] = value;
        }
        rec.body = req.body;
        rec.remotePort = req.remote_port;
        Handler handler;
        {
            std::lock_guard lock(impl_->mutex);
            impl_->requests.push_back(rec);
            const auto it = impl_->handlers.find(rec.path);
            if (it != impl_->handlers.end()) handler = it->second;
        }
        if (!handler) {
            res.status = 404;
            return;
        }
        const PageReply reply = handler(rec);
        if (reply.delay.count() > 0) std::this_thread::sleep_for(reply.delay);
        res.status = reply.status;
        if (reply.padding == 0 && !reply.chunked && !reply.dropAfter) {
            res.set_content(reply.body, reply.contentType);
            return;
        }
        const std::size_t total = reply.body.size() + reply.padding;
        const std::size_t stop = std::min(reply.dropAfter.value_or(total), total);
        // Returning false makes the library drop the connection.
        auto part = [body = reply.body, total, stop](std::size_t offset, httplib::DataSink& sink) {
            if (offset >= stop) {
                if (stop < total) return false;
                if (sink.done) sink.done();
                return true;
            }
            const std::size_t n = std::min<std::size_t>(stop - offset, 64 * 1024);
            std::string piece;
            if (offset < body.size()) piece = body.substr(offset, n);
            piece.resize(n, 'x');
            return sink.write(piece.data(), piece.size());
        };
        if (reply.chunked)
            res.set_chunked_content_provider(reply.contentType, part);
        else
            res.set_content_provider(
                total, reply.contentType,
                [part](std::size_t offset, std::size_t, httplib::DataSink& sink) {
                    return part(offset, sink);
                });
    });
    port_ = impl_->server.bind_to_any_port("127.0.0.1");
    if (port_ <= 0) throw std::runtime_error("test server: cannot bind");
    impl_->thread = std::thread([this] {
        impl_->server.listen_after_bind();
        impl_->ended = true;
    });
    // A stop before the loop runs would be lost, and the join would wait for ever; so wait
    // for the loop (or its end), however long a loaded machine takes.
    while (!impl_->server.is_running() && !impl_->ended)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

TestServer::~TestServer() {
    impl_->server.stop();
    if (impl_->thread.joinable()) impl_->thread.join();
}

std::string TestServer::HostName() const { return "127.0.0.1:" + std::to_string(port_); }
std::string TestServer::CaFile() const { return impl_->caFile; }

void TestServer::On(const std::string& path, std::string body) {
    On(path, [body = std::move(body)](const RecordedRequest&) { return PageReply{body}; });
}

void TestServer::On(const std::string& path, Handler handler) {
    std::lock_guard lock(impl_->mutex);
    impl_->handlers[path] = std::move(handler);
}

void TestServer::OnSequence(const std::string& path, std::vector<std::string> bodies) {
    auto state =
        std::make_shared<std::pair<std::vector<std::string>, size_t>>(std::move(bodies), 0);
    On(path, [state](const RecordedRequest&) {
        auto& [list, next] = *state;
        if (list.empty()) return PageReply{};
        const std::string& body = list[std::min(next, list.size() - 1)];
        ++next;
        return PageReply{body};
    });
}

std::vector<RecordedRequest> TestServer::Requests() const {
    std::lock_guard lock(impl_->mutex);
    return impl_->requests;
}

std::vector<RecordedRequest> TestServer::RequestsTo(const std::string& path) const {
    std::vector<RecordedRequest> out;
    for (auto& r : Requests())
        if (r.path == path) out.push_back(r);
    return out;
}

std::vector<std::string> TestServer::BodiesTo(const std::string& path) const {
    std::vector<std::string> out;
    for (auto& r : RequestsTo(path)) out.push_back(r.body);
    return out;
}

void TestServer::ClearRequests() {
    std::lock_guard lock(impl_->mutex);
    impl_->requests.clear();
}

std::string Envelope(int flags, const std::string& token, const std::string& payload) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><root><system><flags>" +
           std::to_string(flags) + "</flags><token>" + token + "</token></system>" + payload +
           "</root>";
}

}  // namespace morvane::test
