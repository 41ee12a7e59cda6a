#include "store/frmSelectCompareMsg.h"

#include <optional>

#include "state/ProcessState.h"
#include "store/mdlMorvaneCommon.h"

namespace morvane {
namespace {

constexpr const char* kCaption = "使用するデータの確認（モルヴェイン）";
constexpr const char* kDateFormat = "yyyy年mm月dd日  h:mm:ss";
constexpr const char* kNewer = " (新しい)";

std::string DateLine(const std::optional<DateValue>& date) {
    if (!date) return "更新日時： 不明 または データ無し";
    return "更新日時： " + FormatDate(*date, kDateFormat);
}

}  // namespace

frmSelectCompareMsg::frmSelectCompareMsg(forms::Toolkit& toolkit)
    : Form(toolkit, "frmSelectCompareMsg", kCaption) {
    Add<forms::Label>("Label1");
    Add<forms::Label>("Label2", "使用するデータをボタンをクリックして選択してください。");
    Add<forms::Label>(
        "Label3",
        "【注意】\r\n選択した方のデータでもう一方のデータを更新(上書き)します。\r\n"
        "ローカルのデータを確認するには、一旦、キャンセルしてデータをご確認ください。");
    const auto& frame = Add<forms::Frame>("Frame1", "データの更新日時");
    for (auto* info : {&Add<forms::Label>("lblDataInfo(0)", "バックアップサーバーのデータ"),
                       &Add<forms::Label>("lblDataInfo(1)"),
                       &Add<forms::Label>("lblDataInfo(3)", "ローカルの保存先のデータ"),
                       &Add<forms::Label>("lblDataInfo(4)")})
        info->SetContainer(&frame);
    Add<forms::Button>("cmdSel(0)", "サーバーを採用").onClick = [this] { Select(0); };
    Add<forms::Button>("cmdSel(1)", "ローカルを採用").onClick = [this] { Select(1); };
    auto& cancel = Add<forms::Button>("cmdCancel", "キャンセル");
    cancel.SetCancel(true);
    cancel.onClick = [this] {
        dlgResult_ = 0;
        Hide();
    };
}

void frmSelectCompareMsg::SetData(const std::string& dataTitle, std::string server,
                                  std::string local, std::string check) {
    Get<forms::Label>("Label1").SetText(
        "【 " + dataTitle +
        " 】のデータについて、サーバーと差異が見つかり、どちらが正しいデータか判断できませんでした"
        "。");
    server_ = std::move(server);
    local_ = std::move(local);
    check_ = std::move(check);
}

void frmSelectCompareMsg::OnLoad() {
    dlgResult_ = 0;
    const auto server = DateValue::Parse(server_);
    const auto local = DateValue::Parse(local_);
    auto& serverLine = Get<forms::Label>("lblDataInfo(1)");
    auto& localLine = Get<forms::Label>("lblDataInfo(4)");
    serverLine.SetText(DateLine(server));
    localLine.SetText(DateLine(local));
    if (server && local) {
        if (*local < *server) {
            serverLine.SetText(serverLine.Text() + kNewer);
            Get<forms::Button>("cmdSel(0)").SetDefault(true);
        } else {
            localLine.SetText(localLine.Text() + kNewer);
            Get<forms::Button>("cmdSel(1)").SetDefault(true);
        }
    }
    PlaceOnWorkArea();
}

void frmSelectCompareMsg::Select(int index) {
    forms::MessageBoxRequest box;
    box.text =
        std::string(
            index == 0
                ? "サーバー側が正しいデータと判断して、ローカルのデータを更新(上書き)します。"
                : "ローカル側が正しいデータと判断して、サーバーのデータを更新(上書き)します。") +
        "\r\nよろしいですか？";
    box.title = Caption();
    box.icon = forms::MsgIcon::Question;
    box.buttons = forms::MsgButtons::YesNo;
    if (Kit().MessageBox(box) != forms::MsgResult::Yes) return;
    dlgResult_ = index == 0 ? 1 : 2;
    Hide();
}

std::int32_t ShowCompareMsgDlg(forms::Form* owner, const std::string& dataTitle) {
    ProcessState& state = State();
    frmSelectCompareMsg form(state.Toolkit());
    form.SetData(dataTitle, state.inetDateServer, state.inetDateLocal, state.inetDateCheck);
    form.ShowModal(owner);
    const std::int32_t result = form.DlgResult();
    form.Unload();
    return result;
}

}  // namespace morvane
