#include "state/basGetCRC.h"

#include <cstdio>
#include <memory>

#include "platform/Checksum.h"
#include "platform/FileReader.h"
#include "state/ProcessState.h"
#include "util/RuntimeError.h"
#include "util/mdlFileExist1.h"

namespace morvane {

std::string CrcText(std::uint32_t crc) {
    char text[9];
    std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(crc));
    return text;
}

std::string GetCRC(std::string_view bytes) { return CrcText(platform::Crc32(0, bytes)); }

void RememberFileCRC(std::string_view path, const platform::FileVersion& version,
                     std::uint32_t crc) {
    State().lastFileSent = ProcessState::FileCrc{std::string(path), version, crc};
}

std::string GetFileCRC(std::string_view path) {
    if (!FileExists(path)) return {};
    if (const auto& sent = State().lastFileSent; sent && sent->path == path) {
        const auto now = platform::VersionAt(std::string(path));
        if (now && *now == sent->version) return CrcText(sent->crc);
    }
    auto reader = platform::FileReader::Open(std::string(path));
    if (!reader) throw RuntimeError(errnum::kPathFileAccess, "cannot read " + std::string(path));
    // In pieces, so that a file of any size costs one buffer.
    constexpr std::size_t kChunk = std::size_t{1} << 20;
    const auto buffer = std::make_unique_for_overwrite<char[]>(kChunk);
    std::ptrdiff_t n;
    while ((n = reader->Read(buffer.get(), kChunk)) > 0) {
    }
    if (n < 0) throw RuntimeError(errnum::kPathFileAccess, "cannot read " + std::string(path));
    return CrcText(reader->Crc());
}

}  // namespace morvane
