#include "session/mdlErrTrap.h"

#include "state/ProcessState.h"
#include "util/RuntimeError.h"

namespace morvane {
namespace {
constexpr const char* kCrLf = "\r\n";
}

void CaptureError(std::exception_ptr error) { State().err = PendingError::From(error); }

std::string ErrTrapMessage(std::int32_t number, const std::string& description) {
    switch (number) {
        case errnum::kNone:
        case errnum::kSilent:
            return {};
        case errnum::kOutOfMemory:
            return std::string("メモリが不足しています。") + kCrLf +
                   "他のウインドウを閉じてもう一度実行してください。";
        case errnum::kBadFileName:
        case errnum::kBadFileNameOrNumber:
            return "ファイル名が正しくありません。";
        case errnum::kFileNotFound:
            return "ファイルが見つかりません。";
        case errnum::kBadFileMode:
            return "このアクセスモードではファイルを開けません。";
        case errnum::kFileAlreadyOpen:
            return "ファイルは既に開いています。";
        case errnum::kDiskFull:
            return "ディスクがいっぱいです。";
        case errnum::kDeviceUnavailable:
            return "デバイスが準備されていません。";
        case errnum::kDiskNotReady:
            return "ディスクが準備されていません。";
        case errnum::kPathFileAccess:
            return std::string("指定されたファイルを上書きできません。") + kCrLf +
                   "他のアプリケーションで使われているか、読み取り専用です。";
        case errnum::kPathNotFound:
            return "指定されたパスが存在しません。";
        case errnum::kFileOrDirectory:
            return description + kCrLf + "ファイル名、ディレクトリが正しいか確認して下さい。";
        default:
            return description;
    }
}

void ErrTrap() {
    ProcessState& state = State();
    const PendingError err = state.err;
    state.err.Clear();
    if (err.number == errnum::kSilent) return;  // cleared, pointer left alone
    if (err.number != errnum::kNone) {
        ++state.trappedErrors;
        // Nothing of ours keeps files open between calls: the files of 7 are already shut.
        forms::MessageBoxRequest box;
        box.text = std::to_string(err.number) + kCrLf + ErrTrapMessage(err.number, err.description);
        box.title = err.source;
        box.icon = forms::MsgIcon::Exclamation;
        box.helpFile = err.helpFile;
        box.helpContext = err.helpContext;
        state.Toolkit().MessageBox(box);
    }
    state.Toolkit().SetBusyPointer(false);
}

}  // namespace morvane
