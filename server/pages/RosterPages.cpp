// The customer roster: the list with its stamps, adding and deleting customers, backup flags.
#include "server/pages/Service.h"
#include "server/util/Text.h"

namespace morvane::server {

void Service::addRosterRoutes() {
    routes_["customer/getCompList.php"] = {
        {"ID", "token"}, [this](Call& call) {
            const auto account = call.user.accountId;
            const auto& pages = catalogue().rosterPages();
            auto& xml = call.xml;
            const auto customers = records_.customers(account);
            xml.open("compList").leaf("CompCount", std::to_string(customers.size()));
            for (const auto& row : customers) {
                const auto kihon = records_.record({account, row.customerId, ""}, "Kihon");
                const auto field = [&](const char* name) {
                    auto it = kihon.find(name);
                    return it == kihon.end() ? std::string() : it->second;
                };
                xml.open("compItem")
                    .leaf("CustomerID", std::to_string(row.customerId))
                    .leaf("disabled", "0")
                    .leaf("Code", field("Code"))
                    .leaf("CorpName0", field("CorpName0"))
                    .leaf("CorpKanaS", field("CorpKanaS"))
                    .leaf("InetEnableFlag", std::to_string(row.inetEnableFlag));
                for (std::size_t i = 0; i < pages.size(); ++i) {
                    std::string stamp;
                    // Each stamp repeats what that kind's own page reports.
                    if (!pages[i].empty())
                        stamp = records_.latestStamp(account, row.customerId,
                                                     catalogue().getPage(pages[i])->stampStores);
                    xml.leaf("RecordUpdate" + std::to_string(i), stamp);
                }
                xml.close();
            }
            xml.close();
        }};

    routes_["customer/createCompKihon.php"] = {
        {"ID", "token", "CustomerID", "Code", "CorpName0", "CorpKanaS", "CorpKana0"},
        [this](Call& call) {
            const auto account = call.user.accountId;
            const auto customer = customerOf(call, false);
            refuseIfLocked(call, Scope::Customer, customer);
            std::vector<std::pair<std::string, std::string>> fields;
            for (const char* name : {"Code", "CorpName0", "CorpKanaS", "CorpKana0"}) {
                if (auto value = call.body.get(name)) {
                    if (!isXmlSafe(*value)) throw PageFailure(-1, "bad text");
                    fields.emplace_back(name, *value);
                }
            }
            if (!records_.customerExists(account, customer)) {
                const auto max = accounts_.accountById(account)->fields.maxCustomer;
                const int flag = max <= 0 || records_.enabledCount(account) < max ? 1 : 0;
                records_.createCustomer(account, customer, flag);
                // Files of a customer deleted earlier under this number must not come back.
                files_.removeCustomer(account, customer);
            }
            // No stamp is written: a creation stamp later than the local edit would make the
            // next comparison fetch an almost empty record over the local one.
            records_.updateRecord({account, customer, ""}, "Kihon", fields);
        }};

    routes_["customer/deleteCompKihon.php"] = {
        {"ID", "token", "CustomerID"}, [this](Call& call) {
            const auto account = call.user.accountId;
            const auto customer = customerOf(call);
            refuseIfLocked(call, Scope::Customer, customer);
            records_.deleteCustomer(account, customer);
            call.afterCommit.push_back([this, account, customer] {
                files_.removeCustomer(account, customer);
                locks_.dropCustomer(account, customer);
            });
        }};

    routes_["customer/setInetEnableFlag.php"] = {
        {"ID", "token", "CustomerID", "InetEnableFlag"}, [this](Call& call) {
            const auto account = call.user.accountId;
            const auto customer = customerOf(call);
            const auto flag = parseInt32(call.body.getOr("InetEnableFlag"));
            if (!flag || (*flag != 0 && *flag != 1)) throw PageFailure(-1, "bad flag");
            refuseIfLocked(call, Scope::Customer, customer);
            if (*flag == 1 && records_.inetEnableFlag(account, customer) == 0) {
                const auto max = accounts_.accountById(account)->fields.maxCustomer;
                if (max > 0 && records_.enabledCount(account) >= max)
                    throw PageFailure(-1, "account holds its most customers");
            }
            records_.setInetEnableFlag(account, customer, *flag);
        }};
}

}  // namespace morvane::server
