#include "ui/spaceviews/ARXSpaceView.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "app/ARXNotificationNames.h"
#include "app/ARXPathRules.h"
#include "model/ARXFileFormat.h"
#include "model/ARXFileTagManager.h"
#include "ops/ARXOperationPresenter.h"
#include "platform/ARXConsole.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXFolderWatcher.h"
#include "platform/ARXNotificationCenter.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>

namespace {

QString localized(const char* text) {
    return QCoreApplication::translate("Atrium", text);
}

// On a volume that ignores case, a notice may name a file in another spelling than the one on
// disk ("Report.txt" for "report.txt"); only the spelling on disk is applied, so that the tree
// never holds one file twice.
bool isSpelledAsOnDisk(const Path& path) {
    const ARXVolumeRef volume = ARXDataCenter::shared().volumeFor(path);
    if (!volume || volume->caseSensitive) {
        return true;
    }
    const auto names = ARXFileIO::listNames(ARXPath::parentPath(path));
    const std::string name = ARXPath::lastComponent(path);
    return !names || std::find(names->begin(), names->end(), name) != names->end();
}

} // namespace

ARXSpaceView::ARXSpaceView(QWidget* parent)
    : QWidget(parent), _watcher(std::make_unique<ARXFolderWatcher>()) {
    connect(_watcher.get(), &ARXFolderWatcher::subitemChanged, this,
            [this](const Path& path) { subitemChanged(path); });
    connect(_watcher.get(), &ARXFolderWatcher::subitemMoved, this,
            [this](const Path& from, const Path& to) { subitemMoved(from, to); });
    // Ten times a second for the view's whole life: catches every reload that a rename or a
    // drag held back and that no direct path carried out.
    _dirtyPoll.setInterval(100);
    connect(&_dirtyPoll, &QTimer::timeout, this, &ARXSpaceView::reloadIfDirtyLater);
    _dirtyPoll.start();
    // For the view's whole life, shown folder or not: a view that comes back into use has the
    // status bar every other view has.
    ARXNotificationCenter::shared().addObserver(
        ARXNotificationName::rv_settings_bottom_statusbar_changed, this,
        [this](const ARXNotification&) {
            setBottomStatusVisible(ARXConf::settings_space_bottom_statusbar_visible().value());
        });
}

ARXSpaceView::~ARXSpaceView() {
    removeObservers();
}

ARXOperationPresenter* ARXSpaceView::presenter() const {
    return _presenter ? _presenter : ARXOperationPresenter::main();
}

// ----- the folder shown

void ARXSpaceView::bindRoot(const ARXFileEntryRef& entry, bool force) {
    _editingFilename = false;
    if (!_dragging && _dirtyData) {
        reloadContent();
    }
    _dragging = false;
    if (_dirtyData) {
        reloadContent();
    }
    removeObservers();

    _root = entry;
    if (!entry || entry->path().empty()) {
        _spaceStatus = ARXSpaceStatus::empty;
    } else if (!ARXFileIO::exists(entry->target().path()) ||
               (entry->link() == nullptr && entry->type == ARXFileType::symlink &&
                !ARXFileIO::isDirectory(entry->path()))) {
        _spaceStatus = ARXSpaceStatus::notfound;
    } else if (entry->prepare(force)) {
        _spaceStatus = ARXSpaceStatus::normal;
        addObservers();
    } else {
        _spaceStatus = ARXSpaceStatus::denied;
    }
    if (_delegate) {
        _delegate->spaceViewStatusChanged(*this, _spaceStatus);
    }
    setSelectedItems({});
}

ARXFileEntryRef ARXSpaceView::selectionFolder() const {
    if (_selectedItems.empty()) {
        return _root;
    }
    if (_selectedItems.size() == 1) {
        const ARXFileEntryRef& only = _selectedItems.front();
        if (only->isFolderItem()) {
            return only;
        }
        ARXFileEntryRef parent = only->parent();
        return parent ? parent : _root;
    }
    const Path first = ARXPath::parentPath(_selectedItems.front()->path());
    for (const ARXFileEntryRef& entry : _selectedItems) {
        if (ARXPath::parentPath(entry->path()) != first) {
            return _root;
        }
    }
    ARXFileEntryRef parent = _selectedItems.front()->parent();
    return parent ? parent : _root;
}

