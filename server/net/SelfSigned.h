// Makes a self-signed certificate and key for 127.0.0.1 and localhost when none is given.
#pragma once

#include <filesystem>

namespace morvane::server {

// Writes a new key (PEM, mode 0600) and a self-signed certificate (PEM) valid for ten years,
// with CN 127.0.0.1 and subjectAltName IP 127.0.0.1, DNS localhost.
void MakeSelfSignedPair(const std::filesystem::path& certFile,
                        const std::filesystem::path& keyFile);

}  // namespace morvane::server
