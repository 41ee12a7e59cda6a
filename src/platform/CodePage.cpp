#include "platform/CodePage.h"

#include <unicode/ucnv.h>

#include <memory>
#include <stdexcept>

namespace morvane::platform {

std::string ToAnsiCodePage(std::string_view utf8) {
    if (utf8.empty()) return {};
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, decltype(&ucnv_close)> cp932(ucnv_open("windows-31j", &status),
                                                             &ucnv_close);
    std::unique_ptr<UConverter, decltype(&ucnv_close)> utf(ucnv_open("UTF-8", &status),
                                                           &ucnv_close);
    if (U_FAILURE(status)) throw std::runtime_error("no converter for code page 932");
    ucnv_setSubstChars(cp932.get(), "?", 1, &status);
    std::string out(utf8.size() * 2 + 16, '\0');
    char* target = out.data();
    const char* source = utf8.data();
    ucnv_convertEx(cp932.get(), utf.get(), &target, out.data() + out.size(), &source,
                   source + utf8.size(), nullptr, nullptr, nullptr, nullptr, true, true, &status);
    if (U_FAILURE(status)) throw std::runtime_error("conversion to code page 932 failed");
    out.resize(static_cast<size_t>(target - out.data()));
    return out;
}

}  // namespace morvane::platform
