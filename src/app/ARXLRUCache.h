#pragma once

#include "app/ARXLinkedList.h"

#include <QVariant>

#include <optional>
#include <unordered_map>

// A keyed cache with a recency list, for folder sizes and thumbnails.
//
// Its eviction is deliberately weaker than the name promises, and callers must not rely on more:
// key2node is never filled, so nodes never leave the recency list and the list keeps one node per
// write (and per hit). Once the list has reached maxSize, a new key evicts the key named by the
// list's last node; after the first eviction that node still names the same key, so further
// evictions remove nothing and the cache grows with each new key. The caches it serves are tiny,
// and which folders are cached at all is decided by the size calculator, so this is harmless;
// it is kept so because changing it would change what the caches hold.
// Not thread-safe; the loaders guard it.
template <typename Key, typename Value = QVariant, typename Hash = std::hash<Key>>
class ARXLRUCache {
public:
    using List = ARXLinkedList<Key>;

    explicit ARXLRUCache(int maxSize) : maxSize(maxSize) {}

    const int maxSize;

    // A hit moves the key to the front of the recency list.
    std::optional<Value> get(const Key& key) {
        auto it = cache.find(key);
        if (it == cache.end()) {
            return std::nullopt;
        }
        Value value = std::move(it->second);
        removeKey(key);
        store(key, value);
        return value;
    }

    // nullopt removes the key's value.
    void set(const Key& key, std::optional<Value> value) {
        if (cache.count(key)) {
            removeKey(key);
        } else if (priority.count() >= maxSize) {
            if (auto oldest = priority.last()) {
                removeKey(oldest->value);
            }
        }
        store(key, std::move(value));
    }

    bool contains(const Key& key) const { return cache.count(key) != 0; }
    size_t size() const { return cache.size(); }

    std::unordered_map<Key, Value, Hash> cache;
    List priority; // newest first
    std::unordered_map<Key, typename List::Node, Hash> key2node;

private:
    void removeKey(const Key& key) {
        cache.erase(key);
        if (auto it = key2node.find(key); it != key2node.end()) {
            priority.remove(it->second);
            key2node.erase(it);
        }
    }

    void store(const Key& key, std::optional<Value> value) {
        if (value) {
            cache[key] = std::move(*value);
        } else {
            cache.erase(key);
        }
        priority.insert(key, 0);
        key2node.erase(key);
    }
};
