// The order of an entry's children: two groups (folders or items with a value first), each sorted
// stably by the column.

#include "model/ARXFileEntry.h"
#include "model/ARXNaturalCollator.h"

#include <QDateTime>

#include <algorithm>
#include <cstdint>
#include <map>
#include <thread>

namespace {

// Sorts `group` stably by a key taken once per entry (keyOf is called for the entries in their
// present order). `before(a, b)` tells whether key a must stand before key b; entries whose keys
// are equal keep their order.
template <typename KeyOf, typename Before>
void stableSortBy(ARXFileEntryList& group, KeyOf keyOf, Before before) {
    if (group.size() < 2) {
        return;
    }
    using Key = decltype(keyOf(*group.front()));
    std::vector<std::pair<Key, uint32_t>> keyed;
    keyed.reserve(group.size());
    for (uint32_t i = 0; i < group.size(); ++i) {
        keyed.emplace_back(keyOf(*group[i]), i);
    }
    std::stable_sort(keyed.begin(), keyed.end(),
                     [&](const auto& a, const auto& b) { return before(a.first, b.first); });
    ARXFileEntryList sorted;
    sorted.reserve(group.size());
    for (const auto& [key, index] : keyed) {
        sorted.push_back(std::move(group[index]));
    }
    group = std::move(sorted);
}

// The order of files by kind: by extension, and that comparison runs the other way round from
// the names (Z to A when ascending); within one extension, by name in the normal way. Each
// distinct extension is ranked once, so the sort itself compares integers and name keys.
template <typename NameKeyOf, typename InOrder>
void sortFilesByKind(ARXFileEntryList& group, NameKeyOf nameKeyOf, InOrder inOrder) {
    std::vector<std::string> extensions;
    extensions.reserve(group.size());
    std::map<std::string, uint32_t> ranks;
    for (const ARXFileEntryRef& entry : group) {
        extensions.push_back(ARXPath::extension(entry->name()));
        ranks.emplace(extensions.back(), 0);
    }
    uint32_t rank = 0;
    for (auto& [extension, value] : ranks) {
        value = rank++;
    }
    uint32_t index = 0;
    stableSortBy(
        group,
        [&](ARXFileEntry& entry) {
            return std::pair(ranks[extensions[index++]], nameKeyOf(entry));
        },
        [&](const auto& a, const auto& b) {
            if (a.first != b.first) {
                return inOrder(b.first, a.first);
            }
            return inOrder(*a.second, *b.second);
        });
}

// Below this many children the keys are made on the spot; above it the work is shared with a
// second thread, which halves the time of the first name sort of a large folder (one collation
// key per name is most of it). The keys are plain per-entry values, so the threads never touch
// the same entry, and the sort waits for both.
constexpr size_t kParallelKeyThreshold = 4096;

} // namespace

void ARXFileEntry::prepareSortKeys(ARXFileEntryList& entries) {
    if (entries.size() < kParallelKeyThreshold) {
        return; // made lazily by the sort itself
    }
    const size_t half = entries.size() / 2;
    std::thread helper([&entries, half] {
        for (size_t i = half; i < entries.size(); ++i) {
            entries[i]->sortKey();
        }
    });
    for (size_t i = 0; i < half; ++i) {
        entries[i]->sortKey();
    }
    helper.join();
}

const std::string& ARXFileEntry::sortKey() {
    if (_sortKey.empty()) {
        _sortKey = ARXNaturalCollator::sortKey(displayName());
    }
    return _sortKey;
}

