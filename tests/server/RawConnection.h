// A client connection to the server under the test's full control: it can stay idle, stop
// half way through a request, or announce a body it never sends.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace morvane::server::testing {

class RawConnection {
public:
    // Connects over TCP to 127.0.0.1; Open() tells whether it worked.
    explicit RawConnection(int port);
    ~RawConnection();
    RawConnection(RawConnection&&) noexcept;
    RawConnection& operator=(RawConnection&&) noexcept;

    bool Open() const;
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
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace morvane::server::testing
