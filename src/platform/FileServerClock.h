// The clock of the host that serves a folder: whether a path lies on a network file system,
// and the time that host stamps on a file created there.
#pragma once

#include <filesystem>
#include <optional>

#include "util/DateValue.h"

namespace morvane::platform {

// True when the file system holding the path is a network one (NFS, SMB/CIFS, AFS, Ceph,
// 9P, ...), by its type in statfs. A local disk, tmpfs or a failure gives false.
bool IsOnNetworkFileSystem(const std::filesystem::path& path);

// Creates a small probe file in the folder, reads the modification time the file server
// gave it, as a local date, and removes it again. nullopt when any step fails.
std::optional<DateValue> ProbeFileServerTime(const std::filesystem::path& folder);

}  // namespace morvane::platform
