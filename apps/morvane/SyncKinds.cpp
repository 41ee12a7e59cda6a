#include "SyncKinds.h"

namespace morvane::cli {
namespace {

SyncKind Kind(std::string name, KindScope scope, std::string_view middle) {
    SyncKind k;
    k.name = std::move(name);
    k.scope = scope;
    if (middle.empty()) return k;
    const std::string m(middle);
    k.compare = "Compare" + m;
    k.download = "SyncDownload" + m;
    k.upload = "SyncUpload" + m;
    return k;
}

SyncKind Customer(std::string name, std::vector<int> tables, std::string_view middle,
                  std::string upload = {}) {
    SyncKind k = Kind(std::move(name), KindScope::Customer, middle);
    k.tables = std::move(tables);
    if (!upload.empty()) k.upload = std::move(upload);
    return k;
}

SyncKind Form(std::string name, std::vector<int> tables, std::string_view middle,
              std::string upload = {}) {
    SyncKind k = Customer(std::move(name), std::move(tables), middle, std::move(upload));
    k.scope = KindScope::CustomerForm;
    k.splitMove = true;  // a main row, then its list
    return k;
}

SyncKind Master(std::string name, std::string_view suffix) {
    return Kind(std::move(name), KindScope::Master, "Master" + std::string(suffix));
}

SyncKind File(std::string name, std::string_view middle, std::string table, std::string records) {
    SyncKind k = Kind(std::move(name), KindScope::CustomerFile, middle);
    k.fileTable = std::move(table);
    k.records = std::move(records);
    return k;
}

std::vector<SyncKind> Build() {
    std::vector<SyncKind> kinds = {
        Customer("customer record", {0}, "CustomerKihon", "SyncUploadCustomerKihonNormal"),
        Customer("offices", {1}, "CustomerEigyoshoList"),
        Customer("trades", {2}, "CustomerKihonGyosyu"),
        Customer("memos", {3}, "CustomerMemoList"),
        Customer("settlement records", {4}, "CustomerKessanList"),
        Customer("permit records", {5}, "CustomerKyokaList"),
        Customer("staff", {6}, "CustomerSyokuinList"),
        Customer("bidding participation", {7}, "CustomerNyusatsuSankaList"),
        Customer("bidding agencies", {8}, "CustomerNyusatsuKikanList"),
        Customer("other records", {9}, "CustomerOtherList"),
        // No row for the linkage calls: they move the customer record, trades, staff and
        // offices again under one reply, which the rows above already move one by one.
        Form("delegation records", {31, 32}, "P99Inin"),
        // Only an upload exists for the machinery list; its direction comes from the stamps.
        Form("machinery list", {38, 39}, "", "SyncUploadP99KikaiIchiran"),
        File("settlement files", "CustomerKessanFile", "tCustomerKessanHistory",
             "settlement records"),
        File("permit files", "CustomerKyokaFile", "tCustomerKyokaHistory", "permit records"),
        File("other files", "CustomerOtherFile", "tCustomerOtherFile", "other records"),
    };
    SyncKind stamps = Kind("prefecture forms (stamps only)", KindScope::StampsOnly, "");
    for (int i = 10; i <= 52; ++i)
        if (i != 31 && i != 32 && i != 38 && i != 39) stamps.tables.push_back(i);
    kinds.push_back(std::move(stamps));
    for (auto [name, suffix] : {std::pair{"bidding agency master", "Nyusatsukikan"},
                                {"bidding document master", "NyusatsuShorui"},
                                {"analysis agency master", "BunsekiKikan"},
                                {"settlement handling master", "KessanTaioh"},
                                {"minister master", "Minister"},
                                {"author master", "Sakuseisha"},
                                {"user staff master", "UserStaff"},
                                {"post master", "Yakushoku"}})
        kinds.push_back(Master(name, suffix));
    return kinds;
}

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
    if (kind.scope != KindScope::CustomerForm || !kind.compare.empty()) return CombineFlags(flags);
    int decision = flags.empty() ? 0 : flags[0];
    if (decision == 0 && flags.size() > 1 && flags[1] == 2) decision = 2;
    return decision;
}

}  // namespace morvane::cli
