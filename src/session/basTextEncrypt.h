// The cipher of the saved password: a reversible exclusive-or with the build's pass phrase
// over the text's 16-bit form, written as a row of decimal byte values.
#pragma once

#include <string>
#include <string_view>

namespace morvane {

// The text's UTF-16 bytes, each ciphered, as decimal numbers joined by single blanks.
std::string EncryptText(std::string_view plain);
// The reverse; a number outside 0 to 255 gives a zero byte, bad input never throws.
std::string DecryptText(std::string_view cipher);

// The same with an explicit pass phrase, for tests and tools.
std::string EncryptText(std::string_view plain, std::string_view passPhrase);
std::string DecryptText(std::string_view cipher, std::string_view passPhrase);

}  // namespace morvane
