#pragma once

#include "actions/ARXActionType.h"
#include "model/ARXFileEntry.h"
#include "model/ARXFileEntryRemovals.h"
#include "model/ARXSpaceViewTypes.h"
#include "ops/ARXFileOperationController.h"
#include "platform/ARXNotificationCenter.h"
#include "ui/ARXFileClipboard.h"

#include <QMap>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <optional>
#include <vector>

class ARXFolderWatcher;
class ARXOperationPresenter;
class ARXSpaceView;
class QKeyEvent;
class QMimeData;

// What a content view tells its pane, and asks of it. The pane implements it.
class ARXSpaceViewDelegate {
public:
    virtual ~ARXSpaceViewDelegate() = default;

    // Asked first for every action on entries: true when the pane (or its window) took it.
    virtual bool spaceViewPerform(ARXSpaceView& view, ARXActionType action,
                                  const ARXFileEntryList& entries) = 0;
    // After every bindRoot: what the view found at its folder.
    virtual void spaceViewStatusChanged(ARXSpaceView& view, ARXSpaceStatus status) = 0;
    virtual void spaceViewSelectionChanged(ARXSpaceView& view) = 0;
    // The user activated entries (double click, Return set to open, Ctrl+Down).
    virtual void spaceViewOpen(ARXSpaceView& view, const ARXFileEntryList& entries) = 0;
    // The view's widget took the keyboard focus: its pane is now the active one.
    virtual void spaceViewFocused(ARXSpaceView& view) = 0;
    // Ctrl+Left and Ctrl+Right walk the pane's history.
    virtual void spaceViewGoBack(ARXSpaceView& view) = 0;
    virtual void spaceViewGoForward(ARXSpaceView& view) = 0;
    // A key no part of the view took; the window's key handling comes next.
    virtual bool spaceViewUnhandledKey(ARXSpaceView& view, QKeyEvent* event) = 0;
};

// The content of one pane: one folder (`root`) shown by a widget that the list, icons and columns
// kinds provide. What the three share lives here: the selection, the status text, applying
// changes on disk to the pane's tree, the clipboard, drops, rename gating, opening, trash and
// delete, new folders, and the keys no widget takes.
//
// Changes on disk arrive from two places and take one road: the folder watcher (anyone's change
// in the shown folder or a listed sub-folder) and the file layer's "rv_file_changed" /
// "rv_file_moved" (Atrium's own operations, in every pane). Each path is applied singly to the
// tree, and the widget hears one of `entryRemoved`, `entryInserted`, `entryRefreshed`, so a
// change never reloads the whole folder.
class ARXSpaceView : public QWidget, public ARXFileOperationDelegate {
    Q_OBJECT

public:
    explicit ARXSpaceView(QWidget* parent = nullptr);
    ~ARXSpaceView() override;

    void setDelegate(ARXSpaceViewDelegate* delegate) { _delegate = delegate; }
    ARXSpaceViewDelegate* delegate() const { return _delegate; }
    // Where operation sheets, conflict questions and alerts of this view appear; the main
    // window's presenter when none is set.
    void setPresenter(ARXOperationPresenter* presenter) { _presenter = presenter; }
    ARXOperationPresenter* presenter() const;

    virtual ARXSpaceViewType viewType() const = 0;

    // ----- the folder shown

    const ARXFileEntryRef& root() const { return _root; }
    ARXSpaceStatus spaceStatus() const { return _spaceStatus; }
    // Shows `entry` (null: nothing). Lists it (again with `force`), decides the status, watches
    // it, and clears the selection. The pane calls this for every change of folder.
    virtual void bindRoot(const ARXFileEntryRef& entry, bool force = false);
    // The folder new things go to: the selection's folder when settings_action_target is 1,
    // otherwise the root.
    virtual ARXFileEntryRef targetFolder() const;
    ARXFileEntryRef selectionFolder() const;

    // ----- selection

    const ARXFileEntryList& selectedItems() const { return _selectedItems; }
    void setSelectedItems(ARXFileEntryList entries);
    void deselectAll();
    // Selects the child of the root (at any depth, loaded) with each path.
    void selectPaths(const std::vector<Path>& paths);

    // ----- state a pane saves

