#include "roster/frmSelectCompareCustListAll.h"

#include <exception>

#include "platform/Dao.h"
#include "roster/StripCorpWords.h"
#include "roster/cCustList.h"
#include "session/mdlErrTrap.h"
#include "store/mdlMorvaneCommon.h"
#include "util/Nz.h"

namespace morvane {
namespace {

constexpr const char* kCaption = "顧客一覧の確認と採用するデータの選択";
constexpr const char* kStampFormat = "yyyy/MM/dd hh:mm:ss";

// The folder of a path, without its last separator.
std::string FolderOf(const std::string& path) {
    const size_t sep = path.find_last_of("/\\");
    return sep == std::string::npos ? std::string() : path.substr(0, sep);
}

std::string CountText(size_t count) { return "(顧客： " + std::to_string(count) + "件)"; }

// A stamp that is no date shows as it is.
std::string StampText(const Value& stamp) {
    if (const auto date = AsDate(stamp)) return FormatDate(*date, kStampFormat);
    return NzString(stamp);
}

}  // namespace

frmSelectCompareCustListAll::frmSelectCompareCustListAll(forms::Toolkit& toolkit)
    : Form(toolkit, "frmSelectCompareCustListAll", kCaption) {
    AddAt<forms::Label>(0, "lblTop");
    AddAt<forms::Label>(1, "lblTitle(0)", "ローカルに保存されている顧客一覧");
    AddAt<forms::Label>(1, "Label1", "⇒");
    AddAt<forms::Label>(1, "lblTitle(1)", "インターネットサーバーの顧客一覧");
    AddAt<forms::ListView>(2, "lvwCustomer(0)");
    AddAt<forms::ListView>(2, "lvwCustomer(1)");
    AddAt<forms::Label>(3, "lblCount(0)");
    AddAt<forms::Label>(3, "lblCount(1)");
    AddAt<forms::Label>(4, "lblLocalPath");
    auto& txtLocalPath = AddAt<forms::TextBox>(4, "txtLocalPath");
    txtLocalPath.SetReadOnly(true);
    txtLocalPath.SetVisible(false);  // the folder is shown by the label and the button
    AddAt<forms::Button>(4, "cmdLocalPath", "確認").onClick = [this] {
        forms::MessageBoxRequest box;
        box.text = "現在のローカルのデータの保存場所は以下の通りです。\r\n" + FolderOf(localDb_);
        box.title = "ローカルデータの保存先の確認";
        box.icon = forms::MsgIcon::Information;
        Kit().MessageBox(box);
    };
    auto& chkButtons = AddAt<forms::CheckBox>(5, "chkButtons", "採用するデータを選択する");
    auto& cmdLocal = AddAt<forms::Button>(6, "cmdLocal", "ローカルのデータを採用する");
    auto& cmdServer = AddAt<forms::Button>(6, "cmdServer", "サーバーのデータを採用する");
    // Taking one side whole overwrites the other: the user has to tick the box first.
    chkButtons.onClick = [&chkButtons, &cmdLocal, &cmdServer] {
        cmdLocal.SetEnabled(chkButtons.Checked());
        cmdServer.SetEnabled(chkButtons.Checked());
    };
    cmdLocal.onClick = [this] {
        Adopt(2, "ローカルのデータを採用するように選択されました。　",
              "インターネットサーバーにローカルの顧客一覧をアップロードします。　");
    };
    cmdServer.onClick = [this] {
        Adopt(1, "インターネットサーバーのデータを採用するように選択されました。　",
              "ローカルにインターネットサーバーの顧客一覧をダウンロードします。　");
    };
    auto& cmdCancel = AddAt<forms::Button>(7, "cmdCancel", "キャンセル（サーバーに接続しない）");
    cmdCancel.SetCancel(true);
    cmdCancel.onClick = [this] { Cancel(); };
    AddAt<forms::Label>(8, "lblCancelInfo",
                        "データの判別ができない場合や、サーバーに接続しないで使用したい場合は、"
                        "キャンセルしてください。");
}

void frmSelectCompareCustListAll::OnLoad() {
    dlgResult_ = -1;
    for (const char* name : {"lvwCustomer(0)", "lvwCustomer(1)"})
        Get<forms::ListView>(name).columns = {"顧客コード", "顧客名", "更新日時"};
    Get<forms::Label>("lblTop").SetText(
        "ローカルとインターネットサーバーとで、顧客一覧データが大きく異なりました。\r\n"
        "それぞれのデータは以下の通りです。どちらかのデータを採用(更新)するか、キャンセルをして"
        "ローカルのデータの保存先が正しく選択されているかなどをご確認ください。");
    Get<forms::Label>("lblLocalPath").SetText("保存場所：\r\n" + FolderOf(localDb_));
    Get<forms::Label>("lblCount(0)").SetText(CountText(0));
    Get<forms::Label>("lblCount(1)").SetText(CountText(0));
    const bool ticked = Get<forms::CheckBox>("chkButtons").Checked();
    Get<forms::Button>("cmdLocal").SetEnabled(ticked);
    Get<forms::Button>("cmdServer").SetEnabled(ticked);
    FillLocal();
    FillServer();
    PlaceOnWorkArea();
}

void frmSelectCompareCustListAll::FillLocal() {
    auto& list = Get<forms::ListView>("lvwCustomer(0)");
    list.items.clear();
    try {
        auto ws = CreateMorvaneWorkspace();
        dao::Database& db = ws->OpenDatabase(localDb_);
        auto rs = db.OpenRecordset("SELECT * FROM tCustomer WHERE disabled = 0 ORDER BY id",
                                   dao::dbOpenDynaset, dao::dbReadOnly);
        for (; !rs->Eof(); rs->MoveNext()) {
            forms::ListView::Item item;
            item.key = "k" + std::to_string(NzLong(rs->Fields("ID").GetValue()));
            item.texts = {NzString(rs->Fields("Code").GetValue()),
                          StripCorpWords(NzString(rs->Fields("CorpName0").GetValue())),
                          StampText(rs->Fields("RecordUpdate").GetValue())};
            list.items.push_back(std::move(item));
        }
        Get<forms::Label>("lblCount(0)").SetText(CountText(list.items.size()));
    } catch (...) {
        // The rows read so far stay in the list.
        CaptureError(std::current_exception());
        ErrTrap();
    }
    Kit().ControlChanged(list);
}

void frmSelectCompareCustListAll::FillServer() {
    auto& list = Get<forms::ListView>("lvwCustomer(1)");
    list.items.clear();
    if (serverData_) {
        for (const auto& server : *serverData_) {
            forms::ListView::Item item;
            item.key = "k" + std::to_string(server->id);
            item.texts = {server->Code, StripCorpWords(server->CorpName0),
                          StampText(Value(std::string(server->RecordUpdate(0))))};
            list.items.push_back(std::move(item));
        }
    }
    Get<forms::Label>("lblCount(1)").SetText(CountText(list.items.size()));
    Kit().ControlChanged(list);
}

void frmSelectCompareCustListAll::Adopt(std::int32_t result, const char* firstLine,
                                        const char* secondLine) {
    forms::MessageBoxRequest box;
    box.text = std::string(firstLine) + "\r\n" + secondLine + "\r\nよろしいですか？　";
    box.title = Caption();
    box.icon = forms::MsgIcon::Exclamation;
    box.buttons = forms::MsgButtons::OKCancel;
    if (Kit().MessageBox(box) != forms::MsgResult::OK) return;
    dlgResult_ = result;
    Hide();
}

void frmSelectCompareCustListAll::Cancel() {
    forms::MessageBoxRequest box;
    box.text =
        "キャンセルされました。\r\n"
        "ローカルとインターネットサーバーとでデータの同期ができないため、モルヴェイン機能を停止"
        "します。　";
    box.title = Caption();
    box.icon = forms::MsgIcon::Exclamation;
    Kit().MessageBox(box);
    dlgResult_ = -1;
    Hide();
}

}  // namespace morvane
