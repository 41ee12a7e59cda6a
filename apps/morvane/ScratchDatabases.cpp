#include "ScratchDatabases.h"

#include <stdlib.h>

#include <string>
#include <system_error>

#include "store/LocalDatabases.h"

namespace morvane::cli {

namespace fs = std::filesystem;

ScratchDatabases::ScratchDatabases(const fs::path& customerDb) {
    std::string pattern = (fs::temp_directory_path() / "morvane-dry-run-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw fs::filesystem_error("cannot make a folder for the dry run", pattern,
                                   std::error_code(errno, std::generic_category()));
    dir_ = pattern;
    customerDb_ = dir_ / customerDb.filename();
    const fs::path from = customerDb.parent_path();
    for (const fs::path& name :
         {customerDb.filename(), fs::path(kMasterDatabaseName), fs::path(kPrefCustomDatabaseName)})
        for (const char* suffix : {"", "-wal", "-journal"}) {
            const fs::path source = from / (name.string() + suffix);
            std::error_code ec;
            if (fs::is_regular_file(source, ec))
                fs::copy_file(source, dir_ / source.filename(),
                              fs::copy_options::overwrite_existing);
        }
}

ScratchDatabases::~ScratchDatabases() {
    std::error_code ec;
    fs::remove_all(dir_, ec);
}

}  // namespace morvane::cli
