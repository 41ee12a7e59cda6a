#include "roster/StripCorpWords.h"

#include <array>

#include "util/Text.h"

namespace morvane {

std::string StripCorpWords(std::string_view name) {
    // The order matters: a removal may join the pieces of a later word.
    static constexpr std::array<std::string_view, 17> kWords = {
        "株式会社", "有限会社", "合資会社", "合名会社", "合同会社", "協同組合",
        "協業組合", "企業組合", "㈱",       "㈲",       "（株）",   "（有）",
        "（資）",   "（名）",   "（同）",   "（業）",   "（企）"};
    std::string text(name);
    for (std::string_view word : kWords) text = ReplaceAll(std::move(text), word, "");
    return text;
}

}  // namespace morvane
