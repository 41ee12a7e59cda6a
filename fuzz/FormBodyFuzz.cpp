// The server's split of a request body into the fields a page declares.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "server/util/FormBody.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<std::string> keys = {"ID", "token", "CustomerID",   "no",
                                                  "PW", "xml",   "RecordUpdate", "a"};
    const std::string_view body(reinterpret_cast<const char*>(data), size);
    const auto form = morvane::server::FormBody::Parse(body, keys);
    for (const auto& key : keys) {
        const auto value = form.Get(key);
        if (value && value->size() > body.size()) __builtin_trap();
        if (form.Has(key) != value.has_value()) __builtin_trap();
    }
    return 0;
}