ARXFileEntryRef ARXSpaceView::targetFolder() const {
    return ARXConf::settings_action_target().value() == 1 ? selectionFolder() : _root;
}

// ----- selection

void ARXSpaceView::setSelectedItems(ARXFileEntryList entries) {
    _selectedItems = std::move(entries);
    syncSelection(true);
}

void ARXSpaceView::syncSelection(bool notify) {
    if (notify && _delegate) {
        _delegate->spaceViewSelectionChanged(*this);
    }
    refreshStatusText();
}

void ARXSpaceView::deselectAll() {
    setSelectedItems({});
}

void ARXSpaceView::selectPaths(const std::vector<Path>& paths) {
    ARXFileEntryList entries;
    for (const Path& path : paths) {
        if (ARXFileEntryRef entry = find(path); entry && entry != _root) {
            entries.push_back(std::move(entry));
        }
    }
    setSelectedItems(std::move(entries));
}

void ARXSpaceView::widgetSelectionChanged() {
    _selectedItems = widgetSelection();
    if (_delegate) {
        _delegate->spaceViewSelectionChanged(*this);
    }
    refreshStatusText();
}

void ARXSpaceView::refreshStatusText() {
    // After the current event: a burst of selection changes makes one text.
    if (_statusPending) {
        return;
    }
    _statusPending = true;
    QTimer::singleShot(0, this, [this] {
        _statusPending = false;
        Q_EMIT statusTextChanged(statusText(int(_selectedItems.size()), shownItemCount()));
    });
}

QString ARXSpaceView::statusText(int selected, int total) const {
    QString text;
    if (selected > 0) {
        text = localized("%1 of %2 selected").arg(selected).arg(total);
    } else if (total == 0) {
        text = localized("empty");
    } else if (total == 1) {
        text = localized("1 item");
    } else {
        text = localized("%1 items").arg(total);
    }
    if (_root) {
        if (const auto available = ARXFileIO::availableBytes(_root->target().path())) {
            text += QStringLiteral(", ") +
                    localized("%1 available").arg(ARXFileFormat::formatSize(*available));
        }
    }
    return text;
}

// ----- state a pane saves

void ARXSpaceView::setVisibleColumns(std::optional<QStringList> columns) {
    _visibleColumns = std::move(columns);
}

std::optional<QMap<QString, double>> ARXSpaceView::columnWidths() const {
    if (_columnWidths.isEmpty()) {
        return std::nullopt;
    }
    return _columnWidths;
}

void ARXSpaceView::setColumnWidths(const QMap<QString, double>& widths) {
    _columnWidths = widths;
}

void ARXSpaceView::applySort(ARXSpaceViewColumnId column, bool ascending, bool foldersOnTop) {
    if (!_root) {
        return;
    }
    _root->sort(column, ascending, foldersOnTop);
    reloadOrDefer();
}

void ARXSpaceView::stepLod(int delta) {
    setLod(lod() + delta);
}

// ----- reloads

void ARXSpaceView::reloadContent() {
    _dirtyData = false;
    ARXFileTagManager::shared()->refresh();
    // Entries may have been replaced; the selection follows to the entries now in the tree.
    ARXFileEntryList kept;
    for (const ARXFileEntryRef& entry : _selectedItems) {
        if (ARXFileEntryRef now = find(entry->path())) {
            kept.push_back(std::move(now));
        }
    }
    _selectedItems = std::move(kept);
}

void ARXSpaceView::reloadOrDefer() {
    if (_editingFilename || _dragging) {
        _dirtyData = true;
    } else {
        reloadContent();
    }
}

void ARXSpaceView::reloadIfDirtyLater() {
    if (!_editingFilename && !_dragging && _dirtyData && _root && !_fileOperationWorking) {
        reloadContent();
    }
}

