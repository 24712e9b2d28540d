// The parts of ARXFileOperationController that run off the main thread: the preparation pass,
// the item loop and the measuring of each progress tick. None of them touches the model or the
// controller's main-thread fields; they read and write the items (atomic fields, locked target),
// `index` and the conflict answer, and hand everything else to the main thread.

#include "model/ARXUniquePath.h"
#include "ops/ARXFileLayer.h"
#include "ops/ARXFileOperationController.h"
#include "ops/ARXFileOperationSize.h"
#include "platform/ARXConsole.h"
#include "platform/ARXFileStatus.h"
#include "platform/ARXTemporaryItems.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

using Action = ARXFileOperationConflictAction;

// Whether anything, a dangling symbolic link included, holds the name: a copy or move there would
// fail just the same.
bool occupied(const Path& path) {
    return ARXFileStatus::lstat(path).exists;
}

// The item's target follows a copy under its hidden name until it is in place, so that the
// progress tick measures the copy as it grows.
ARXFileOperations::Building following(ARXFileOperationItem& item) {
    return [&item](const Path& building) { item.setTarget(building); };
}

// The item's copy or move (`transfer`: ARXFileLayer::copyFile or moveFile) to `target`.
template <auto transfer>
void transferTo(ARXFileOperationItem& item, const Path& target) {
    item.setTarget(target);
    transfer(item.from, target, following(item));
    item.setTarget(target);
}
constexpr auto copyTo = transferTo<ARXFileLayer::copyFile>;
constexpr auto moveTo = transferTo<ARXFileLayer::moveFile>;

} // namespace

Path ARXFileOperationController::cloudPlaceholderTarget(const Path& from, const Path& trashed) {
    const std::string trashedName = ARXPath::lastComponent(trashed);
    if (!ARXPath::isCloudPlaceholderName(ARXPath::lastComponent(from)) ||
        ARXPath::isCloudPlaceholderName(trashedName)) {
        return trashed;
    }
    const Path wrapped = ARXPath::join(ARXPath::parentPath(trashed), "." + trashedName + ".icloud");
    return occupied(wrapped) ? wrapped : trashed;
}

// ----- preparation

void ARXFileOperationController::prepare() {
    const QString preparing = QCoreApplication::translate("Atrium", "Preparing “%1”...");
    double total = 0;
    for (const ARXFileOperationItemRef& item : _items) {
        onMain([item, preparing](ARXFileOperationController& self) {
            self.updateSheet(item->from, preparing, 0);
        });
        // A folder that cannot be read only makes the progress inexact: whether the item itself
        // can be renamed, trashed, removed or copied is for its own call to find out.
        const ARXFileOperationSize::Measure measure = ARXFileOperationSize::measure(item->from);
        item->totalSize = measure.size;
        total += measure.size;
    }
    onMain([total](ARXFileOperationController& self) { self.prepared(total); });
}

// ----- the item loop

