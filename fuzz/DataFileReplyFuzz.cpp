// The hash reply of a record's data file.
#include <cstdint>

#include "FuzzProcess.h"
#include "dated/cCustDataFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    morvane::fuzz::QuietProcess();
    morvane::cCustDataFile file;
    file.ReadXML(morvane::fuzz::Text(data, size));
    return 0;
}
