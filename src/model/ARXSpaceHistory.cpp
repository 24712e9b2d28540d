#include "model/ARXSpaceHistory.h"

#include <algorithm>

void ARXSpaceHistory::setIndex(long long index) {
    index = std::max(index, 0LL);
    if (index >= (long long)_entries.size()) {
        index = std::max((long long)_entries.size() - 1, 0LL);
    }
    _index = int(index);
}

void ARXSpaceHistory::setEntries(ARXFileEntryList entries, long long index) {
    _entries = std::move(entries);
    setIndex(index);
}

void ARXSpaceHistory::clear() {
    _entries.clear();
    _index = 0;
}

void ARXSpaceHistory::push(const ARXFileEntryRef& root) {
    if (!root) {
        return;
    }
    if (_index < int(_entries.size()) && _entries[size_t(_index)]->path() == root->path()) {
        return;
    }
    if (!_entries.empty()) {
        _entries.erase(_entries.begin() + std::min<long>(_index + 1, long(_entries.size())),
                       _entries.end());
    }
    // Only the neighbour is compared: an earlier visit to the same place stays where it is.
    if (_entries.empty() || _entries.back()->path() != root->path()) {
        _entries.push_back(root);
    }
    if (_entries.size() > kLimit) {
        _entries.erase(_entries.begin(), _entries.begin() + long(_entries.size() - kLimit));
    }
    setIndex((long long)_entries.size() - 1);
}

ARXFileEntryRef ARXSpaceHistory::back() {
    if (!canGoBack()) {
        return nullptr;
    }
    setIndex(_index - 1);
    return _entries[size_t(_index)];
}

ARXFileEntryRef ARXSpaceHistory::forward() {
    if (!canGoForward()) {
        return nullptr;
    }
    setIndex(_index + 1);
    return _entries[size_t(_index)];
}