void ARXSpaceView::reloadIfDirtyNow() {
    if (!_editingFilename && !_dragging && _dirtyData) {
        reloadContent();
    }
}

void ARXSpaceView::setEditingFilename(bool editing) {
    _editingFilename = editing;
    if (!editing) {
        reloadIfDirtyNow();
    }
}

void ARXSpaceView::setDragging(bool dragging) {
    _dragging = dragging;
    if (!dragging) {
        reloadIfDirtyNow();
    }
}

// ----- observers

void ARXSpaceView::addObservers() {
    if (_observing) {
        return;
    }
    _observing = true;
    if (_root) {
        watchFolder(_root);
    }
    observeNotifications();
}

void ARXSpaceView::removeObservers() {
    if (!_observing) {
        return;
    }
    _observing = false;
    _watcher->unwatchAll();
    for (const ARXNotificationCenter::Token token : _observerTokens) {
        ARXNotificationCenter::shared().removeObserver(token);
    }
    _observerTokens.clear();
}

void ARXSpaceView::watchFolder(const ARXFileEntryRef& folder) {
    if (_observing && folder) {
        _watcher->watch(folder->target().path());
    }
}

void ARXSpaceView::rewatch(const ARXFileEntryRef& folder, const Path& oldPath) {
    if (!_observing || !folder->expanded) {
        return;
    }
    for (const Path& watched : _watcher->watchedFolders()) {
        if (watched == oldPath || ARXPathRules::isInside(oldPath, watched, true)) {
            _watcher->unwatch(watched);
        }
    }
    std::vector<ARXFileEntryRef> open{folder};
    while (!open.empty()) {
        const ARXFileEntryRef entry = open.back();
        open.pop_back();
        _watcher->watch(entry->target().path());
        for (const ARXFileEntryRef& child : entry->children()) {
            if (child->expanded && child->isFolder()) {
                open.push_back(child);
            }
        }
    }
}

std::vector<Path> ARXSpaceView::watchedFolders() const {
    return _watcher->watchedFolders();
}

void ARXSpaceView::observeNotifications() {
    namespace N = ARXNotificationName;
    const auto observe = [this](const QString& name, ARXNotificationCenter::Handler handler) {
        _observerTokens.push_back(
            ARXNotificationCenter::shared().addObserver(name, this, std::move(handler)));
    };
    for (const QString& name :
         {N::rv_settings_filename_fontsize_changed, N::rv_settings_show_icon_thumb_min_size_changed,
          N::rv_settings_show_icon_thumb_media_changed}) {
        observe(name, [this](const ARXNotification&) { reloadOrDefer(); });
    }
    observe(N::rv_file_moved, [this](const ARXNotification& note) {
        applyMove(
            ARXPath::fromStoredText(note.userInfo.value(QStringLiteral("source")).toString()),
            ARXPath::fromStoredText(note.userInfo.value(QStringLiteral("target")).toString()));
    });
    observe(N::rv_file_changed, [this](const ARXNotification& note) {
        onFileChangedNotice(
            ARXPath::fromStoredText(note.userInfo.value(QStringLiteral("path")).toString()));
    });
    observe(N::rv_file_tags_changed, [this](const ARXNotification& note) {
        const QVariant url = note.userInfo.value(QStringLiteral("url"));
        const Path path = ARXPath::fromFileURL(url.toString());
        if (ARXFileEntryRef entry = path.empty() ? nullptr : find(ARXPath::normalized(path))) {
            entry->tags = note.userInfo.value(QStringLiteral("tags")).toStringList();
            entryRefreshed(entry);
        }
    });
}

// ----- changes on disk

ARXFileEntryRef ARXSpaceView::find(const Path& path) const {
    return _root ? _root->find(path) : nullptr;
}

void ARXSpaceView::onFileChangedNotice(const Path& path) {
    if (path.empty()) {
        return;
    }
    if (ARXFileIO::exists(path)) {
        applyChange(path);
    } else {
        applyGone(path);
    }
}

