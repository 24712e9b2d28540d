// The actions a content view carries out on its selection: clipboard, paste and drop, trash and
// delete, new folders, duplicates, opening, and the keys no widget takes.

#include "actions/ARXHotkey.h"
#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "app/ARXPathRules.h"
#include "model/ARXUniquePath.h"
#include "ops/ARXFileOperationRecorder.h"
#include "ops/ARXFileRename.h"
#include "ops/ARXPathSelection.h"
#include "ops/ARXSelectionPreparation.h"
#include "platform/ARXDesktopLauncher.h"
#include "platform/ARXFileIO.h"
#include "ui/ARXAlerts.h"
#include "ui/ARXFileClipboard.h"
#include "ui/ARXKeyEvents.h"
#include "ui/spaceviews/ARXSpaceView.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QRegularExpression>
#include <QTimer>

#include <algorithm>
#include <map>

namespace {

QString localized(const char* text) {
    return QCoreApplication::translate("Atrium", text);
}

std::vector<Path> pathsOf(const ARXFileEntryList& entries) {
    std::vector<Path> paths;
    paths.reserve(entries.size());
    for (const ARXFileEntryRef& entry : entries) {
        paths.push_back(entry->path());
    }
    return paths;
}

std::optional<ARXSpaceViewColumnId> sortColumnOf(ARXActionType action) {
    using A = ARXActionType;
    using C = ARXSpaceViewColumnId;
    switch (action) {
    case A::SortByName:
        return C::name;
    case A::SortByKind:
        return C::kind;
    case A::SortByDateLastOpened:
        return C::lastOpened;
    case A::SortByDateAdded:
        return C::added;
    case A::SortByDateModified:
        return C::modified;
    case A::SortByDateCreated:
        return C::created;
    case A::SortBySize:
        return C::size;
    case A::SortByTags:
        return C::tags;
    case A::SortByDimensions:
        return C::dimensions;
    case A::SortByDuration:
        return C::duration;
    default:
        return std::nullopt;
    }
}

} // namespace

// ----- actions

bool ARXSpaceView::perform(ARXActionType action, ARXFileEntryList entries) {
    if (entries.empty()) {
        entries = _selectedItems;
    }
    if (_delegate &&
        _delegate->spaceViewPerform(*this, action,
                                    entries.empty() && _root ? ARXFileEntryList{_root} : entries)) {
        return true;
    }
    using A = ARXActionType;
    switch (action) {
    case A::Copy:
    case A::Cut:
        if (entries.empty()) {
            return false;
        }
        ARXFileClipboard::put(pathsOf(entries), action == A::Cut);
        return true;
    case A::Paste:
    case A::MoveCopied:
        paste(targetFolder(), action == A::MoveCopied);
        return true;
    case A::CopyPath:
    case A::CopyFilename: {
        QStringList lines;
        for (const ARXFileEntryRef& entry :
             entries.empty() && _root ? ARXFileEntryList{_root} : entries) {
            QString text = ARXPath::display(action == A::CopyPath ? entry->path()
                                                                  : std::string(entry->name()));
            if (action == A::CopyFilename) {
                text.replace(QRegularExpression(QStringLiteral("[\\r\\n]")), QStringLiteral(" "));
            }
            lines.append(text);
        }
        QGuiApplication::clipboard()->setText(lines.join(u'\n'));
        return true;
    }
    case A::Trash:
        trashEntries(entries);
        return true;
    case A::Remove:
        removeEntries(entries);
        return true;
    case A::NewFolder:
        newFolder();
        return true;
    case A::NewFolderWithSelection:
        newFolderWithSelection();
        return true;
    case A::Duplicate:
        duplicateSelection();
        return true;
    case A::Rename:
        if (entries.size() == 1) {
            beginEditingName(entries.front());
        }
        return true;
    case A::SelectAll:
        if (_root) {
            setSelectedItems(_root->children());
        }
        return true;
    case A::RefreshView:
        if (_root && _spaceStatus == ARXSpaceStatus::normal) {
            _root->prepare(true);
            reloadOrDefer();
        }
        return true;
    case A::Undo:
        ARXFileOperationRecorder::shared().undo();
        return true;
    case A::Redo:
        ARXFileOperationRecorder::shared().redo();
        return true;
    case A::ZoomIn:
    case A::ZoomOut:
        stepLod(action == A::ZoomIn ? 1 : -1);
        return true;
    case A::MakeAlias:
        for (const ARXFileEntryRef& entry : entries) {
            const ARXFileEntryResult made = entry->makeAlias();
            if (made.error) {
                ARXAlerts::informError(window(), made.error->text());
                break;
            }
            if (made.entry) {
                entryInserted(made.entry);
            }
        }
        return true;
    case A::Open:
        openEntries(entries);
        return true;
    default:
        break;
    }
    if (const auto column = sortColumnOf(action); column && _root) {
        applySort(*column, _root->sortAscend, _root->sortFoldersOnTop);
        return true;
    }
    return false;
}

