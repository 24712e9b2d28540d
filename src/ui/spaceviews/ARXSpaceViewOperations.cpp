// How a content view follows a batch of its own: placeholder rows become the real items as each
// finishes, the ones that failed go at the end, and the results are selected.

#include "platform/ARXFileIO.h"
#include "ui/ARXFileClipboard.h"
#include "ui/spaceviews/ARXSpaceView.h"

#include <QPointer>
#include <QTimer>

#include <algorithm>

namespace {

bool isCreating(ARXFileOperationType type) {
    return type == ARXFileOperationType::duplicate || type == ARXFileOperationType::copy ||
           type == ARXFileOperationType::move;
}

// Still one of its parent's children (placeholders that gave way are not).
bool isInTree(const ARXFileEntryRef& entry) {
    const ARXFileEntryRef parent = entry->parent();
    if (!parent) {
        return false;
    }
    const ARXFileEntryList& children = parent->children();
    return std::find(children.begin(), children.end(), entry) != children.end();
}

} // namespace

void ARXSpaceView::fileOperationStarted(ARXFileOperationController& /*controller*/) {
    _fileOperationWorking = true;
}

void ARXSpaceView::fileOperationProgress(ARXFileOperationController& /*controller*/,
                                         const ARXFileOperationItemRef& item) {
    if (!_fileOperationWorking || !item->finished) {
        return;
    }
    if (const ARXFileEntryRef entry = item->userData.lock()) {
        if (isCreating(item->type) && item->failed) {
            if (entry->operation) {
                // Skipped, or it replaced an item that has its own row: the placeholder stands
                // for nothing. Should the item's row have gone in the exchange of the two, the
                // placeholder becomes it.
                const ARXFileEntryRef row = find(entry->path());
                entry->operation.reset();
                if ((row && row != entry) || !entry->refresh(true)) {
                    removeEntry(entry);
                } else {
                    entryRefreshed(entry);
                }
            }
        } else {
            entry->operation.reset();
        }
        if (isCreating(item->type) && !item->failed) {
            const std::optional<Path> target = item->target();
            // Keep Both gave the item another name: its own row comes with the change notice,
            // and the placeholder under the requested name goes.
            if (item->to && target && *item->to != *target) {
                removeEntry(entry);
            } else if (target) {
                entry->setPath(*target);
                entry->refresh(true);
                entryRefreshed(entry);
            }
        }
    }
    if (item->type == ARXFileOperationType::move || item->type == ARXFileOperationType::trash ||
        item->type == ARXFileOperationType::remove) {
        applyGone(item->from);
    }
}

void ARXSpaceView::fileOperationFinished(ARXFileOperationController& controller) {
    // A batch that ran to its end says so twice; the first time does the work.
    if (!_fileOperationWorking) {
        return;
    }
    _fileOperationWorking = false;

    // Placeholders of items that did not happen (skipped, stopped, failed, or never reached after
    // an error) leave in one step.
    ARXFileEntryRemovals removals;
    for (const ARXFileOperationItemRef& item : controller.items()) {
        const ARXFileEntryRef entry = item->userData.lock();
        if (entry && isCreating(item->type) && (item->failed || !item->finished) &&
            entry->operation) {
            removals.add(entry);
            entry->operation.reset();
        }
    }
    if (!removals.empty()) {
        for (const ARXFileEntryRemoval& removal : removals.entries()) {
            ARXFileEntryList gone;
            for (const auto& [index, entry] : removal.indexes) {
                gone.push_back(entry);
            }
            removal.parent->removeChildren(gone);
        }
        entriesRemoved(removals);
    }

    // The user may have gone on in another pane while the batch ran: the keyboard stays there.
    if (hasActiveLook()) {
        focusContent();
    }
    ARXFileEntryList selection;
    if (_hasSelectionAfterOperation) {
        selection = std::move(_selectionAfterOperation);
        _selectionAfterOperation.clear();
        _hasSelectionAfterOperation = false;
    } else {
        for (const ARXFileOperationItemRef& item : controller.items()) {
            if (!isCreating(item->type) || item->failed) {
                continue;
            }
            ARXFileEntryRef entry = item->userData.lock();
            if (!entry || !isInTree(entry)) {
                const std::optional<Path> target = item->target();
                entry = target ? find(*target) : nullptr;
            }
            if (entry) {
                selection.push_back(std::move(entry));
            }
        }
    }
    setSelectedItems(std::move(selection));
    if (_editingAfterOperation) {
        _editingAfterOperation = false;
        QTimer::singleShot(100, this, [this] {
            if (_selectedItems.size() == 1) {
                beginEditingName(_selectedItems.front());
            }
        });
    }
    if (_pastedCut) {
        // What the cut moved is no longer where the clipboard says: a second paste of it could
        // only fail. Items left where they were (skipped) stay cut.
        std::vector<Path> left;
        for (const Path& path : _pastedCut->paths) {
            if (ARXFileIO::exists(path)) {
                left.push_back(path);
            }
        }
        ARXFileClipboard::replaceCut(*_pastedCut, left);
        _pastedCut.reset();
    }
    Q_EMIT fileOperationEnded();
}
