#include "ops/ARXSelectionPreparation.h"

#include "app/ARXPathRules.h"
#include "ops/ARXPathSelection.h"

#include <algorithm>
#include <unordered_map>

namespace ARXSelectionPreparation {

bool touchesRoot(const std::vector<ARXFileEntryRef>& selected, const ARXFileEntry& root) {
    return std::any_of(selected.begin(), selected.end(), [&](const ARXFileEntryRef& entry) {
        return entry && (ARXPathRules::isSamePath(entry->path(), root.path()) ||
                         ARXPathRules::isInside(entry->path(), root.path(), true));
    });
}

std::vector<ARXFileEntryRef> topLevelEntries(const std::vector<ARXFileEntryRef>& selected,
                                             const ARXFileEntry& root) {
    if (touchesRoot(selected, root)) {
        return {};
    }
    std::vector<ARXFileEntryRef> entries;
    std::copy_if(selected.begin(), selected.end(), std::back_inserter(entries),
                 [](const ARXFileEntryRef& entry) { return entry != nullptr; });
    if (entries.size() < 2) {
        return entries;
    }
    // The paths decide, by the same rules as every other containment test; the entries follow
    // their paths back, the first entry of a path standing for it.
    std::vector<Path> paths;
    std::unordered_map<Path, ARXFileEntryRef> byPath;
    paths.reserve(entries.size());
    for (const ARXFileEntryRef& entry : entries) {
        paths.push_back(entry->path());
        byPath.try_emplace(entry->path(), entry);
    }
    std::vector<Path> kept = ARXPathSelection::topLevelPaths(paths);
    std::sort(kept.begin(), kept.end());
    std::vector<ARXFileEntryRef> result;
    result.reserve(kept.size());
    for (const Path& path : kept) {
        result.push_back(byPath.at(path));
    }
    return result;
}

} // namespace ARXSelectionPreparation
