// The login reply: its system element and its account element.
#include <cstdint>

#include "FuzzProcess.h"
#include "session/mdlLogin.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    morvane::fuzz::QuietProcess();
    const auto reply = morvane::fuzz::Text(data, size);
    morvane::ParseLoginSystem(reply);
    morvane::ParseLoginAccount(reply);
    return 0;
}