void ARXFileEntry::sort(ARXSpaceViewColumnId column, bool ascend, bool foldersOnTop) {
    sortColumn = column;
    sortAscend = ascend;
    sortFoldersOnTop = foldersOnTop;
    _preparedFolderChildren = false;
    if (_children.empty()) {
        return;
    }

    // Keys in the requested direction. Only a strict "before" moves an entry, so equal keys keep
    // their previous order in both directions.
    const auto inOrder = [ascend](const auto& a, const auto& b) { return ascend ? a < b : b < a; };
    const auto nameKey = [](ARXFileEntry& e) { return &e.sortKey(); };
    const auto byName = [&](ARXFileEntryList& group) {
        prepareSortKeys(group);
        stableSortBy(group, nameKey,
                     [&](const std::string* a, const std::string* b) { return inOrder(*a, *b); });
    };
    const auto byKey = [&](ARXFileEntryList& group, auto keyOf) {
        stableSortBy(group, keyOf, inOrder);
    };
    const double now = double(QDateTime::currentMSecsSinceEpoch()) / 1000.0;

    // The groups: items with a value (dimensions, duration) or folder items first.
    ARXFileEntryList first;
    ARXFileEntryList second;
    const auto split = [&](auto inFirst) {
        first.reserve(_children.size());
        for (ARXFileEntryRef& child : _children) {
            (inFirst(*child) ? first : second).push_back(std::move(child));
        }
    };
    if (column == ARXSpaceViewColumnId::dimensions) {
        split([](ARXFileEntry& e) { return e.dimensions().has_value(); });
    } else if (column == ARXSpaceViewColumnId::duration) {
        split([](ARXFileEntry& e) { return e.duration().has_value(); });
    } else if (foldersOnTop || column == ARXSpaceViewColumnId::kind) {
        split([](ARXFileEntry& e) { return e.isFolderItem(); });
    } else {
        first = std::move(_children);
    }

    switch (column) {
    case ARXSpaceViewColumnId::modified:
        for (ARXFileEntryList* group : {&first, &second}) {
            byKey(*group, [now](ARXFileEntry& e) {
                return e._modifiedDate.value_or(e.creationDate.value_or(now));
            });
        }
        break;
    case ARXSpaceViewColumnId::size:
        // A folder sorts by its own size field, never by the size of its contents.
        for (ARXFileEntryList* group : {&first, &second}) {
            byKey(*group, [](ARXFileEntry& e) { return e.size; });
        }
        break;
    case ARXSpaceViewColumnId::kind:
        // Folders by name. Files by extension, and that comparison runs the other way round from
        // the names (Z to A when ascending); within one extension, by name in the normal way.
        byName(first);
        prepareSortKeys(second);
        sortFilesByKind(second, nameKey, inOrder);
        break;
    case ARXSpaceViewColumnId::lastOpened:
        for (ARXFileEntryList* group : {&first, &second}) {
            byKey(*group, [now](ARXFileEntry& e) {
                return e._accessDate.value_or(
                    e._modifiedDate.value_or(e.creationDate.value_or(now)));
            });
        }
        break;
    case ARXSpaceViewColumnId::added:
        for (ARXFileEntryList* group : {&first, &second}) {
            byKey(*group, [now](ARXFileEntry& e) {
                return e._addedDate.value_or(e.creationDate.value_or(now));
            });
        }
        break;
    case ARXSpaceViewColumnId::created:
        for (ARXFileEntryList* group : {&first, &second}) {
            byKey(*group, [now](ARXFileEntry& e) { return e.creationDate.value_or(now); });
        }
        break;
    case ARXSpaceViewColumnId::tags:
        for (ARXFileEntryList* group : {&first, &second}) {
            byKey(*group, [](ARXFileEntry& e) {
                return ARXNaturalCollator::sortKey(e.tags ? e.tags->join(u',') : QString());
            });
        }
        break;
    case ARXSpaceViewColumnId::dimensions:
        // Only width counts; items without a value stay below in their previous order.
        byKey(first, [](ARXFileEntry& e) {
            const std::optional<ARXPixelSize> pixels = e.dimensions();
            return pixels ? double(pixels->width) : -1.0;
        });
        break;
    case ARXSpaceViewColumnId::duration:
        byKey(first, [](ARXFileEntry& e) { return e.duration().value_or(-1.0); });
        break;
    case ARXSpaceViewColumnId::name:
    default:
        byName(first);
        byName(second);
        break;
    }

    _children = std::move(first);
    _children.insert(_children.end(), std::make_move_iterator(second.begin()),
                     std::make_move_iterator(second.end()));
    for (const ARXFileEntryRef& child : _children) {
        child->sort(column, ascend, foldersOnTop);
    }
}
