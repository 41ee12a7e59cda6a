// A client connection to the server under the test's full control: it can stay idle, stop
// half way through a request, or announce a body it never sends.
#pragma once

#include <openssl/ssl.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include "platform/ScopedFd.h"

namespace morvane::server::testing {

class RawConnection {
public:
    // Connects over TCP to 127.0.0.1; Open() tells whether it worked.
    explicit RawConnection(int port);

    bool Open() const { return fd_.Valid(); }
    // The TLS handshake, the server's certificate not checked.
    bool StartTls();
    bool Send(std::string_view bytes);

    struct Outcome {
        std::string received;
        bool closed = false;  // the server ended the connection within the time
    };
    // Reads what the server sends until it closes the connection or the time is up.
    Outcome ReadUntilClosed(std::chrono::milliseconds limit);

private:
    // Declared in this order so that the TLS session goes before its socket.
    platform::ScopedFd fd_;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> ctx_{nullptr, SSL_CTX_free};
    std::unique_ptr<SSL, decltype(&SSL_free)> ssl_{nullptr, SSL_free};
};

}  // namespace morvane::server::testing
