// The customer's basic record, each of its sections, and the lists it carries.
#include <cstdint>

#include "FuzzProcess.h"
#include "record/cCustKihon.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    morvane::fuzz::QuietProcess();
    if (size == 0) return 0;
    const auto xml = morvane::fuzz::Text(data + 1, size - 1);
    morvane::cCustKihon kihon;
    switch (data[0] % 6) {
        case 0:
            kihon.ReadXMLMain(xml);
            break;
        case 1:
            kihon.ReadXMLNormal(xml);
            break;
        case 2:
            kihon.ReadXMLGyosyu(xml);
            break;
        case 3:
            kihon.ReadXMLEigyosho(xml);
            break;
        case 4:
            kihon.ReadXMLShokuin(xml);
            break;
        default:
            kihon.ReadXMLMemo(xml);
            break;
    }
    return 0;
}
