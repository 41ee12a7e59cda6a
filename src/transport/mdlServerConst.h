// The server's pages, relative to the base URL. All are POST.
#pragma once

#include <array>
#include <string_view>

namespace morvane::page {

// Session and clock.
inline constexpr std::string_view kLogin = "login.php";
inline constexpr std::string_view kLogout = "logout.php";  // never posted: a login only lapses
inline constexpr std::string_view kGetTime = "gettime.php";

// Roster and locks.
inline constexpr std::string_view kGetCompList = "customer/getCompList.php";
inline constexpr std::string_view kCreateCompKihon = "customer/createCompKihon.php";
inline constexpr std::string_view kDeleteCompKihon = "customer/deleteCompKihon.php";
inline constexpr std::string_view kSetInetEnableFlag = "customer/setInetEnableFlag.php";
inline constexpr std::string_view kLockComp = "customer/lockComp.php";
inline constexpr std::string_view kUnlockComp = "customer/unlockComp.php";
inline constexpr std::string_view kLockMaster = "master/lockMaster.php";
inline constexpr std::string_view kUnlockMaster = "master/unlockMaster.php";

// Customer record.
inline constexpr std::string_view kGetCompKihonMain = "customer/getCompKihonMain.php";
inline constexpr std::string_view kGetCompKihon = "customer/getCompKihon.php";
inline constexpr std::string_view kSetCompKihon = "customer/setCompKihon.php";
inline constexpr std::string_view kGetCompGyoshu = "customer/getCompGyoshu.php";
inline constexpr std::string_view kSetCompGyoshu = "customer/setCompGyoshu.php";
inline constexpr std::string_view kGetCompShokuin = "customer/getCompShokuin.php";
inline constexpr std::string_view kSetCompShokuin = "customer/setCompShokuin.php";
inline constexpr std::string_view kGetEigyosho = "customer/getEigyosho.php";
inline constexpr std::string_view kSetEigyosho = "customer/setEigyosho.php";
inline constexpr std::string_view kGetMemo = "customer/getMemo.php";
inline constexpr std::string_view kSetMemo = "customer/setMemo.php";
inline constexpr std::string_view kGetNyusatsuKikan = "customer/getNyusatsuKikan.php";
inline constexpr std::string_view kSetNyusatsuKikan = "customer/setNyusatsuKikan.php";
inline constexpr std::string_view kGetNyusatsuSanka = "customer/getNyusatsuSanka.php";
inline constexpr std::string_view kSetNyusatsuSanka = "customer/setNyusatsuSanka.php";
inline constexpr std::string_view kGetCompDetails = "customer/getCompDetails.php";

// Dated records and their files.
inline constexpr std::string_view kGetKessanData = "customer/getKessanData.php";
inline constexpr std::string_view kSetKessanData = "customer/setKessanData.php";
inline constexpr std::string_view kGetKessanFileHash = "customer/getKessanFileHash.php";
inline constexpr std::string_view kGetKessanFile = "customer/getKessanFile.php";
inline constexpr std::string_view kSetKessanFile = "customer/setKessanFile.php";
inline constexpr std::string_view kDeleteKessanFile = "customer/deleteKessanFile.php";
inline constexpr std::string_view kRenameKessanFile = "customer/renameKessanFile.php";
inline constexpr std::string_view kGetKyokaData = "customer/getKyokaData.php";
inline constexpr std::string_view kSetKyokaData = "customer/setKyokaData.php";
inline constexpr std::string_view kGetKyokaFileHash = "customer/getKyokaFileHash.php";
inline constexpr std::string_view kGetKyokaFile = "customer/getKyokaFile.php";
inline constexpr std::string_view kSetKyokaFile = "customer/setKyokaFile.php";
inline constexpr std::string_view kDeleteKyokaFile = "customer/deleteKyokaFile.php";
inline constexpr std::string_view kRenameKyokaFile = "customer/renameKyokaFile.php";
inline constexpr std::string_view kGetOtherData = "customer/getOtherData.php";
inline constexpr std::string_view kSetOtherData = "customer/setOtherData.php";
inline constexpr std::string_view kGetOtherFileHash = "customer/getOtherFileHash.php";
inline constexpr std::string_view kGetOtherFile = "customer/getOtherFile.php";
inline constexpr std::string_view kSetOtherFile = "customer/setOtherFile.php";
inline constexpr std::string_view kDeleteOtherFile = "customer/deleteOtherFile.php";
inline constexpr std::string_view kRenameOtherFile = "customer/renameOtherFile.php";

// Office-wide masters; getKessanTaioh doubles as the login keep-alive.
inline constexpr std::string_view kGetBunsekiKikan = "master/getBunsekiKikan.php";
inline constexpr std::string_view kSetBunsekiKikan = "master/setBunsekiKikan.php";
inline constexpr std::string_view kGetKessanTaioh = "master/getKessanTaioh.php";
inline constexpr std::string_view kSetKessanTaioh = "master/setKessanTaioh.php";
inline constexpr std::string_view kGetMinister = "master/getMinister.php";
inline constexpr std::string_view kSetMinister = "master/setMinister.php";
inline constexpr std::string_view kGetMasterNyusatsuKikan = "master/getNyusatsuKikan.php";
inline constexpr std::string_view kSetMasterNyusatsuKikan = "master/setNyusatsuKikan.php";
inline constexpr std::string_view kGetNyusatsuShorui = "master/getNyusatsuShorui.php";
inline constexpr std::string_view kSetNyusatsuShorui = "master/setNyusatsuShorui.php";
inline constexpr std::string_view kGetSakuseisha = "master/getSakuseisha.php";
inline constexpr std::string_view kSetSakuseisha = "master/setSakuseisha.php";
inline constexpr std::string_view kGetUserStaff = "master/getUserStaff.php";
inline constexpr std::string_view kSetUserStaff = "master/setUserStaff.php";
inline constexpr std::string_view kGetYakushoku = "master/getYakushoku.php";
inline constexpr std::string_view kSetYakushoku = "master/setYakushoku.php";

// Prefecture forms with a client.
inline constexpr std::string_view kGetIninMain = "prefcust/99/getIninMain.php";
inline constexpr std::string_view kGetIninSub = "prefcust/99/getIninSub.php";
inline constexpr std::string_view kSetIninMain = "prefcust/99/setIninMain.php";
inline constexpr std::string_view kSetIninSub = "prefcust/99/setIninSub.php";
inline constexpr std::string_view kSetKikaiIchiranMain = "prefcust/99/setKikaiIchiranMain.php";
inline constexpr std::string_view kSetKikaiIchiranSub = "prefcust/99/setKikaiIchiranSub.php";

// Pages the server offers that no code of the component calls: a get/set pair for each
// word, formed as folder + "get" or "set" + word + ".php".
struct PagePairFolder {
    std::string_view folder;
    std::string_view words;  // separated by blanks
};
inline constexpr std::array<PagePairFolder, 7> kUncalledPairs{{
    {"prefcust/99/",
     "ISO14001IchiranMain ISO14001IchiranSub ISO9001IchiranMain ISO9001IchiranSub "
     "ShinkoTekiyoMain ShinkoTekiyoSub KeishinTeishutsuhyo KyokaKakuninShomeiMain "
     "KyokaKakuninShomeiSub PrintCustomerData SystemOption"},
    {"prefcust/kan/", "GijutsuShokuinMain GijutsuShokuinSub KakuninSofuMain KakuninSofuSub"},
    {"prefcust/12/",
     "BuppinNonyu GyomuItaku GijutsushaKeireki SenninRyakuMain SenninRyakuShokureki "
     "SenninRyakuShobatsu"},
    {"prefcust/27/",
     "TeiseiTodokeMain TeiseiTodokeSub Henkotodoke KeishinHyoshi KesssanHenko "
     "KyokaShinseiHyoshi JitsumuMoshitateMain JitsumuMoshitateSub"},
    {"prefcust/28/", "Henkotodoke KyokaShinseiHyoshi Shomeinegai"},
    {"prefcust/29/", "Henkotodoke KeishinChosho"},
    {"prefcust/42/", "ShiyoninRyakurekiMain ShiyoninRyakurekiSub"},
}};
inline constexpr std::string_view kGetKikaiIchiranMain = "prefcust/99/getKikaiIchiranMain.php";
inline constexpr std::string_view kGetKikaiIchiranSub = "prefcust/99/getKikaiIchiranSub.php";

}  // namespace morvane::page
