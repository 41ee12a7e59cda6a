// Why the last request of the process got no reply, told so that the user knows what to do.
#pragma once

#include <string>

namespace morvane::cli {

// Empty when no request has failed for want of the server.
std::string UnreachableReason();

}  // namespace morvane::cli
