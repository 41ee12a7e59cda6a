// Makes a self-signed certificate and key for 127.0.0.1 and localhost when none is given.
#pragma once

#include <filesystem>
#include <string>

namespace morvane::server {

// The names a certificate is made for and how long it holds; the defaults are the server's own.
struct SelfSignedSubject {
    std::string altNames = "IP:127.0.0.1,DNS:localhost";
    long validFromSeconds = -3600;  // from now
    long validToSeconds = 10L * 365 * 24 * 3600;
    std::string commonName = "127.0.0.1";
};

// Writes a new key (PEM, mode 0600) and a self-signed certificate (PEM) for the subject.
void MakeSelfSignedPair(const std::filesystem::path& certFile, const std::filesystem::path& keyFile,
                        const SelfSignedSubject& subject = {});

}  // namespace morvane::server
