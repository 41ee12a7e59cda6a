#include "RawConnection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <sys/time.h>

#include <algorithm>
#include <cerrno>

namespace morvane::server::testing {
namespace {

struct CtxDeleter {
    void operator()(SSL_CTX* c) const { SSL_CTX_free(c); }
};
struct SslDeleter {
    void operator()(SSL* s) const { SSL_free(s); }
};

}  // namespace

struct RawConnection::Impl {
    int fd = -1;
    std::unique_ptr<SSL_CTX, CtxDeleter> ctx;
    std::unique_ptr<SSL, SslDeleter> ssl;

    ~Impl() {
        ssl.reset();
        if (fd >= 0) ::close(fd);
    }
};

RawConnection::RawConnection(int port) : impl_(std::make_unique<Impl>()) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return;
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(static_cast<std::uint16_t>(port));
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&addr), sizeof addr) != 0) {
        ::close(fd);
        return;
    }
    impl_->fd = fd;
}

RawConnection::~RawConnection() = default;
RawConnection::RawConnection(RawConnection&&) noexcept = default;
RawConnection& RawConnection::operator=(RawConnection&&) noexcept = default;

bool RawConnection::Open() const { return impl_ && impl_->fd >= 0; }

bool RawConnection::StartTls() {
    if (!Open()) return false;
    impl_->ctx.reset(SSL_CTX_new(TLS_client_method()));
    if (!impl_->ctx) return false;
    impl_->ssl.reset(SSL_new(impl_->ctx.get()));
    if (!impl_->ssl) return false;
    SSL_set_fd(impl_->ssl.get(), impl_->fd);
    return SSL_connect(impl_->ssl.get()) == 1;
}

bool RawConnection::Send(std::string_view bytes) {
    if (!Open()) return false;
    while (!bytes.empty()) {
        const int n =
            impl_->ssl
                ? SSL_write(impl_->ssl.get(), bytes.data(), static_cast<int>(bytes.size()))
                : static_cast<int>(::send(impl_->fd, bytes.data(), bytes.size(), MSG_NOSIGNAL));
        if (n <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

RawConnection::Outcome RawConnection::ReadUntilClosed(std::chrono::milliseconds limit) {
    Outcome outcome;
    if (!Open()) {
        outcome.closed = true;
        return outcome;
    }
    const auto deadline = std::chrono::steady_clock::now() + limit;
    char buffer[4096];
    for (;;) {
        // Bytes already decrypted are not visible to poll.
        if (!impl_->ssl || SSL_pending(impl_->ssl.get()) == 0) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) return outcome;
            pollfd p{impl_->fd, POLLIN, 0};
            const int ready = ::poll(&p, 1, static_cast<int>(left.count()));
            if (ready < 0 && errno == EINTR) continue;
            if (ready <= 0) return outcome;
        }
        // A read that only takes a session ticket would otherwise block past the time.
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(
            deadline - std::chrono::steady_clock::now());
        timeval tv{};
        tv.tv_sec = static_cast<time_t>(std::max<long long>(left.count(), 1000) / 1000000);
        tv.tv_usec = static_cast<suseconds_t>(std::max<long long>(left.count(), 1000) % 1000000);
        ::setsockopt(impl_->fd, SOL_SOCKET, SO_RCVTIMEO, &tv, sizeof tv);
        errno = 0;
        const int n = impl_->ssl ? SSL_read(impl_->ssl.get(), buffer, sizeof buffer)
                                 : static_cast<int>(::recv(impl_->fd, buffer, sizeof buffer, 0));
        if (n <= 0) {
            if (errno == EAGAIN || errno == EWOULDBLOCK) return outcome;
            outcome.closed = true;
            return outcome;
        }
        outcome.received.append(buffer, static_cast<std::size_t>(n));
    }
}

}  // namespace morvane::server::testing
