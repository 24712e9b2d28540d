#include "model/ARXFileEntryRemovals.h"

#include <algorithm>

void ARXFileEntryRemovals::add(const ARXFileEntryRef& entry) {
    if (!entry) {
        return;
    }
    const ARXFileEntryRef parent = entry->parent();
    if (!parent) {
        return;
    }
    auto record = std::find_if(_entries.begin(), _entries.end(),
                               [&](const ARXFileEntryRemoval& r) { return r.parent == parent; });
    if (record == _entries.end()) {
        _entries.emplace_back(parent);
        record = std::prev(_entries.end());
    }
    const ARXFileEntryList& children = parent->children();
    const auto found = std::find(children.begin(), children.end(), entry);
    if (found != children.end()) {
        record->indexes.emplace(size_t(found - children.begin()), entry);
    }
}

size_t ARXFileEntryRemovals::count() const {
    size_t total = 0;
    for (const ARXFileEntryRemoval& record : _entries) {
        total += record.indexes.size();
    }
    return total;
}
