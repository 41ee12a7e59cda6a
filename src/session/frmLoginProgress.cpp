#include "session/frmLoginProgress.h"

#include "session/mdlLogin.h"

namespace morvane {

frmLoginProgress::frmLoginProgress(forms::Toolkit& toolkit)
    : Form(toolkit, "frmLoginProgress", "ログインしています"),
      lblInfo_(Add<forms::Label>("lblInfo")) {
    lblInfo_.SetRow(0);
    SetSize(360, 90);
}

void frmLoginProgress::OnLoad() { PlaceOnWorkArea(); }

void frmLoginProgress::ShowWorking() {
    lblInfo_.SetText("データサーバーにログインしています・・・");
}

void frmLoginProgress::OnActivate() {
    if (shown_) return;
    shown_ = true;
    Kit().DoEvents();  // paint the form before the blocking exchange
    ShowWorking();
    DoLogin(id_, password_, contractNo_);
    Hide();
}

}  // namespace morvane
