#include "ReachReason.h"

#include "state/ProcessState.h"
#include "transport/mdlServerCommon.h"

namespace morvane::cli {

std::string UnreachableReason() {
    const TransportRunState& run = State().transportRun;
    const std::string server = GetServerName();
    const std::string host = server.substr(0, server.rfind(':'));
    using platform::HttpFailure;
    switch (run.lastFailure) {
        case HttpFailure::None:
            return {};
        case HttpFailure::NameNotFound:
            return "the server name \"" + host +
                   "\" was not found; check the name given with "
                   "--server";
        case HttpFailure::Refused:
            return "nothing answered at " + server +
                   " (the connection was refused or the host is unreachable); check that the "
                   "server runs and that the port is right";
        case HttpFailure::TimedOut:
            return server + " did not answer in time (" + run.lastError +
                   "); the server or the network is stalled, or --stall-timeout is too short";
        case HttpFailure::CertificateUntrusted:
            return "the server's certificate is not trusted (" + run.lastError +
                   "); for a private server give its CA certificate with --ca-file FILE or "
                   "MORVANE_CA_FILE";
        case HttpFailure::CertificateExpired:
            return "the server's certificate has expired; its operator must renew it";
        case HttpFailure::CertificateOtherName:
            return "the server's certificate is made out for another name than \"" + host +
                   "\"; give --server the name the certificate names";
        case HttpFailure::Other:
            break;
    }
    return run.lastError;
}

}  // namespace morvane::cli
