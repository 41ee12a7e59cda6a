#include "server/util/FormBody.h"

#include "server/util/Text.h"

namespace morvane::server {

namespace {

// The declared key (longest first) that starts at `pos` followed by "=", or nothing.
const std::string* KeyAt(std::string_view body, std::size_t pos,
                         const std::vector<std::string>& keys) {
    const std::string* best = nullptr;
    const std::string_view rest = body.substr(pos);
    for (const auto& key : keys) {
        if (rest.size() > key.size() && rest[key.size()] == '=' && IstartsWith(rest, key) &&
            (!best || key.size() > best->size()))
            best = &key;
    }
    return best;
}

}  // namespace

FormBody FormBody::Parse(std::string_view body, const std::vector<std::string>& keys) {
    FormBody out;
    if (body.empty()) return out;
    struct Start {
        std::size_t keyPos;
        const std::string* key;
    };
    std::vector<Start> starts;
    if (const auto* key = KeyAt(body, 0, keys)) {
        starts.push_back({0, key});
    } else {
        out.malformed_ = true;
    }
    for (std::size_t i = 0; i + 1 < body.size(); ++i) {
        if (body[i] != '&') continue;
        if (const auto* key = KeyAt(body, i + 1, keys)) starts.push_back({i + 1, key});
    }
    for (std::size_t k = 0; k < starts.size(); ++k) {
        const std::size_t valueBegin = starts[k].keyPos + starts[k].key->size() + 1;
        std::size_t valueEnd = k + 1 < starts.size() ? starts[k + 1].keyPos - 1 : body.size();
        // Every body ends in "&": the last one closes the last field.
        if (k + 1 == starts.size() && valueEnd > valueBegin && body[valueEnd - 1] == '&')
            --valueEnd;
        out.fields_.emplace_back(*starts[k].key,
                                 std::string(body.substr(valueBegin, valueEnd - valueBegin)));
    }
    return out;
}

bool FormBody::Has(std::string_view key) const { return Get(key).has_value(); }

std::optional<std::string> FormBody::Get(std::string_view key) const {
    for (auto it = fields_.rbegin(); it != fields_.rend(); ++it)
        if (Iequals(it->first, key)) return it->second;
    return std::nullopt;
}

std::string FormBody::GetOr(std::string_view key, std::string fallback) const {
    auto v = Get(key);
    return v ? *v : std::move(fallback);
}

}  // namespace morvane::server
