#pragma once

#include "model/ARXFileEntry.h"

#include <vector>

// What a trash, delete or duplicate of a pane's selection acts on.
namespace ARXSelectionPreparation {

// Whether any selected entry is the pane's root folder or contains it: a pane cannot throw away
// or copy into itself the folder it shows.
bool touchesRoot(const std::vector<ARXFileEntryRef>& selected, const ARXFileEntry& root);

// The selected entries that lie inside no other selected entry, so that a folder and a file in it
// make one item. With two or more, they come in the order of their paths. Of two entries for the
// same path the first stays. Nothing when the selection touches the root or is empty: the action
// then ends silently.
std::vector<ARXFileEntryRef> topLevelEntries(const std::vector<ARXFileEntryRef>& selected,
                                             const ARXFileEntry& root);

} // namespace ARXSelectionPreparation
