// The server's reading of an upload's headers: the customer number and the file name.
#include <cstdint>
#include <string_view>

#include "server/files/FileStore.h"
#include "server/util/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The first line is the customer header, the rest the file name.
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto cut = text.find('\n');
    const auto customer = text.substr(0, cut);
    const auto name = cut == std::string_view::npos ? std::string_view() : text.substr(cut + 1);
    morvane::server::ParseInt32(customer);
    morvane::server::LeadingNumber(customer);
    if (morvane::server::FileStore::ValidName(name) &&
        (name.empty() || name.find('/') != std::string_view::npos || name == ".." || name == "."))
        __builtin_trap();  // a valid name never leaves the customer's folder
    return 0;
}