void ARXSpaceView::subitemChanged(const Path& path) {
    if (!_root) {
        return;
    }
    // The folder shown was itself deleted, moved away or made unreadable: bound again, it shows
    // why it cannot be shown.
    if (path == _root->target().path()) {
        if (!ARXFileIO::exists(path) || !ARXFileIO::isListable(path)) {
            // Out of the watcher's delivery, which binding would stop in the middle.
            QTimer::singleShot(0, this, [this, root = _root] {
                if (root == _root) {
                    root->refresh(true);
                    bindRoot(root, true);
                }
            });
        }
        return;
    }
    if (!ARXFileIO::exists(path)) {
        applyGone(path);
        return;
    }
    if (isSpelledAsOnDisk(path)) {
        applyChange(path);
    }
}

ARXFileEntryRef ARXSpaceView::applyChange(const Path& path) {
    if (!_root || !_root->contains(path, true)) {
        return nullptr;
    }
    ARXFileEntryRef entry = find(path);
    if (entry) {
        if (entry->path() != path) {
            entry->setPath(path);
        }
        if (entry->refresh()) {
            entryRefreshed(entry);
        }
    } else if ((entry = _root->addChild(path))) {
        entryInserted(entry);
    }
    refreshLinksTo(path);
    return entry;
}

void ARXSpaceView::applyGone(const Path& path) {
    if (ARXFileEntryRef entry = find(path)) {
        removeEntry(entry);
    }
    refreshLinksTo(path);
}

void ARXSpaceView::refreshLinksTo(const Path& path) {
    if (!_root) {
        return;
    }
    for (const ARXFileEntryRef& link : _root->linksTo(path)) {
        // The link keeps its row; only what the row shows of the target changes. A link whose
        // target is gone keeps its last target entry, which then reads as gone.
        link->refresh(true);
        if (const ARXFileEntryRef& target = link->link()) {
            target->refresh(true);
        }
        entryRefreshed(link);
    }
}

void ARXSpaceView::subitemMoved(const Path& from, const Path& to) {
    // The debug log of the change protocol, beside the rows' own lines.
    ARXConsole::line(QStringLiteral("move: ") + ARXPath::display(from) + QStringLiteral(" -> ") +
                     ARXPath::display(to));
    applyMove(from, to);
}

void ARXSpaceView::applyMove(const Path& from, const Path& to) {
    if (!_root || from.empty() || to.empty()) {
        return;
    }
    if (_root->contains(from, true) && ARXPath::parentPath(from) == ARXPath::parentPath(to)) {
        // A rename in place: the row stays, and with it an unfolded folder's rows.
        const ARXFileEntryRef entry = find(from);
        if (!entry) {
            return;
        }
        entry->setPath(to);
        entry->rewritePaths();
        entry->refresh();
        entryRefreshed(entry);
        // The watches of a moved folder stay with the old paths, which no longer exist.
        rewatch(entry, from);
        refreshLinksTo(from);
        refreshLinksTo(to);
        return;
    }
    applyGone(from);
    applyChange(to);
}

void ARXSpaceView::removeEntry(const ARXFileEntryRef& entry) {
    const ARXFileEntryRef parent = entry ? entry->parent() : nullptr;
    if (!parent) {
        return;
    }
    const ARXFileEntryList& children = parent->children();
    const auto at = std::find(children.begin(), children.end(), entry);
    if (at == children.end()) {
        return;
    }
    const size_t index = size_t(at - children.begin());
    parent->removeChildren({entry});
    const auto selected = std::find(_selectedItems.begin(), _selectedItems.end(), entry);
    if (selected != _selectedItems.end()) {
        _selectedItems.erase(selected);
    }
    entryRemoved(entry, index);
    // A placeholder may carry the path of the folder it stands beside; that folder's row, and its
    // watch, stay.
    if (entry->isFolder() && !find(entry->target().path())) {
        _watcher->unwatch(entry->target().path());
    }
}