    std::optional<QStringList> visibleColumns() const { return _visibleColumns; }
    virtual void setVisibleColumns(std::optional<QStringList> columns);
    // None for no stored widths.
    std::optional<QMap<QString, double>> columnWidths() const;
    virtual void setColumnWidths(const QMap<QString, double>& widths);
    virtual std::vector<Path> expandedPaths() const { return _expandedPaths; }
    virtual void setExpandedPaths(const std::vector<Path>& paths) { _expandedPaths = paths; }
    virtual int lod() const { return _lod; }
    virtual void setLod(int lod) { _lod = lod; }
    virtual void applySort(ARXSpaceViewColumnId column, bool ascending, bool foldersOnTop);
    // Unfolds a folder shown as a row, listing it; answers whether its rows show (the root's
    // always do).
    virtual bool expandEntry(const ARXFileEntryRef& entry) { return entry == _root; }

    // ----- the widget

    // Gives the keyboard focus to the widget.
    virtual void focusContent() = 0;
    // Whether the view's pane is the active one. An inactive pane's selection is drawn in the
    // inactive colours, so that only the selection commands act on reads as current, and a view
    // whose pane is not active never takes the keyboard by itself.
    virtual void setActiveLook(bool active) { _activeLook = active; }
    bool hasActiveLook() const { return _activeLook; }
    virtual bool hasContentFocus() const = 0;
    virtual bool beginEditingName(const ARXFileEntryRef& entry) = 0;
    // Everything is read from the tree again (settings changed, sort, the clock); while a rename
    // or a drag runs it waits (dirtyData).
    virtual void reloadContent();
    void reloadOrDefer();
    bool isDirty() const { return _dirtyData; }
    bool isEditingFilename() const { return _editingFilename; }
    bool isFileOperationWorking() const { return _fileOperationWorking; }

    // ----- changes on disk

    // The loaded entry for `path` under the root (the root included); null when not loaded.
    ARXFileEntryRef find(const Path& path) const;
    // A path that changed on disk: the watcher's notice or Atrium's own.
    void subitemChanged(const Path& path);
    void subitemMoved(const Path& from, const Path& to);
    // Brings the entry of an existing path up to date or adds it to its loaded parent; answers
    // the entry, or null when the path is outside the root or its folder was never listed.
    ARXFileEntryRef applyChange(const Path& path);
    void applyMove(const Path& from, const Path& to);
    // The item at path is gone: its row goes, the rows of links to it stay and show it gone.
    void applyGone(const Path& path);
    void removeEntry(const ARXFileEntryRef& entry);
    // The folders the view watches for changes by other programs.
    std::vector<Path> watchedFolders() const;

    // ----- actions on the selection

    // Runs an action on the entries (the selection when empty): the delegate first, then the
    // view. True when someone took it.
    bool perform(ARXActionType action, ARXFileEntryList entries = {});
    // The keys no widget takes, in their fixed order; true when used.
    bool handleKey(QKeyEvent* event);

    // The clipboard, with the conventions other file managers use.
    void copySelection(bool cut);
    void paste(const ARXFileEntryRef& destination, bool move);
    bool canPasteHere() const;
    // Copies or moves paths into a folder of this view, with one placeholder row per item.
    // Answers whether a batch started (nothing is left once the paths that may not go are out).
    bool transferPaths(const ARXFileEntryRef& destination, std::vector<Path> paths, bool copy);
    virtual void trashEntries(const ARXFileEntryList& entries);
    // Asks, then deletes for good. `ask` false skips the question (tests, scripts).
    void removeEntries(const ARXFileEntryList& entries, bool ask = true);
    void newFolder();
    void newFolderWithSelection();
    void duplicateSelection();
    void openEntries(const ARXFileEntryList& entries);

    // The drop rules shared by every view kind: whether paths on `data` may go into
    // `destination`, and whether the drop copies or moves (same volume moves unless Ctrl asks for
    // a copy; another volume copies unless Shift asks for a move).
    bool canAccept(const QMimeData* data, const Path& destination) const;
    Qt::DropAction dropOperation(const QMimeData* data, const Path& destination,
                                 Qt::KeyboardModifiers modifiers, Qt::DropActions possible) const;
    void acceptDrop(const QMimeData* data, const ARXFileEntryRef& destination, bool copy);

