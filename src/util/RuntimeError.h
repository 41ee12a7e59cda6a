// The failure that code below the facade raises: a numbered run-time error that the
// error trap turns into its message.
#pragma once

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>

namespace morvane {

// Numbers the error trap knows by name.
namespace errnum {
inline constexpr std::int32_t kNone = 0;
inline constexpr std::int32_t kInvalidCall = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;
inline constexpr std::int32_t kBadFileName = 52;
inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kBadFileMode = 54;
inline constexpr std::int32_t kFileAlreadyOpen = 55;
inline constexpr std::int32_t kDiskFull = 57;
inline constexpr std::int32_t kBadFileNameOrNumber = 64;
inline constexpr std::int32_t kDeviceUnavailable = 68;
inline constexpr std::int32_t kDiskNotReady = 71;
inline constexpr std::int32_t kPathFileAccess = 75;
inline constexpr std::int32_t kPathNotFound = 76;
inline constexpr std::int32_t kDatabaseError = 3146;  // a failure of the local database engine
inline constexpr std::int32_t kFileOrDirectory = 20477;
inline constexpr std::int32_t kSilent = 32755;
}  // namespace errnum

class RuntimeError : public std::runtime_error {
public:
    RuntimeError(std::int32_t number, const std::string& description,
                 std::string source = "Morvane")
        : std::runtime_error(description), number_(number), source_(std::move(source)) {}

    std::int32_t Number() const { return number_; }
    const std::string& Source() const { return source_; }

private:
    std::int32_t number_;
    std::string source_;
};

// The error that is pending after a failure, as the error trap reads it.
struct PendingError {
    std::int32_t number = 0;
    std::string description;
    std::string source;
    std::string helpFile;
    std::int32_t helpContext = 0;

    bool IsSet() const { return number != 0; }
    void Clear() { *this = PendingError{}; }
    // Maps any exception to a numbered error: our own keep their number, file system
    // failures get the number of their kind, memory exhaustion is 7.
    static PendingError From(std::exception_ptr error);
};

}  // namespace morvane