bool ARXSpaceView::handleKey(QKeyEvent* event) {
    const int key = event->key();
    const Qt::KeyboardModifiers modifiers =
        event->modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    if (key == Qt::Key_Escape && ARXConf::settings_escape_to_deselect().value()) {
        deselectAll();
        return true;
    }
    // Every configurable binding comes before the fixed keys below.
    if (const ARXActionType action = ARXDefaultHotkeys::action(ARXKeyEvents::hotkeyOf(event));
        action != ARXActionType::None) {
        if (perform(action)) {
            return true;
        }
    }
    const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (modifiers == Qt::ControlModifier) {
        switch (key) {
        case Qt::Key_Left:
            if (_delegate) {
                _delegate->spaceViewGoBack(*this);
            }
            return true;
        case Qt::Key_Right:
            if (_delegate) {
                _delegate->spaceViewGoForward(*this);
            }
            return true;
        case Qt::Key_Down:
            if (!_selectedItems.empty()) {
                perform(ARXActionType::Open);
            }
            return true;
        case Qt::Key_Plus:
        case Qt::Key_Minus:
            stepLod(key == Qt::Key_Plus ? 1 : -1);
            return true;
        case Qt::Key_Delete:
            trashEntries(_selectedItems);
            return true;
        default:
            break;
        }
    }
    if (isReturn && (modifiers == Qt::NoModifier || modifiers == Qt::ControlModifier)) {
        if (ARXConf::settings_press_enter_key().value() == 1) {
            if (!_selectedItems.empty()) {
                perform(ARXActionType::Open);
            }
        } else if (_selectedItems.size() == 1) {
            beginEditingName(_selectedItems.front());
        }
        return true;
    }
    return _delegate && _delegate->spaceViewUnhandledKey(*this, event);
}

// ----- clipboard and transfers

void ARXSpaceView::copySelection(bool cut) {
    perform(cut ? ARXActionType::Cut : ARXActionType::Copy);
}

void ARXSpaceView::paste(const ARXFileEntryRef& destination, bool move) {
    const ARXFileClipboard::Contents contents = ARXFileClipboard::current();
    const ARXFileEntryRef folder = destination ? destination : _root;
    if (contents.paths.empty() || !folder) {
        return;
    }
    // A folder row the items go into unfolds, so that they are seen arriving and selected.
    expandEntry(folder);
    if (transferPaths(folder, contents.paths, !(contents.cut || move)) && contents.cut) {
        _pastedCut = contents;
    }
}

bool ARXSpaceView::canPasteHere() const {
    const bool here = _selectedItems.empty() ||
                      (_selectedItems.size() == 1 && _selectedItems.front()->isFolderItem());
    return here && !ARXFileClipboard::current().paths.empty();
}

bool ARXSpaceView::transferPaths(const ARXFileEntryRef& destination, std::vector<Path> paths,
                                 bool copy) {
    if (!destination) {
        return false;
    }
    const ARXFileOperationType type =
        copy ? ARXFileOperationType::copy : ARXFileOperationType::move;
    const Path folder = destination->target().path();
    paths = ARXPathSelection::pasteSources(paths, folder, type);
    if (destination->target().path() != destination->path()) {
        paths = ARXPathSelection::pasteSources(paths, destination->path(), type);
    }
    if (paths.empty()) {
        return false;
    }
    std::vector<ARXFileOperationItemRef> items;
    // A folder whose rows are shown gets one placeholder row per item at once; into a folder
    // never listed the items go without rows.
    if (destination->expanded && destination->prepareError == nullptr) {
        const ARXFileEntryList placeholders = destination->addPlaceholders(paths, type);
        entriesInserted(placeholders);
        for (const ARXFileEntryRef& placeholder : placeholders) {
            items.push_back(placeholder->operation);
        }
    } else {
        for (const Path& path : paths) {
            items.push_back(std::make_shared<ARXFileOperationItem>(
                type, path, ARXPath::join(folder, ARXPath::lastComponent(path))));
        }
    }
    runBatch(std::move(items), ARXSoundEffect::file_added, true);
    return true;
}

