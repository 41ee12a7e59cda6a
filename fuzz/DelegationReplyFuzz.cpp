// The delegation form, read from its two replies at once: the main record's and the items'.
#include <cstdint>
#include <string_view>

#include "FuzzProcess.h"
#include "prefcust/cP99Inin.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    morvane::fuzz::QuietProcess();
    // The first NUL splits the input into the two replies.
    const std::string_view text = morvane::fuzz::Text(data, size);
    const std::size_t split = text.find('\0');
    morvane::cP99Inin form;
    if (split == std::string_view::npos)
        form.ReadXML(text, {});
    else
        form.ReadXML(text.substr(0, split), text.substr(split + 1));
    return 0;
}
