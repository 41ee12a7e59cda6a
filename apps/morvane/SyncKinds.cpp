#include "SyncKinds.h"

namespace morvane::cli {
namespace {

SyncKind Customer(std::string name, std::vector<int> tables, std::string_view middle,
                  std::string upload = {}) {
    std::string m(middle);
    return {std::move(name),    KindScope::Customer,
            std::move(tables),  "Compare" + m,
            "SyncDownload" + m, upload.empty() ? "SyncUpload" + m : std::move(upload)};
}

SyncKind Master(std::string name, std::string_view suffix) {
    std::string m = "Master" + std::string(suffix);
    return {std::move(name), KindScope::Master,  {},
            "Compare" + m,   "SyncDownload" + m, "SyncUpload" + m};
}

SyncKind File(std::string name, std::string_view middle) {
    std::string m(middle);
    return {std::move(name), KindScope::CustomerFile, {},
            "Compare" + m,   "SyncDownload" + m,      "SyncUpload" + m};
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
        Customer("linkage info", {}, "CustomerRendoInfo"),
        Customer("delegation records", {31, 32}, "P99Inin"),
        // Only an upload exists for the machinery list; its direction comes from the stamps.
        {"machinery list", KindScope::Customer, {38, 39}, "", "", "SyncUploadP99KikaiIchiran"},
        File("settlement files", "CustomerKessanFile"),
        File("permit files", "CustomerKyokaFile"),
        File("other files", "CustomerOtherFile"),
    };
    SyncKind stamps{"prefecture forms (stamps only)", KindScope::StampsOnly, {}, "", "", ""};
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

}  // namespace morvane::cli
