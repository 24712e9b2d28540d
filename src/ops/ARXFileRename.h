#pragma once

#include "platform/ARXPath.h"

#include <QString>

#include <string_view>

class ARXFileEntry;
class ARXOperationPresenter;

// Renaming an item in place, as a pane does after its name was edited. A rename does not go
// through the operation engine: it is one move within the folder, done at once on the main
// thread, and it is recorded for undo by the caller (see recordRename).
namespace ARXFileRename {

// Gives the entry's item the new name. Answers true when the item now bears it (also when it
// already did) and false when nothing changed:
// - an empty name, or one that is no single path component ("/" inside, "." or ".."), is refused;
// - a cloud item that is still a placeholder (".NAME.icloud") cannot be renamed;
// - a failed move alerts, critical: "“NAME” already exists. Please choose a different name." when
//   the name is taken, otherwise the error with its path and reason.
// On success a folder (or a link to one) keeps its place among the favourites under the new
// path, and the entry, its local name and the paths of its loaded children follow the item.
// Alerts go to `presenter`, or to the main window's when none is given; with neither, nothing is
// shown. The panes hear of the move by rv_file_moved.
bool rename(ARXFileEntry& entry, std::string_view name, ARXOperationPresenter* presenter = nullptr);
bool rename(ARXFileEntry& entry, const QString& name, ARXOperationPresenter* presenter = nullptr);

// Gives the undo history the rename of `oldPath` to `newPath`, as one group of one record.
void recordRename(const Path& oldPath, const Path& newPath);

// rename, and on success recordRename when the path really changed. What a pane calls.
bool renameRecorded(ARXFileEntry& entry, const QString& name,
                    ARXOperationPresenter* presenter = nullptr);

// The alert texts of a rename, shared with the undo of one.
QString alreadyExistsText(std::string_view name);

} // namespace ARXFileRename
