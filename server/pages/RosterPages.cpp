// The customer roster: the list with its stamps, adding and deleting customers, backup flags.
#include "server/pages/Service.h"
#include "server/util/Text.h"

namespace morvane::server {

void Service::AddRosterRoutes() {
    routes_["customer/getCompList.php"] = {
        {"ID", "token"}, [this](Call& call) {
            const auto account = call.user.accountId;
            const auto& pages = TheCatalogue().RosterPages();
            auto& xml = call.xml;
            const auto customers = records_.Customers(account);
            xml.Open("compList").Leaf("CompCount", std::to_string(customers.size()));
            for (const auto& row : customers) {
                const auto kihon = records_.Record({account, row.customerId, ""}, "Kihon");
                const auto field = [&](const char* name) {
                    auto it = kihon.find(name);
                    return it == kihon.end() ? std::string() : it->second;
                };
                xml.Open("compItem")
                    .Leaf("CustomerID", std::to_string(row.customerId))
                    .Leaf("disabled", "0")
                    .Leaf("Code", field("Code"))
                    .Leaf("CorpName0", field("CorpName0"))
                    .Leaf("CorpKanaS", field("CorpKanaS"))
                    .Leaf("InetEnableFlag", std::to_string(row.inetEnableFlag));
                for (std::size_t i = 0; i < pages.size(); ++i) {
                    std::string stamp;
                    // Each stamp repeats what that kind's own page reports.
                    if (!pages[i].empty())
                        stamp = records_.LatestStamp(account, row.customerId,
                                                     TheCatalogue().GetPage(pages[i])->stampStores);
                    xml.Leaf("RecordUpdate" + std::to_string(i), stamp);
                }
                xml.Close();
            }
            xml.Close();
        }};

    routes_["customer/createCompKihon.php"] = {
        {"ID", "token", "CustomerID", "Code", "CorpName0", "CorpKanaS", "CorpKana0"},
        [this](Call& call) {
            const auto account = call.user.accountId;
            const auto customer = CustomerOf(call, false);
            RefuseIfLocked(call, Scope::Customer, customer);
            std::vector<std::pair<std::string, std::string>> fields;
            for (const char* name : {"Code", "CorpName0", "CorpKanaS", "CorpKana0"}) {
                if (auto value = call.body.Get(name)) {
                    if (!IsXmlSafe(*value)) throw PageFailure(-1, "bad text");
                    fields.emplace_back(name, *value);
                }
            }
            if (records_.CustomerExists(account, customer)) {
                // The add sends the short kana as the kana name; a record with its own keeps it.
                const auto kihon = records_.Record({account, customer, ""}, "Kihon");
                const auto kana = kihon.find("CorpKana0");
                if (kana != kihon.end() && !kana->second.empty())
                    std::erase_if(fields, [](const auto& f) { return f.first == "CorpKana0"; });
            } else {
                const auto max = accounts_.AccountById(account)->fields.maxCustomer;
                const int flag = max <= 0 || records_.EnabledCount(account) < max ? 1 : 0;
                records_.CreateCustomer(account, customer, flag);
                // Files of a customer deleted earlier under this number must not come back.
                files_.RemoveCustomer(account, customer);
            }
            // No stamp is written: a creation stamp later than the local edit would make the
            // next comparison fetch an almost empty record over the local one.
            records_.UpdateRecord({account, customer, ""}, "Kihon", fields);
        }};

    routes_["customer/deleteCompKihon.php"] = {
        {"ID", "token", "CustomerID"}, [this](Call& call) {
            const auto account = call.user.accountId;
            // A customer the server no longer has is already deleted: the client asked for
            // exactly this state, so it is told so rather than shown a failure.
            const auto customer = CustomerOf(call, false);
            if (!records_.CustomerExists(account, customer)) return;
            RefuseIfLocked(call, Scope::Customer, customer);
            records_.DeleteCustomer(account, customer);
            call.afterCommit.push_back([this, account, customer] {
                files_.RemoveCustomer(account, customer);
                locks_.DropCustomer(account, customer);
            });
        }};

    routes_["customer/setInetEnableFlag.php"] = {
        {"ID", "token", "CustomerID", "InetEnableFlag"}, [this](Call& call) {
            const auto account = call.user.accountId;
            const auto customer = CustomerOf(call);
            const auto flag = ParseInt32(call.body.GetOr("InetEnableFlag"));
            if (!flag || (*flag != 0 && *flag != 1)) throw PageFailure(-1, "bad flag");
            RefuseIfLocked(call, Scope::Customer, customer);
            if (*flag == 1 && records_.InetEnableFlag(account, customer) == 0) {
                const auto max = accounts_.AccountById(account)->fields.maxCustomer;
                if (max > 0 && records_.EnabledCount(account) >= max)
                    throw PageFailure(-1, "account holds its most customers");
            }
            records_.SetInetEnableFlag(account, customer, *flag);
        }};
}

}  // namespace morvane::server
