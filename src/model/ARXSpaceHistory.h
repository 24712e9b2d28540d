#pragma once

#include "model/ARXFileEntry.h"

#include <cstddef>

// A pane's back and forward list: the folders it showed, oldest first, and where it stands. The
// entries are the very objects that were shown, so going back finds a folder's rows and
// selection as they were left.
class ARXSpaceHistory {
public:
    static constexpr size_t kLimit = 50;

    const ARXFileEntryList& entries() const { return _entries; }
    int index() const { return _index; }
    // Clamped to the list: below 0 is 0, past the end is the last entry (0 for an empty list).
    void setIndex(long long index);
    void setEntries(ARXFileEntryList entries, long long index);
    void clear();

    // Records that `root` is now shown. Landing where the list already stands (a refresh, a step
    // back or forward) changes nothing. Otherwise the forward part goes, `root` is appended
    // unless the last entry is the same place, the oldest entries past the limit go, and the
    // index moves to the end.
    void push(const ARXFileEntryRef& root);

    bool canGoBack() const { return _index > 0; }
    bool canGoForward() const { return _index + 1 < int(_entries.size()); }
    // One step; the entry now current, or null when the list ends there.
    ARXFileEntryRef back();
    ARXFileEntryRef forward();

private:
    ARXFileEntryList _entries;
    int _index = 0;
};
