// The judgement of any reply: its system element, flags and token.
#include <cstdint>
#include <string>

#include "FuzzProcess.h"
#include "transport/mdlServerReply.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    morvane::fuzz::QuietProcess();
    const auto reply = morvane::fuzz::Text(data, size);
    std::int32_t flags = 0;
    std::string token;
    morvane::ParseSystemNode(reply, flags, token);
    morvane::CheckServerReply(reply);
    return 0;
}
