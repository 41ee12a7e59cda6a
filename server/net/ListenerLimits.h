// How long a client of the server may take, and how many it serves at once.
#pragma once

#include <chrono>
#include <cstddef>

namespace morvane::server {

struct ListenerLimits {
    // The TLS handshake, the request headers, and each wait for more of a body.
    std::chrono::seconds clientTimeout{10};
    // An open connection with no next request.
    std::chrono::seconds keepAlive{5};
    std::chrono::seconds writeTimeout{30};
    // Connections served at once; later ones wait for a free thread.
    std::size_t maxConnections = 4096;
};

}  // namespace morvane::server
