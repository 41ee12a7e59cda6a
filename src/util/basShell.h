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

}  // namespace morvane
