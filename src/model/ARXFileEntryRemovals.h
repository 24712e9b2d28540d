#pragma once

#include "model/ARXFileEntry.h"

#include <cstddef>
#include <map>
#include <vector>

// The entries to take out of one folder: their positions in the parent's children, each with the
// entry found there when it was added. The positions are those of the children before anything
// is taken out, so that a view can remove the matching rows in one step per folder.
struct ARXFileEntryRemoval {
    // A removal always belongs to a folder; there is no removal of nothing.
    explicit ARXFileEntryRemoval(ARXFileEntryRef parent) : parent(std::move(parent)) {}

    ARXFileEntryRef parent;
    // Position in `parent->children()` to the entry at that position, in ascending order. The
    // entry is kept beside its position so that a reader can tell the rows by identity even when
    // its own copy of the children has drifted.
    std::map<size_t, ARXFileEntryRef> indexes;
};

// A batch of removals grouped by folder: what a finished operation takes out of the tree (the
// placeholders of items that failed) and hands to the views in one call. Folders are told apart
// by the object, never by the path: a placeholder may carry the path of the item it stands
// beside.
class ARXFileEntryRemovals {
public:
    // Records the entry's present position in its parent's children. An entry without a parent
    // is ignored; one that is not among its parent's children leaves only an empty record for
    // that parent.
    void add(const ARXFileEntryRef& entry);

    // One record per folder, in the order the folders were first seen.
    const std::vector<ARXFileEntryRemoval>& entries() const { return _entries; }
    bool empty() const { return _entries.empty(); }
    // The number of entries recorded in all folders.
    size_t count() const;

private:
    std::vector<ARXFileEntryRemoval> _entries;
};