// Each turn deals with one unit: an item of the batch or, while a folder is being merged, one of
// its parts, which goes through the same conflict rules.
void ARXFileOperationController::runItems() {
    while (_index.load() < _items.size()) {
        if (!_merging.empty() && _merging.back().pending.empty()) {
            if (!finishMerge()) {
                return;
            }
            continue;
        }
        const ARXFileOperationItemRef item = currentUnit();
        const bool exists = item->to && occupied(*item->to);
        // Another spelling of the same item ("/a/./x", "/a//x", a path through a link to "/a")
        // is caught by the identity of the items on disk, before anything could replace the one
        // by the other, which would remove the only copy.
        const bool ontoItself = (_merging.empty() && _ontoItself[_index.load()]) ||
                                (exists && ARXFileOperations::isSameItem(item->from, *item->to));

        if (ontoItself && item->type == ARXFileOperationType::move) {
            if (!leave(item, Outcome::skipped)) {
                return;
            }
            continue;
        }
        const bool conflict =
            !ontoItself && exists &&
            (item->type == ARXFileOperationType::copy || item->type == ARXFileOperationType::move);
        bool merge = false;
        if (conflict) {
            const bool folders = ARXFileStatus::lstat(item->from).isDirectory() &&
                                 ARXFileStatus::lstat(*item->to).isDirectory();
            Action action = _conflictAction.load();
            if (action == Action::merge && !folders) {
                action = Action::notselected; // a merge for all still asks about each file
            }
            switch (action) {
            case Action::skip:
                if (!leave(item, Outcome::skipped)) {
                    return;
                }
                continue;
            case Action::stop:
                // Everything before this item stays done; this one and all after it stay as
                // they are on disk, and no new row stands for any of them.
                for (size_t i = _index.load(); i < _items.size(); ++i) {
                    _items[i]->failed = true;
                }
                _merging.clear();
                postEnd(false);
                return;
            case Action::notselected:
                // The worker ends here; the answer starts a new one at the same unit, which
                // looks at the destination again.
                onMain(
                    [item, single = isLastQuestion(), folders](ARXFileOperationController& self) {
                        self.askConflict(item, single, folders);
                    });
                return;
            case Action::merge:
                merge = true;
                break;
            case Action::replace:
            case Action::keepBoth:
                break;
            }
        }

        try {
            if (merge) {
                beginMerge(item);
                continue;
            }
            perform(*item, exists, ontoItself);
            item->noteMade(); // for an undo, to know the item again
        } catch (const ARXFileError& error) {
            onMain([error](ARXFileOperationController& self) { self.fail(error); });
            return;
        }
        if (!leave(item, Outcome::done)) {
            return;
        }
    }
}

// The target is set before each call, so that the progress tick measures the new item as it
// grows.
void ARXFileOperationController::perform(ARXFileOperationItem& item, bool exists, bool ontoItself) {
    const Path& from = item.from;
    const bool replace = _conflictAction.load() == Action::replace;
    switch (item.type) {
    case ARXFileOperationType::rename:
        break;
    case ARXFileOperationType::duplicate: {
        copyTo(item, uniquePath(from));
        break;
    }
    case ARXFileOperationType::copy: {
        if (!item.to) {
            break;
        }
        // A copy onto itself always goes to a new name beside the item, whatever answer stands
        // from an earlier conflict: "replace" would remove the very item to be copied.
        if (exists && replace && !ontoItself) {
            item.failed = true;
            replaceByCopy(item);
        } else {
            copyTo(item, exists ? uniquePath(*item.to) : *item.to);
        }
        break;
    }
    case ARXFileOperationType::move: {
        if (!item.to) {
            break;
        }
        if (exists && replace) {
            // The replaced item goes to the trash, and the destination's name is never left
            // empty for longer than between two renames.
            item.failed = true;
            item.setTarget(*item.to);
            ARXFileLayer::replaceFile(*item.to, from);
        } else {
            moveTo(item, exists ? uniquePath(*item.to) : *item.to);
        }
        break;
    }
    case ARXFileOperationType::trash:
        if (_deleteInstead.load() == &item) {
            ARXFileLayer::removeFile(from); // the user's answer where no trash could take it
            break;
        }
        if (const std::optional<Path> trashed = ARXFileLayer::trashFile(from)) {
            item.setTarget(cloudPlaceholderTarget(from, *trashed));
        }
        break;
    case ARXFileOperationType::remove:
        ARXFileLayer::removeFile(from);
        break;
    }
}

