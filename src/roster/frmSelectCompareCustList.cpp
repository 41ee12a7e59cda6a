#include "roster/frmSelectCompareCustList.h"

#include <algorithm>
#include <exception>
#include <vector>

#include "platform/Dao.h"
#include "roster/StripCorpWords.h"
#include "roster/cCustList.h"
#include "session/mdlErrTrap.h"
#include "store/mdlMorvaneCommon.h"
#include "util/Nz.h"

namespace morvane {
namespace {

constexpr const char* kCaption = "顧客一覧で追加 または 削除された顧客の確認";

// Grid columns; the first is the fixed one.
enum Col { kColFixed, kColCode, kColName, kColLocal, kColServer, kColMethod, kColCount };

constexpr const char* kExists = "存在する";
constexpr const char* kNoData = "（データ無）";
constexpr const char* kDeleted = "× 削除します";
constexpr const char* kDelete = "削除";
constexpr const char* kAddOnServer = "サーバーに顧客を追加";
constexpr const char* kDeleteLocal = "× ローカルの顧客を削除";
constexpr const char* kAddLocally = "ローカルに顧客を追加";
constexpr const char* kDeleteOnServer = "× サーバーの顧客を削除";
// The row's kind, kept in the method cell: where the customer exists.
constexpr const char* kKindLocal = "OnlyLc";
constexpr const char* kKindServer = "OnlySv";
// The back colour of the side that lacks the customer.
constexpr std::int32_t kColorAbsent = 6711039;

bool Holds(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

void Append(std::string& ids, const std::string& id) {
    if (!ids.empty()) ids += ',';
    ids += id;
}

}  // namespace

frmSelectCompareCustList::frmSelectCompareCustList(forms::Toolkit& toolkit)
    : Form(toolkit, "frmSelectCompareCustList", kCaption) {
    AddAt<forms::Label>(0, "lblMsg(0)");
    auto& grid = AddAt<forms::Grid>(1, "vfaData");
    grid.onCellChoice = [this](int row, int col, const std::string& choice) {
        Choose(row, col, choice);
    };
    AddAt<forms::Label>(2, "lblMsg(1)");
    AddAt<forms::Button>(3, "cmdDo", "上記で同期を実行する").onClick = [this] { Execute(); };
    auto& cmdCancel = AddAt<forms::Button>(3, "cmdCancel", "キャンセル（サーバー接続を中止）");
    cmdCancel.SetCancel(true);
    cmdCancel.onClick = [this] {
        cancel_ = true;
        Hide();
    };
}

void frmSelectCompareCustList::OnLoad() {
    cancel_ = false;
    addLocalDs_.clear();
    addServerDs_.clear();
    delLocalDs_.clear();
    delServerDs_.clear();
    Get<forms::Label>("lblMsg(0)")
        .SetText(
            "ローカルとインターネットサーバーのどちらかで、顧客の追加 または "
            "削除が行われました。\r\n"
            "以下に表示された顧客に対して、データの同期方法を選択してください。");
    Get<forms::Label>("lblMsg(1)")
        .SetText(
            "上記の設定で、ローカルとインターネットサーバーでデータの同期を実行してもよろしいですか"
            "？");
    auto& grid = Get<forms::Grid>("vfaData");
    grid.headers = {"",
                    "顧客\r\nコード",
                    "顧客名",
                    "ローカルの\r\nデータ",
                    "サーバーの\r\nデータ",
                    "［同期方法選択］"};
    grid.Resize(0, kColCount);
    try {
        auto ws = CreateMorvaneWorkspace();
        dao::Database& db = ws->OpenDatabase(localDb_);
        for (const std::int32_t id : SplitIDs(onlyLcIDs_)) {
            // A customer deleted since the comparison gets no row and is not reported back.
            auto rs = db.OpenRecordset("SELECT * FROM tCustomer WHERE id = " + std::to_string(id) +
                                           " AND disabled = 0 ORDER BY id",
                                       dao::dbOpenDynaset, dao::dbReadOnly);
            if (rs->Eof()) continue;
            AddRow(id, Side::Local, NzString(rs->Fields("Code").GetValue()),
                   NzString(rs->Fields("CorpName0").GetValue()));
        }
        for (const std::int32_t id : SplitIDs(onlySvIDs_)) {
            const cCustListItem* item =
                serverData_ ? serverData_->Item("K" + std::to_string(id)) : nullptr;
            if (item) AddRow(id, Side::Server, item->Code, item->CorpName0);
        }
    } catch (...) {
        // The rows added so far stay.
        CaptureError(std::current_exception());
        ErrTrap();
    }
    Kit().ControlChanged(grid);
    PlaceOnWorkArea();
}

void frmSelectCompareCustList::OnQueryUnload(forms::CloseReason reason, bool&) {
    // A window closed by the user decides nothing, as the cancel button.
    if (reason != forms::CloseReason::Code) cancel_ = true;
}

void frmSelectCompareCustList::AddRow(std::int32_t id, Side side, const std::string& code,
                                      const std::string& name) {
    auto& grid = Get<forms::Grid>("vfaData");
    const int row = grid.Rows();
    grid.Resize(row + 1, kColCount);
    const bool local = side == Side::Local;
    grid.At(row, kColFixed).data = std::to_string(id);
    grid.At(row, kColCode).text = code;
    grid.At(row, kColName).text = StripCorpWords(name);
    auto& localCell = grid.At(row, kColLocal);
    auto& serverCell = grid.At(row, kColServer);
    localCell.text = local ? kExists : kNoData;
    serverCell.text = local ? kNoData : kExists;
    localCell.backColor = local ? forms::kColorButtonFace : kColorAbsent;
    serverCell.backColor = local ? kColorAbsent : forms::kColorButtonFace;
    auto& method = grid.At(row, kColMethod);
    method.text = local ? kAddOnServer : kAddLocally;
    method.data = local ? kKindLocal : kKindServer;
    method.choices = local ? std::vector<std::string>{kAddOnServer, kDeleteLocal}
                           : std::vector<std::string>{kAddLocally, kDeleteOnServer};
}

void frmSelectCompareCustList::Choose(int row, int col, const std::string& choice) {
    auto& grid = Get<forms::Grid>("vfaData");
    if (col != kColMethod) return;
    auto& method = grid.At(row, kColMethod);
    if (std::find(method.choices.begin(), method.choices.end(), choice) == method.choices.end())
        return;
    method.text = choice;
    if (Holds(choice, kDelete)) {
        if (Holds(choice, "ローカル"))
            grid.At(row, kColLocal).text = kDeleted;
        else if (Holds(choice, "サーバー"))
            grid.At(row, kColServer).text = kDeleted;
    } else {
        grid.At(row, method.data == kKindLocal ? kColLocal : kColServer).text = kExists;
    }
    Kit().ControlChanged(grid);
}

void frmSelectCompareCustList::Execute() {
    forms::MessageBoxRequest box;
    box.text =
        "上記の設定で、ローカルとインターネットサーバー間でデータの同期を行います。\r\n\r\n"
        "よろしいですか？　";
    box.title = Caption();
    box.icon = forms::MsgIcon::Exclamation;
    box.buttons = forms::MsgButtons::OKCancel;
    if (Kit().MessageBox(box) != forms::MsgResult::OK) return;
    addLocalDs_.clear();
    addServerDs_.clear();
    delLocalDs_.clear();
    delServerDs_.clear();
    const auto& grid = Get<forms::Grid>("vfaData");
    for (int row = 0; row < grid.Rows(); ++row) {
        const std::string& id = grid.At(row, kColFixed).data;
        const auto& method = grid.At(row, kColMethod);
        const bool del = Holds(method.text, kDelete);
        if (method.data == kKindLocal)
            Append(del ? delLocalDs_ : addServerDs_, id);
        else
            Append(del ? delServerDs_ : addLocalDs_, id);
    }
    cancel_ = false;
    Hide();
}

}  // namespace morvane
