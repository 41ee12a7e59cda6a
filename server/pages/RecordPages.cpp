// The generic pages of every declared kind: get pages send what is stored, set pages store
// what the body holds.
#include <set>

#include "server/pages/Service.h"
#include "server/util/Text.h"

namespace morvane::server {

namespace {

std::vector<std::string> baseKeys(Scope scope) {
    std::vector<std::string> keys{"ID", "token"};
    if (scope != Scope::Office) keys.emplace_back("CustomerID");
    if (scope == Scope::CustomerDataFile) {
        keys.emplace_back("DataFileID");
        keys.emplace_back("DataFileType");
    }
    return keys;
}

const std::vector<std::string>& fieldsOf(const StoreDecl& store,
                                         const std::vector<std::string>& subset) {
    return subset.empty() ? store.fields : subset;
}

const StoreDecl& storeNamed(const std::string& name) {
    const auto* store = catalogue().store(name);
    if (!store) throw std::logic_error("undeclared store " + name);
    return *store;
}

}  // namespace

void Service::addRecordRoutes() {
    for (const auto& page : catalogue().getPages()) {
        routes_[page.path] = {baseKeys(page.scope),
                              [this, &page](Call& call) { getRecordPage(call, page); }};
    }
    for (const auto& page : catalogue().setPages()) {
        auto keys = baseKeys(page.scope);
        std::set<std::string> seen;
        for (const auto& key : keys) seen.insert(toUpperAscii(key));
        const auto add = [&](const std::string& key) {
            if (seen.insert(toUpperAscii(key)).second) keys.push_back(key);
        };
        for (const auto& target : page.targets) {
            const auto& store = storeNamed(target.store);
            for (const auto& f : fieldsOf(store, target.fields)) add(f);
            if (store.list) {
                add(store.itemIdKey());
                add("DISABLEDALL");
                if (!store.orderKey.empty()) add(store.orderKey);
            }
        }
        routes_[page.path] = {std::move(keys),
                              [this, &page](Call& call) { setRecordPage(call, page); }};
    }
}

void Service::getRecordPage(Call& call, const GetPageDecl& page) {
    const bool office = page.scope == Scope::Office;
    const std::int64_t customer = office ? 0 : customerOf(call);
    const Place place{call.user.accountId, customer, scopeOf(call, page.scope)};
    const auto stamp = records_.latestStamp(call.user.accountId, customer, page.stampStores);

    auto& xml = call.xml;
    xml.open(office ? "Master" : "Customer");
    if (!office) xml.leaf("CustomerID", std::to_string(customer));
    if (page.stampAtTop) xml.leaf("RecordUpdate", stamp);
    for (const auto& section : page.sections) {
        const auto& store = storeNamed(section.store);
        switch (section.type) {
            case SectionDecl::Type::Record: {
                const auto record = records_.record(place, store.name);
                xml.open(section.element);
                for (const auto& f : fieldsOf(store, section.fields)) {
                    auto it = record.find(f);
                    xml.leaf(f, it == record.end() ? "" : it->second);
                }
                xml.close();
                break;
            }
            case SectionDecl::Type::CountOnly: {
                const auto items = records_.list(place, store.name);
                xml.open(store.stem + "List")
                    .leaf(store.stem + "Count", std::to_string(items.size()))
                    .close();
                break;
            }
            case SectionDecl::Type::List: {
                const auto items = records_.list(place, store.name);
                xml.open(store.stem + "List");
                xml.leaf(store.stem + "Count", std::to_string(items.size()));
                if (!page.stampAtTop) xml.leaf("RecordUpdate", stamp);
                for (const auto& item : items) {
                    xml.open(store.stem + "Item");
                    xml.leaf(store.itemIdKey(), item.itemId);
                    // Every tag is sent: a reader drops an item that lacks one.
                    for (const auto& f : store.fields) {
                        auto it = item.fields.find(f);
                        xml.leaf(f, it == item.fields.end() ? "" : it->second);
                    }
                    xml.close();
                }
                xml.close();
                break;
            }
        }
    }
    xml.close();
}

void Service::setRecordPage(Call& call, const SetPageDecl& page) {
    const bool office = page.scope == Scope::Office;
    const std::int64_t customer = office ? 0 : customerOf(call);
    const Place place{call.user.accountId, customer, scopeOf(call, page.scope)};
    refuseIfLocked(call, page.scope, customer);
    for (const auto& [key, value] : call.body.fields())
        if (!isXmlSafe(value)) throw PageFailure(-1, "value " + key + " is not valid text");

    const auto picked = [&](const std::vector<std::string>& names) {
        std::vector<std::pair<std::string, std::string>> out;
        for (const auto& name : names)
            if (auto value = call.body.get(name)) out.emplace_back(name, *value);
        return out;
    };

    for (const auto& target : page.targets) {
        const auto& store = storeNamed(target.store);
        if (!store.list) {
            records_.updateRecord(place, store.name, picked(fieldsOf(store, target.fields)));
        } else {
            const bool disableAll = call.body.has("DISABLEDALL");
            const auto itemId = call.body.getOr(store.itemIdKey());
            if (itemId.empty() && !disableAll) throw PageFailure(-1, "no item ID");
            if (disableAll || (store.singleItem && !itemId.empty()))
                records_.clearList(place, store.name);
            if (!itemId.empty()) {
                const std::int64_t order =
                    store.orderKey.empty() ? 0 : leadingNumber(call.body.getOr(store.orderKey));
                records_.putItem(place, store.name, itemId, order, picked(store.fields));
            }
        }
        records_.touch(call.user.accountId, customer, store.name, now());
    }
}

}  // namespace morvane::server
