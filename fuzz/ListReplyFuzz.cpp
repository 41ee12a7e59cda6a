// Every list kind read by the generic list worker: dated records and the shared masters.
#include <cstdint>
#include <iterator>
#include <string_view>

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

// The first byte picks the kind.
constexpr void (*kReaders[])(std::string_view) = {
    &Read<morvane::cCustKessan>,         &Read<morvane::cCustKyoka>,
    &Read<morvane::cCustKihonOther>,     &Read<morvane::cMastBunsekikikan>,
    &Read<morvane::cMastKessanTaioh>,    &Read<morvane::cMastMinister>,
    &Read<morvane::cMastNyusatsuShorui>, &Read<morvane::cMastNyusatsukikan>,
    &Read<morvane::cMastSakuseisha>,     &Read<morvane::cMastUserStaff>,
    &Read<morvane::cMastYakushoku>,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    morvane::fuzz::QuietProcess();
    if (size == 0) return 0;
    kReaders[data[0] % std::size(kReaders)](morvane::fuzz::Text(data + 1, size - 1));
    return 0;
}
