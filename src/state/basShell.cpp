#include "state/basShell.h"

#include <filesystem>
#include <system_error>

#include "state/ProcessState.h"
#include "state/mdlMsgBox.h"
#include "util/Text.h"

namespace morvane {
namespace {
constexpr std::int32_t kAccessDenied = 5;
constexpr const char* kTitle = "システム";
}  // namespace

std::string ShellErrorMessage(std::int32_t code) {
    switch (code) {
        case 2:
            return "指定されたファイルが見つかりませんでした。";
        case 3:
            return "指定されたパスが見つかりませんでした。";
        case 5:
            return "オペレーティングシステムによりアクセスが拒否されました。";
        case 8:
            return "操作を行うためのメモリまたはリソースが不足しています。";
        case 11:
            return "EXE ファイルが無効です。Win32 の EXE ではないか、EXE "
                   "イメージ内にエラーがあります。";
        case 26:
            return "共有違反が発生しました。";
        case 27:
            return "ファイル名の関連付けが不完全または無効です。";
        case 28:
            return "要求がタイムアウトしたので、DDE トランザクションを完了できませんでした。";
        case 29:
            return "DDE トランザクションが失敗しました。";
        case 30:
            return "ほかの DDE トランザクションが現在処理中なので、DDE "
                   "トランザクションを完了できませんでした。";
        case 31:
            return "指定されたファイル拡張子に関連付けられたアプリケーションがありません。"
                   "または印刷可能ではないファイルを印刷しようとしました。";
        case 32:
            return "指定されたダイナミックリンクライブラリ (DLL) が見つかりませんでした。";
        default:
            return {};
    }
}

void ShowShellError(std::int32_t code) {
    const std::string text = ShellErrorMessage(code);
    if (!text.empty()) MsgBox(text, forms::MsgIcon::Exclamation, kTitle);
}

std::int32_t ShellOpenURL(std::string_view url, forms::Form* /*owner*/, bool showError) {
    std::int32_t result = State().Toolkit().OpenUrl(std::string(url));
    if (result == kAccessDenied) {
        // The fallback of a fixed browser file has no counterpart here: the user's
        // application was refused, so the address is handed to the user instead.
        result = 0;
        if (showError)
            MsgBox(
                "オペレーティングシステムによりアクセスが拒否されたため表示できませんでした。"
                "\r\nWeb ブラウザを起動し、アドレスに " +
                    std::string(url) + " を指定して下さい。",
                forms::MsgIcon::Exclamation, kTitle);
        return result;
    }
    if (showError) ShowShellError(result);
    return result;
}

std::string EscapeMailText(std::string_view text) {
    std::string s(text);
    s = ReplaceAll(std::move(s), "\r\n", "%0d%0a");
    s = ReplaceAll(std::move(s), "\r", "%0d ");
    s = ReplaceAll(std::move(s), "\n", "%0a");
    s = ReplaceAll(std::move(s), " ", "%20");
    return s;
}

std::int32_t ShellMail(std::string_view address, std::string_view subject, std::string_view body,
                       forms::Form* /*owner*/, bool showError) {
    std::string url = "mailto:" + (address.empty() ? std::string() : EscapeMailText(address));
    if (!subject.empty()) url += "?subject=" + EscapeMailText(subject);
    // A body without a subject follows the address with "&", as the link was always built.
    if (!body.empty()) url += "&body=" + EscapeMailText(body);
    const std::int32_t result = State().Toolkit().OpenUrl(url);
    if (showError) ShowShellError(result);
    return result;
}

std::int32_t ShellFileOperation(std::string_view path, std::int32_t flags, forms::Form* /*owner*/,
                                std::string_view /*title*/) {
    if (path.empty()) return 1;
    if (flags & kFofAllowUndo) return State().Toolkit().MoveToTrash(std::string(path));
    std::error_code ec;
    return std::filesystem::remove(std::filesystem::path(std::string(path)), ec) ? 0 : 2;
}

}  // namespace morvane
