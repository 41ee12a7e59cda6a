// Every list kind read by the generic list worker: dated records and the shared masters.
#include <cstdint>

#include "FuzzProcess.h"
#include "dated/cCustKessan.h"
#include "dated/cCustKihonOther.h"
#include "dated/cCustKyoka.h"
#include "masters/cMastBunsekikikan.h"
#include "masters/cMastKessanTaioh.h"
#include "masters/cMastMinister.h"
#include "masters/cMastNyusatsuShorui.h"
#include "masters/cMastNyusatsukikan.h"
#include "masters/cMastSakuseisha.h"
#include "masters/cMastUserStaff.h"
#include "masters/cMastYakushoku.h"

namespace {

template <class Worker>
void Read(std::string_view xml) {
    Worker worker;
    worker.ReadXML(xml);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    morvane::fuzz::QuietProcess();
    if (size == 0) return 0;
    const auto xml = morvane::fuzz::Text(data + 1, size - 1);
    using namespace morvane;
    switch (data[0] % 11) {
        case 0:
            Read<cCustKessan>(xml);
            break;
        case 1:
            Read<cCustKyoka>(xml);
            break;
        case 2:
            Read<cCustKihonOther>(xml);
            break;
        case 3:
            Read<cMastBunsekikikan>(xml);
            break;
        case 4:
            Read<cMastKessanTaioh>(xml);
            break;
        case 5:
            Read<cMastMinister>(xml);
            break;
        case 6:
            Read<cMastNyusatsuShorui>(xml);
            break;
        case 7:
            Read<cMastNyusatsukikan>(xml);
            break;
        case 8:
            Read<cMastSakuseisha>(xml);
            break;
        case 9:
            Read<cMastUserStaff>(xml);
            break;
        default:
            Read<cMastYakushoku>(xml);
            break;
    }
    return 0;
}
