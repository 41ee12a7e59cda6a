// A private folder for one operation's temporary files: a fresh unpredictable name, readable by
// its owner only, removed with its contents when the operation ends.
#pragma once

#include <filesystem>
#include <optional>

namespace morvane::platform {

class ScratchFolder {
public:
    // Made inside parent; nothing when it cannot be made.
    static std::optional<ScratchFolder> Create(const std::filesystem::path& parent);
    ScratchFolder(ScratchFolder&& other) noexcept;
    ScratchFolder& operator=(ScratchFolder&&) = delete;
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    const std::filesystem::path& Path() const { return path_; }

private:
    explicit ScratchFolder(std::filesystem::path path) : path_(std::move(path)) {}
    std::filesystem::path path_;
};

}  // namespace morvane::platform
