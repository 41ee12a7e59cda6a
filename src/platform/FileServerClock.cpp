#include "platform/FileServerClock.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <ctime>
#include <string>

#include "platform/ScopedFd.h"

namespace morvane::platform {
namespace {

// File system magic numbers of network file systems (linux/magic.h and their drivers).
constexpr std::array<std::uint64_t, 11> kNetworkTypes = {
    0x6969,      // NFS
    0x517B,      // SMB
    0xFF534D42,  // CIFS
    0xFE534D42,  // SMB2
    0x5346414F,  // AFS
    0x6B414653,  // kAFS
    0x00C36400,  // Ceph
    0x01021997,  // 9P
    0x564C,      // NCP
    0x47504653,  // GPFS
    0x0BD00BD0,  // Lustre
};

}  // namespace

bool IsOnNetworkFileSystem(const std::filesystem::path& path) {
    struct statfs info {};
    if (::statfs(path.c_str(), &info) != 0) return false;
    const auto type = static_cast<std::uint64_t>(static_cast<std::uint32_t>(info.f_type));
    for (std::uint64_t t : kNetworkTypes)
        if (t == type) return true;
    return false;
}

std::optional<DateValue> ProbeFileServerTime(const std::filesystem::path& folder) {
    const std::filesystem::path probe =
        folder / (".morvane-clock-" + std::to_string(::getpid()) + ".tmp");
    ScopedFd fd(::open(probe.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600));
    if (!fd.Valid()) return std::nullopt;
    // Writing makes the server set the time; the stat after close sees the server's value.
    const bool written = ::write(fd.Get(), "t", 1) == 1;
    fd.Close();
    struct stat st {};
    const bool stated = written && ::stat(probe.c_str(), &st) == 0;
    ::unlink(probe.c_str());
    if (!stated) return std::nullopt;
    const std::time_t seconds = st.st_mtim.tv_sec;
    std::tm local{};
    if (!::localtime_r(&seconds, &local)) return std::nullopt;
    return DateValue::FromCivil({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                                 local.tm_hour, local.tm_min, local.tm_sec});
}

}  // namespace morvane::platform
