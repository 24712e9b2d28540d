#pragma once

#include "platform/ARXFileError.h"
#include "platform/ARXPath.h"

// The file calls the operation engine is made of: copy, move, remove, replace and trash. Each is a
// plain sequence of system calls on byte paths, safe on a worker thread, and throws ARXFileError
// naming the path that failed (the unreadable sub-folder, the destination file on the full disk),
// never a path nobody asked about. None of them notifies anybody: ARXFileLayer does that.
//
// What they promise about the user's data: the source of a copy is never touched; a failed copy
// leaves nothing behind under the destination name; a move across file systems removes its
// source only after the whole copy succeeded; an existing item is never overwritten except by
// the replace calls, and those never leave the destination missing.
namespace ARXFileOperations {

// Copies `from` to `to`, which must not exist (516 otherwise). Folders are copied whole. Kept:
// the mode, the owner where the system permits it, access and modification times to the
// nanosecond, extended attributes (user.* always; the other name spaces where permitted), and
// symbolic links as links, which are never followed, also when `from` itself is one. FIFOs and
// device files are made anew (a device only where the system permits). Data is shared by a
// reflink where the file system can, else copied in the kernel, else read and written. Holes of
// sparse files are filled in.
//
// A single file is written under a name nobody sees and put in place when complete; a folder is
// built in place and removed again if anything fails.
void copyItem(const Path& from, const Path& to);

// Moves (renames) `from` to `to`, never replacing an item at `to` (516). Across file systems the
// item is copied as copyItem does and the source removed once the copy is complete; if the copy
// fails, what it made is removed and the source is as it was. If removing the source fails after
// that, the error names the item that stayed; the complete copy is kept.
void moveItem(const Path& from, const Path& to);

// Removes the item, a folder with everything in it. Symbolic links are removed, never followed,
// also when one is swapped in while the removal runs. Stops at the first failure, which names the
// item that could not go.
void removeItem(const Path& path);

// Puts `with` in the place of `existing` by exchanging the two in one step, then removes the old
// item, which is at `with`'s path by then. Where the file system cannot exchange (or the two are
// on different file systems), raises 512 and changes nothing.
void replaceItem(const Path& existing, const Path& with);

// The same without the exchange: `existing` moves aside to `existing` + ".atrium-temp", `with`
// moves to `existing` (across file systems too), and the item set aside is removed. If the second
// move fails, the item set aside goes back and that failure is raised.
void replaceItemByHand(const Path& existing, const Path& with);

// replaceItem, and replaceItemByHand where the exchange was refused with 512.
void replaceItemSafely(const Path& existing, const Path& with);

// Moves the item to the trash of its volume as other desktop programs do (the freedesktop.org
// trash layout): the home trash for items on the file system of the data home, else the
// volume's own trash. Answers the item's path in the trash, under "files/". Nothing is ever
// copied or deleted: on a volume without a usable trash the item stays and an error says so.
// See ARXTrash for the details.
Path trashItem(const Path& path);

// Empties the home trash and the trash of this user on every mounted volume.
void emptyTrash();

} // namespace ARXFileOperations
