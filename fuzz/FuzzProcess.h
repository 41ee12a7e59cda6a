// What every fuzz target of the component sets up once: settings in a folder of their own
// and no window, so that a reply read can write a token or show a box harmlessly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace morvane::fuzz {

void QuietProcess();

inline std::string_view Text(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

}  // namespace morvane::fuzz
