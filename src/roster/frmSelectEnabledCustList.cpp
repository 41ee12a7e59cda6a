#include "roster/frmSelectEnabledCustList.h"

#include <array>
#include <string_view>

#include "roster/StripCorpWords.h"
#include "roster/cCustListSync.h"
#include "roster/frmSelectEnabledCustListMsg.h"
#include "session/mdlLogin.h"
#include "util/Nz.h"

namespace morvane {
namespace {

bool Holds(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

void CutTrailingCommas(std::string& ids) {
    while (!ids.empty() && ids.back() == ',') ids.pop_back();
}

}  // namespace

frmSelectEnabledCustList::frmSelectEnabledCustList(forms::Toolkit& toolkit)
    : Form(toolkit, "frmSelectEnabledCustList", "モルヴェインする顧客の一覧") {
    AddAt<forms::Label>(0, "lblMsg(0)");
    AddAt<forms::Label>(1, "lblMsg(2)");
    AddAt<forms::Label>(
        2, "lblMsg(3)",
        "　ご契約いただいているバックアップ可能顧客数に対して、こ利用中の顧客数が一致していませ"
        "んでした。\r\n"
        "　バックアップを行う顧客を選択しなおしていただき、利用可能な顧客数となるように設定して"
        "ください。");
    const auto& fraInfo = AddAt<forms::Frame>(3, "fraInfo", "バックアップご利用状況");
    for (forms::Label* info :
         {&AddAt<forms::Label>(4, "lblInfoT(0)", "ご契約のバックアップ可能顧客数："),
          &AddAt<forms::Label>(4, "lblInfo(0)"),
          &AddAt<forms::Label>(5, "lblInfoT(1)", "全顧客数："),
          &AddAt<forms::Label>(5, "lblInfo(1)"),
          &AddAt<forms::Label>(6, "lblInfoT(2)", "ご利用中の顧客数："),
          &AddAt<forms::Label>(6, "lblInfo(2)"),
          &AddAt<forms::Label>(7, "lblInfoT(3)", "現在、「バックアップする」顧客は"),
          &AddAt<forms::Label>(7, "lblInfo(3)")})
        info->SetContainer(&fraInfo);
    grid_ = &AddAt<forms::Grid>(8, "vfaData");
    AddAt<forms::Label>(9, "lblSetAll", "バックアップする顧客を一括で ⇒ ");
    auto& cmdAllSel = AddAt<forms::Button>(9, "cmdAllSel", " 全て対象 ");
    auto& cmdAllNot = AddAt<forms::Button>(9, "cmdAllNot", " 全て解除 ");
    cmdDo_ = &AddAt<forms::Button>(10, "cmdDo", "OK");
    auto& cmdCancel = AddAt<forms::Button>(10, "cmdCancel", "キャンセル");
    cmdCancel.SetCancel(true);
    SetSize(760, 580);

    grid_->headers = {"",
                      "顧客\r\nコード",
                      "顧客名",
                      "ローカルの\r\nデータ",
                      "サーバーの\r\nデータ",
                      "バックアップ対象"};
    grid_->onCellClick = [this](int row, int col) {
        if (col != kColTarget || !Changeable(row)) return;
        SetTarget(row, Holds(grid_->At(row, col).text, kBackup) ? kNoBackup : kBackup);
    };
    grid_->onCellChoice = [this](int row, int col, const std::string& choice) {
        if (col != kColTarget || !Changeable(row)) return;
        if (choice == kBackup || choice == kNoBackup) SetTarget(row, choice);
    };
    cmdAllSel.onClick = [this] { SetAll(kBackup); };
    cmdAllNot.onClick = [this] { SetAll(kNoBackup); };
    cmdDo_->onClick = [this] { cmdDo_Click(); };
    cmdCancel.onClick = [this] {
        cancel_ = true;
        Hide();
    };
}

void frmSelectEnabledCustList::OnLoad() {
    cancel_ = false;
    enabledIDs_.clear();
    disabledIDs_.clear();
    max_ = GetLoginMaxCustomer();
    const std::string max = std::to_string(max_);
    auto& lblMsg0 = Get<forms::Label>("lblMsg(0)");
    auto& lblMsg2 = Get<forms::Label>("lblMsg(2)");
    if (Showtype == "1" || Showtype == "2") {
        lblMsg0.SetText(
            "以下の一覧の中から、バックアップする顧客の対象を変更してください。\r\n"
            "バックアップする顧客が " +
            max + "件になると続行できます。");
        lblMsg2.SetText("※「バックアップする」顧客が " + max + "件になると続行できます。");
    } else {
        lblMsg0.SetText(std::string("モルヴェインを行う顧客のリストです。\r\n") + kBackup +
                        " となった顧客が インターネット上にバックアップすることが可能です。");
        lblMsg2.SetVisible(false);
        // Nothing can be chosen here, so there is nothing to choose again either.
        Get<forms::Label>("lblMsg(3)").SetVisible(false);
    }
    Fill();
    PlaceOnWorkArea();
}

void frmSelectEnabledCustList::OnQueryUnload(forms::CloseReason reason, bool& /*cancel*/) {
    // Closing the window is a cancel, as the cancel button is.
    if (reason != forms::CloseReason::Code) cancel_ = true;
}

void frmSelectEnabledCustList::Fill() {
    const int rows = ServerData ? ServerData->Count() : 0;
    grid_->Resize(rows, kCols);
    int flagged = 0;
    int row = 0;
    if (ServerData) {
        for (const auto& item : *ServerData) {
            const bool on = item->InetEnableFlag == 1;
            std::string text = on ? kBackup : kNoBackup;
            if (on ? Showtype != "1" : Showtype != "2") text += kFixed;
            if (on) ++flagged;
            const std::array<std::string, kCols> texts = {
                "", item->Code, StripCorpWords(item->CorpName0), "", "", text};
            for (int col = 0; col < kCols; ++col) {
                forms::Grid::Cell& cell = grid_->At(row, col);
                cell.text = texts[static_cast<size_t>(col)];
                cell.backColor = on ? forms::kColorButtonFace : forms::kColorButtonShadow;
                cell.locked = true;
            }
            // The customer's number with the row, the start text with its target cell: OK
            // compares against them.
            grid_->At(row, kColFixed).data = std::to_string(item->Id());
            forms::Grid::Cell& target = grid_->At(row, kColTarget);
            target.data = text;
            if (Changeable(row)) {
                target.choices = {kBackup, kNoBackup};
                target.locked = false;
            }
            ++row;
        }
    }
    Kit().ControlChanged(*grid_);
    Get<forms::Label>("lblInfo(0)").SetText(std::to_string(max_) + "件まで");
    Get<forms::Label>("lblInfo(1)").SetText(std::to_string(rows) + "件");
    Get<forms::Label>("lblInfo(2)").SetText(std::to_string(flagged) + "件");
    Recount();
}

// Read from the start text rather than the current one, so that a row changed by mistake
// can be changed back.
bool frmSelectEnabledCustList::Changeable(int row) const {
    if (row < 0 || row >= grid_->Rows()) return false;
    const std::string& start = grid_->At(row, kColTarget).data;
    if (Holds(start, kFixed)) return false;
    return (Showtype == "1" && Holds(start, kBackup)) ||
           (Showtype == "2" && Holds(start, kNoBackup));
}

void frmSelectEnabledCustList::SetTarget(int row, const std::string& text) {
    grid_->At(row, kColTarget).text = text;
    Kit().ControlChanged(*grid_);
    Recount();
}

void frmSelectEnabledCustList::SetAll(const char* text) {
    for (int row = 0; row < grid_->Rows(); ++row)
        if (Changeable(row)) grid_->At(row, kColTarget).text = text;
    Kit().ControlChanged(*grid_);
    Recount();
}

void frmSelectEnabledCustList::Recount() {
    int count = 0;
    for (int row = 0; row < grid_->Rows(); ++row)
        if (Holds(grid_->At(row, kColTarget).text, kBackup)) ++count;
    Get<forms::Label>("lblInfo(3)").SetText(std::to_string(count) + "件 です ");
    // Neither more nor fewer than the allowance will do.
    cmdDo_->SetEnabled(count == max_);
}

void frmSelectEnabledCustList::cmdDo_Click() {
    bool confirmed = false;
    {
        frmSelectEnabledCustListMsg msg(Kit());
        msg.ShowModal(this);
        confirmed = msg.OKClick();
        msg.Unload();
    }
    if (!confirmed) return;
    enabledIDs_.clear();
    disabledIDs_.clear();
    for (int row = 0; row < grid_->Rows(); ++row) {
        const forms::Grid::Cell& target = grid_->At(row, kColTarget);
        const std::int32_t id = NzLong(grid_->At(row, kColFixed).data);
        if (target.text == target.data || id <= 0) continue;
        if (Showtype == "1" && Holds(target.text, kNoBackup))
            disabledIDs_ += std::to_string(id) + ",";
        else if (Showtype == "2" && Holds(target.text, kBackup))
            enabledIDs_ += std::to_string(id) + ",";
    }
    CutTrailingCommas(enabledIDs_);
    CutTrailingCommas(disabledIDs_);
    cancel_ = false;
    Hide();
}

}  // namespace morvane
