// The user's trash as desktops keep it ($XDG_DATA_HOME/Trash), for a file deleted with undo
// where no desktop toolkit is there to do it.
#pragma once

#include <filesystem>

namespace morvane::platform {

// Moves the file into the trash with a note of where it came from and when. Returns 0 on
// success, else an errno value; the file stays where it was on failure.
int MoveToTrash(const std::filesystem::path& file);
// Puts a copy of the file into the trash and leaves the file in place, so that it can then
// be replaced in one step and still be found in the trash. A hard link where the trash is on
// the same file system, else a whole copy. 0 or an errno value.
int CopyToTrash(const std::filesystem::path& file);

// The trash folder in use: $XDG_DATA_HOME/Trash, or ~/.local/share/Trash.
std::filesystem::path TrashFolder();

}  // namespace morvane::platform
