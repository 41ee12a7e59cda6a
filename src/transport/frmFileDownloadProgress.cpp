#include "transport/frmFileDownloadProgress.h"

#include "transport/mdlServerFile.h"

namespace morvane {

frmFileDownloadProgress::frmFileDownloadProgress(forms::Toolkit& toolkit)
    : Form(toolkit, "frmFileDownloadProgress", "ダウンロードしています") {
    Add<forms::Label>("lblInfo", "ファイルをダウンロードしています・・・");
    SetSize(360, 90);
}

void frmFileDownloadProgress::OnLoad() {
    url_.clear();
    postData_.clear();
    downloadPath_.clear();
    fileTitle_.clear();
    returnString_.clear();
    into_ = nullptr;
    PlaceOnWorkArea();
}

void frmFileDownloadProgress::OnActivate() {
    if (shown_) return;
    shown_ = true;
    Kit().DoEvents();  // paint the form before the blocking transfer
    const bool saved = into_ ? ServerDownloadInto(url_, postData_, *into_)
                             : ServerDownloadFileDirect(url_, postData_, downloadPath_, fileTitle_);
    returnString_ = saved ? "True" : "False";
    Hide();
}

}  // namespace morvane
