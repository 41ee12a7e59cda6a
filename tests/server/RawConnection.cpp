#include "RawConnection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>

namespace morvane::server::testing {

RawConnection::RawConnection(int port) : fd_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(static_cast<std::uint16_t>(port));
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (Open() && ::connect(fd_.Get(), reinterpret_cast<const sockaddr*>(&addr), sizeof addr) != 0)
        fd_.Close();
}

bool RawConnection::StartTls() {
    ctx_.reset(SSL_CTX_new(TLS_client_method()));
    ssl_.reset(ctx_ ? SSL_new(ctx_.get()) : nullptr);
    return Open() && ssl_ && SSL_set_fd(ssl_.get(), fd_.Get()) == 1 && SSL_connect(ssl_.get()) == 1;
}

bool RawConnection::Send(std::string_view bytes) {
    while (Open() && !bytes.empty()) {
        const int n =
            ssl_ ? SSL_write(ssl_.get(), bytes.data(), static_cast<int>(bytes.size()))
                 : static_cast<int>(::send(fd_.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL));
        if (n <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return Open();
}

RawConnection::Outcome RawConnection::ReadUntilClosed(std::chrono::milliseconds limit) {
    using namespace std::chrono;
    Outcome outcome{{}, !Open()};
    const auto deadline = steady_clock::now() + limit;
    char buffer[4096];
    while (!outcome.closed) {
        const auto left = duration_cast<microseconds>(deadline - steady_clock::now()).count();
        if (left <= 0) break;
        // Every read waits at most until the deadline, one that only takes a session ticket too.
        const timeval tv{static_cast<time_t>(left / 1000000),
                         static_cast<suseconds_t>(left % 1000000)};
        ::setsockopt(fd_.Get(), SOL_SOCKET, SO_RCVTIMEO, &tv, sizeof tv);
        errno = 0;
        const int n = ssl_ ? SSL_read(ssl_.get(), buffer, sizeof buffer)
                           : static_cast<int>(::recv(fd_.Get(), buffer, sizeof buffer, 0));
        if (n > 0)
            outcome.received.append(buffer, static_cast<std::size_t>(n));
        else if (errno == EAGAIN || errno == EWOULDBLOCK)
            break;
        else
            outcome.closed = true;
    }
    return outcome;
}

}  // namespace morvane::server::testing
