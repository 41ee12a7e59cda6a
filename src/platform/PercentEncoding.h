// Percent-encoding of text for URLs and URIs, with the set of bytes each use leaves bare.
#pragma once

#include <string>
#include <string_view>

namespace morvane::platform {

// What JavaScript's encodeURI leaves bare besides letters and digits.
inline constexpr std::string_view kUriBare = "-_.!~*'();,/?:@&=+$#";
// What a path inside a file URI keeps: the unreserved characters and the separator.
inline constexpr std::string_view kPathBare = "-_.~/";

// Every byte but ASCII letters, digits and those in `bare` becomes "%XX", upper-case hex; a
// space is "%20", never "+".
std::string PercentEncode(std::string_view text, std::string_view bare);

}  // namespace morvane::platform
