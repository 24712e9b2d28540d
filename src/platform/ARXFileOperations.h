#pragma once

#include "platform/ARXFileError.h"
#include "platform/ARXPath.h"

#include <functional>
#include <optional>

// The file calls the operation engine is made of: copy, move, remove, replace and trash. Each is a
// plain sequence of system calls on byte paths, safe on a worker thread, and throws ARXFileError
// naming the path that failed (the unreadable sub-folder, the destination file on the full disk),
// never a path nobody asked about. None of them notifies anybody: ARXFileLayer does that.
//
// What they promise about the user's data: the source of a copy is never touched; a failed copy
// leaves nothing behind under the destination name; a move across file systems removes its
// source only after the whole copy succeeded; an existing item is never overwritten except by
// the replace calls, which put it in the trash where there is one and leave its name empty at
// most between two renames. Temporaries carry the process id and are cleared away after a crash
// (ARXTemporaryItems).
namespace ARXFileOperations {

// Told the path of the hidden item a copy is being built in, so that its growth can be measured.
using Building = std::function<void(const Path& temporary)>;

// Whether the two paths name one item (the same device and inode), whatever their spelling:
// through a symbolic link, with "." or "..", or in another letter case. False if either is
// missing. Links are not followed at the end of a path.
bool isSameItem(const Path& a, const Path& b);

// Copies `from` to `to`, which must not exist (516 otherwise). Folders are copied whole. Kept:
// the mode, the owner where the system permits it, access and modification times to the
// nanosecond, extended attributes (user.* always; the other name spaces where permitted), and
// symbolic links as links, which are never followed, also when `from` itself is one. FIFOs and
// device files are made anew (a device only where the system permits). Data is shared by a
// reflink where the file system can, else copied in the kernel, else read and written. Holes of
// sparse files are filled in.
//
// The copy is built under a name nobody sees, in the destination's folder, and put in place only
// when complete, so that no crash ever leaves half an item under the real name; `building` hears
// where (a single file may be built unnamed, and then it hears nothing). Errors name the items
// under `to`, never the hidden name.
void copyItem(const Path& from, const Path& to, const Building& building = {});

// Moves (renames) `from` to `to`, never replacing an item at `to` (516). Across file systems the
// item is copied as copyItem does and the source removed once the copy is complete; if the copy
// fails, what it made is removed and the source is as it was. If removing the source fails after
// that, the error names the item that stayed; the complete copy is kept. `building` hears where
// such a copy grows.
void moveItem(const Path& from, const Path& to, const Building& building = {});

// Removes the item, a folder with everything in it. Symbolic links are removed, never followed,
// also when one is swapped in while the removal runs. Stops at the first failure, which names the
// item that could not go.
void removeItem(const Path& path);

// Removes a folder only if it is empty; answers whether it did. What is left in it stays.
bool removeFolderIfEmpty(const Path& path);

// Puts `with` in the place of `existing` by exchanging the two in one step, then removes the old
// item, which is at `with`'s path by then. Where the file system cannot exchange (or the two are
// on different file systems), raises 512 and changes nothing.
void replaceItem(const Path& existing, const Path& with);

// The same without the exchange: `existing` moves aside to ARXTemporaryItems::asideOf(existing),
// `with` moves to `existing` (across file systems too), and the item set aside is removed. If the
// second move fails, the item set aside goes back and that failure is raised.
void replaceItemByHand(const Path& existing, const Path& with);

// What the user's "Replace" does: `with` takes the place of `existing`, and the replaced item goes
// to the trash, where the user can get it back; answers its path there. Where its volume has no
// usable trash, the replaced item is removed as replaceItem, or replaceItemByHand where exchange
// is refused, does (nullopt then): the user asked for it to be replaced. `with` may lie on another
// file system: it is then first copied beside `existing` and removed once in place.
//
// The replacement is complete in the destination's folder before the old item leaves, and moves
// in right after by one rename, so a crash leaves at worst the old item in the trash. Two
// spellings of one item are refused (EINVAL) before anything changes, in all three calls: an
// exchange of an item with itself changes nothing, and the removal after it would take the
// only copy.
std::optional<Path> replaceItemSafely(const Path& existing, const Path& with);

// Moves the item to the trash of its volume as other desktop programs do (the freedesktop.org
// trash layout): the home trash for items on the file system of the data home, else the
// volume's own trash. Answers the item's path in the trash, under "files/". Nothing is ever
// copied or deleted: on a volume without a usable trash the item stays and an error says so.
// See ARXTrash for the details.
Path trashItem(const Path& path);

// Empties the home trash and the trash of this user on every mounted volume.
void emptyTrash();

} // namespace ARXFileOperations
