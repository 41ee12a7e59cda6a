#include "qt/demo/DialogCatalogue.h"

#include <cstdio>

#include "component/ctrlMorvane.h"
#include "roster/frmSelectCompareCustList.h"
#include "roster/frmSelectCompareCustListAll.h"
#include "roster/frmSelectEnabledCustList.h"
#include "roster/frmSelectEnabledCustListMsg.h"
#include "session/frmLogin.h"
#include "session/frmLoginProgress.h"
#include "session/frmMorvaneSetting.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "store/LocalDatabases.h"
#include "store/frmSelectCompareMsg.h"
#include "transport/frmFileDownloadProgress.h"
#include "transport/frmFileUploadProgress.h"
#include "transport/frmSendRequestProgress.h"

namespace morvane::qt {
namespace {

template <typename F>
std::function<std::unique_ptr<forms::Form>(forms::Toolkit&)> Plain() {
    return [](forms::Toolkit& kit) { return std::make_unique<F>(kit); };
}

}  // namespace

DialogCatalogue::DialogCatalogue() {
    SampleDataOptions sample;
    sample.customers = 3;
    db_ = CreateLocalDatabases(dir_.path().toStdString(), sample).customer.string();
    for (int id : {1, 2, 7}) {
        cCustListItem& item = server_.Add(id);
        item.Code = "C" + std::to_string(id);
        item.CorpName0 = "モルヴェイン建設" + std::to_string(id) + "株式会社";
        item.CorpKanaS = "ﾓﾙｳﾞｪｲﾝｹﾝｾﾂ";
        cCustListSyncItem& flags = targets_.Add("K" + std::to_string(id), id);
        flags.Code = item.Code;
        flags.CorpName0 = item.CorpName0;
        flags.InetEnableFlag = id == 7 ? 0 : 1;
    }

    dialogs_ = {
        {"login", "ログイン", Plain<frmLogin>(),
         [](ctrlMorvane& obj) { std::printf("ShowLogin -> %d\n", obj.ShowLogin(nullptr)); }},
        {"relogin", "ログイン (再ログイン)",
         [](forms::Toolkit& kit) {
             auto form = std::make_unique<frmLogin>(kit);
             form->SetShowtype(1);
             return form;
         },
         [](ctrlMorvane&) { std::printf("ShowLoginDlg(1) -> %d\n", ShowLoginDlg(nullptr, 1)); }},
        {"setting", "モルヴェインの設定", Plain<frmMorvaneSetting>(),
         [](ctrlMorvane& obj) { obj.ShowSetting(nullptr); }},
        {"compare", "使用するデータの確認",
         [](forms::Toolkit& kit) {
             auto form = std::make_unique<frmSelectCompareMsg>(kit);
             form->SetData("基本情報", "2024/05/01 10:00:00", "2024/04/01 09:00:00", "");
             return form;
         },
         [](ctrlMorvane&) {
             ProcessState& state = State();
             state.inetDateServer = "2024/05/01 10:00:00";
             state.inetDateLocal = "2024/04/01 09:00:00";
             std::printf("ShowCompareMsgDlg -> %d\n", ShowCompareMsgDlg(nullptr, "基本情報"));
         }},
        {"roster-all",
         "顧客一覧の確認 (全体)",
         [this](forms::Toolkit& kit) {
             auto form = std::make_unique<frmSelectCompareCustListAll>(kit);
             form->SetLocalDB(db_);
             form->SetServerData(&server_);
             return form;
         },
         {}},
        {"roster-each",
         "顧客一覧の確認 (顧客ごと)",
         [this](forms::Toolkit& kit) {
             auto form = std::make_unique<frmSelectCompareCustList>(kit);
             form->SetLocalDB(db_);
             form->SetServerData(&server_);
             form->SetOnlyLc_IDs("3");
             form->SetOnlySv_IDs("7");
             return form;
         },
         {}},
        {"targets",
         "バックアップ対象の選択",
         [this](forms::Toolkit& kit) {
             auto form = std::make_unique<frmSelectEnabledCustList>(kit);
             form->LocalDB = db_;
             form->ServerData = &targets_;
             form->Showtype = "1";
             return form;
         },
         {}},
        {"targets-confirm", "バックアップ対象の確定", Plain<frmSelectEnabledCustListMsg>(), {}},
        {"login-progress",
         "ログイン中",
         [](forms::Toolkit& kit) {
             auto form = std::make_unique<frmLoginProgress>(kit);
             form->ShowWorking();
             return form;
         },
         {},
         true},
        {"request-progress",
         "サーバーと通信中",
         [](forms::Toolkit& kit) {
             auto form = std::make_unique<frmSendRequestProgress>(kit);
             form->ShowMsgString("");
             return form;
         },
         {},
         true},
        {"upload-progress", "アップロード中", Plain<frmFileUploadProgress>(), {}, true},
        {"download-progress", "ダウンロード中", Plain<frmFileDownloadProgress>(), {}, true},
    };
}

}  // namespace morvane::qt
