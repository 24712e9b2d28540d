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

#include <QCoreApplication>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdio>

namespace {

using Action = ARXFileOperationConflictAction;

// Whether anything, a dangling symbolic link included, holds the name: a copy or move there would
// fail just the same.
bool occupied(const Path& path) {
    return ARXFileStatus::lstat(path).exists;
}

// A free hidden name in the folder of `path`, for a copy that is to take its place.
Path temporaryNameBeside(const Path& path) {
    const Path folder = ARXPath::parentPath(path);
    for (;;) {
        char name[40];
        std::snprintf(name, sizeof name, ".atrium-copy-%016llx",
                      static_cast<unsigned long long>(QRandomGenerator::global()->generate64()));
        const Path candidate = ARXPath::join(folder, name);
        if (!occupied(candidate)) {
            return candidate;
        }
    }
}

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
        const ARXFileOperationSize::Measure measure = ARXFileOperationSize::measure(item->from);
        if (measure.error) {
            onMain(
                [error = *measure.error](ARXFileOperationController& self) { self.fail(error); });
            return;
        }
        item->totalSize = measure.size;
        total += measure.size;
    }
    onMain([total](ARXFileOperationController& self) { self.prepared(total); });
}

// ----- the item loop

void ARXFileOperationController::runItems() {
    while (_index.load() < _items.size()) {
        const size_t index = _index.load();
        const ARXFileOperationItemRef item = _items[index];
        const bool exists = item->to && occupied(*item->to);
        const bool ontoItself = _ontoItself[index];

        if (ontoItself && item->type == ARXFileOperationType::move) {
            if (!passOver(item)) {
                return;
            }
            continue;
        }
        const bool conflict =
            !ontoItself && exists &&
            (item->type == ARXFileOperationType::copy || item->type == ARXFileOperationType::move);
        if (conflict) {
            switch (_conflictAction.load()) {
            case Action::skip:
                if (!passOver(item)) {
                    return;
                }
                continue;
            case Action::stop:
                // Everything before this item stays done; this one and all after it stay as
                // they are on disk, and no new row stands for any of them.
                for (size_t i = index; i < _items.size(); ++i) {
                    _items[i]->failed = true;
                }
                postEnd(false);
                return;
            case Action::notselected:
                // The worker ends here; the answer starts a new one at the same index, which
                // looks at the destination again.
                onMain([index](ARXFileOperationController& self) { self.askConflict(index); });
                return;
            case Action::replace:
            case Action::keepBoth:
                break;
            }
        }

        try {
            perform(*item, exists, ontoItself);
            item->noteMade(); // for an undo, to know the item again
        } catch (const ARXFileError& error) {
            onMain([error](ARXFileOperationController& self) { self.fail(error); });
            return;
        }
        onMain([item](ARXFileOperationController& self) {
            item->finished = true;
            self.progress(item);
        });
        if (!advance()) {
            postEnd(true);
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
        const Path target = uniquePath(from);
        item.setTarget(target);
        ARXFileLayer::copyFile(from, target);
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
        } else if (exists) {
            const Path target = uniquePath(*item.to);
            item.setTarget(target);
            ARXFileLayer::copyFile(from, target);
        } else {
            item.setTarget(*item.to);
            ARXFileLayer::copyFile(from, *item.to);
        }
        break;
    }
    case ARXFileOperationType::move: {
        if (!item.to) {
            break;
        }
        if (exists && replace) {
            // The exchange never leaves the destination missing, also where it must be done by
            // hand.
            item.failed = true;
            item.setTarget(*item.to);
            ARXFileLayer::replaceFile(*item.to, from);
        } else if (exists) {
            const Path target = uniquePath(*item.to);
            item.setTarget(target);
            ARXFileLayer::moveFile(from, target);
        } else {
            item.setTarget(*item.to);
            ARXFileLayer::moveFile(from, *item.to);
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
// hidden temporary name, and only a complete copy takes the destination's place, in one exchange
// that never leaves the name empty (ARXFileLayer::replaceFile). A failed copy leaves nothing
// behind and the destination as it was. A folder still replaces a folder whole; nothing is merged.
void ARXFileOperationController::replaceByCopy(ARXFileOperationItem& item) {
    const Path& to = *item.to;
    const Path temporary = temporaryNameBeside(to);
    item.setTarget(temporary);
    ARXFileLayer::copyFile(item.from, temporary);
    item.setTarget(to);
    try {
        if (occupied(to)) {
            ARXFileLayer::replaceFile(to, temporary);
        } else {
            // The destination went away while the copy ran: nothing left to replace.
            ARXFileLayer::moveFile(temporary, to);
        }
    } catch (const ARXFileError&) {
        try {
            ARXFileLayer::removeFile(temporary);
        } catch (const ARXFileError& cleanup) {
            ARXConsole::line(
                QStringLiteral("Atrium: could not remove the unused copy %1").arg(cleanup.text()));
        }
        throw;
    }
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
