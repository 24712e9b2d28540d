// A pane's view state (view type, hidden files), its saved record, its actions and what its
// menus may offer.

#include "app/ARXConf.h"
#include "platform/ARXSystemPaths.h"
#include "ui/spaceviews/ARXSpaceListView.h"
#include "ui/spaceviews/ARXSpaceSquareView.h"

#include <QStackedLayout>

#include <algorithm>

namespace {

ARXSpaceViewType defaultViewType() {
    const qint64 type = ARXConf::settings_default_view().value();
    return type >= 1 && type <= 3 ? ARXSpaceViewType(type) : ARXSpaceViewType::list;
}

std::vector<Path> pathsOf(const ARXFileEntryList& entries) {
    std::vector<Path> paths;
    for (const ARXFileEntryRef& entry : entries) {
        paths.push_back(entry->path());
    }
    return paths;
}

} // namespace

// ----- view type and hidden files

ARXSpaceView* ARXSpaceSquareView::makeContentView(ARXSpaceViewType /*type*/) {
    // The icons and columns kinds slot in here; until they exist every type shows as a list.
    auto* view = new ARXSpaceListView(this);
    view->setDelegate(this);
    view->setPresenter(_presenter);
    view->setActiveLook(_isActivated);
    return view;
}

void ARXSpaceSquareView::setViewType(ARXSpaceViewType type) {
    if (type == ARXSpaceViewType::none) {
        return;
    }
    // Only the list exists so far: the other kinds show as a list and are saved as one.
    type = ARXSpaceViewType::list;
    if (type == _viewType) {
        return;
    }
    ARXFileEntryList selected;
    std::vector<Path> expanded;
    std::optional<QStringList> columns;
    std::optional<QMap<QString, double>> widths;
    if (_contentView) {
        selected = _contentView->selectedItems();
        expanded = _contentView->expandedPaths();
        columns = _contentView->visibleColumns();
        widths = _contentView->columnWidths();
    }
    ARXSpaceView*& view = _contentViews[type];
    if (!view) {
        view = makeContentView(type);
        _stack->addWidget(view);
    }
    if (_contentView && _contentView != view) {
        _contentView->bindRoot(nullptr);
    }
    _contentView = view;
    _viewType = type;
    if (_root) {
        // Binding tells the pane the status, which shows the view or the message.
        _contentView->bindRoot(_root);
    }
    _contentView->setExpandedPaths(expanded);
    if (columns) {
        _contentView->setVisibleColumns(columns);
    }
    if (widths) {
        _contentView->setColumnWidths(*widths);
    }
    _contentView->setSelectedItems(selected);
    if (_isActivated) {
        _contentView->focusContent();
    }
}

void ARXSpaceSquareView::setHiddenVisible(bool visible) {
    const bool wasVisible = _hiddenVisible;
    _hiddenVisible = visible;
    if (!_root || !_contentView) {
        return;
    }
    ARXFileEntryList selected = _contentView->selectedItems();
    const std::vector<Path> expanded = _contentView->expandedPaths();
    if (visible != _root->hiddenVisible()) {
        if (visible) {
            _root->revealHidden();
        } else {
            _root->hideHidden();
        }
    }
    _contentView->bindRoot(_root);
    _contentView->setExpandedPaths(expanded);
    if (visible && !wasVisible) {
        selected.erase(std::remove_if(selected.begin(), selected.end(),
                                      [](const ARXFileEntryRef& entry) { return entry->isHidden; }),
                       selected.end());
    }
    _contentView->setSelectedItems(selected);
}

// ----- saving

void ARXSpaceSquareView::resetToDefaults() {
    setViewType(defaultViewType());
    _history.clear();
    _startPath.reset();
    readSortDefaults();
    _root.reset();
    adoptRoot(
        makeEntry(ARXPath::fromStoredText(ARXConf::settings_default_directory().value()), true));
    if (_contentView) {
        _contentView->setLod(0);
    }
    refreshRoot();
}

void ARXSpaceSquareView::applyData(const ARXSpaceData& data) {
    setViewType(data.viewType >= 1 && data.viewType <= 3 ? ARXSpaceViewType(data.viewType)
                                                         : defaultViewType());
    ARXFileEntryList entries;
    for (const Path& path : data.histories) {
        entries.push_back(makeEntry(path, false));
    }
    _history.setEntries(std::move(entries), data.historyIndex);
    _startPath = data.startPath;
    // A pane with a start path always opens there, whatever it showed when it was saved.
    _root.reset();
    adoptRoot(makeEntry(_startPath ? *_startPath : data.root, true));
    if (_contentView) {
        _contentView->setLod(int(data.lod.value_or(0)));
    }
    // The saved order comes before the listing, so that the rows are sorted once.
    if (data.sortColumn) {
        if (const auto column = ARXSpaceViewColumn::parse(*data.sortColumn)) {
            _root->sortColumn = *column;
            _root->sortAscend =
                data.sortAscend.value_or(ARXConf::settings_default_sort_ascend().value());
            _root->sortFoldersOnTop = data.sortFoldersOnTop.value_or(
                ARXConf::settings_default_sort_folders_ontop().value());
        }
    }
    refreshRoot();
    if (!_contentView) {
        return;
    }
    if (data.expands) {
        _contentView->setExpandedPaths(*data.expands);
    }
    if (data.visibleColumns) {
        _contentView->setVisibleColumns(data.visibleColumns);
    }
    if (data.columnWidths) {
        _contentView->setColumnWidths(*data.columnWidths);
    }
    if (data.sortColumn && ARXSpaceViewColumn::parse(*data.sortColumn)) {
        _contentView->applySort(_root->sortColumn, _root->sortAscend, _root->sortFoldersOnTop);
    }
}

