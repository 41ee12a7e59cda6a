#include "util/basTempPath.h"

#include <filesystem>
#include <system_error>

#include "util/mdlFileExist1.h"

namespace morvane {

std::string GetTempFolder(std::int32_t bufferSize) {
    std::error_code ec;
    std::string folder = std::filesystem::temp_directory_path(ec).string();
    if (ec || folder.empty()) return {};
    if (folder.back() != kPathSeparator) folder += kPathSeparator;
    if (bufferSize <= 0 || folder.size() + 1 > static_cast<size_t>(bufferSize)) return {};
    return folder;
}

}  // namespace morvane
