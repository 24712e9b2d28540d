// The list view's side of what every content view does: the update protocol on its rows, the
// selection in the widget, rename, trash with the selection kept in place, and drops.

#include "app/ARXConf.h"
#include "ops/ARXFileRename.h"
#include "platform/ARXPath.h"
#include "ui/ARXAlerts.h"
#include "ui/spaceviews/ARXSpaceListModel.h"
#include "ui/spaceviews/ARXSpaceListOutlineView.h"
#include "ui/spaceviews/ARXSpaceListView.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDropEvent>
#include <QItemSelectionModel>
#include <QLabel>
#include <QTimer>

#include <algorithm>
#include <unordered_set>
#include <utility>

void ARXSpaceListView::focusContent() {
    _outlineView->setFocus(Qt::OtherFocusReason);
}

bool ARXSpaceListView::hasContentFocus() const {
    return _outlineView->hasFocus() || _outlineView->isAncestorOf(QApplication::focusWidget());
}

void ARXSpaceListView::reloadContent() {
    // A reset folds every row; the unfolded folders come back by path.
    const std::vector<Path> expanded = expandedPaths();
    ARXSpaceView::reloadContent();
    _model->reload();
    setExpandedPaths(expanded);
    syncSelection(true);
}

void ARXSpaceListView::trashEntries(const ARXFileEntryList& entries) {
    // The row after the last selected one takes the selection once the items are gone.
    QModelIndexList rows = _outlineView->selectionModel()->selectedRows(0);
    QModelIndex after;
    if (rows.isEmpty()) {
        after = _model->index(0, 0);
    } else {
        const auto last = std::max_element(
            rows.begin(), rows.end(), [this](const QModelIndex& a, const QModelIndex& b) {
                return _outlineView->visualRect(a).top() < _outlineView->visualRect(b).top();
            });
        after = _outlineView->indexBelow(*last);
        // Rows inside a trashed folder go with it.
        while (after.isValid() && std::any_of(rows.begin(), rows.end(), [&](const QModelIndex& r) {
                   for (QModelIndex p = after.parent(); p.isValid(); p = p.parent()) {
                       if (p == r) {
                           return true;
                       }
                   }
                   return false;
               })) {
            after = _outlineView->indexBelow(after);
        }
    }
    if (after.isValid()) {
        _selectionAfterOperation = {_model->entryAt(after)};
        _hasSelectionAfterOperation = true;
    }
    startTrash(entries);
}

// ----- the update protocol

void ARXSpaceListView::entryRefreshed(const ARXFileEntryRef& entry) {
    // The row being renamed is left alone: its text is the user's until the edit ends.
    if (isEditingFilename() && entry == _editingEntry) {
        _dirtyData = true;
        return;
    }
    _model->entryRefreshed(entry);
}

void ARXSpaceListView::entryInserted(const ARXFileEntryRef& entry) {
    _model->entryInserted(entry);
    refreshStatusText();
}

void ARXSpaceListView::entriesInserted(const ARXFileEntryList& entries) {
    _model->entriesInserted(entries);
    refreshStatusText();
}

void ARXSpaceListView::entryRemoved(const ARXFileEntryRef& entry, size_t index) {
    // The rows that go leave the widget's selection too; `removeEntry` has already taken the
    // entry out of the view's own, so the selection is not read back from the widget, which would
    // cost a pass over every selected row for each row removed.
    {
        const bool syncing = std::exchange(_syncing, true);
        _model->entryRemoved(entry, index);
        _syncing = syncing;
    }
    selectionLost();
}

void ARXSpaceListView::entriesRemoved(const ARXFileEntryRemovals& removals) {
    {
        const bool syncing = std::exchange(_syncing, true);
        _model->entriesRemoved(removals);
        _syncing = syncing;
    }
    std::unordered_set<const ARXFileEntry*> gone;
    for (const ARXFileEntryRemoval& removal : removals.entries()) {
        for (const auto& [position, entry] : removal.indexes) {
            gone.insert(entry.get());
        }
    }
    std::erase_if(_selectedItems,
                  [&](const ARXFileEntryRef& entry) { return gone.contains(entry.get()); });
    selectionLost();
}

