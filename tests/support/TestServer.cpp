#include "support/TestServer.h"

#include <httplib.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

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

template <class T, void (*Free)(T*)>
struct Deleter {
    void operator()(T* p) const { Free(p); }
};
using KeyPtr = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY, EVP_PKEY_free>>;
using CertPtr = std::unique_ptr<X509, Deleter<X509, X509_free>>;
using ExtPtr = std::unique_ptr<X509_EXTENSION, Deleter<X509_EXTENSION, X509_EXTENSION_free>>;

void WritePem(const std::string& path, const std::function<int(FILE*)>& write) {
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) throw std::runtime_error("cannot write " + path);
    const int ok = write(f);
    std::fclose(f);
    if (!ok) throw std::runtime_error("cannot write PEM " + path);
}

// A self-signed certificate with the names and validity the test asks for.
std::shared_ptr<const Certificate> MakeCertificate(const CertificateOptions& options) {
    auto made = std::make_shared<Certificate>();
    Certificate& c = *made;
    KeyPtr key(EVP_RSA_gen(2048));
    CertPtr x509(X509_new());
    if (!key || !x509) throw std::runtime_error("OpenSSL allocation failed");
    X509_set_version(x509.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(x509.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(x509.get()), options.validFromSeconds);
    X509_gmtime_adj(X509_getm_notAfter(x509.get()), options.validToSeconds);
    X509_set_pubkey(x509.get(), key.get());
    X509_NAME* name = X509_get_subject_name(x509.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>("morvane test"), -1, -1, 0);
    X509_set_issuer_name(x509.get(), name);
    X509V3_CTX ctx;
    X509V3_set_ctx_nodb(&ctx);
    X509V3_set_ctx(&ctx, x509.get(), x509.get(), nullptr, nullptr, 0);
    for (const auto& [nid, value] : {std::pair{NID_subject_alt_name, options.altNames.c_str()},
                                     std::pair{NID_basic_constraints, "critical,CA:TRUE"}}) {
        ExtPtr ext(X509V3_EXT_conf_nid(nullptr, &ctx, nid, value));
        if (!ext) throw std::runtime_error("OpenSSL extension failed");
        X509_add_ext(x509.get(), ext.get(), -1);
    }
    if (!X509_sign(x509.get(), key.get(), EVP_sha256()))
        throw std::runtime_error("OpenSSL signing failed");
    c.certFile = (c.dir.Path() / "cert.pem").string();
    c.keyFile = (c.dir.Path() / "key.pem").string();
    WritePem(c.certFile, [&](FILE* f) { return PEM_write_X509(f, x509.get()); });
    WritePem(c.keyFile, [&](FILE* f) {
        return PEM_write_PrivateKey(f, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    });
    return made;
}

// The usual certificate, made once per test program: RSA keys take a while.
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
