#include "transport/frmSendRequestProgress.h"

#include "transport/mdlServerReply.h"

namespace morvane {

frmSendRequestProgress::frmSendRequestProgress(forms::Toolkit& toolkit)
    : Form(toolkit, "frmSendRequestProgress", "モルヴェインサーバーと通信中"),
      lblInfo_(Add<forms::Label>("lblInfo")) {
    SetSize(360, 90);
}

void frmSendRequestProgress::ShowMsgString(std::string_view text) {
    lblInfo_.SetText(text.empty() ? "モルヴェインサーバーと通信しています・・・" : "");
}

void frmSendRequestProgress::OnLoad() { PlaceOnWorkArea(); }

void frmSendRequestProgress::OnActivate() {
    if (shown_) return;
    shown_ = true;
    Kit().DoEvents();  // paint the form before the blocking exchange
    if (!url_.empty() && !postData_.empty()) returnString_ = SendRequest(url_, postData_);
    Hide();
}

}  // namespace morvane
