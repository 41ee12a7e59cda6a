#include "util/WideText.h"

#include <cstdint>
#include <vector>

#include "util/Text.h"

namespace morvane {
namespace {

std::vector<char32_t> Decode(std::string_view s) {
    std::vector<char32_t> out;
    for (size_t i = 0; i < s.size();) out.push_back(NextCodePoint(s, i));
    return out;
}

void Encode(char32_t cp, std::string& out) { AppendUtf8(out, cp); }

// Full-width forms of U+FF61 to U+FF9F, in order.
constexpr char32_t kKana[] = {
    U'。', U'「', U'」', U'、', U'・', U'ヲ', U'ァ', U'ィ', U'ゥ', U'ェ', U'ォ', U'ャ', U'ュ',
    U'ョ', U'ッ', U'ー', U'ア', U'イ', U'ウ', U'エ', U'オ', U'カ', U'キ', U'ク', U'ケ', U'コ',
    U'サ', U'シ', U'ス', U'セ', U'ソ', U'タ', U'チ', U'ツ', U'テ', U'ト', U'ナ', U'ニ', U'ヌ',
    U'ネ', U'ノ', U'ハ', U'ヒ', U'フ', U'ヘ', U'ホ', U'マ', U'ミ', U'ム', U'メ', U'モ', U'ヤ',
    U'ユ', U'ヨ', U'ラ', U'リ', U'ル', U'レ', U'ロ', U'ワ', U'ン', U'゛', U'゜'};

bool Voiceable(char32_t k) {
    return (k >= U'カ' && k <= U'ト' && k != U'ッ') || (k >= U'ハ' && k <= U'ホ') || k == U'ウ';
}

}  // namespace

std::string WidenText(std::string_view text) {
    const auto cps = Decode(text);
    std::string out;
    for (size_t i = 0; i < cps.size(); ++i) {
        const char32_t c = cps[i];
        if (c == U' ') {
            Encode(U'　', out);
        } else if (c >= 0x21 && c <= 0x7E) {
            Encode(c + 0xFEE0, out);
        } else if (c >= 0xFF61 && c <= 0xFF9F) {
            char32_t k = kKana[c - 0xFF61];
            const char32_t next = i + 1 < cps.size() ? cps[i + 1] : 0;
            // A voicing mark after its kana joins it, as the wide conversion does.
            if (next == 0xFF9E && Voiceable(k)) {
                k = k == U'ウ' ? U'ヴ' : k + 1;
                ++i;
            } else if (next == 0xFF9F && k >= U'ハ' && k <= U'ホ') {
                k += 2;
                ++i;
            }
            Encode(k, out);
        } else {
            Encode(c, out);
        }
    }
    return out;
}

}  // namespace morvane