void ARXSpaceView::runBatch(std::vector<ARXFileOperationItemRef> items, ARXSoundEffect sound,
                            bool recordable) {
    if (items.empty()) {
        return;
    }
    auto controller = std::make_shared<ARXFileOperationController>(std::move(items), sound,
                                                                   recordable, presenter());
    controller->setDelegate(this);
    // An error ends a batch without telling its delegate; its end still has to take away the
    // placeholders of what never happened and the cut it moved part of.
    ARXFileOperationController* batch = controller.get();
    connect(batch, &ARXFileOperationController::ended, this, [this, batch] {
        if (_fileOperationWorking) {
            fileOperationFinished(*batch);
        }
    });
    controller->start();
}

// ----- trash, delete, new folders, duplicates, opening

void ARXSpaceView::trashEntries(const ARXFileEntryList& entries) {
    startTrash(entries);
}

void ARXSpaceView::startTrash(const ARXFileEntryList& entries) {
    if (!_root) {
        return;
    }
    std::vector<ARXFileOperationItemRef> items;
    for (const ARXFileEntryRef& entry : ARXSelectionPreparation::topLevelEntries(entries, *_root)) {
        items.push_back(std::make_shared<ARXFileOperationItem>(ARXFileOperationType::trash,
                                                               entry->path(), std::nullopt));
    }
    runBatch(std::move(items), ARXSoundEffect::file_removed, true);
}

void ARXSpaceView::removeEntries(const ARXFileEntryList& entries, bool ask) {
    if (!_root || entries.empty()) {
        return;
    }
    const ARXFileEntryList top = ARXSelectionPreparation::topLevelEntries(entries, *_root);
    if (top.empty()) {
        return;
    }
    std::vector<ARXFileOperationItemRef> items;
    for (const ARXFileEntryRef& entry : top) {
        items.push_back(std::make_shared<ARXFileOperationItem>(ARXFileOperationType::remove,
                                                               entry->path(), std::nullopt));
    }
    if (!ask) {
        runBatch(std::move(items), ARXSoundEffect::file_removed, false);
        return;
    }
    QPointer<ARXSpaceView> self(this);
    ARXAlerts::confirmDelete(window(), int(entries.size()),
                             ARXPath::display(std::string(entries.front()->name())),
                             [self, items](bool proceed) {
                                 if (proceed && self) {
                                     self->runBatch(items, ARXSoundEffect::file_removed, false);
                                 }
                             });
}

void ARXSpaceView::newFolder() {
    const ARXFileEntryRef folder = targetFolder();
    if (!folder || _spaceStatus != ARXSpaceStatus::normal) {
        return;
    }
    // A folder row it goes into unfolds: the new folder is seen, selected and named there.
    expandEntry(folder);
    const Path path = uniquePath(
        ARXPath::join(folder->target().path(), localized("untitled folder").toStdString()));
    if (const int error = ARXFileIO::makeDirectory(path)) {
        ARXAlerts::informError(
            window(),
            localized("“%1” could not be created: %2")
                .arg(ARXPath::display(path), QString::fromStdString(ARXFileIO::errorText(error))));
        return;
    }
    // The folder row may be one deeper than the folder's own path says (a link), so the entry is
    // looked up under the folder's entry path.
    const Path shown = ARXPath::join(folder->path(), ARXPath::lastComponent(path));
    if (ARXFileEntryRef entry = applyChange(shown)) {
        setSelectedItems({entry});
        QPointer<ARXSpaceView> self(this);
        QTimer::singleShot(100, this, [this, entry] { beginEditingName(entry); });
    }
}

void ARXSpaceView::newFolderWithSelection() {
    if (_selectedItems.empty() || !_root) {
        return;
    }
    const std::vector<Path> paths = pathsOf(_selectedItems);
    const Path common = ARXPath::parentPath(paths.front());
    const bool shared = std::all_of(paths.begin(), paths.end(), [&](const Path& path) {
        return ARXPath::parentPath(path) == common;
    });
    ARXFileEntryRef parent = shared ? find(common) : nullptr;
    if (!parent) {
        parent = _root;
    }
    const Path path = uniquePath(
        ARXPath::join(parent->target().path(), localized("New Folder With Items").toStdString()));
    if (const int error = ARXFileIO::makeDirectories(path)) {
        ARXAlerts::inform(
            window(), ARXAlertStyle::critical,
            localized("“%1” could not be created: %2")
                .arg(ARXPath::display(path), QString::fromStdString(ARXFileIO::errorText(error))),
            QString());
        return;
    }
    const ARXFileEntryRef folder =
        applyChange(ARXPath::join(parent->path(), ARXPath::lastComponent(path)));
    if (!folder) {
        return;
    }
    _selectionAfterOperation = {folder};
    _hasSelectionAfterOperation = true;
    _editingAfterOperation = true;
    transferPaths(folder, paths, false);
}

