// Whole files to and from the server in one POST each way: a download is a form POST whose
// reply body is the file, an upload sends the file's bytes as the body with its parameters
// in headers. Each runs behind a small progress form unless the object usage option is 1.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Http.h"

namespace morvane {

namespace forms {
class Form;
}
namespace platform {
class AtomicFile;
}

// The largest file the progress form sends (the direct route has no limit).
inline constexpr std::uintmax_t kMaxUploadFileSize = 0x800000;

// "True" when a reply body was saved as downloadPath/fileTitle, else "False".
std::string ServerDownloadFile(std::string_view url, std::string_view postData,
                               std::string_view downloadPath, std::string_view fileTitle,
                               forms::Form* owner);
// The transfer itself. The reply is not judged and its status not read: any non-empty
// body replaces the file, and telling a good file from an error page is the caller's.
bool ServerDownloadFileDirect(std::string_view url, std::string_view postData,
                              std::string_view downloadPath, std::string_view fileTitle);
// The same into a new version the caller opened and commits: the body is written to disk as
// it arrives, once. False, with the version holding nothing to keep, when no non-empty body
// came whole.
std::string ServerDownloadFile(std::string_view url, std::string_view postData,
                               platform::AtomicFile& into, forms::Form* owner);
bool ServerDownloadInto(std::string_view url, std::string_view postData,
                        platform::AtomicFile& into);

// The reply text when the reply check passed it, else "".
std::string ServerUploadFile(std::string_view url, std::string_view userId, std::string_view token,
                             std::string_view customerId, std::string_view fileName,
                             forms::Form* owner);
// The transfer itself: the raw reply text, or "" when the file could not be read or
// nothing came back.
std::string ServerUploadFileDirect(std::string_view url, std::string_view userId,
                                   std::string_view token, std::string_view customerId,
                                   std::string_view fileName);
// The upload's headers in the order they are sent; only the file name is encoded.
platform::HttpHeaders UploadHeaders(std::string_view userId, std::string_view token,
                                    std::string_view customerId, std::string_view fileName,
                                    std::uintmax_t size);

}  // namespace morvane
