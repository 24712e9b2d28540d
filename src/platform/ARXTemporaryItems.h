#pragma once

#include "platform/ARXPath.h"

#include <string>
#include <string_view>

// The names of the items a file operation builds or sets aside while it runs, and the removal of
// those a killed process left behind.
//
// Every temporary carries the id of the process that made it, so that the leftovers of a process
// that no longer runs (a power loss, a SIGKILL half way) can be told from the work of one still
// running:
//   ".atrium-copy-PID-RANDOM"  a copy being built (or the item an exchange just displaced); never
//                              the user's only copy of anything, so a leftover is removed;
//   "NAME.atrium-temp-PID"     the original NAME set aside while its replacement moves in; a
//                              leftover goes back to NAME where NAME is missing, else it is the
//                              replaced item and goes.
namespace ARXTemporaryItems {

// A free hidden name for a copy in the folder of `path` (".atrium-copy-PID-RANDOM"), as a full
// path. Free when asked; the caller creates it with a call that fails on an existing name.
Path copyBeside(const Path& path);
// The bare name of such a copy, for calls relative to an open folder.
std::string copyName();

// Where `existing` is set aside while its replacement moves in: "NAME.atrium-temp-PID".
Path asideOf(const Path& existing);

// Whether a name has the form of a temporary (of any process). One cheap test per name, meant for
// every name of a listing.
bool isTemporaryName(std::string_view name);

// Removes the leftovers of processes that no longer run from `folder`, and puts each original
// that was set aside back where its name is missing. Temporaries of running processes (this one
// included) and names without a process id stay. Folders inside a trash are left alone. Blocks on
// the disk; answers how many leftovers were dealt with. Failures go to standard error.
int sweep(const Path& folder);

// sweep() on a worker thread, started from the main queue, at most one at a time per folder; for
// the listing of a folder that found a temporary name. Needs a running QCoreApplication.
void sweepLater(const Path& folder);

} // namespace ARXTemporaryItems
