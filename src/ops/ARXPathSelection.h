#pragma once

#include "model/ARXSpaceViewTypes.h"
#include "platform/ARXPath.h"

#include <vector>

// Reducing a set of selected or dropped paths to what an operation should act on. All
// comparisons go through ARXPathRules, so that on a volume that ignores case "/m/A" contains
// "/m/a/b".
namespace ARXPathSelection {

// The paths that lie inside no other path of the list, in their order. Of the same path given
// twice, the first stays.
std::vector<Path> topLevelPaths(const std::vector<Path>& paths);

// The sources a paste or drop into `destination` acts on: the top-level paths, without the
// destination itself, without any folder the destination lies in (a folder cannot go into
// itself), and for a move without the items already directly in the destination. Copying into
// the item's own folder stays: it makes a copy under a new name.
std::vector<Path> pasteSources(const std::vector<Path>& sources, const Path& destination,
                               ARXFileOperationType type);

} // namespace ARXPathSelection
