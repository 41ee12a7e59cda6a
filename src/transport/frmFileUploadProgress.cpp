#include "transport/frmFileUploadProgress.h"

#include <filesystem>
#include <system_error>

#include "state/mdlMsgBox.h"
#include "transport/mdlServerFile.h"
#include "transport/mdlServerReply.h"
#include "util/basByteSize.h"
#include "util/mdlFileExist1.h"

namespace morvane {

frmFileUploadProgress::frmFileUploadProgress(forms::Toolkit& toolkit)
    : Form(toolkit, "frmFileUploadProgress", "アップロードしています") {
    Add<forms::Label>("lblInfo", "ファイルをアップロードしています・・・");
    SetSize(360, 90);
}

void frmFileUploadProgress::OnLoad() {
    url_.clear();
    userId_.clear();
    token_.clear();
    customerId_.clear();
    fileName_.clear();
    returnString_.clear();
    PlaceOnWorkArea();
}

void frmFileUploadProgress::OnActivate() {
    if (shown_) return;
    shown_ = true;
    Kit().DoEvents();  // paint the form before the blocking transfer
    Upload();
    Hide();
}

void frmFileUploadProgress::Upload() {
    if (!FileExists(fileName_)) {
        MsgBox("アップロードするファイルが見つかりません。 ", forms::MsgIcon::Exclamation, "");
        return;
    }
    std::error_code ec;
    const std::uintmax_t size = std::filesystem::file_size(fileName_, ec);
    if (!ec && size > kMaxUploadFileSize) {
        MsgBox("ファイルサイズが大きすぎます。 \r\nアップロードできるファイルサイズは、 約 " +
                   FormatByteSize(static_cast<double>(kMaxUploadFileSize)) + " までです。",
               forms::MsgIcon::Exclamation, "ファイルのアップロード");
        return;
    }
    std::string reply = ServerUploadFileDirect(url_, userId_, token_, customerId_, fileName_);
    if (CheckServerReply(reply) > 0) returnString_ = std::move(reply);
}

}  // namespace morvane
