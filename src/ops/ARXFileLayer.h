#pragma once

#include "platform/ARXFileOperations.h"
#include "platform/ARXPath.h"

#include <optional>

// The file calls of the operation engine, and of every view that changes files itself. Each runs
// its platform operation (ARXFileOperations), lets its ARXFileError through unchanged, and on
// success posts what changed on the main thread, after the fact, so that every pane can apply it
// to its own tree: "rv_file_changed" with "path", or "rv_file_moved" with "source" and "target"
// (paths in ARXPath::toStoredText form). Callable from any thread; the notification is always
// delivered later by the main loop, never inside the call, also when called on the main thread.
namespace ARXFileLayer {

// rv_file_changed, path = to. `building` hears where the copy grows while it is not yet in place.
void copyFile(const Path& from, const Path& to, const ARXFileOperations::Building& building = {});
// rv_file_moved, source = from, target = to. Across file systems `building` hears where the copy
// grows.
void moveFile(const Path& from, const Path& to, const ARXFileOperations::Building& building = {});
// rv_file_changed, path = path.
void removeFile(const Path& path);
// Removes a folder if it is empty and answers whether it did; rv_file_changed, path = path, then.
bool removeFolderIfEmpty(const Path& path);
// Puts `with` in the place of `existing`, whose item goes to the trash (removed where its volume
// has none); answers where in the trash it went. Two spellings of one item are refused.
// rv_file_moved, source = with, target = existing.
std::optional<Path> replaceFile(const Path& existing, const Path& with);
// Moves the item to the trash; for a cloud item, to the cloud drive's trash folder (see
// ARXCloudTrash). Answers where it went, or nullopt when the cloud trash folder's name is taken
// by a file, in which case nothing moved. rv_file_changed, path = the item's old path.
std::optional<Path> trashFile(const Path& path);

} // namespace ARXFileLayer
