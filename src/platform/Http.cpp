#include "platform/Http.h"

#include <curl/curl.h>
#include <openssl/x509_vfy.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <mutex>

namespace morvane::platform {
namespace {

void GlobalInitOnce() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

struct Sink {
    CURL* curl;
    std::string* body;
    std::size_t limit;
    const HttpBodySink* to = nullptr;  // none: into body
    std::size_t received = 0;
    bool overflowed = false;
};

size_t Collect(char* data, size_t size, size_t count, void* user) {
    Sink& sink = *static_cast<Sink*>(user);
    if (sink.received + size * count > sink.limit) {
        sink.overflowed = true;
        return 0;  // curl ends the transfer
    }
    sink.received += size * count;
    if (sink.to) return (*sink.to)(std::string_view(data, size * count)) ? size * count : 0;
    if (sink.body->empty()) {
        // A large reply announced by its length is kept in one buffer from the start.
        curl_off_t length = -1;
        constexpr curl_off_t kMostReserved = curl_off_t{1} << 30;
        if (curl_easy_getinfo(sink.curl, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length) == CURLE_OK &&
            length > 0 && length <= kMostReserved && static_cast<std::size_t>(length) <= sink.limit)
            sink.body->reserve(static_cast<size_t>(length));
    }
    sink.body->append(data, size * count);
    return size * count;
}

struct Supplier {
    const HttpBodySource* source;
    bool failed = false;
};

size_t Supply(char* into, size_t size, size_t count, void* user) {
    auto& supplier = *static_cast<Supplier*>(user);
    const std::ptrdiff_t n = supplier.source->read(into, size * count);
    if (n >= 0) return static_cast<size_t>(n);
    supplier.failed = true;
    return CURL_READFUNC_ABORT;
}

// Pieces this large keep the calls per byte few when a file streams to or from disk.
constexpr long kStreamBufferBytes = 512 * 1024;

// Gives up a transfer on which no byte has moved for the stall time-out. curl's own
// low-speed check averages over several seconds and lets a short stall pass.
struct StallWatch {
    std::chrono::steady_clock::time_point lastMove = std::chrono::steady_clock::now();
    curl_off_t lastDown = 0, lastUp = 0;
    std::chrono::seconds limit;
};

int OnProgress(void* user, curl_off_t, curl_off_t dlnow, curl_off_t, curl_off_t ulnow) {
    auto* watch = static_cast<StallWatch*>(user);
    const auto now = std::chrono::steady_clock::now();
    if (dlnow != watch->lastDown || ulnow != watch->lastUp) {
        watch->lastDown = dlnow;
        watch->lastUp = ulnow;
        watch->lastMove = now;
        return 0;
    }
    return now - watch->lastMove > watch->limit ? 1 : 0;
}

HttpFailure Classify(CURL* c, CURLcode rc, std::string_view message) {
    switch (rc) {
        case CURLE_COULDNT_RESOLVE_HOST:
            return HttpFailure::NameNotFound;
        case CURLE_COULDNT_CONNECT:
            return HttpFailure::Refused;
        case CURLE_OPERATION_TIMEDOUT:
            return HttpFailure::TimedOut;
        case CURLE_PEER_FAILED_VERIFICATION: {
            long verify = X509_V_OK;
            curl_easy_getinfo(c, CURLINFO_SSL_VERIFYRESULT, &verify);
            // curl checks the name itself after the chain passed, so only its text tells.
            if (verify == X509_V_ERR_CERT_HAS_EXPIRED) return HttpFailure::CertificateExpired;
            if (verify == X509_V_ERR_HOSTNAME_MISMATCH ||
                verify == X509_V_ERR_IP_ADDRESS_MISMATCH ||
                message.find("subject name") != std::string_view::npos ||
                message.find("does not match") != std::string_view::npos)
                return HttpFailure::CertificateOtherName;
            return HttpFailure::CertificateUntrusted;
        }
        default:
            return HttpFailure::Other;
    }
}

struct EasyDeleter {
    void operator()(CURL* c) const { curl_easy_cleanup(c); }
};
struct SlistDeleter {
    void operator()(curl_slist* l) const { curl_slist_free_all(l); }
};

// The pool's handle while no other request has it, else a handle of the request's own; either
// way it comes without any option of an earlier request.
class EasyHandle {
public:
    using Owned = std::unique_ptr<CURL, EasyDeleter>;
    // kept and busy: the pool's handle and whether a request has it; null without a pool.
    EasyHandle(Owned* kept, bool* busy) {
        if (kept && !*busy) {
            if (!*kept) kept->reset(curl_easy_init());
            if (*kept) {
                kept_ = kept;
                busy_ = busy;
                *busy_ = true;
                return;
            }
        }
        own_.reset(curl_easy_init());
    }
    // Reset at once, so that no pointer into the ended request stays in the handle.
    ~EasyHandle() {
        if (!kept_) return;
        curl_easy_reset(kept_->get());
        *busy_ = false;
    }
    EasyHandle(const EasyHandle&) = delete;
    EasyHandle& operator=(const EasyHandle&) = delete;
    CURL* get() const { return kept_ ? kept_->get() : own_.get(); }

private:
    Owned* kept_ = nullptr;
    bool* busy_ = nullptr;
    Owned own_;
};

}  // namespace

struct HttpConnectionPool::Impl {
    CURLSH* share = nullptr;
    // Kept between requests: a new handle would read and parse the CA store every time.
    std::unique_ptr<CURL, EasyDeleter> easy;
    bool easyBusy = false;
};

// The component runs on one thread, so the share needs no lock callbacks.
HttpConnectionPool::HttpConnectionPool() : impl_(std::make_unique<Impl>()) {
    GlobalInitOnce();
    impl_->share = curl_share_init();
    if (impl_->share) {
        curl_share_setopt(impl_->share, CURLSHOPT_SHARE, CURL_LOCK_DATA_CONNECT);
        curl_share_setopt(impl_->share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
        curl_share_setopt(impl_->share, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
    }
}

HttpConnectionPool::~HttpConnectionPool() {
    impl_->easy.reset();  // a share in use cannot be cleaned up
    if (impl_->share) curl_share_cleanup(impl_->share);
}

HttpClient::HttpClient(HttpOptions options, HttpConnectionPool* pool)
    : options_(std::move(options)), pool_(pool) {
    GlobalInitOnce();
}
HttpClient::~HttpClient() = default;

HttpReply HttpClient::Post(const std::string& url, const HttpHeaders& headers,
                           std::string_view body) {
    return Send({url, headers, body});
}

HttpReply HttpClient::PostRaw(const std::string& url, const HttpHeaders& headers,
                              std::string_view body) {
    return Send({url, headers, body, nullptr, true});
}

HttpReply HttpClient::PostRawFrom(const std::string& url, const HttpHeaders& headers,
                                  const HttpBodySource& body) {
    return Send({url, headers, {}, &body, true});
}

HttpReply HttpClient::PostInto(const std::string& url, const HttpHeaders& headers,
                               std::string_view body, const HttpBodySink& sink) {
    return Send({url, headers, body, nullptr, false, &sink});
}

HttpReply HttpClient::Send(const HttpRequest& request) {
    const std::string& url = request.url;
    const HttpHeaders& headers = request.headers;
    const bool exactHeaders = request.exactHeaders;
    const HttpBodySink* sink = request.sink;
    HttpReply reply;
    EasyHandle curl(pool_ ? &pool_->impl_->easy : nullptr,
                    pool_ ? &pool_->impl_->easyBusy : nullptr);
    if (!curl.get()) {
        reply.error = "curl_easy_init failed";
        return reply;
    }
    std::unique_ptr<curl_slist, SlistDeleter> list;
    for (const auto& [name, value] : headers) {
        const std::string line = name + ": " + value;
        curl_slist* grown = curl_slist_append(list.get(), line.c_str());
        if (!grown) {
            reply.error = "out of memory";
            return reply;
        }
        list.release();
        list.reset(grown);
    }
    // Keep curl from adding "Expect: 100-continue" to larger bodies, and under exact
    // headers from adding its form Content-Type where none was given.
    std::vector<const char*> suppressed{"Expect:"};
    if (exactHeaders) {
        const bool typed = std::any_of(headers.begin(), headers.end(), [](const auto& h) {
            return curl_strequal(h.first.c_str(), "Content-Type") != 0;
        });
        if (!typed) suppressed.push_back("Content-Type:");
    }
    for (const char* line : suppressed) {
        curl_slist* grown = curl_slist_append(list.get(), line);
        if (!grown) {
            reply.error = "out of memory";
            return reply;
        }
        list.release();
        list.reset(grown);
    }

    CURL* c = curl.get();
    char errbuf[CURL_ERROR_SIZE] = {0};
    curl_easy_setopt(c, CURLOPT_URL, url.c_str());
    curl_easy_setopt(c, CURLOPT_POST, 1L);
    Supplier supplier{request.source};
    if (request.source) {
        curl_easy_setopt(c, CURLOPT_READFUNCTION, Supply);
        curl_easy_setopt(c, CURLOPT_READDATA, &supplier);
        curl_easy_setopt(c, CURLOPT_POSTFIELDS, nullptr);
        curl_easy_setopt(c, CURLOPT_UPLOAD_BUFFERSIZE, kStreamBufferBytes);
        curl_easy_setopt(c, CURLOPT_POSTFIELDSIZE_LARGE,
                         static_cast<curl_off_t>(request.source->size));
    } else {
        curl_easy_setopt(c, CURLOPT_POSTFIELDS, request.body.data());
        curl_easy_setopt(c, CURLOPT_POSTFIELDSIZE_LARGE,
                         static_cast<curl_off_t>(request.body.size()));
    }
    if (sink) curl_easy_setopt(c, CURLOPT_BUFFERSIZE, kStreamBufferBytes);
    curl_easy_setopt(c, CURLOPT_HTTPHEADER, list.get());
    curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, Collect);
    Sink collected{c, &reply.body, options_.maxReplyBytes, sink};
    curl_easy_setopt(c, CURLOPT_WRITEDATA, &collected);
    curl_easy_setopt(c, CURLOPT_ERRORBUFFER, errbuf);
    curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(c, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(c, CURLOPT_SSL_VERIFYHOST, 2L);
    if (!options_.caFile.empty()) {
        // The private CA comes in addition to the system's store.
        curl_easy_setopt(c, CURLOPT_CAINFO, options_.caFile.c_str());
        curl_easy_setopt(c, CURLOPT_CAPATH, "/etc/ssl/certs");
    }
    curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT, options_.connectTimeoutSeconds);
    if (options_.deadline) {
        // Rounded up, so that a transfer cut off by curl is past the deadline, never just short.
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            *options_.deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            reply.error = "the time limit was reached";
            return reply;
        }
        curl_easy_setopt(c, CURLOPT_TIMEOUT_MS, static_cast<long>(left.count()));
    }
    // A length announced past the limit is refused before the body comes.
    curl_easy_setopt(c, CURLOPT_MAXFILESIZE_LARGE,
                     static_cast<curl_off_t>(std::min<std::size_t>(
                         options_.maxReplyBytes, std::numeric_limits<curl_off_t>::max())));
    StallWatch watch;
    watch.limit = std::chrono::seconds(options_.stallTimeoutSeconds);
    curl_easy_setopt(c, CURLOPT_XFERINFOFUNCTION, OnProgress);
    curl_easy_setopt(c, CURLOPT_XFERINFODATA, &watch);
    curl_easy_setopt(c, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(c, CURLOPT_FOLLOWLOCATION, 0L);
    if (pool_ && pool_->impl_->share) curl_easy_setopt(c, CURLOPT_SHARE, pool_->impl_->share);
    curl_easy_setopt(c, CURLOPT_PROTOCOLS_STR, "https,http");

    const CURLcode rc = curl_easy_perform(c);
    if (rc != CURLE_OK) {
        reply.body.clear();
        reply.body.shrink_to_fit();
        reply.bodyFailed = supplier.failed;
        if (supplier.failed) {
            reply.error = "the request body could not be read whole";
            reply.failure = HttpFailure::Other;
        } else if (collected.overflowed || rc == CURLE_FILESIZE_EXCEEDED) {
            reply.error =
                "the reply is larger than " + std::to_string(options_.maxReplyBytes) + " bytes";
            reply.failure = HttpFailure::Other;
        } else if (rc == CURLE_ABORTED_BY_CALLBACK) {
            reply.error =
                "no byte moved for " + std::to_string(options_.stallTimeoutSeconds) + " s";
            reply.failure = HttpFailure::TimedOut;
        } else {
            reply.error = errbuf[0] ? errbuf : curl_easy_strerror(rc);
            reply.failure = Classify(c, rc, reply.error);
        }
        return reply;
    }
    curl_easy_getinfo(c, CURLINFO_RESPONSE_CODE, &reply.status);
    reply.transported = true;
    return reply;
}

}  // namespace morvane::platform
