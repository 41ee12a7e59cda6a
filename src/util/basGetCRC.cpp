#include "util/basGetCRC.h"

#include <cstdio>
#include <fstream>
#include <iterator>

#include "platform/Checksum.h"
#include "util/RuntimeError.h"
#include "util/mdlFileExist1.h"

namespace morvane {

std::string CrcText(std::uint32_t crc) {
    char text[9];
    std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(crc));
    return text;
}

std::string GetCRC(std::string_view bytes) { return CrcText(platform::Crc32(0, bytes)); }

std::string GetFileCRC(std::string_view path) {
    if (!FileExists(path)) return {};
    std::ifstream in(std::string(path), std::ios::binary);
    if (!in) throw RuntimeError(errnum::kPathFileAccess, "cannot read " + std::string(path));
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad()) throw RuntimeError(errnum::kPathFileAccess, "cannot read " + std::string(path));
    return GetCRC(bytes);
}

}  // namespace morvane
