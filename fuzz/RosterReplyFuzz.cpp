// The roster reply: customers and their stamps.
#include <cstdint>

#include "FuzzProcess.h"
#include "roster/cCustList.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    morvane::fuzz::QuietProcess();
    morvane::cCustList list;
    list.ReadXML(morvane::fuzz::Text(data, size));
    return 0;
}
