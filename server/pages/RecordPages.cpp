// The generic pages of every declared kind: get pages send what is stored, set pages store
// what the body holds.
#include <algorithm>
#include <set>

#include "server/pages/Service.h"
#include "server/util/Text.h"

namespace morvane::server {

namespace {

std::vector<std::string> BaseKeys(Scope scope) {
    std::vector<std::string> keys{"ID", "token"};
    if (scope != Scope::Office) keys.emplace_back("CustomerID");
    if (scope == Scope::CustomerDataFile) {
        keys.emplace_back("DataFileID");
        keys.emplace_back("DataFileType");
    }
    return keys;
}

const std::vector<std::string>& FieldsOf(const StoreDecl& store,
                                         const std::vector<std::string>& subset) {
    return subset.empty() ? store.fields : subset;
}

const StoreDecl& StoreNamed(const std::string& name) {
    const auto* store = TheCatalogue().Store(name);
    if (!store) throw std::logic_error("undeclared store " + name);
    return *store;
}

}  // namespace

void Service::AddRecordRoutes() {
    for (const auto& page : TheCatalogue().GetPages()) {
        routes_[page.path] = {BaseKeys(page.scope),
                              [this, &page](Call& call) { GetRecordPage(call, page); }};
    }
    for (const auto& page : TheCatalogue().SetPages()) {
        auto keys = BaseKeys(page.scope);
        std::set<std::string> seen;
        for (const auto& key : keys) seen.insert(ToUpperAscii(key));
        const auto add = [&](const std::string& key) {
            if (seen.insert(ToUpperAscii(key)).second) keys.push_back(key);
        };
        for (const auto& target : page.targets) {
            const auto& store = StoreNamed(target.store);
            for (const auto& f : FieldsOf(store, target.fields)) add(f);
            if (store.list) {
                add(store.ItemIdKey());
                add("DISABLEDALL");
                if (!store.orderKey.empty()) add(store.orderKey);
            }
        }
        routes_[page.path] = {std::move(keys),
                              [this, &page](Call& call) { SetRecordPage(call, page); }};
    }
}

void Service::GetRecordPage(Call& call, const GetPageDecl& page) {
    const bool office = page.scope == Scope::Office;
    const std::int64_t customer = office ? 0 : CustomerOf(call);
    const Place place{call.user.accountId, customer, ScopeOf(call, page.scope)};
    const auto stamp = records_.LatestStamp(call.user.accountId, customer, page.stampStores);

    auto& xml = call.xml;
    xml.Open(office ? "Master" : "Customer");
    if (!office) xml.Leaf("CustomerID", std::to_string(customer));
    if (page.stampAtTop) xml.Leaf("RecordUpdate", stamp);
    for (const auto& section : page.sections) {
        const auto& store = StoreNamed(section.store);
        switch (section.type) {
            case SectionDecl::Type::Record: {
                const auto record = records_.Record(place, store.name);
                xml.Open(section.element);
                for (const auto& f : FieldsOf(store, section.fields)) {
                    auto it = record.find(f);
                    xml.Leaf(f, it == record.end() ? "" : it->second);
                }
                xml.Close();
                break;
            }
            case SectionDecl::Type::CountOnly: {
                const auto items = records_.List(place, store.name);
                xml.Open(store.stem + "List")
                    .Leaf(store.stem + "Count", std::to_string(items.size()))
                    .Close();
                break;
            }
            case SectionDecl::Type::List: {
                const auto items = records_.List(place, store.name);
                xml.Open(store.stem + "List");
                xml.Leaf(store.stem + "Count", std::to_string(items.size()));
                if (!page.stampAtTop) xml.Leaf("RecordUpdate", stamp);
                for (const auto& item : items) {
                    xml.Open(store.stem + "Item");
                    xml.Leaf(store.ItemIdKey(), item.itemId);
                    // Every tag is sent: a reader drops an item that lacks one.
                    for (const auto& f : store.fields) {
                        auto it = item.fields.find(f);
                        xml.Leaf(f, it == item.fields.end() ? "" : it->second);
                    }
                    xml.Close();
                }
                xml.Close();
                break;
            }
        }
    }
    xml.Close();
}

void Service::SetRecordPage(Call& call, const SetPageDecl& page) {
    const bool office = page.scope == Scope::Office;
    const std::int64_t customer = office ? 0 : CustomerOf(call);
    const Place place{call.user.accountId, customer, ScopeOf(call, page.scope)};
    RefuseIfLocked(call, page.scope, customer);
    for (const auto& [key, value] : call.body.Fields())
        if (!IsXmlSafe(value)) throw PageFailure(-1, "value " + key + " is not valid text");

    const auto picked = [&](const std::vector<std::string>& names) {
        std::vector<std::pair<std::string, std::string>> out;
        for (const auto& name : names)
            if (auto value = call.body.Get(name)) out.emplace_back(name, *value);
        return out;
    };

    for (const auto& target : page.targets) {
        const auto& store = StoreNamed(target.store);
        if (!store.list) {
            const auto fields = picked(FieldsOf(store, target.fields));
            records_.UpdateRecord(place, store.name, fields);
            const bool quiet = std::all_of(fields.begin(), fields.end(), [&](const auto& field) {
                return std::find(store.quietFields.begin(), store.quietFields.end(), field.first) !=
                       store.quietFields.end();
            });
            if (quiet) continue;
        } else {
            const bool disableAll = call.body.Has("DISABLEDALL");
            const auto itemId = call.body.GetOr(store.ItemIdKey());
            // A single item posted without an ID is a form whose row the office no longer has.
            if (itemId.empty() && !disableAll && !store.singleItem)
                throw PageFailure(-1, "no item ID");
            if (disableAll || store.singleItem) records_.ClearList(place, store.name);
            if (!itemId.empty()) {
                const std::int64_t order =
                    store.orderKey.empty() ? 0 : LeadingNumber(call.body.GetOr(store.orderKey));
                records_.PutItem(place, store.name, itemId, order, picked(store.fields));
            }
        }
        records_.Touch(call.user.accountId, customer, store.name, Now());
    }
}

}  // namespace morvane::server
