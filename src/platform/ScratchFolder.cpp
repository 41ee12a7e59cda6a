#include "platform/ScratchFolder.h"

#include <stdlib.h>

#include <string>
#include <system_error>

namespace morvane::platform {

std::optional<ScratchFolder> ScratchFolder::Create(const std::filesystem::path& parent) {
    std::string name = (parent / "morvane-XXXXXX").string();
    if (!::mkdtemp(name.data())) return std::nullopt;
    return ScratchFolder(name);
}

ScratchFolder::ScratchFolder(ScratchFolder&& other) noexcept : path_(std::move(other.path_)) {
    other.path_.clear();
}

ScratchFolder::~ScratchFolder() {
    if (path_.empty()) return;
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
}

}  // namespace morvane::platform
