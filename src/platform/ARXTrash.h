#pragma once

#include "platform/ARXFileOperations.h"
#include "platform/ARXPath.h"

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The desktop's trash, shared with every other program that follows the freedesktop.org trash
// layout. A trash folder holds "files/" (the items, under unique names) and "info/" (for
// each item NAME a "NAME.trashinfo" that says where it came from and when).
//
// Which trash an item goes to: the home trash ($XDG_DATA_HOME/Trash) when the item lies on the
// same mount; otherwise a trash at the top of the item's mount, "$topdir/.Trash/$uid" when the
// administrator made "$topdir/.Trash" (a real folder, not a link, with the sticky bit), else
// "$topdir/.Trash-$uid". Missing folders are made for the user alone (0700). An item is only ever
// renamed into a trash: when no trash on its own mount can be used it is refused, never copied.
namespace ARXTrash {

// $XDG_DATA_HOME/Trash.
Path homeTrash();

// Moves the item into its trash and answers its path there, under "files/". Where no trash on the
// item's mount can be used, throws ARXFileError::kNoTrash and the item stays. The info file is
// made first, with O_EXCL, so that two programs trashing at once can never pick the same name:
// "NAME", then "NAME.2", "NAME.3", ... (names too long for the info file's suffix are shortened).
// If the item cannot be moved, its info file is removed again. Throws ARXFileError.
Path trashItem(const Path& path);

// The info file that belongs to an item in a trash ("…/files/NAME" -> "…/info/NAME.trashinfo"),
// for whoever takes the item back out; nullopt for a path that is not directly in "files/".
std::optional<Path> infoFileFor(const Path& trashedItem);

// Moves an item as ARXFileOperations::moveItem does, keeping a trash's records in step with its
// items, as the desktop's other programs read them: a move out of a trash's "files/" takes the
// item's info file and its line in "directorysizes" with it, and a move straight into "files/"
// (an item put back where the trash kept it) first writes the item's info file, naming where it
// came from, with O_EXCL as a trash does. Throws ARXFileError; a failed move leaves no info file
// behind.
void moveItem(const Path& from, const Path& to, const ARXFileOperations::Building& building = {});

// Whether the path lies inside the items of one of this user's trashes ("files/" or "expunged/"
// of the home trash, of a "$topdir/.Trash-$uid" or of a "$topdir/.Trash/$uid"). Removing such an
// item is emptying the trash, where a read-only folder the user owns must not stop it.
bool isInTrash(const Path& path);
// This user's trash folders that exist: the home trash and those at the given mount points.
std::vector<Path> trashFolders(const std::vector<Path>& volumeRoots);

// A trashed folder gets a line in its trash's "directorysizes" (its disk usage as `du -B1` counts
// it, the modification time of its info file, its percent-encoded name), so that programs can
// tell the trash's size without walking it; the file is rewritten whole and atomically.
//
// Empties "files/" and "info/" of every folder trashFolders gives (and drops the
// "directorysizes" cache beside them). Read-only folders of the user's own in the trash are made
// writable so that they can be emptied. Goes on past an item that cannot be removed and throws
// the first such failure at the end.
void emptyTrash(const std::vector<Path>& volumeRoots);

// The mount points of the mounted file systems that may hold files, pseudo file systems left
// out, read from the kernel's table (safe on any thread).
std::vector<Path> mountedVolumeRoots();

// The value of "Path=": the bytes percent-encoded as in a URL path, "/" kept.
std::string encodePath(std::string_view path);
Path decodePath(std::string_view value);

// The whole text of an info file. DeletionDate is local time, "YYYY-MM-DDThh:mm:ss".
std::string infoText(std::string_view pathValue, std::time_t deletionTime);

} // namespace ARXTrash
