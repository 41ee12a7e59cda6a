// A request body split into fields by the keys that a page declares.
//
// Bodies travel raw: no percent-decoding, and values may hold "&" and "=". A field boundary is
// therefore only an "&" (or the start) followed by one of the declared keys and "=". Keys are
// matched without case and reported in their declared spelling.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morvane::server {

class FormBody {
public:
    static FormBody Parse(std::string_view body, const std::vector<std::string>& keys);

    bool Has(std::string_view key) const;
    // The last value given for `key`, or nothing.
    std::optional<std::string> Get(std::string_view key) const;
    std::string GetOr(std::string_view key, std::string fallback = {}) const;
    const std::vector<std::pair<std::string, std::string>>& Fields() const { return fields_; }
    // True when text before the first declared key had to be passed over.
    bool Malformed() const { return malformed_; }

private:
    std::vector<std::pair<std::string, std::string>> fields_;
    bool malformed_ = false;
};

}  // namespace morvane::server
