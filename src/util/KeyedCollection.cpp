#include "util/KeyedCollection.h"

#include "util/Nz.h"
#include "util/Text.h"

namespace morvane {

template <class T>
std::optional<size_t> KeyedCollection<T>::KeyPosition(std::string_view key) const {
    if (key.empty()) return std::nullopt;
    const auto it = byKey_.find(ToUpperAscii(key));
    if (it == byKey_.end()) return std::nullopt;
    return it->second;
}

template <class T>
bool KeyedCollection<T>::FindKey(std::string_view key) const {
    return KeyPosition(key).has_value();
}

template <class T>
std::optional<size_t> KeyedCollection<T>::PositionOf(const Value& index) const {
    if (index.IsText()) return KeyPosition(index.AsText());
    if (index.IsLong() || index.IsDouble() || index.IsBool()) {
        const std::int32_t n = NzLong(index);
        if (n >= 1 && n <= Count()) return static_cast<size_t>(n - 1);
    }
    return std::nullopt;
}

template <class T>
bool KeyedCollection<T>::Insert(std::string key, T item, const Value& before, const Value& after) {
    if (KeyPosition(key)) return false;
    size_t at = entries_.size();
    const Value& anchor = !before.IsEmpty() ? before : after;
    const bool isAfter = before.IsEmpty() && !after.IsEmpty();
    if (anchor.IsText()) {
        const auto pos = KeyPosition(anchor.AsText());
        if (!pos) return false;
        at = *pos + (isAfter ? 1 : 0);
    } else if (!anchor.IsEmpty()) {
        if (const auto pos = PositionOf(anchor)) at = *pos + (isAfter ? 1 : 0);
    }
    entries_.insert(entries_.begin() + static_cast<std::ptrdiff_t>(at),
                    Entry{std::move(key), std::move(item)});
    if (at + 1 == entries_.size())
        byKey_[ToUpperAscii(entries_.back().key)] = at;
    else
        Reindex();
    return true;
}

template <class T>
void KeyedCollection<T>::Reindex() {
    byKey_.clear();
    for (size_t i = 0; i < entries_.size(); ++i) byKey_[ToUpperAscii(entries_[i].key)] = i;
}

template <class T>
void KeyedCollection<T>::Remove(const Value& index) {
    const auto pos = PositionOf(index);
    if (!pos) return;
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(*pos));
    Reindex();
}

template <class T>
void KeyedCollection<T>::Clear() {
    entries_.clear();
    byKey_.clear();
}

template class KeyedCollection<std::int32_t>;
template class KeyedCollection<std::string>;

bool CLong::Add(std::int32_t value, std::string_view key, const Value& before, const Value& after) {
    if (FindValue(value)) return false;
    std::string k = key.empty() ? "K" + std::to_string(value) : std::string(key);
    if (!Insert(std::move(k), value, before, after)) return false;
    ++values_[value];
    return true;
}

bool CLong::FindValue(std::int32_t value) const { return values_.count(value) > 0; }

std::int32_t CLong::ItemValue(const Value& index) const {
    const auto pos = PositionOf(index);
    return pos ? entries_[*pos].item : 0;
}

void CLong::Clear() {
    KeyedCollection::Clear();
    values_.clear();
}

void CLong::Remove(const Value& index) {
    const auto pos = PositionOf(index);
    if (!pos) return;
    const std::int32_t value = entries_[*pos].item;
    KeyedCollection::Remove(index);
    if (--values_[value] <= 0) values_.erase(value);
}

std::string CLong::CommaText() const {
    std::string out;
    for (const auto& e : entries_) {
        if (!out.empty()) out += ',';
        out += std::to_string(e.item);
    }
    return out;
}

bool CString::Add(const Value& key, std::optional<std::string> item, const Value& before,
                  const Value& after) {
    if (key.IsNull() || key.IsEmpty()) return false;
    std::string k = key.ToText();
    if (k.empty()) return false;
    std::string text = item ? std::move(*item) : k;
    return Insert(std::move(k), std::move(text), before, after);
}

std::string CString::Item(const Value& index) const {
    const auto pos = PositionOf(index);
    return pos ? entries_[*pos].item : std::string();
}

}  // namespace morvane
