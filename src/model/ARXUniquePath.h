#pragma once

#include "platform/ARXPath.h"

#include <vector>

// The one rule for the next free name of an item: duplicates, "keep both", new folders, new files
// from templates and aliases all go through it.
//
// A path that names nothing is answered as it is. Otherwise a number is put before the extension:
// "/d/report.txt" gives "/d/report 2.txt", then " 3", ... The extension is found at the last "."
// of the whole path, not only of its last component, so "/d/.profile" gives "/d/ 2.profile" and
// "/d/a.b/file" gives "/d/a 2.b/file". A folder keeps its dotted part whole unless the text after
// the dot is a known file type or a package extension: "/d/x.y" gives "/d/x.y 2", "/d/x.app"
// gives "/d/x 2.app". A name that already ends in a number restarts from the lowest free number
// when " 2" of its stem is taken ("a 2" gives "a 3"), and is numbered further otherwise ("a 3"
// gives "a 3 2"). Paths in `taken` (chosen earlier in the same batch) count as existing.
//
// An item exists when the name is occupied by anything, a dangling symbolic link included.
Path uniquePath(const Path& path, const std::vector<Path>& taken = {});
