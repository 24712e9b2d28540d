#pragma once

#include "platform/ARXPath.h"

#include <optional>

// The file calls of the operation engine, and of every view that changes files itself. Each runs
// its platform operation (ARXFileOperations), lets its ARXFileError through unchanged, and on
// success posts what changed on the main thread, after the fact, so that every pane can apply it
// to its own tree: "rv_file_changed" with "path", or "rv_file_moved" with "source" and "target"
// (paths in ARXPath::toStoredText form). Callable from any thread; the notification is always
// delivered later by the main loop, never inside the call, also when called on the main thread.
namespace ARXFileLayer {

// rv_file_changed, path = to.
void copyFile(const Path& from, const Path& to);
// rv_file_moved, source = from, target = to.
void moveFile(const Path& from, const Path& to);
// rv_file_changed, path = path.
void removeFile(const Path& path);
// Puts `with` in the place of `existing`; by hand (".atrium-temp") where the file system cannot
// exchange the two. rv_file_moved, source = with, target = existing.
void replaceFile(const Path& existing, const Path& with);
// Moves the item to the trash; for a cloud item, to the cloud drive's trash folder (see
// ARXCloudTrash). Answers where it went, or nullopt when the cloud trash folder's name is taken
// by a file, in which case nothing moved. rv_file_changed, path = the item's old path.
std::optional<Path> trashFile(const Path& path);

} // namespace ARXFileLayer
