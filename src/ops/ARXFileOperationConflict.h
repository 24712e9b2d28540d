#pragma once

#include "model/ARXFileOperationItem.h"
#include "ops/ARXOperationPresenter.h"

// What the conflict dialog asks about an item whose destination already exists.
namespace ARXFileOperationConflict {

// The question for `item`: its name, the note "The target already exists!", and `single` for the
// last item of a batch (no "Apply to All"). When the item already has a `target` (not its
// requested destination: where it ended up), the note tells how that target compares with the
// source, "The target already exists: Newer, Bigger." (the words describe the target), by whole
// seconds of modification time and by size; an item that cannot be read counts as 0.
//
// With `folders` (a folder onto a folder) the note says instead what Replace does to the folder
// already there, "The folder “NAME” will be replaced; items only in it will be moved to the
// Trash.", and the dialog offers Merge.
ARXConflictQuestion question(const ARXFileOperationItem& item, bool single, bool folders = false);

} // namespace ARXFileOperationConflict
