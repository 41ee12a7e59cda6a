// The customer's basic record, each of its sections, the lists it carries, and the linkage
// reply that carries four of them at once.
#include <cstdint>
#include <iterator>
#include <string_view>

#include "FuzzProcess.h"
#include "record/cCustKihon.h"

namespace {

// The first byte picks the section.
constexpr bool (morvane::cCustKihon::*kReaders[])(std::string_view) = {
    &morvane::cCustKihon::ReadXMLMain,         &morvane::cCustKihon::ReadXMLNormal,
    &morvane::cCustKihon::ReadXMLGyosyu,       &morvane::cCustKihon::ReadXMLEigyosho,
    &morvane::cCustKihon::ReadXMLShokuin,      &morvane::cCustKihon::ReadXMLMemo,
    &morvane::cCustKihon::ReadXMLNyusatuKikan, &morvane::cCustKihon::ReadXMLNyusatuSanka,
    &morvane::cCustKihon::ReadXMLRendoInfo,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    morvane::fuzz::QuietProcess();
    if (size == 0) return 0;
    morvane::cCustKihon kihon;
    (kihon.*kReaders[data[0] % std::size(kReaders)])(morvane::fuzz::Text(data + 1, size - 1));
    return 0;
}
