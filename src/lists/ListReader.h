// The reader of a list reply: the payload's CustomerID, the list's count and stamp, and the
// items, each kept only when all its tags were seen.
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "lists/ListDecl.h"
#include "platform/Xml.h"
#include "store/mdlMorvaneCommon.h"
#include "util/Nz.h"
#include "util/Text.h"

namespace morvane::record {

namespace detail {
// Fills the item from its element; false when any declared tag was missing.
template <class Item>
bool ReadListItem(const ListDecl<Item>& decl,
                  const std::unordered_map<std::string, size_t>& rowOfTag, platform::XmlNode node,
                  Item& item) {
    std::vector<bool> seen(decl.fields.size() + 1, false);  // the last flag is the id's
    const std::string idTag = ToUpperAscii(decl.itemIdTag);
    for (auto f = node.FirstChildElement(); f; f = f.NextSiblingElement()) {
        const std::string name = ToUpperAscii(f.NameView());
        if (name == idTag) {
            item.id = NzLong(f.Text());
            item.Key = "K" + std::to_string(item.id);
            seen.back() = true;
            continue;
        }
        const auto at = rowOfTag.find(name);
        if (at == rowOfTag.end()) continue;  // an unknown tag is passed over
        seen[at->second] = true;
        // A text that will not convert leaves the field, the flag stays set.
        StoreXml(decl.fields[at->second], item, f.Text());
    }
    for (size_t i = 0; i < decl.fields.size(); ++i)
        if (decl.fields[i].tag.empty()) seen[i] = true;
    for (size_t i = 0; i < decl.fields.size(); ++i)
        if (!decl.fields[i].flagged) seen[i] = true;
    for (size_t i = 0; i < decl.fields.size(); ++i) {
        if (decl.fields[i].sharesFlagWith.empty()) continue;
        const auto other = rowOfTag.find(ToUpperAscii(decl.fields[i].sharesFlagWith));
        if (other != rowOfTag.end() && seen[other->second]) seen[i] = true;
    }
    for (bool s : seen)
        if (!s) return false;
    return true;
}
}  // namespace detail

// Clears nothing: the caller gives a cleared list. True when CustomerID and the stamp were
// seen and the items kept number exactly the count, so one dropped item fails the reply.
template <class Item>
bool ReadListXml(const ListDecl<Item>& decl, const platform::XmlDocument& doc,
                 ListData<Item>& data) {
    const platform::XmlNode root = doc.DocumentElement();
    if (!root) return false;
    const auto payload = root.SelectNodes(decl.root);
    if (payload.empty()) return false;

    std::unordered_map<std::string, size_t> rowOfTag;
    for (size_t i = 0; i < decl.fields.size(); ++i)
        if (!decl.fields[i].tag.empty()) rowOfTag.emplace(ToUpperAscii(decl.fields[i].tag), i);
    const std::string listTag = ToUpperAscii(decl.listTag);
    const std::string countTag = ToUpperAscii(decl.countTag);
    const std::string itemTag = ToUpperAscii(decl.itemTag);

    bool customerIdSeen = false;
    bool recordUpdateSeen = false;
    bool countMatched = false;
    bool keysUnique = true;
    std::unordered_set<std::string> keys;
    for (auto child = payload[0].FirstChildElement(); child; child = child.NextSiblingElement()) {
        const std::string name = ToUpperAscii(child.NameView());
        if (name == "CUSTOMERID") {
            customerIdSeen = true;
            data.customerId = NzLong(child.Text());
        } else if (decl.stampAtPayload && name == "RECORDUPDATE") {
            recordUpdateSeen = true;
            const std::string stamp = child.Text();
            data.recordUpdate = IsDateText(stamp) ? stamp : std::string();
        } else if (name == listTag) {
            for (auto c = child.FirstChildElement(); c; c = c.NextSiblingElement()) {
                const std::string inner = ToUpperAscii(c.NameView());
                if (inner == countTag) {
                    data.count = NzLong(c.Text());
                } else if (inner == "RECORDUPDATE") {
                    recordUpdateSeen = true;
                    const std::string stamp = c.Text();
                    if (IsDateText(stamp)) data.recordUpdate = stamp;
                } else if (inner == itemTag) {
                    Item item;
                    item.CustID = data.customerId;
                    if (!detail::ReadListItem(decl, rowOfTag, c, item)) continue;
                    // The items are keyed by id: a second item of one id is refused.
                    if (!keys.insert(item.Key).second) {
                        keysUnique = false;
                        continue;
                    }
                    data.items.push_back(std::move(item));
                }
            }
            countMatched = static_cast<std::int32_t>(data.items.size()) == data.count;
        }
    }
    // An office list has no CustomerID to see.
    if (decl.scope == ListScope::Office) customerIdSeen = true;
    return customerIdSeen && recordUpdateSeen && countMatched && keysUnique;
}

}  // namespace morvane::record