std::optional<ARXSpaceData> ARXSpaceSquareView::makeData() const {
    if (!_root || !_contentView) {
        return std::nullopt;
    }
    ARXSpaceData data;
    data.viewType = qint64(_viewType);
    data.lod = _contentView->lod();
    data.histories = pathsOf(_history.entries());
    data.historyIndex = _history.index();
    data.root = _root->path();
    data.sortColumn = ARXSpaceViewColumn::storedString(_root->sortColumn);
    data.sortAscend = _root->sortAscend;
    data.sortFoldersOnTop = _root->sortFoldersOnTop;
    data.startPath = _startPath;
    data.expands = _contentView->expandedPaths();
    data.selections = pathsOf(_contentView->selectedItems());
    data.visibleColumns = _contentView->visibleColumns();
    data.columnWidths = _contentView->columnWidths();
    return data;
}

// ----- actions

bool ARXSpaceSquareView::perform(ARXActionType action, ARXFileEntryList entries) {
    if (entries.empty() && _contentView) {
        entries = _contentView->selectedItems();
    }
    if (entries.empty() && _root) {
        entries = {_root};
    }
    if (_delegate && _delegate->squareViewPerform(*this, action, entries)) {
        return true;
    }
    using A = ARXActionType;
    switch (action) {
    case A::Open:
        openAction(entries);
        return true;
    case A::ShowPackageContents:
        if (!entries.empty()) {
            openEntry(entries.front(), true);
        }
        return true;
    case A::GoBack:
        goBack();
        return true;
    case A::GoForward:
        goForward();
        return true;
    case A::GoEnclosingFolder:
        goEnclosingFolder();
        return true;
    case A::GoHome:
        goHome();
        return true;
    case A::GoDocuments:
        goDocuments();
        return true;
    case A::GoDesktop:
        goDesktop();
        return true;
    case A::GoDownloads:
        goDownloads();
        return true;
    case A::GoToLocation:
        gotoLocation();
        return true;
    case A::HiddenFiles:
        setHiddenVisible(!_hiddenVisible);
        return true;
    case A::asListView:
        setViewType(ARXSpaceViewType::list);
        return true;
    case A::asIconsView:
        setViewType(ARXSpaceViewType::icons);
        return true;
    case A::asColumnsView:
        setViewType(ARXSpaceViewType::columns);
        return true;
    default:
        return false;
    }
}

void ARXSpaceSquareView::openAction(const ARXFileEntryList& entries) {
    // Files open with their applications first; of the folders, the last one is entered.
    ARXFileEntryRef folder;
    ARXFileEntryList files;
    for (const ARXFileEntryRef& entry : entries) {
        if (entry->isFolderItem()) {
            folder = entry;
        } else if (!(entry->isUbiquitous && ARXPath::isCloudPlaceholderName(entry->name()))) {
            files.push_back(entry);
        }
    }
    if (!files.empty() && _contentView) {
        _contentView->openEntries(files);
    }
    if (folder && folder != _root) {
        openEntry(folder, true);
    }
}

bool ARXSpaceSquareView::isActionEnabled(ARXActionType action) const {
    const size_t selected = _contentView ? _contentView->selectedItems().size() : 0;
    using A = ARXActionType;
    switch (action) {
    case A::NewFolderWithSelection:
    case A::Open:
    case A::Compress:
    case A::Duplicate:
    case A::QuickLook:
    case A::Trash:
    case A::Copy:
    case A::Cut:
    case A::Remove:
        return selected > 0;
    case A::OpenInTerminal:
        return !ARXConf::settings_terminal_app().value().isEmpty();
    case A::OpenInEditor:
        return !ARXConf::settings_editor_app().value().isEmpty();
    case A::Rename:
        return selected == 1;
    case A::GoBack:
        return _history.canGoBack();
    case A::GoForward:
        return _history.canGoForward();
    case A::GoEnclosingFolder:
        return _root && _root->path() != "/";
    case A::Paste:
    case A::MoveCopied:
        return _contentView && _contentView->canPasteHere();
    default:
        return true;
    }
}

// ----- what the content view tells the pane

bool ARXSpaceSquareView::spaceViewPerform(ARXSpaceView& /*view*/, ARXActionType action,
                                          const ARXFileEntryList& entries) {
    return perform(action, entries);
}

void ARXSpaceSquareView::spaceViewSelectionChanged(ARXSpaceView& /*view*/) {}

void ARXSpaceSquareView::spaceViewOpen(ARXSpaceView& /*view*/, const ARXFileEntryList& entries) {
    perform(ARXActionType::Open, entries);
}

void ARXSpaceSquareView::spaceViewFocused(ARXSpaceView& /*view*/) {
    if (!_isActivated) {
        setActivated(true);
    }
}

void ARXSpaceSquareView::spaceViewGoBack(ARXSpaceView& /*view*/) {
    goBack();
}

void ARXSpaceSquareView::spaceViewGoForward(ARXSpaceView& /*view*/) {
    goForward();
}

bool ARXSpaceSquareView::spaceViewUnhandledKey(ARXSpaceView& /*view*/, QKeyEvent* event) {
    return _delegate && _delegate->squareViewKey(*this, event);
}