void ARXSpaceListView::selectionLost() {
    if (delegate()) {
        delegate()->spaceViewSelectionChanged(*this);
    }
    refreshStatusText();
}

// ----- selection and status

void ARXSpaceListView::syncSelection(bool notify) {
    _syncing = true;
    selectEntries(_selectedItems);
    _syncing = false;
    // Entries that are no rows (any more) drop out of the selection.
    const ARXFileEntryList shown = selectedEntries();
    if (shown.size() != _selectedItems.size()) {
        _selectedItems.erase(std::remove_if(_selectedItems.begin(), _selectedItems.end(),
                                            [&](const ARXFileEntryRef& entry) {
                                                return std::find(shown.begin(), shown.end(),
                                                                 entry) == shown.end();
                                            }),
                             _selectedItems.end());
    }
    ARXSpaceView::syncSelection(notify);
}

int ARXSpaceListView::shownItemCount() const {
    // The root's rows and those of every unfolded folder whose own row shows.
    int count = _model->rowCount();
    for (const QPersistentModelIndex& row : _openRows) {
        bool shown = row.isValid();
        for (QModelIndex up = row; shown && up.isValid(); up = up.parent()) {
            shown = _outlineView->isExpanded(up);
        }
        if (shown) {
            count += _model->rowCount(row);
        }
    }
    return count;
}

QString ARXSpaceListView::bottomStatusText() const {
    return _bottomLabel->text();
}

// ----- rename

void ARXSpaceListView::onRenameRequested(const ARXFileEntryRef& entry, const QString& name) {
    if (!renameEntry(entry, name)) {
        _model->entryRefreshed(entry);
        return;
    }
    // After the editor has closed: the row moves to its new place in the folder's order.
    QTimer::singleShot(0, this, [this, entry] {
        if (const ARXFileEntryRef parent = entry->parent()) {
            parent->sort(parent->sortColumn, parent->sortAscend, parent->sortFoldersOnTop);
        }
        _model->reorder();
        _model->entryRefreshed(entry);
        setSelectedItems({entry});
    });
}

void ARXSpaceListView::onFetchFailed(const ARXFileEntryRef& entry) {
    const QString reason = entry->prepareError
                               ? entry->prepareError->text()
                               : QCoreApplication::translate("Atrium", "“%1” could not be read.")
                                     .arg(ARXPath::display(entry->path()));
    QTimer::singleShot(0, this, [this, reason] { ARXAlerts::informError(window(), reason); });
}

// ----- drag and drop

void ARXSpaceListView::dragStarted(const ARXFileEntryList& entries) {
    _draggingItems = entries;
    setDragging(true);
}

void ARXSpaceListView::dragEnded() {
    _draggingItems.clear();
    setDragging(false);
}

Qt::DropAction ARXSpaceListView::handleDrop(QDropEvent* event, bool perform) {
    if (!_root || spaceStatus() != ARXSpaceStatus::normal) {
        return Qt::IgnoreAction;
    }
    // A drop on a folder row goes into it; anywhere else (a file, the empty area) into the root.
    const QModelIndex index = _outlineView->indexAt(event->position().toPoint());
    ARXFileEntryRef destination = _model->entryAt(index);
    if (!destination || !destination->isFolderItem()) {
        destination = _root;
    }
    const Path path = destination->target().path();
    for (const ARXFileEntryRef& dragged : _draggingItems) {
        if (dragged->isSamePath(path) || dragged->contains(path, true)) {
            return Qt::IgnoreAction;
        }
    }
    if (!canAccept(event->mimeData(), path)) {
        return Qt::IgnoreAction;
    }
    const Qt::DropAction action =
        dropOperation(event->mimeData(), path, event->modifiers(), event->possibleActions());
    if (perform) {
        acceptDrop(event->mimeData(), destination, action == Qt::CopyAction);
    }
    return action;
}
