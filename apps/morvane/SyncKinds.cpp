#include "SyncKinds.h"

#include "component/ctrlMorvane.h"

namespace morvane::cli {
namespace {

// The member's name is spelled once, so the name told and the member called cannot part.
#define MEMBER(name) \
    KindMember { #name, &ctrlMorvane::name }

SyncKind Kind(std::string name, KindScope scope, std::vector<int> tables, KindMember compare,
              KindMember download, KindMember upload) {
    SyncKind k;
    k.name = std::move(name);
    k.scope = scope;
    k.tables = std::move(tables);
    k.compare = std::move(compare);
    k.download = std::move(download);
    k.upload = std::move(upload);
    // A form moves a main row, then its list.
    k.splitMove = scope == KindScope::CustomerForm;
    return k;
}

SyncKind File(std::string name, KindMember compare, KindMember download, KindMember upload,
              std::string table, std::string records) {
    SyncKind k = Kind(std::move(name), KindScope::CustomerFile, {}, std::move(compare),
                      std::move(download), std::move(upload));
    k.fileTable = std::move(table);
    k.records = std::move(records);
    return k;
}

std::vector<SyncKind> Build() {
    constexpr KindScope kCustomer = KindScope::Customer;
    constexpr KindScope kMaster = KindScope::Master;
    constexpr KindScope kForm = KindScope::CustomerForm;
    std::vector<SyncKind> kinds = {
        Kind("customer record", kCustomer, {0}, MEMBER(CompareCustomerKihon),
             MEMBER(SyncDownloadCustomerKihon), MEMBER(SyncUploadCustomerKihonNormal)),
        Kind("offices", kCustomer, {1}, MEMBER(CompareCustomerEigyoshoList),
             MEMBER(SyncDownloadCustomerEigyoshoList), MEMBER(SyncUploadCustomerEigyoshoList)),
        Kind("trades", kCustomer, {2}, MEMBER(CompareCustomerKihonGyosyu),
             MEMBER(SyncDownloadCustomerKihonGyosyu), MEMBER(SyncUploadCustomerKihonGyosyu)),
        Kind("memos", kCustomer, {3}, MEMBER(CompareCustomerMemoList),
             MEMBER(SyncDownloadCustomerMemoList), MEMBER(SyncUploadCustomerMemoList)),
        Kind("settlement records", kCustomer, {4}, MEMBER(CompareCustomerKessanList),
             MEMBER(SyncDownloadCustomerKessanList), MEMBER(SyncUploadCustomerKessanList)),
        Kind("permit records", kCustomer, {5}, MEMBER(CompareCustomerKyokaList),
             MEMBER(SyncDownloadCustomerKyokaList), MEMBER(SyncUploadCustomerKyokaList)),
        Kind("staff", kCustomer, {6}, MEMBER(CompareCustomerSyokuinList),
             MEMBER(SyncDownloadCustomerSyokuinList), MEMBER(SyncUploadCustomerSyokuinList)),
        Kind("bidding participation", kCustomer, {7}, MEMBER(CompareCustomerNyusatsuSankaList),
             MEMBER(SyncDownloadCustomerNyusatsuSankaList),
             MEMBER(SyncUploadCustomerNyusatsuSankaList)),
        Kind("bidding agencies", kCustomer, {8}, MEMBER(CompareCustomerNyusatsuKikanList),
             MEMBER(SyncDownloadCustomerNyusatsuKikanList),
             MEMBER(SyncUploadCustomerNyusatsuKikanList)),
        Kind("other records", kCustomer, {9}, MEMBER(CompareCustomerOtherList),
             MEMBER(SyncDownloadCustomerOtherList), MEMBER(SyncUploadCustomerOtherList)),
        // No row for the linkage calls: they move the customer record, trades, staff and
        // offices again under one reply, which the rows above already move one by one.
        Kind("delegation records", kForm, {31, 32}, MEMBER(CompareP99Inin),
             MEMBER(SyncDownloadP99Inin), MEMBER(SyncUploadP99Inin)),
        // Only an upload exists for the machinery list; its direction comes from the stamps.
        Kind("machinery list", kForm, {38, 39}, {}, {}, MEMBER(SyncUploadP99KikaiIchiran)),
        File("settlement files", MEMBER(CompareCustomerKessanFile),
             MEMBER(SyncDownloadCustomerKessanFile), MEMBER(SyncUploadCustomerKessanFile),
             "tCustomerKessanHistory", "settlement records"),
        File("permit files", MEMBER(CompareCustomerKyokaFile),
             MEMBER(SyncDownloadCustomerKyokaFile), MEMBER(SyncUploadCustomerKyokaFile),
             "tCustomerKyokaHistory", "permit records"),
        File("other files", MEMBER(CompareCustomerOtherFile), MEMBER(SyncDownloadCustomerOtherFile),
             MEMBER(SyncUploadCustomerOtherFile), "tCustomerOtherFile", "other records"),
    };
    SyncKind stamps = Kind("prefecture forms (stamps only)", KindScope::StampsOnly, {}, {}, {}, {});
    for (int i = 10; i <= 52; ++i)
        if (i != 31 && i != 32 && i != 38 && i != 39) stamps.tables.push_back(i);
    kinds.push_back(std::move(stamps));
    const std::vector<SyncKind> masters = {
        Kind("bidding agency master", kMaster, {}, MEMBER(CompareMasterNyusatsukikan),
             MEMBER(SyncDownloadMasterNyusatsukikan), MEMBER(SyncUploadMasterNyusatsukikan)),
        Kind("bidding document master", kMaster, {}, MEMBER(CompareMasterNyusatsuShorui),
             MEMBER(SyncDownloadMasterNyusatsuShorui), MEMBER(SyncUploadMasterNyusatsuShorui)),
        Kind("analysis agency master", kMaster, {}, MEMBER(CompareMasterBunsekiKikan),
             MEMBER(SyncDownloadMasterBunsekiKikan), MEMBER(SyncUploadMasterBunsekiKikan)),
        Kind("settlement handling master", kMaster, {}, MEMBER(CompareMasterKessanTaioh),
             MEMBER(SyncDownloadMasterKessanTaioh), MEMBER(SyncUploadMasterKessanTaioh)),
        Kind("minister master", kMaster, {}, MEMBER(CompareMasterMinister),
             MEMBER(SyncDownloadMasterMinister), MEMBER(SyncUploadMasterMinister)),
        Kind("author master", kMaster, {}, MEMBER(CompareMasterSakuseisha),
             MEMBER(SyncDownloadMasterSakuseisha), MEMBER(SyncUploadMasterSakuseisha)),
        Kind("user staff master", kMaster, {}, MEMBER(CompareMasterUserStaff),
             MEMBER(SyncDownloadMasterUserStaff), MEMBER(SyncUploadMasterUserStaff)),
        Kind("post master", kMaster, {}, MEMBER(CompareMasterYakushoku),
             MEMBER(SyncDownloadMasterYakushoku), MEMBER(SyncUploadMasterYakushoku)),
    };
    kinds.insert(kinds.end(), masters.begin(), masters.end());
    return kinds;
}

#undef MEMBER

}  // namespace

const std::vector<SyncKind>& SyncKinds() {
    static const std::vector<SyncKind> kinds = Build();
    return kinds;
}

int CombineFlags(const std::vector<int>& flags) {
    int result = 0;
    for (int f : flags) {
        if (f == 0) continue;
        if (f == 3 || (result != 0 && result != f)) return 3;
        result = f;
    }
    return result;
}

int SnapshotDecision(const SyncKind& kind, const std::vector<int>& flags) {
    if (kind.scope != KindScope::CustomerForm || kind.compare) return CombineFlags(flags);
    int decision = flags.empty() ? 0 : flags[0];
    if (decision == 0 && flags.size() > 1 && flags[1] == 2) decision = 2;
    return decision;
}

}  // namespace morvane::cli
