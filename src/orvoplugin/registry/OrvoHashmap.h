#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <unordered_map>
#include <utility>

namespace orvo::common {

/// A hash table with unique keys, under the standard container's names. Its order may change when it grows.
template <class Key, class Value, class Hash = std::hash<Key>, class Equal = std::equal_to<Key>,
          class Alloc = std::allocator<std::pair<const Key, Value>>>
class OrvoHashmap {
    using Tabelle = std::unordered_map<Key, Value, Hash, Equal, Alloc>;

public:
    using key_type = typename Tabelle::key_type;
    using mapped_type = typename Tabelle::mapped_type;
    using value_type = typename Tabelle::value_type;
    using size_type = typename Tabelle::size_type;
    using iterator = typename Tabelle::iterator;
    using const_iterator = typename Tabelle::const_iterator;

    OrvoHashmap() : tabelle_(10) {}
    virtual ~OrvoHashmap() = default;

    iterator find(const Key& key) { return tabelle_.find(key); }
    const_iterator find(const Key& key) const { return tabelle_.find(key); }

    /// Returns: the key's entry, and whether it is new.
    std::pair<iterator, bool> insert(const value_type& eintrag) { return tabelle_.insert(eintrag); }

    /// The same, for an entry made in its place.
    template <class... Argumente>
    std::pair<iterator, bool> emplace(Argumente&&... argumente) {
        return tabelle_.emplace(std::forward<Argumente>(argumente)...);
    }

    iterator erase(const_iterator eintrag) { return tabelle_.erase(eintrag); }
    iterator erase(iterator eintrag) { return tabelle_.erase(eintrag); }
    size_type erase(const Key& key) { return tabelle_.erase(key); }
    void clear() { tabelle_.clear(); }

    iterator begin() { return tabelle_.begin(); }
    const_iterator begin() const { return tabelle_.begin(); }
    iterator end() { return tabelle_.end(); }
    const_iterator end() const { return tabelle_.end(); }
    size_type size() const { return tabelle_.size(); }
    bool empty() const { return tabelle_.empty(); }

private:
    Tabelle tabelle_;
};

} // namespace orvo::common
