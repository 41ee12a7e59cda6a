#include "roster/frmSelectEnabledCustListMsg.h"

#include "state/basShell.h"
#include "transport/mdlServerCommon.h"

namespace morvane {

frmSelectEnabledCustListMsg::frmSelectEnabledCustListMsg(forms::Toolkit& toolkit)
    : Form(toolkit, "frmSelectEnabledCustListMsg", "モルヴェインする顧客の選択") {
    AddAt<forms::Label>(
        0, "lblMsg(0)",
        "モルヴェインできる顧客データは、「バックアップする」と設定した顧客のみになります。");
    AddAt<forms::Label>(
        1, "lblMsg(1)",
        "「バックアップする」「バックアップしない」と設定した各顧客は、今後、設定変更できません。");
    AddAt<forms::Label>(
        2, "lblMsg(2)",
        "ご契約変更（利用制限顧客数を変更）した場合は、「バックアップしない」とした顧客も");
    AddAt<forms::Label>(3, "lblMsg(3)", "あらためて、バックアップすることができるようになります。");
    AddAt<forms::Label>(4, "lblMsg(4)", "バックアップする顧客を設定してよろしいですか？");
    const auto& frame =
        AddAt<forms::Frame>(5, "Frame1", "【モルヴェインする顧客の件数を増やしたい場合】");
    auto& label8 = AddAt<forms::Label>(6, "Label8",
                                       "現在のバックアップ利用制限顧客数を変更されたい場合は、以下"
                                       "からご契約内容の変更依頼をお願いいたします。");
    auto& label9 = AddAt<forms::Label>(7, "Label9", "・モルヴェイン契約変更依頼： ");
    auto& lblURL = AddAt<forms::Panel>(7, "lblURL", " こちら（管理サイトを表示） ");
    auto& label2 = AddAt<forms::Label>(8, "Label2",
                                       "※もし上記から契約変更を実施していただいた場合は、システム"
                                       "を一旦終了して、再起動してください。");
    for (forms::Control* inside :
         std::initializer_list<forms::Control*>{&label8, &label9, &lblURL, &label2})
        inside->SetContainer(&frame);
    auto& cmdOK = AddAt<forms::Button>(9, "cmdOK", "OK");
    auto& cmdClose = AddAt<forms::Button>(9, "cmdClose", "キャンセル");
    cmdClose.SetCancel(true);
    SetSize(620, 420);

    // The account page is the service's management site at the server's base address.
    lblURL.onClick = [this] { ShellOpenURL(GetServerBaseURL(), this, true); };
    cmdOK.onClick = [this] {
        okClick_ = true;
        Hide();
    };
    cmdClose.onClick = [this] {
        okClick_ = false;
        Hide();
    };
}

void frmSelectEnabledCustListMsg::OnLoad() {
    okClick_ = false;
    PlaceOnWorkArea();
}

}  // namespace morvane