    // "3 of 10 selected, 12.5 GB available".
    QString statusText(int selected, int total) const;

    // ----- what the widget kinds provide: the update protocol

    virtual void entryRefreshed(const ARXFileEntryRef& entry) = 0;
    virtual void entryInserted(const ARXFileEntryRef& entry) = 0;
    virtual void entriesInserted(const ARXFileEntryList& entries) = 0;
    virtual void entryRemoved(const ARXFileEntryRef& entry, size_t index) = 0;
    virtual void entriesRemoved(const ARXFileEntryRemovals& removals) = 0;
    virtual void setBottomStatusVisible(bool visible) = 0;

    // ----- ARXFileOperationDelegate

    void fileOperationProgress(ARXFileOperationController& controller,
                               const ARXFileOperationItemRef& item) override;
    void fileOperationStarted(ARXFileOperationController& controller) override;
    void fileOperationFinished(ARXFileOperationController& controller) override;

Q_SIGNALS:
    // The status text changed (`statusText` of the current counts).
    void statusTextChanged(const QString& text);
    // A batch of this view ended, by an error too, and its rows and selection are settled.
    void fileOperationEnded();

protected:
    // The widget's selection as entries, top to bottom; and the selection put into the widget,
    // scrolled into view.
    virtual ARXFileEntryList widgetSelection() const = 0;
    virtual void syncSelection(bool notify);
    // The number of rows shown, for the status text.
    virtual int shownItemCount() const = 0;
    virtual void stepLod(int delta);
    // The widget's selection changed by the user's hand.
    void widgetSelectionChanged();
    void refreshStatusText();

    virtual void addObservers();
    virtual void removeObservers();
    void watchFolder(const ARXFileEntryRef& folder);
    // A folder moved from `oldPath`: its watches, and those of its unfolded sub-folders, follow.
    void rewatch(const ARXFileEntryRef& folder, const Path& oldPath);

    // The list view moves its selection to the row after the trashed ones first.
    void startTrash(const ARXFileEntryList& entries);

    // Inline rename and drags hold reloads back.
    void setEditingFilename(bool editing);
    void setDragging(bool dragging);
    bool isDragging() const { return _dragging; }
    // After a rename: an alert for a failure, the undo record, the parent re-sorted.
    bool renameEntry(const ARXFileEntryRef& entry, const QString& name);
    // A deferred reload happens now, unless a rename or a drag still holds it.
    void reloadIfDirtyNow();

    // The clipboard's cut that the running batch moves, to take off the clipboard at its end.
    std::optional<ARXFileClipboard::Contents> _pastedCut;
    // The selection after the running operation ends, and whether to rename it then.
    ARXFileEntryList _selectionAfterOperation;
    bool _hasSelectionAfterOperation = false;
    bool _editingAfterOperation = false;

    ARXFileEntryRef _root;
    ARXSpaceStatus _spaceStatus = ARXSpaceStatus::empty;
    ARXFileEntryList _selectedItems;
    std::vector<Path> _expandedPaths;
    std::optional<QStringList> _visibleColumns;
    QMap<QString, double> _columnWidths;
    int _lod = 0;
    bool _dirtyData = false;

private:
    void observeNotifications();
    void runBatch(std::vector<ARXFileOperationItemRef> items, ARXSoundEffect sound,
                  bool recordable);
    void reloadIfDirtyLater();
    void onFileChangedNotice(const Path& path);
    // The loaded links to `path` read their target again and show it.
    void refreshLinksTo(const Path& path);

    ARXSpaceViewDelegate* _delegate = nullptr;
    ARXOperationPresenter* _presenter = nullptr;
    std::unique_ptr<ARXFolderWatcher> _watcher;
    QTimer _dirtyPoll;
    bool _editingFilename = false;
    bool _dragging = false;
    bool _fileOperationWorking = false;
    bool _observing = false;
    // The observers that live while a folder is shown (not those of the view's whole life).
    std::vector<ARXNotificationCenter::Token> _observerTokens;
    bool _statusPending = false;
    bool _activeLook = true;
};
