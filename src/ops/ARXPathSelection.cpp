#include "ops/ARXPathSelection.h"

#include "app/ARXPathRules.h"

#include <algorithm>

namespace ARXPathSelection {

namespace {

// The sort key of a path: case-folded, with "/" turned into the lowest byte. In that order every
// folder comes right before everything inside it, also before what lies inside it under another
// letter case, so one pass with a stack of the folders still open finds every container.
std::string sortKey(const Path& path) {
    std::string key = ARXPath::caseFolded(ARXPath::normalized(path));
    std::replace(key.begin(), key.end(), '/', '\0');
    return key;
}

// Whether `outer` may contain or equal `inner` as far as the keys tell.
bool mayContain(const std::string& outer, const std::string& inner) {
    return inner.starts_with(outer) &&
           (inner.size() == outer.size() || outer.back() == '\0' || inner[outer.size()] == '\0');
}

} // namespace

std::vector<Path> topLevelPaths(const std::vector<Path>& paths) {
    struct Item {
        std::string key;
        size_t index;
    };
    std::vector<Item> items;
    items.reserve(paths.size());
    for (size_t i = 0; i < paths.size(); ++i) {
        if (!paths[i].empty()) {
            items.push_back({sortKey(paths[i]), i});
        }
    }
    // Stable: of two spellings of one path the first one given is met first and kept.
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.key < b.key; });

    std::vector<bool> keep(paths.size(), false);
    std::vector<const Item*> open; // kept paths that may contain the ones still to come
    for (const Item& item : items) {
        while (!open.empty() && !mayContain(open.back()->key, item.key)) {
            open.pop_back();
        }
        const Path& path = paths[item.index];
        const bool inside = std::any_of(open.begin(), open.end(), [&](const Item* outer) {
            const Path& folder = paths[outer->index];
            return ARXPathRules::isSamePath(folder, path) ||
                   ARXPathRules::isInside(folder, path, true);
        });
        if (!inside) {
            keep[item.index] = true;
            open.push_back(&item);
        }
    }

    std::vector<Path> result;
    for (size_t i = 0; i < paths.size(); ++i) {
        if (keep[i]) {
            result.push_back(paths[i]);
        }
    }
    return result;
}

std::vector<Path> pasteSources(const std::vector<Path>& sources, const Path& destination,
                               ARXFileOperationType type) {
    std::vector<Path> result;
    for (const Path& source : topLevelPaths(sources)) {
        if (ARXPathRules::isSamePath(source, destination) ||
            ARXPathRules::isInside(source, destination, true)) {
            continue;
        }
        if (type == ARXFileOperationType::move &&
            ARXPathRules::isInside(destination, source, false)) {
            continue;
        }
        result.push_back(source);
    }
    return result;
}

} // namespace ARXPathSelection
