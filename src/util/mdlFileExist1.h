// Paths and their parts: whether a path exists, its folder and file name, and the making of
// a folder with all its parents. The separator is the platform's "/" throughout; a
// backslash is an ordinary character of a name here.
#pragma once

#include <string>
#include <string_view>

namespace morvane {

inline constexpr char kPathSeparator = '/';

// True when the path, trimmed of blanks, is not empty and names a file or folder.
bool PathExists(std::string_view path);
bool FileExists(std::string_view path);
// True when the path names a folder.
bool FolderExists(std::string_view path);
// Everything before the last separator; the path itself when it has none.
std::string GetParentPath(std::string_view path);
// Everything behind the last separator (the whole path when it has none); with noExtension
// cut before the last ".".
std::string GetFileNamePart(std::string_view path, bool noExtension = false);
// The path without one trailing separator.
std::string StripTrailingBackslash(std::string_view path);
// Creates the folder and every missing parent; false for an empty path or a failure.
bool MakePath(std::string_view path);

}  // namespace morvane