// Copying over an existing item must never leave the user with neither of the two. Removing the
// destination first and then copying would do just that when the copy fails half way (a full
// disk, an unreadable file deep in a folder). So the copy is made beside the destination under a
// hidden temporary name, and only a complete copy takes the destination's place
// (ARXFileLayer::replaceFile, which puts the replaced item in the trash). A failed copy leaves
// nothing behind, the destination as it was, and an error that names the destination, not the
// hidden name. A folder still replaces a folder whole; Merge is the answer that mixes them.
void ARXFileOperationController::replaceByCopy(ARXFileOperationItem& item) {
    const Path& to = *item.to;
    const Path temporary = ARXTemporaryItems::copyBeside(to);
    try {
        copyTo(item, temporary);
    } catch (const ARXFileError& error) {
        throw error.relocated(temporary, to);
    }
    item.setTarget(to);
    try {
        if (occupied(to)) {
            ARXFileLayer::replaceFile(to, temporary);
        } else {
            // The destination went away while the copy ran: nothing left to replace.
            ARXFileLayer::moveFile(temporary, to);
        }
    } catch (const ARXFileError& error) {
        try {
            ARXFileLayer::removeFile(temporary);
        } catch (const ARXFileError& cleanup) {
            ARXConsole::line(
                QStringLiteral("Atrium: could not remove the unused copy %1").arg(cleanup.text()));
        }
        throw error.relocated(temporary, to);
    }
}

// An item or a part of a merge is dealt with. An item of the batch reports its end and the batch
// moves on (answering false when it has ended); a part only leaves the merge's list. Either way
// an answer given without "apply to all" holds for that one conflict.
bool ARXFileOperationController::leave(const ARXFileOperationItemRef& item, Outcome outcome) {
    if (!_merging.empty()) {
        _merging.back().pending.pop_back();
        if (outcome == Outcome::done) {
            _mergedParts[_index.load()]->push_back(item);
        }
        if (!_conflictActionApplyAll.load()) {
            _conflictAction = Action::notselected;
        }
        return true;
    }
    if (outcome == Outcome::skipped) {
        return passOver(item);
    }
    onMain([item](ARXFileOperationController& self) {
        item->finished = true;
        self.progress(item);
    });
    if (!advance()) {
        postEnd(true);
        return false;
    }
    return true;
}

// Leaves an item out (a skip, a move onto itself), so that no new row stands for it, and moves
// on. Answers false when it was the last item: the batch then ends plainly, without sound or
// undo group, whatever the items before it did.
bool ARXFileOperationController::passOver(const ARXFileOperationItemRef& item) {
    item->failed = true;
    item->finished = true;
    onMain([item](ARXFileOperationController& self) { self.progress(item); });
    if (!advance()) {
        postEnd(false);
        return false;
    }
    return true;
}

// Moves on to the next item and answers true, or answers false when the item was the last one.
// An answer given without "apply to all" holds for one item only.
bool ARXFileOperationController::advance() {
    if (_index.load() + 1 >= _items.size()) {
        return false;
    }
    if (!_conflictActionApplyAll.load()) {
        _conflictAction = Action::notselected;
    }
    ++_index;
    return true;
}

// A normal end, after the last item was carried out, is the plain end followed by the sound and
// the undo group; both run in this order in one main-thread call, after every progress call the
// worker queued before.
void ARXFileOperationController::postEnd(bool normal) {
    onMain([normal](ARXFileOperationController& self) {
        self.endPlain();
        if (normal) {
            self.endNormally();
        }
        self.release();
    });
}

// ----- progress

// What the current item has done so far, as found on disk: the size of its target for what
// makes new items, and what is gone of its source for what removes them. A measure that fails
// part-way counts what it found.
void ARXFileOperationController::measureWorked() {
    if (_items.empty()) {
        return;
    }
    const ARXFileOperationItemRef& item = _items[std::min(_index.load(), _items.size() - 1)];
    switch (item->type) {
    case ARXFileOperationType::duplicate:
    case ARXFileOperationType::copy:
    case ARXFileOperationType::move:
        if (const std::optional<Path> target = item->target()) {
            item->workedSize = ARXFileOperationSize::measure(*target).size;
        }
        break;
    case ARXFileOperationType::trash:
    case ARXFileOperationType::remove:
        item->workedSize =
            std::max(0.0, item->totalSize - ARXFileOperationSize::measure(item->from).size);
        break;
    case ARXFileOperationType::rename:
        break;
    }
}
