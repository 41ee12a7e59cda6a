// Opens addresses and mail windows with the user's applications through the forms toolkit
// (never a shell command line), and tells shell failures to the user.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace morvane {

namespace forms {
class Form;
}

// The shell's message for a failure code (2, 3, 5, 8, 11, 26..32), or "" for any other.
std::string ShellErrorMessage(std::int32_t code);
// Shows that message in a warning box titled "システム", if the code has one.
void ShowShellError(std::int32_t code);
// Opens the address in the browser; above 32 on success. The owner is accepted for the
// host's sake: the toolkit places the browser itself.
std::int32_t ShellOpenURL(std::string_view url, forms::Form* owner, bool showError);
// Opens a mail window for mailto:address with subject and body, escaped for the link.
std::int32_t ShellMail(std::string_view address, std::string_view subject, std::string_view body,
                       forms::Form* owner, bool showError);
// Line breaks and blanks escaped for a mailto: link.
std::string EscapeMailText(std::string_view text);

// Shell flags of a file operation: undo allowed (into the trash), and no confirmation.
inline constexpr std::int32_t kFofAllowUndo = 0x40;
inline constexpr std::int32_t kFofNoConfirmation = 0x10;
// Deletes one file: into the trash when the flags allow undo, else for good. An empty path
// gives 1 without a call; otherwise 0 on success. Owner and progress title are accepted
// for the host's sake; the operation shows no progress.
std::int32_t ShellFileOperation(std::string_view path, std::int32_t flags, forms::Form* owner,
                                std::string_view title);

}  // namespace morvane
