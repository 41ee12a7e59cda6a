// CLong and CString: ordered keyed collections with positions from 1, the sets of customer
// numbers that the roster comparison and its dialogs pass around.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "util/Value.h"

namespace morvane {

// An ordered collection of (key, item); keys are unique and match without regard to case.
template <class T>
class KeyedCollection {
public:
    struct Entry {
        std::string key;
        T item;
    };

    std::int32_t Count() const { return static_cast<std::int32_t>(entries_.size()); }
    bool FindKey(std::string_view key) const;
    // Removes by key (a text) or by position (a number); a miss is ignored.
    void Remove(const Value& index);
    void Clear();

    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }

protected:
    // Inserts by the placement rule: a text Before/After is a key, a number counts only
    // between 1 and Count, anything else appends. False for a duplicate or unknown key.
    bool Insert(std::string key, T item, const Value& before, const Value& after);
    std::optional<size_t> PositionOf(const Value& index) const;
    std::vector<Entry> entries_;

private:
    std::optional<size_t> KeyPosition(std::string_view key) const;
    void Reindex();
    std::unordered_map<std::string, size_t> byKey_;
};

class CLong : public KeyedCollection<std::int32_t> {
public:
    // An empty key becomes "K" + the value. A value already held is not added again.
    bool Add(std::int32_t value, std::string_view key = {}, const Value& before = {},
             const Value& after = {});
    bool FindValue(std::int32_t value) const;
    // A text is a key (a missing one gives 0), a number a position; anything else 0.
    std::int32_t ItemValue(const Value& index) const;
    void Clear();
    void Remove(const Value& index);
    // The values joined by "," without a trailing comma.
    std::string CommaText() const;

private:
    std::unordered_map<std::int32_t, int> values_;
};

class CString : public KeyedCollection<std::string> {
public:
    // An empty or Null key adds nothing; without an item text the key is the item.
    bool Add(const Value& key, std::optional<std::string> item = std::nullopt,
             const Value& before = {}, const Value& after = {});
    std::string Item(const Value& index) const;
};

}  // namespace morvane
