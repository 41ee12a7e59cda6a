// The shared master members: for each of the office's eight masters a comparison, a
// download of what it left, and an upload, all by the list patterns.
#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "lists/ListFacade.h"
#include "masters/cMastBunsekikikan.h"
#include "masters/cMastKessanTaioh.h"
#include "masters/cMastMinister.h"
#include "masters/cMastNyusatsuShorui.h"
#include "masters/cMastNyusatsukikan.h"
#include "masters/cMastSakuseisha.h"
#include "masters/cMastUserStaff.h"
#include "masters/cMastYakushoku.h"

namespace morvane {

// A master belongs to no customer: the list patterns run with none.

std::int32_t ctrlMorvane::CompareMasterBunsekiKikan(const std::string& LocalDB) {
    return record::CompareListMember(mastBunsekikikan_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncDownloadMasterBunsekiKikan(const std::string& LocalDB) {
    return record::DownloadListMember(mastBunsekikikan_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncUploadMasterBunsekiKikan(const std::string& LocalDB) {
    return record::UploadListMember<cMastBunsekikikan>(LocalDB, 0);
}

std::int32_t ctrlMorvane::CompareMasterKessanTaioh(const std::string& LocalDB) {
    return record::CompareListMember(mastKessanTaioh_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncDownloadMasterKessanTaioh(const std::string& LocalDB) {
    return record::DownloadListMember(mastKessanTaioh_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncUploadMasterKessanTaioh(const std::string& LocalDB) {
    return record::UploadListMember<cMastKessanTaioh>(LocalDB, 0);
}

std::int32_t ctrlMorvane::CompareMasterMinister(const std::string& LocalDB) {
    return record::CompareListMember(mastMinister_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncDownloadMasterMinister(const std::string& LocalDB) {
    return record::DownloadListMember(mastMinister_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncUploadMasterMinister(const std::string& LocalDB) {
    return record::UploadListMember<cMastMinister>(LocalDB, 0);
}

std::int32_t ctrlMorvane::CompareMasterNyusatsukikan(const std::string& LocalDB) {
    return record::CompareListMember(mastNyusatsukikan_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncDownloadMasterNyusatsukikan(const std::string& LocalDB) {
    return record::DownloadListMember(mastNyusatsukikan_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncUploadMasterNyusatsukikan(const std::string& LocalDB) {
    return record::UploadListMember<cMastNyusatsukikan>(LocalDB, 0);
}

std::int32_t ctrlMorvane::CompareMasterNyusatsuShorui(const std::string& LocalDB) {
    return record::CompareListMember(mastNyusatsuShorui_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncDownloadMasterNyusatsuShorui(const std::string& LocalDB) {
    return record::DownloadListMember(mastNyusatsuShorui_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncUploadMasterNyusatsuShorui(const std::string& LocalDB) {
    return record::UploadListMember<cMastNyusatsuShorui>(LocalDB, 0);
}

std::int32_t ctrlMorvane::CompareMasterSakuseisha(const std::string& LocalDB) {
    return record::CompareListMember(mastSakuseisha_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncDownloadMasterSakuseisha(const std::string& LocalDB) {
    return record::DownloadListMember(mastSakuseisha_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncUploadMasterSakuseisha(const std::string& LocalDB) {
    return record::UploadListMember<cMastSakuseisha>(LocalDB, 0);
}

std::int32_t ctrlMorvane::CompareMasterUserStaff(const std::string& LocalDB) {
    return record::CompareListMember(mastUserStaff_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncDownloadMasterUserStaff(const std::string& LocalDB) {
    return record::DownloadListMember(mastUserStaff_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncUploadMasterUserStaff(const std::string& LocalDB) {
    return record::UploadListMember<cMastUserStaff>(LocalDB, 0);
}

std::int32_t ctrlMorvane::CompareMasterYakushoku(const std::string& LocalDB) {
    return record::CompareListMember(mastYakushoku_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncDownloadMasterYakushoku(const std::string& LocalDB) {
    return record::DownloadListMember(mastYakushoku_, LocalDB, 0);
}
std::int32_t ctrlMorvane::SyncUploadMasterYakushoku(const std::string& LocalDB) {
    return record::UploadListMember<cMastYakushoku>(LocalDB, 0);
}

void RegisterMasterMembers(DispatchTable& t) {
    t.Method("CompareMasterBunsekiKikan", &ctrlMorvane::CompareMasterBunsekiKikan, {"LocalDB"});
    t.Method("SyncDownloadMasterBunsekiKikan", &ctrlMorvane::SyncDownloadMasterBunsekiKikan,
             {"LocalDB"});
    t.Method("SyncUploadMasterBunsekiKikan", &ctrlMorvane::SyncUploadMasterBunsekiKikan,
             {"LocalDB"});
    t.Method("CompareMasterKessanTaioh", &ctrlMorvane::CompareMasterKessanTaioh, {"LocalDB"});
    t.Method("SyncDownloadMasterKessanTaioh", &ctrlMorvane::SyncDownloadMasterKessanTaioh,
             {"LocalDB"});
    t.Method("SyncUploadMasterKessanTaioh", &ctrlMorvane::SyncUploadMasterKessanTaioh, {"LocalDB"});
    t.Method("CompareMasterMinister", &ctrlMorvane::CompareMasterMinister, {"LocalDB"});
    t.Method("SyncDownloadMasterMinister", &ctrlMorvane::SyncDownloadMasterMinister, {"LocalDB"});
    t.Method("SyncUploadMasterMinister", &ctrlMorvane::SyncUploadMasterMinister, {"LocalDB"});
    t.Method("CompareMasterNyusatsukikan", &ctrlMorvane::CompareMasterNyusatsukikan, {"LocalDB"});
    t.Method("SyncDownloadMasterNyusatsukikan", &ctrlMorvane::SyncDownloadMasterNyusatsukikan,
             {"LocalDB"});
    t.Method("SyncUploadMasterNyusatsukikan", &ctrlMorvane::SyncUploadMasterNyusatsukikan,
             {"LocalDB"});
    t.Method("CompareMasterNyusatsuShorui", &ctrlMorvane::CompareMasterNyusatsuShorui, {"LocalDB"});
    t.Method("SyncDownloadMasterNyusatsuShorui", &ctrlMorvane::SyncDownloadMasterNyusatsuShorui,
             {"LocalDB"});
    t.Method("SyncUploadMasterNyusatsuShorui", &ctrlMorvane::SyncUploadMasterNyusatsuShorui,
             {"LocalDB"});
    t.Method("CompareMasterSakuseisha", &ctrlMorvane::CompareMasterSakuseisha, {"LocalDB"});
    t.Method("SyncDownloadMasterSakuseisha", &ctrlMorvane::SyncDownloadMasterSakuseisha,
             {"LocalDB"});
    t.Method("SyncUploadMasterSakuseisha", &ctrlMorvane::SyncUploadMasterSakuseisha, {"LocalDB"});
    t.Method("CompareMasterUserStaff", &ctrlMorvane::CompareMasterUserStaff, {"LocalDB"});
    t.Method("SyncDownloadMasterUserStaff", &ctrlMorvane::SyncDownloadMasterUserStaff, {"LocalDB"});
    t.Method("SyncUploadMasterUserStaff", &ctrlMorvane::SyncUploadMasterUserStaff, {"LocalDB"});
    t.Method("CompareMasterYakushoku", &ctrlMorvane::CompareMasterYakushoku, {"LocalDB"});
    t.Method("SyncDownloadMasterYakushoku", &ctrlMorvane::SyncDownloadMasterYakushoku, {"LocalDB"});
    t.Method("SyncUploadMasterYakushoku", &ctrlMorvane::SyncUploadMasterYakushoku, {"LocalDB"});
}

}  // namespace morvane