void ARXSpaceView::duplicateSelection() {
    if (!_root) {
        return;
    }
    // One batch; each folder makes the placeholders of its own items.
    std::map<ARXFileEntry*, ARXFileEntryList> byParent;
    std::vector<ARXFileEntry*> order;
    for (const ARXFileEntryRef& entry :
         ARXSelectionPreparation::topLevelEntries(_selectedItems, *_root)) {
        const ARXFileEntryRef parent = entry->parent();
        if (!parent) {
            continue;
        }
        if (!byParent.count(parent.get())) {
            order.push_back(parent.get());
        }
        byParent[parent.get()].push_back(entry);
    }
    std::vector<ARXFileOperationItemRef> items;
    for (ARXFileEntry* parent : order) {
        const ARXFileEntryDuplicates duplicates = parent->addDuplicates(byParent[parent]);
        entriesInserted(duplicates.entries);
        for (const ARXFileEntryRef& placeholder : duplicates.entries) {
            items.push_back(placeholder->operation);
        }
    }
    runBatch(std::move(items), ARXSoundEffect::file_added, true);
}

void ARXSpaceView::openEntries(const ARXFileEntryList& entries) {
    for (const ARXFileEntryRef& entry : entries) {
        if (const auto error = ARXDesktopLauncher::openWithDefaultApplication(entry->path())) {
            ARXAlerts::informError(window(), localized("“%1” could not be opened: %2")
                                                 .arg(ARXPath::display(entry->path()), *error));
            return;
        }
    }
}

// ----- drops

bool ARXSpaceView::canAccept(const QMimeData* data, const Path& destination) const {
    const ARXFileClipboard::Contents contents = ARXFileClipboard::read(data);
    // Only local files can be copied or moved; a web address or plain text is refused, and the
    // pointer says so while it is over the view.
    if (contents.paths.empty()) {
        return false;
    }
    // A folder cannot go into itself or into one of its own sub-folders.
    return std::none_of(contents.paths.begin(), contents.paths.end(), [&](const Path& path) {
        return ARXPathRules::isSamePath(path, destination) ||
               ARXPathRules::isInside(path, destination, true);
    });
}

Qt::DropAction ARXSpaceView::dropOperation(const QMimeData* data, const Path& destination,
                                           Qt::KeyboardModifiers modifiers,
                                           Qt::DropActions possible) const {
    const bool canCopy = possible & Qt::CopyAction;
    const bool canMove = possible & Qt::MoveAction;
    if (modifiers & Qt::ControlModifier && canCopy) {
        return Qt::CopyAction;
    }
    if (modifiers & Qt::ShiftModifier && canMove) {
        return Qt::MoveAction;
    }
    const ARXFileClipboard::Contents contents = ARXFileClipboard::read(data);
    if (contents.paths.empty()) {
        return canCopy ? Qt::CopyAction : Qt::MoveAction;
    }
    if (ARXDataCenter::shared().onSameVolume({contents.paths.front(), destination})) {
        return canMove ? Qt::MoveAction : Qt::CopyAction;
    }
    return canCopy ? Qt::CopyAction : Qt::MoveAction;
}

void ARXSpaceView::acceptDrop(const QMimeData* data, const ARXFileEntryRef& destination,
                              bool copy) {
    const ARXFileClipboard::Contents contents = ARXFileClipboard::read(data);
    transferPaths(destination, contents.paths, copy);
}

bool ARXSpaceView::renameEntry(const ARXFileEntryRef& entry, const QString& name) {
    if (name.isEmpty() || name == ARXPath::display(std::string(entry->name()))) {
        return false;
    }
    if (!ARXFileIO::exists(entry->path())) {
        ARXAlerts::inform(
            window(), ARXAlertStyle::informational,
            localized("“%1” doesn’t exists.").arg(ARXPath::display(std::string(entry->name()))),
            QString());
        return false;
    }
    return ARXFileRename::renameRecorded(*entry, name, presenter());
}
