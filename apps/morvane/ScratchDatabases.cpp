#include "ScratchDatabases.h"

#include <stdlib.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "store/LocalDatabases.h"

namespace morvane::cli {

namespace fs = std::filesystem;

ScratchDatabases::ScratchDatabases(const fs::path& customerDb) {
    std::error_code missing;
    if (!fs::is_regular_file(customerDb, missing))
        throw fs::filesystem_error(
            "no customer database to copy", customerDb,
            missing ? missing : std::make_error_code(std::errc::no_such_file_or_directory));
    std::string pattern = (fs::temp_directory_path() / "morvane-dry-run-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw fs::filesystem_error("cannot make a folder for the dry run", pattern,
                                   std::error_code(errno, std::generic_category()));
    dir_.path = pattern;
    customerDb_ = dir_.path / customerDb.filename();
    const fs::path from = customerDb.parent_path();
    for (const fs::path& name :
         {customerDb.filename(), fs::path(kMasterDatabaseName), fs::path(kPrefCustomDatabaseName)})
        for (const char* suffix : {"", "-wal", "-journal"}) {
            const fs::path source = from / (name.string() + suffix);
            std::error_code ec;
            if (fs::is_regular_file(source, ec))
                fs::copy_file(source, dir_.path / source.filename(),
                              fs::copy_options::overwrite_existing);
        }
}

ScratchDatabases::Folder::~Folder() {
    std::error_code ec;
    if (!path.empty()) fs::remove_all(path, ec);
}

}  // namespace morvane::cli
