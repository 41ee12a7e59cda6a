#include "util/RuntimeError.h"

#include <filesystem>
#include <new>
#include <system_error>

namespace morvane {

PendingError PendingError::From(std::exception_ptr error) {
    PendingError e;
    e.source = "Morvane";
    try {
        std::rethrow_exception(error);
    } catch (const RuntimeError& r) {
        e.number = r.Number();
        e.description = r.what();
        e.source = r.Source();
    } catch (const std::bad_alloc&) {
        e.number = errnum::kOutOfMemory;
        e.description = "Out of memory";
    } catch (const std::filesystem::filesystem_error& f) {
        const std::error_code code = f.code();
        if (code == std::errc::no_such_file_or_directory)
            e.number = errnum::kFileNotFound;
        else if (code == std::errc::not_a_directory)
            e.number = errnum::kPathNotFound;
        else if (code == std::errc::no_space_on_device)
            e.number = errnum::kDiskFull;
        else if (code == std::errc::permission_denied || code == std::errc::read_only_file_system)
            e.number = errnum::kPathFileAccess;
        else if (code == std::errc::invalid_argument || code == std::errc::filename_too_long)
            e.number = errnum::kBadFileName;
        else
            e.number = errnum::kFileOrDirectory;
        e.description = f.what();
    } catch (const std::exception& x) {
        e.number = errnum::kInvalidCall;
        e.description = x.what();
    } catch (...) {
        e.number = errnum::kInvalidCall;
        e.description = "Unknown error";
    }
    return e;
}

}  // namespace morvane
